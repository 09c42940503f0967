// Round trip of the remote GUI service from another process, beside a raw omniORB null
// call between two processes in the same run.
//
//   tz-bench-guimanager [--calls N] [--host PROGRAM] [--any-cpu] [--report FILE]
//
// All its processes run on one CPU unless --any-cpu lets the scheduler place them.
//
// Starts omniNames on a free loopback port, the demo host offscreen (or PROGRAM, a host
// taking the same options) serving Lumaro/local/GUIManager, and this program again as a
// null-call server. Then times N calls of each kind (default 2000), interleaved in rounds
// of 100 after a warm-up of 100 each:
//  - null call:      GUI_Able::Ping("") on a servant in a single-thread POA of the
//                    other process, the ORB's own round trip;
//  - GetScreenList:  the servant reads the registry in the desktop's GUI thread;
//  - IsDialogActive: the servant's blocking signal to the host's receiver in the GUI
//                    thread, which answers through retResponse.
// Prints the median and the 99th percentile in microseconds.

#include "GuiAbleServant.h"
#include "ORB_wrapper_base.h"
#include "OrvanthNames.h"
#include "StopSignals.h"

#include "BenchReport.h"
#include "ChildProcess.h"
#include "NamingServiceProcess.h"

#include <GUIManager.hh>
#include <Orvanth.hh>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <sched.h>
#include <cstdio>
#include <functional>
#include <iostream>
#include <vector>

namespace {

const char nullPath[] = "Bench/NullCall";
constexpr int callsPerRound = 100;

// The null-call server: one GUI module in a single-thread POA, bound under nullPath,
// until SIGTERM.
int serveNullCalls()
{
    const Orvanth::StopSignals stopSignals;
    int status = 0;
    {
        ORB_wrapper_base orb;
        Orvanth::GuiAbleServant servant;
        PortableServer::POA_var poa = orb.singleThreadPoa("NullCallPOA");
        try {
            CORBA::Object_var object = orb.serve(nullPath, &servant, poa);
            std::cout << "READY" << std::endl;
            stopSignals.wait();
            orb.withdraw(nullPath, &servant, poa);
        } catch (const CORBA::Exception& e) {
            std::cerr << "tz-bench-guimanager: cannot serve the null call: " << e._name() << std::endl;
            status = 1;
        }
    }
    ORB_base::destroyProcessOrb();
    return status;
}

struct Series
{
    const char* name;
    std::function<void()> call;
    std::vector<double> microseconds;
};

double percentile(std::vector<double> values, double fraction)
{
    if (values.empty())
        return 0.0;
    std::sort(values.begin(), values.end());
    const auto index = std::min(values.size() - 1, std::size_t(fraction * double(values.size())));
    return values[index];
}

} // namespace

