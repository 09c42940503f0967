// Cost of building the navigation bar screen by screen: 50, 500 and 5000 screens are
// added with addMenuItem to a bar on a shown benchtop desktop, spread over the sixteen
// categories of the tile icons with eight sub-menu names each (bar buttons, groups and
// nested groups, with the regrouping they cause), and, as the unfavourable case, all in
// one flat sub-menu. Each build includes the event processing it leaves behind (the
// replaced buttons deleted, the row laid out and painted); the screens exist before the
// clocks start. Both the elapsed time and the CPU time of the GUI thread are given: on a
// busy machine the second is the steadier figure. Runs on the offscreen platform unless
// QT_QPA_PLATFORM says otherwise.
//
//   tz-bench-menubuilding [repetitions] [categories|flat [screens,...]] [--report FILE]
//                                     (default 5; the build of median CPU time is reported;
//                                     a shape or a size named runs alone, for profiling)

#include "ContainerBase.h"
#include "GlobalImpl.h"
#include "MenuBar.h"
#include "MenuItem.h"
#include "SubMenu.h"

#include "BenchReport.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFrame>
#include <QPushButton>
#include <QStringList>
#include <QVBoxLayout>
#include <QVector>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace {

const QStringList categories{"Meters",       "Analyzers",     "Receivers",           "Generators",
                             "Utilities",    "System",        "Self Test",           "Scripting",
                             "RF Generators", "Ext. Power Supplies", "DMM",         "Digital Data Gen.",
                             "Calibrations", "Audio",         "Applications",        "Help"};

enum class Shape { Categories, OneMenu };

// CPU time of the calling thread, in milliseconds.
double threadCpuMilliseconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
}

void processEverything()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

struct Build
{
    double cpuMilliseconds = 0;
    double buildMilliseconds = 0;
    double teardownMilliseconds = 0;
    double teardownCpuMilliseconds = 0;
    double openCpuMilliseconds = 0;
    int barButtons = 0;
    int subMenus = 0;
    int subSubMenus = 0;
};

// Deletes \a widgets and runs what that leaves queued, and times both into \a build.
template <class Widget>
Q_NEVER_INLINE void tearDown(const QVector<Widget*>& widgets, Build& build)
{
    QElapsedTimer timer;
    timer.start();
    const double cpuStart = threadCpuMilliseconds();
    qDeleteAll(widgets);
    processEverything();
    build.teardownMilliseconds = timer.nsecsElapsed() / 1e6;
    build.teardownCpuMilliseconds = threadCpuMilliseconds() - cpuStart;
}

// Leaves hidden widgets unpolished, as a closed pop-up leaves its entries.
class PolishLater : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        return event->type() == QEvent::PolishRequest && !static_cast<QWidget*>(watched)->isVisible();
    }
};

// The raw baseline: the same number of plain buttons, each with its text and height, put
// into the list of a hidden frame on the same desktop, and then deleted one by one. With
// \a sheet the frame carries it, as a sub-menu carries its own, and the buttons are left
// unpolished until shown, as a sub-menu's entries are.
Build plainButtonsOnce(int count, const QString& sheet = QString())
{
    PolishLater polishLater;
    QWidget desktop;
    desktop.resize(1280, 800);
    desktop.show();
    auto* list = new QFrame(&desktop);
    list->setStyleSheet(sheet);
    list->hide();
    auto* layout = new QVBoxLayout(list);
    QCoreApplication::processEvents();

    QElapsedTimer timer;
    timer.start();
    const double cpuStart = threadCpuMilliseconds();
    QVector<QPushButton*> buttons;
    buttons.reserve(count);
    for (int index = 0; index < count; ++index) {
        auto* button = new QPushButton(QStringLiteral("Screen %1").arg(index), list);
        button->setFixedHeight(50);
        if (!sheet.isEmpty())
            button->installEventFilter(&polishLater);
        layout->addWidget(button);
        buttons.append(button);
    }
    processEverything();
    Build build;
    build.buildMilliseconds = timer.nsecsElapsed() / 1e6;
    build.cpuMilliseconds = threadCpuMilliseconds() - cpuStart;

    tearDown(buttons, build);
    return build;
}

// Adds an entry for each of \a frames and runs what that leaves queued. Not inlined, so
// that a profile tells the build from the teardown.
Q_NEVER_INLINE void fill(MenuBar* bar, const QVector<ContainerBase*>& frames, Shape shape)
{
    for (int index = 0; index < frames.size(); ++index) {
        const bool spread = shape == Shape::Categories;
        const QString menu = spread ? categories[index % categories.size()] : QStringLiteral("Applications");
        const QString subMenu = spread ? QStringLiteral("Group %1").arg((index / categories.size()) % 8) : QString();
        bar->addMenuItem(menu, subMenu, QStringLiteral("Screen %1").arg(index), frames[index], index % 4, index % 3,
                         nullptr, QString(), 0);
    }
    processEverything();
}

