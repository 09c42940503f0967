// Bound widgets whose engine goes and comes back: the time from the engine's return (its
// module announced again) until the last widget is live again, with the GUI thread free.
//
//   tz-bench-enginereturn [--widgets N] [--returns R] [--churn S]
//
// Starts omniNames on a free loopback port and the engine simulator with one module that
// goes and comes back every S seconds (default 4; its attributes go along and come back
// under new references). Binds N widgets (default 200) by name to RUNACTION1 and, for R
// returns (default 3), waits until every widget shows the engine lost and then until every
// one is live again. Prints, for each return, the time from the announcement reaching
// module discovery to the first and to the last widget live (goal: last within 1000 ms)
// and the longest gap between the ticks of a 1 ms GUI-thread timer meanwhile.
// Diagnostic lines are discarded. Offscreen Qt platform unless QT_QPA_PLATFORM says
// otherwise; DDS domain from ORVANTH_DDS_DOMAIN (default 196).

#include "ApplicationOrb.h"
#include "DDS_BaseObj.h"
#include "GlobalImpl.h"
#include "NamingServiceImpl.h"
#include "ORB_base.h"
#include "WidgetBaseImpl.h"

#include "BenchReport.h"
#include "NamingServiceProcess.h"
#include "SimulatorSession.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QThread>
#include <QThreadPool>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <vector>

namespace {

void discardMessages(QtMsgType, const QMessageLogContext&, const QString&)
{
}

/// Runs the event loop until \a done (checked every ms) or \a timeoutMs; false on time-out.
bool runUntil(const std::function<bool()>& done, int timeoutMs)
{
    if (done())
        return true;
    QEventLoop loop;
    QTimer check;
    QObject::connect(&check, &QTimer::timeout, &loop, [&] {
        if (done())
            loop.quit();
    });
    check.start(1);
    QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
    loop.exec();
    return done();
}

// Binds \a widgetCount widgets and times \a returns returns of their engine.
int measure(NamingServiceImpl& discovery, int widgetCount, int returns, int churnSeconds, BenchReport& report)
{
    discovery.postInit();
    // The announcement is stamped where module discovery emits it, on a DDS thread.
    QElapsedTimer clock;
    clock.start();
    std::atomic<qint64> announcedNs{0};
    QObject::connect(&discovery, &NamingServiceImpl::NewGUIAble, &discovery,
                     [&] { announcedNs = clock.nsecsElapsed(); }, Qt::DirectConnection);

    QWidget host;
    std::vector<WidgetBaseImpl*> widgets;
    for (int i = 0; i < widgetCount; ++i) {
        auto* widget = new WidgetBaseImpl(&host);
        widget->setAttributeName(QStringLiteral("RUNACTION1"));
        widgets.push_back(widget);
    }
    const auto countIn = [&widgets](WidgetBaseImpl::AttributeState state) {
        return int(std::count_if(widgets.begin(), widgets.end(),
                                 [state](const WidgetBaseImpl* widget) { return widget->attributeState() == state; }));
    };
    // The first and the last time a widget turned live after the announcement.
    qint64 firstLiveNs = 0;
    qint64 lastLiveNs = 0;
    for (WidgetBaseImpl* widget : widgets) {
        QObject::connect(widget, &WidgetBaseImpl::attributeStateChanged, [&](WidgetBaseImpl::AttributeState state) {
            if (state == WidgetBaseImpl::EngineLost)
                return;
            const qint64 now = clock.nsecsElapsed();
            if (firstLiveNs == 0)
                firstLiveNs = now;
            lastLiveNs = now;
        });
        widget->bindAttributeByName();
    }
    const int waitMs = churnSeconds * 1000 + 20000;
    if (!runUntil([&] { return countIn(WidgetBaseImpl::Free) == widgetCount; }, waitMs)) {
        std::fprintf(stderr, "binding %d widgets failed\n", widgetCount);
        return 1;
    }

    // A 1 ms timer in the GUI thread: the longest gap between its ticks.
    qint64 lastTickNs = clock.nsecsElapsed();
    qint64 longestGapNs = 0;
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        const qint64 now = clock.nsecsElapsed();
        longestGapNs = std::max(longestGapNs, now - lastTickNs);
        lastTickNs = now;
    });

    int status = 0;
    // The slowest return; not a number when some widget never came back.
    double worstMs = 0;
    std::printf("%d widgets bound by name; the engine goes and comes back every %d s\n", widgetCount, churnSeconds);
    std::printf("return  first live (ms)  last live (ms)  GUI longest gap (ms)\n");
    for (int round = 1; round <= returns; ++round) {
        if (!runUntil([&] { return countIn(WidgetBaseImpl::EngineLost) == widgetCount; }, waitMs)) {
            std::fprintf(stderr, "return %d: %d of %d widgets saw the engine lost\n", round,
                         countIn(WidgetBaseImpl::EngineLost), widgetCount);
            return 1;
        }
        firstLiveNs = lastLiveNs = 0;
        announcedNs = 0;
        lastTickNs = clock.nsecsElapsed();
        longestGapNs = 0;
        ticker.start(1);
        const bool back = runUntil([&] { return countIn(WidgetBaseImpl::Free) == widgetCount; }, waitMs);
        ticker.stop();
        const double firstMs = double(firstLiveNs - announcedNs) / 1e6;
        const double lastMs = double(lastLiveNs - announcedNs) / 1e6;
        std::printf("%6d  %15.1f  %14.1f  %20.2f%s\n", round, firstMs, lastMs, double(longestGapNs) / 1e6,
                    back ? "" : "  NOT ALL BACK");
        worstMs = back ? std::max(worstMs, lastMs) : NAN;
        if (!back || lastMs > 1000.0)
            status = 1;
    }
    std::printf("goal: the last widget live within 1000 ms of the engine's return\n");
    report.atMost("engine back to last of " + std::to_string(widgetCount) + " widgets live, worst", worstMs, "ms",
                  1000);

    QThreadPool::globalInstance()->waitForDone();
    for (WidgetBaseImpl* widget : widgets)
        delete widget;
    return status;
}

} // namespace

