// Cost of placing a container on the desktop and of releasing its place, as the desktop
// fills: 200 containers are placed one by one and released again on a benchtop desktop,
// then a fresh container is placed and released repeatedly beside 10, 50 and 200 open
// ones. Runs on the offscreen platform unless QT_QPA_PLATFORM says otherwise.
//
//   tz-bench-desktopplacement [repetitions] [--report FILE]     (default 200)

#include "ContainerBase.h"
#include "DesktopImpl.h"
#include "DesktopManagerImpl.h"
#include "GlobalImpl.h"

#include "BenchReport.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QVector>
#include <QWidget>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <numeric>

namespace {

const QVector<int> checkpoints{10, 50, 200};

struct Figures
{
    double medianMicroseconds = 0;
    double maxMicroseconds = 0;
};

Figures summarise(QVector<qint64> nanoseconds)
{
    Figures figures;
    if (nanoseconds.isEmpty())
        return figures;
    std::sort(nanoseconds.begin(), nanoseconds.end());
    figures.medianMicroseconds = nanoseconds[nanoseconds.size() / 2] / 1000.0;
    figures.maxMicroseconds = nanoseconds.last() / 1000.0;
    return figures;
}

// One desktop of the given size with its own manager; the containers are never shown, the
// manager is driven directly so that only its own work is timed.
class Bench
{
public:
    explicit Bench(QSize desktopSize)
    {
        window.resize(desktopSize);
        desktop = new DesktopImpl(&window);
        GlobalImpl::getInstance()->setDesktop(desktop);
        manager = std::make_unique<DesktopManagerImpl>();
    }
    ~Bench()
    {
        manager.reset();
        GlobalImpl::getInstance()->setDesktop(nullptr);
    }

    ContainerBase* newContainer(QSize size)
    {
        auto* container = new ContainerBase(desktop);
        container->resize(size);
        return container;
    }

    qint64 timePlacement(ContainerBase* container)
    {
        QElapsedTimer timer;
        timer.start();
        manager->allocate(container);
        return timer.nsecsElapsed();
    }

    qint64 timeRelease(ContainerBase* container)
    {
        QElapsedTimer timer;
        timer.start();
        manager->deallocate(container);
        return timer.nsecsElapsed();
    }

    QWidget window;
    DesktopImpl* desktop;
    std::unique_ptr<DesktopManagerImpl> manager;
};

void run(QSize desktopSize, QSize containerSize, int repetitions, BenchReport& report)
{
    const int cells = (desktopSize.width() / 10) * (desktopSize.height() / 10);
    const int containerCells = (containerSize.width() / 10) * (containerSize.height() / 10);
    std::printf("\ndesktop %dx%d (%d cells), containers %dx%d (%d cells each)\n", desktopSize.width(),
                desktopSize.height(), cells, containerSize.width(), containerSize.height(), containerCells);

    Bench bench(desktopSize);
    const QPoint centre((desktopSize.width() - containerSize.width()) / 2,
                        (desktopSize.height() - containerSize.height()) / 2);

    // One pass: the n-th placement with n - 1 open, then the releases in the same order.
    QVector<ContainerBase*> open;
    QVector<qint64> fillTimes;
    int centred = 0;
    for (int i = 0; i < checkpoints.last(); ++i) {
        open << bench.newContainer(containerSize);
        fillTimes << bench.timePlacement(open.last());
        if (open.last()->pos() == centre)
            ++centred;
    }
    QVector<qint64> releaseTimes;
    for (ContainerBase* container : open)
        releaseTimes << bench.timeRelease(container);
    std::printf("  filling: %d of %d placed beside others, %d centred for want of room\n",
                checkpoints.last() - centred, checkpoints.last(), centred);
    std::printf("  fill pass: placement #%d %.1f us, #%d %.1f us, #%d %.1f us; release of all %d: %.1f us in total\n",
                checkpoints[0], fillTimes[checkpoints[0] - 1] / 1000.0, checkpoints[1],
                fillTimes[checkpoints[1] - 1] / 1000.0, checkpoints[2], fillTimes[checkpoints[2] - 1] / 1000.0,
                checkpoints.last(), std::accumulate(releaseTimes.begin(), releaseTimes.end(), qint64(0)) / 1000.0);

    // Re-open the first n (they keep their places) and time a newcomer beside them.
    std::printf("  %6s | %14s %11s | %14s %11s\n", "open", "place median", "place max", "release median",
                "release max");
    int reopened = 0;
    for (int count : checkpoints) {
        for (; reopened < count; ++reopened)
            bench.manager->allocate(open[reopened]);
        QVector<qint64> placements;
        QVector<qint64> releases;
        for (int r = 0; r < repetitions; ++r) {
            ContainerBase* newcomer = bench.newContainer(containerSize);
            placements << bench.timePlacement(newcomer);
            releases << bench.timeRelease(newcomer);
            delete newcomer;
        }
        const Figures place = summarise(placements);
        const Figures release = summarise(releases);
        std::printf("  %6d | %11.1f us %8.1f us | %11.1f us %8.1f us\n", count, place.medianMicroseconds,
                    place.maxMicroseconds, release.medianMicroseconds, release.maxMicroseconds);
        if (count == checkpoints.last()) {
            const std::string what = std::to_string(containerSize.width()) + "x" + std::to_string(containerSize.height())
                                     + " on " + std::to_string(desktopSize.width()) + "x"
                                     + std::to_string(desktopSize.height()) + " with " + std::to_string(count)
                                     + " open";
            report.info("placement of " + what + ", median", place.medianMicroseconds, "us");
            report.info("release of " + what + ", median", release.medianMicroseconds, "us");
        }
    }
    qDeleteAll(open);
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    BenchReport report("desktopplacement", argc, argv);
    QApplication application(argc, argv);
    application.setProperty("-systype", QStringLiteral("benchtop"));
    const int repetitions = argc > 1 ? std::max(1, QByteArray(argv[1]).toInt()) : 200;
    GlobalImpl::getInstance();

    std::printf("placement and release on a benchtop desktop, %d repetitions per row", repetitions);
    run(QSize(1280, 800), QSize(40, 30), repetitions, report);
    run(QSize(1280, 800), QSize(200, 150), repetitions, report);
    // Four times the cells: a placement's cost is bounded by its candidates, not the desktop.
    run(QSize(2560, 1600), QSize(40, 30), repetitions, report);
    std::printf("\n");
    return 0;
}