// \a count hidden screens on \a desktop.
QVector<ContainerBase*> makeScreens(QWidget* desktop, int count)
{
    QVector<ContainerBase*> screens;
    screens.reserve(count);
    for (int index = 0; index < count; ++index) {
        auto* screen = new ContainerBase(desktop);
        screen->hide();
        screens.append(screen);
    }
    return screens;
}

// The screens' own share of a teardown: as many bare screens as a build gets, on the same
// desktop, deleted with no navigation bar to tell. A build is timed with its screens
// made already, so the menus' teardown is timed less what the screens alone take.
Build screensOnlyOnce(int screens)
{
    QWidget desktop;
    desktop.resize(1280, 800);
    const QVector<ContainerBase*> frames = makeScreens(&desktop, screens);
    desktop.show();
    QCoreApplication::processEvents();
    Build build;
    tearDown(frames, build);
    return build;
}

// With \a open, the flat sub-menu is opened after the build and that is timed too (the
// teardown then is of an opened menu).
Build buildOnce(int screens, Shape shape, bool open = false)
{
    QWidget desktop;
    desktop.resize(1280, 800);
    auto* bar = new MenuBar(&desktop, Qt::AlignTop);
    GlobalImpl::getInstance()->setTopNavMenu(bar);
    const QVector<ContainerBase*> frames = makeScreens(&desktop, screens);
    desktop.show();
    QCoreApplication::processEvents();

    QElapsedTimer timer;
    timer.start();
    const double cpuStart = threadCpuMilliseconds();
    fill(bar, frames, shape);
    Build build;
    build.buildMilliseconds = timer.nsecsElapsed() / 1e6;
    build.cpuMilliseconds = threadCpuMilliseconds() - cpuStart;
    build.subMenus = bar->getSubMenus().size();
    build.subSubMenus = bar->getSubSubMenus().size();
    for (const QString& menu : categories)
        build.barButtons += bar->menuButton(menu) ? 1 : 0;
    // The flat sub-menu's entries are styled when it first opens.
    if (open) {
        bar->showMenuBar(true);
        processEverything();
        const double openStart = threadCpuMilliseconds();
        bar->menuButton(QStringLiteral("Applications"))->click();
        processEverything();
        build.openCpuMilliseconds = threadCpuMilliseconds() - openStart;
    }

    // Every screen goes, and with it its entry; the menus collapse as they empty.
    tearDown(frames, build);
    GlobalImpl::getInstance()->setTopNavMenu(nullptr);
    return build;
}

// The build of median CPU time, with the teardown and the first open of median CPU time in
// place of its own.
Build median(QVector<Build> builds)
{
    std::sort(builds.begin(), builds.end(),
              [](const Build& a, const Build& b) { return a.cpuMilliseconds < b.cpuMilliseconds; });
    Build result = builds[builds.size() / 2];
    std::sort(builds.begin(), builds.end(), [](const Build& a, const Build& b) {
        return a.teardownCpuMilliseconds < b.teardownCpuMilliseconds;
    });
    result.teardownMilliseconds = builds[builds.size() / 2].teardownMilliseconds;
    result.teardownCpuMilliseconds = builds[builds.size() / 2].teardownCpuMilliseconds;
    std::sort(builds.begin(), builds.end(),
              [](const Build& a, const Build& b) { return a.openCpuMilliseconds < b.openCpuMilliseconds; });
    result.openCpuMilliseconds = builds[builds.size() / 2].openCpuMilliseconds;
    return result;
}