int main(int argc, char* argv[])
{
    setenv("ORVANTH_DDS_DOMAIN", "196", 0);
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    BenchReport report("enginereturn", argc, argv);
    QApplication application(argc, argv);
    int widgetCount = 200;
    int returns = 3;
    int churnSeconds = 4;
    const QStringList arguments = application.arguments();
    for (int i = 1; i < arguments.size(); ++i) {
        const bool hasValue = i + 1 < arguments.size();
        if (arguments[i] == QLatin1String("--widgets") && hasValue)
            widgetCount = std::max(1, arguments[++i].toInt());
        else if (arguments[i] == QLatin1String("--returns") && hasValue)
            returns = std::max(1, arguments[++i].toInt());
        else if (arguments[i] == QLatin1String("--churn") && hasValue)
            churnSeconds = std::max(1, arguments[++i].toInt());
        else {
            std::fprintf(stderr, "usage: tz-bench-enginereturn [--widgets N] [--returns R] [--churn S]\n");
            return 2;
        }
    }

    NamingServiceProcess namingService;
    if (!namingService.start()) {
        std::fprintf(stderr, "omniNames did not start\n");
        return 1;
    }
    application.setProperty("-ORBInitRef", namingService.orbArguments().last());
    ApplicationOrb::start();
    qInstallMessageHandler(discardMessages);
    int status = 0;
    {
        // The engine goes before the ORB; the widgets, made after it, go before the engine.
        SimulatorSession engine;
        if (!engine.start(namingService, {"--module-churn", QString::number(churnSeconds)})) {
            std::fprintf(stderr, "the engine simulator did not start or its module was not found\n");
            return 1;
        }
        status = measure(engine.discovery(), widgetCount, returns, churnSeconds, report);
    }
    ORB_base::destroyProcessOrb();
    Orvanth::DDS_BaseObj::shutdownDds();
    return status;
}
