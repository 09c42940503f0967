// Cost of a container's size-state change on a full benchtop desktop: 30 registered
// containers are shown, then 100 requests walk them through "Min", "Max" and "Thumb"
// (one container after the other) with the state animations switched off. Each change
// is timed as the request itself (state entry, geometry, style, the desktop manager's
// re-reservation) and as the event processing that follows it (layouts, polish): the
// settled state. A second pass of the same changes lets the window repaint after each,
// which adds the blending of every translucent container under the changed one.
// Runs on the offscreen platform unless QT_QPA_PLATFORM says otherwise.
//
//   tz-bench-containerstates [changes] [--report FILE]     (default 100)

#include "ContainerImpl.h"
#include "DesktopImpl.h"
#include "DesktopManagerImpl.h"
#include "GlobalImpl.h"

#include "BenchReport.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFrame>
#include <QHash>
#include <QVBoxLayout>
#include <QVector>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <numeric>

namespace {

constexpr int containerCount = 30;

struct Figures
{
    double median = 0;
    double mean = 0;
    double max = 0;
};

// In microseconds.
Figures summarise(QVector<qint64> nanoseconds)
{
    Figures figures;
    if (nanoseconds.isEmpty())
        return figures;
    std::sort(nanoseconds.begin(), nanoseconds.end());
    figures.median = nanoseconds[nanoseconds.size() / 2] / 1000.0;
    figures.mean = std::accumulate(nanoseconds.begin(), nanoseconds.end(), qint64(0)) / 1000.0 / nanoseconds.size();
    figures.max = nanoseconds.last() / 1000.0;
    return figures;
}

ContainerImpl* newContainer(DesktopImpl* desktop, DesktopManagerImpl& manager, int index)
{
    auto* container = new ContainerImpl(desktop);
    container->setWindowTitle(QStringLiteral("Module %1").arg(index));
    auto* form = new QFrame;
    form->setObjectName(QStringLiteral("ContainerFrame"));
    form->setMinimumSize(180, 120);
    auto* layout = new QVBoxLayout;
    layout->addWidget(form);
    container->setLayout(layout);
    container->enableState(QStringLiteral("Thumb"));
    container->init();
    manager.registerModule(container);
    container->show();
    return container;
}

QString nextState(const QString& state)
{
    if (state == QLatin1String("Min"))
        return QStringLiteral("Max");
    if (state == QLatin1String("Max"))
        return QStringLiteral("Thumb");
    return QStringLiteral("Min");
}

struct Pass
{
    QHash<QString, QVector<qint64>> requestTimes;
    QVector<qint64> requests;
    // The event processing after each request.
    QVector<qint64> events;
    // Request and the event processing after it: the change as a user sees it.
    QVector<qint64> settled;
    int wrong = 0;
};

// Walks the containers through \a changes size changes; with \a painted, the window's
// repaint runs after each, otherwise the window's updates are held back meanwhile.
Pass runPass(const QVector<ContainerImpl*>& containers, int changes, QWidget* painted)
{
    QWidget* window = containers.first()->window();
    window->setUpdatesEnabled(painted != nullptr);
    Pass pass;
    QElapsedTimer timer;
    for (int i = 0; i < changes; ++i) {
        ContainerImpl* container = containers[i % containers.size()];
        const QString from = container->state();
        const QString to = nextState(from);

        timer.start();
        container->setState(to);
        const qint64 request = timer.nsecsElapsed();
        timer.start();
        QCoreApplication::processEvents();
        pass.events << timer.nsecsElapsed();
        pass.settled << request + pass.events.last();

        pass.requests << request;
        pass.requestTimes[from + QStringLiteral(" -> ") + to] << request;
        if (container->state() != to)
            ++pass.wrong;
    }
    window->setUpdatesEnabled(true);
    QCoreApplication::processEvents();
    return pass;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    BenchReport report("containerstates", argc, argv);
    QApplication application(argc, argv);
    application.setProperty("-systype", QStringLiteral("benchtop"));
    application.setProperty("-animation", QStringLiteral("false"));
    const int changes = argc > 1 ? std::max(1, QByteArray(argv[1]).toInt()) : 100;
    GlobalImpl* registry = GlobalImpl::getInstance();

    QWidget window;
    window.resize(1280, 800);
    auto* desktop = new DesktopImpl(&window);
    registry->setDesktop(desktop);
    auto manager = std::make_unique<DesktopManagerImpl>();
    window.show();

    QVector<ContainerImpl*> containers;
    for (int i = 0; i < containerCount; ++i)
        containers << newContainer(desktop, *manager, i);
    QCoreApplication::processEvents();

    // First pass: the desktop's updates held back, so what is timed is the change itself
    // (state entry, geometry, style, layouts, polish). Second pass: the same changes with
    // the repaint that follows each, blending every translucent container under it.
    const Pass settled = runPass(containers, changes, nullptr);
    const Pass painted = runPass(containers, changes, &window);
    std::printf("%d size-state changes a pass, animations off, %d containers on a 1280x800 benchtop desktop\n",
                changes, containerCount);
    std::printf("  %-22s %6s | %10s %10s %10s\n", "change", "count", "median", "mean", "max");
    const auto row = [](const char* name, const QVector<qint64>& times) {
        const Figures figures = summarise(times);
        std::printf("  %-22s %6d | %7.1f us %7.1f us %7.1f us\n", name, int(times.size()), figures.median,
                    figures.mean, figures.max);
    };
    for (const char* kind : {"Min -> Max", "Max -> Thumb", "Thumb -> Min"})
        row(kind, settled.requestTimes.value(QLatin1String(kind)));
    row("every request", settled.requests);
    row("request+events", settled.settled);
    row("painted: events after", painted.events);
    row("painted: request+events", painted.settled);
    report.atMost("size change to settled state, median", summarise(settled.settled).median / 1000, "ms", 2);
    report.info("size change to settled state, max", summarise(settled.settled).max / 1000, "ms");
    report.info("size change request alone, median", summarise(settled.requests).median / 1000, "ms");
    report.info("size change settled and painted, median", summarise(painted.settled).median / 1000, "ms");
    const int wrong = settled.wrong + painted.wrong;
    if (wrong > 0)
        std::printf("  %d requests did not reach their state\n", wrong);

    qDeleteAll(containers);
    manager.reset();
    registry->setDesktop(nullptr);
    return wrong == 0 ? 0 : 1;
}