void run(Shape shape, const QVector<int>& sizes, int repetitions, const Build& plain, const Build& screensAlone,
         BenchReport& report)
{
    std::printf("\n%s\n", shape == Shape::Categories ? "16 categories x 8 sub-menu names" : "one flat sub-menu");
    std::printf("  %7s | %9s %9s %11s | %7s %12s | %4s %4s %5s | %8s\n", "screens", "cpu", "elapsed", "cpu/screen",
                "growth", "n log n says", "bar", "subs", "nests", "teardown");
    double previous = 0;
    int previousScreens = 0;
    for (int screens : sizes) {
        QVector<Build> builds;
        for (int r = 0; r < repetitions; ++r)
            builds.append(buildOnce(screens, shape));
        double firstOpen = 0;
        if (shape == Shape::OneMenu && screens == 5000) {
            QVector<Build> opened;
            for (int r = 0; r < repetitions; ++r)
                opened.append(buildOnce(screens, shape, true));
            firstOpen = median(opened).openCpuMilliseconds;
        }
        const Build middle = median(builds);
        QString growth = QStringLiteral("-");
        QString expected = QStringLiteral("-");
        if (previousScreens > 0) {
            growth = QString::number(middle.cpuMilliseconds / previous, 'f', 1) + QLatin1Char('x');
            const double nlogn =
                (screens * std::log(double(screens))) / (previousScreens * std::log(double(previousScreens)));
            expected = QString::number(nlogn, 'f', 1) + QLatin1Char('x');
        }
        std::printf("  %7d | %6.1f ms %6.1f ms %8.1f us | %7s %12s | %4d %4d %5d | %5.1f ms\n", screens,
                    middle.cpuMilliseconds, middle.buildMilliseconds, middle.cpuMilliseconds * 1000 / screens,
                    qPrintable(growth), qPrintable(expected), middle.barButtons, middle.subMenus,
                    middle.subSubMenus, middle.teardownMilliseconds);
        previous = middle.cpuMilliseconds;
        previousScreens = screens;
        if (screens == 5000) {
            const std::string what = shape == Shape::Categories ? "menus of 5000 screens" : "flat sub-menu of 5000";
            const std::string plainName = "5000 plain buttons in a list";
            report.atMost(what + ": build, GUI-thread CPU", middle.cpuMilliseconds, "ms", 100, plainName,
                          plain.cpuMilliseconds);
            report.info(what + ": build, elapsed", middle.buildMilliseconds, "ms");
            const double menusShare = middle.teardownCpuMilliseconds - screensAlone.teardownCpuMilliseconds;
            std::printf("  teardown of 5000: %.1f ms CPU, of which the screens alone take %.1f and the menus %.1f\n",
                        middle.teardownCpuMilliseconds, screensAlone.teardownCpuMilliseconds, menusShare);
            report.atMost(what + ": teardown less the screens' own, GUI-thread CPU", menusShare, "ms", 100, plainName,
                          plain.teardownCpuMilliseconds);
            report.info(what + ": teardown with the screens, GUI-thread CPU", middle.teardownCpuMilliseconds, "ms");
            report.info(what + ": teardown with the screens, elapsed", middle.teardownMilliseconds, "ms");
            if (shape == Shape::OneMenu) {
                std::printf("  first open of the sub-menu of 5000: %.1f ms CPU\n", firstOpen);
                report.info(what + ": first open, GUI-thread CPU", firstOpen, "ms");
            }
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    BenchReport report("menubuilding", argc, argv);
    QApplication application(argc, argv);
    application.setProperty("-systype", QStringLiteral("benchtop"));
    const int repetitions = argc > 1 ? std::max(1, QByteArray(argv[1]).toInt()) : 5;
    GlobalImpl::getInstance();

    std::printf("building the navigation bar on a 1280x800 benchtop desktop, median of %d builds", repetitions);
    QVector<Build> plainBuilds;
    for (int r = 0; r < repetitions; ++r)
        plainBuilds.append(plainButtonsOnce(5000));
    const Build baseline = median(plainBuilds);
    std::printf("\n5000 plain buttons in a list: build %.1f ms CPU, teardown %.1f ms CPU\n", baseline.cpuMilliseconds,
                baseline.teardownCpuMilliseconds);
    // What the pop-up's style sheet alone costs the same buttons.
    const QString sheet = SubMenu(nullptr, nullptr).styleSheet();
    plainBuilds.clear();
    for (int r = 0; r < repetitions; ++r)
        plainBuilds.append(plainButtonsOnce(5000, sheet));
    const Build styled = median(plainBuilds);
    std::printf("the same under a sub-menu's style sheet: build %.1f ms CPU, teardown %.1f ms CPU\n",
                styled.cpuMilliseconds, styled.teardownCpuMilliseconds);
    report.info("5000 plain buttons under a sub-menu's style sheet: build, GUI-thread CPU", styled.cpuMilliseconds,
                "ms");
    report.info("5000 plain buttons under a sub-menu's style sheet: teardown, GUI-thread CPU",
                styled.teardownCpuMilliseconds, "ms");
    QVector<Build> screenTeardowns;
    for (int r = 0; r < repetitions; ++r)
        screenTeardowns.append(screensOnlyOnce(5000));
    const Build screensAlone = median(screenTeardowns);
    std::printf("5000 screens and no menu: teardown %.1f ms CPU\n", screensAlone.teardownCpuMilliseconds);
    report.info("5000 screens and no menu: teardown, GUI-thread CPU", screensAlone.teardownCpuMilliseconds, "ms");
    const QByteArray only = argc > 2 ? QByteArray(argv[2]) : QByteArray();
    QVector<int> sizes{50, 500, 5000};
    if (argc > 3) {
        sizes.clear();
        for (const QByteArray& size : QByteArray(argv[3]).split(','))
            sizes.append(size.toInt());
    }
    if (only != "flat")
        run(Shape::Categories, sizes, repetitions, baseline, screensAlone, report);
    if (only != "categories")
        run(Shape::OneMenu, sizes, repetitions, baseline, screensAlone, report);
    std::printf("\n");
    return 0;
}