int main(int argc, char* argv[])
{
    for (int i = 1; i < argc; ++i) {
        if (std::string(argv[i]) == "--null-server")
            return serveNullCalls();
    }

    BenchReport report("guimanager", argc, argv);
    QCoreApplication application(argc, argv);
    int calls = 2000;
    QString host = QStringLiteral(TZ_DEMO_HOST);
    bool anyCpu = false;
    const QStringList arguments = application.arguments();
    for (int i = 1; i < arguments.size(); ++i) {
        if (arguments[i] == QLatin1String("--calls") && i + 1 < arguments.size())
            calls = std::max(callsPerRound, arguments[++i].toInt());
        else if (arguments[i] == QLatin1String("--host") && i + 1 < arguments.size())
            host = arguments[++i];
        else if (arguments[i] == QLatin1String("--any-cpu"))
            anyCpu = true;
        else {
            std::fprintf(stderr, "usage: tz-bench-guimanager [--calls N] [--host PROGRAM] [--any-cpu]\n");
            return 2;
        }
    }
    // Every process of the run on one CPU: a wake-up across two virtual CPUs costs about
    // 110 us each way here, and whether a server's thread lands beside the caller's is
    // the scheduler's choice, so the null call and the service's calls would otherwise
    // be timed under different conditions. Set before any thread or server starts, so
    // that all inherit the mask.
    if (!anyCpu) {
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(std::max(sched_getcpu(), 0), &one);
        sched_setaffinity(0, sizeof(one), &one);
    }

    NamingServiceProcess namingService;
    if (!namingService.start()) {
        std::fprintf(stderr, "omniNames did not start\n");
        return 1;
    }
    const QString initRef = namingService.orbArguments().last();

    QProcessEnvironment environment = namingService.childEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.insert(QStringLiteral("ORVANTH_DDS_DISABLE"), QStringLiteral("1"));
    ChildProcess desktop;
    desktop.start(host, {"-ORBInitRef", initRef, "-res", "800x480"}, environment, QString());
    ChildProcess nullServer;
    auto stopAll = [&] {
        nullServer.stop();
        desktop.stop();
        namingService.stop();
    };
    if (!nullServer.start(QCoreApplication::applicationFilePath(), {"--null-server"}, environment, QStringLiteral("READY"),
                          30000)) {
        std::fprintf(stderr, "the null-call server did not start\n");
        stopAll();
        return 1;
    }

    int status = 0;
    {
        ORB_wrapper_base orb({"-ORBInitRef", initRef.toStdString()});
        // The desktop serves once its name is bound.
        Lumaro::gui::GUIManager_var manager;
        QElapsedTimer startUp;
        startUp.start();
        while (CORBA::is_nil(manager) && startUp.elapsed() < 30000) {
            CORBA::Object_var managerObject = orb.ResolveName(Orvanth::Names::GuiManagerPath);
            manager = Lumaro::gui::GUIManager::_narrow(managerObject);
            if (CORBA::is_nil(manager))
                QThread::msleep(50);
        }
        CORBA::Object_var nullObject = orb.ResolveName(nullPath);
        Orvanth::GUI_Able_var module = Orvanth::GUI_Able::_narrow(nullObject);
        if (CORBA::is_nil(manager) || CORBA::is_nil(module)) {
            std::fprintf(stderr, "the GUI manager or the null-call server is not bound\n");
            status = 1;
        } else {
            std::vector<Series> series{
                {"null call (omniORB)", [&] { CORBA::String_var answer = module->Ping(""); }, {}},
                {"GetScreenList", [&] { Lumaro::gui::StringSeq_var screens = manager->GetScreenList(); }, {}},
                {"IsDialogActive", [&] { manager->IsDialogActive("Bench"); }, {}},
            };
            try {
                for (int done = -callsPerRound; done < calls; done += callsPerRound) {
                    for (Series& kind : series) {
                        for (int i = 0; i < callsPerRound; ++i) {
                            QElapsedTimer clock;
                            clock.start();
                            kind.call();
                            // The first callsPerRound only opens connections and warms caches.
                            if (done >= 0)
                                kind.microseconds.push_back(double(clock.nsecsElapsed()) / 1e3);
                        }
                    }
                }
                std::printf("%d calls each from a separate process, after a warm-up of %d\n", calls, callsPerRound);
                std::printf("%-22s %12s %12s\n", "call", "median us", "p99 us");
                for (const Series& kind : series)
                    std::printf("%-22s %12.1f %12.1f\n", kind.name, percentile(kind.microseconds, 0.5),
                                percentile(kind.microseconds, 0.99));
                const Series& null = series[0];
                const double nullMedian = percentile(null.microseconds, 0.5);
                report.info("null call (omniORB), median", nullMedian, "us");
                report.info("null call (omniORB), p99", percentile(null.microseconds, 0.99), "us");
                for (std::size_t i = 1; i < series.size(); ++i) {
                    const std::string name = series[i].name;
                    report.ratioAtMost(name + ", median", percentile(series[i].microseconds, 0.5), "us",
                                       "null call", nullMedian, 1.3);
                    report.atMost(name + ", p99", percentile(series[i].microseconds, 0.99), "us", 2000,
                                  "null call", percentile(null.microseconds, 0.99));
                }
                for (const Series& kind : series)
                    report.samples(kind.name, "us", kind.microseconds);
            } catch (const CORBA::Exception& e) {
                std::fprintf(stderr, "a call failed: %s\n", e._name());
                status = 1;
            }
        }
    }
    ORB_base::destroyProcessOrb();
    stopAll();
    return status;
}
