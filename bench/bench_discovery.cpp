// Module discovery of 50 engine GUI modules, beside a plain omniORB client doing the same
// naming-service work in the same run.
//
//   tz-bench-discovery [--modules N] [--runs R]
//
// Starts omniNames on a free loopback port and the engine simulator with N modules
// (default 50), then times, R times each (default 20), alternating:
//  - plain:      one omniORB client lists Lumaro/local/GUI_ABLE, resolves, narrows and
//                pings every module;
//  - initialize: a new NamingServiceImpl's silent start-up search;
//  - announced:  a new NamingServiceImpl from construction to its last NewGUIAble, through
//                processReadyGUIAble().
// The first run opens the ORB's connections and is shown apart; the medians are of the
// runs after it. Diagnostic lines are discarded, as a desktop without -debug does. DDS domain
// from ORVANTH_DDS_DOMAIN (default 198 here, away from the tests' domains).

#include "ApplicationOrb.h"
#include "NamingServiceImpl.h"
#include "ORB_base.h"
#include "OrvanthNames.h"

#include "BenchReport.h"
#include "ChildProcess.h"
#include "NamingServiceProcess.h"

#include <Orvanth.hh>
#include <omniORB4/Naming.hh>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

CosNaming::Name nameOf(const std::vector<const char*>& components)
{
    CosNaming::Name name;
    name.length(CORBA::ULong(components.size()));
    for (CORBA::ULong i = 0; i < name.length(); ++i) {
        name[i].id = CORBA::string_dup(components[i]);
        name[i].kind = CORBA::string_dup("");
    }
    return name;
}

// Lists, resolves, narrows and pings every module with plain omniORB calls; returns the
// number of modules that answered.
int plainDiscovery(CORBA::ORB_ptr orb)
{
    CORBA::Object_var object = orb->resolve_initial_references("NameService");
    CosNaming::NamingContext_var root = CosNaming::NamingContext::_narrow(object);
    const CosNaming::Name contextName = nameOf({"Lumaro", "local", "GUI_ABLE"});
    CORBA::Object_var contextObject = root->resolve(contextName);
    CosNaming::NamingContext_var context = CosNaming::NamingContext::_narrow(contextObject);
    CosNaming::BindingList_var bindings;
    CosNaming::BindingIterator_var iterator;
    context->list(10000, bindings.out(), iterator.out());
    int answered = 0;
    for (CORBA::ULong i = 0; i < bindings->length(); ++i) {
        CosNaming::Name name = contextName;
        name.length(4);
        name[3] = bindings[i].binding_name[0];
        CORBA::Object_var bound = root->resolve(name);
        Orvanth::GUI_Able_var module = Orvanth::GUI_Able::_narrow(bound);
        CORBA::String_var answer = module->Ping("PingTest");
        ++answered;
    }
    if (!CORBA::is_nil(iterator))
        iterator->destroy();
    return answered;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0.0 : values[values.size() / 2];
}

double maximum(const std::vector<double>& values)
{
    return values.empty() ? 0.0 : *std::max_element(values.begin(), values.end());
}

void discardMessages(QtMsgType, const QMessageLogContext&, const QString&)
{
}

} // namespace

int main(int argc, char* argv[])
{
    BenchReport report("discovery", argc, argv);
    setenv("ORVANTH_DDS_DOMAIN", "198", 0);
    QCoreApplication application(argc, argv);
    int modules = 50;
    int runs = 20;
    const QStringList arguments = application.arguments();
    for (int i = 1; i < arguments.size(); ++i) {
        if (arguments[i] == QLatin1String("--modules") && i + 1 < arguments.size())
            modules = std::max(1, arguments[++i].toInt());
        else if (arguments[i] == QLatin1String("--runs") && i + 1 < arguments.size())
            runs = std::max(1, arguments[++i].toInt());
        else {
            std::fprintf(stderr, "usage: tz-bench-discovery [--modules N] [--runs R] [--report FILE]\n");
            return 2;
        }
    }

    NamingServiceProcess namingService;
    if (!namingService.start()) {
        std::fprintf(stderr, "omniNames did not start\n");
        return 1;
    }
    ChildProcess simulator;
    if (!simulator.start(QStringLiteral(TZ_ENGINE_SIMULATOR),
                         {"--modules", QString::number(modules), "--events-per-second", "0"},
                         namingService.childEnvironment(), QStringLiteral("READY"), 30000)) {
        std::fprintf(stderr, "the engine simulator did not start\n");
        return 1;
    }

    application.setProperty("-ORBInitRef", namingService.orbArguments().last());
    CORBA::ORB_ptr orb = ApplicationOrb::start();
    qInstallMessageHandler(discardMessages);

    std::vector<double> plainMs;
    std::vector<double> initializeMs;
    std::vector<double> announcedMs;
    int status = 0;
    for (int run = 0; run <= runs; ++run) {
        // Run 0 is the warm-up: it opens the connections the others reuse.
        QElapsedTimer clock;
        clock.start();
        const int answered = plainDiscovery(orb);
        const double plain = double(clock.nsecsElapsed()) / 1e6;

        clock.restart();
        int loaded = 0;
        {
            NamingServiceImpl discovery;
            discovery.initialize();
            loaded = discovery.guiAbleLoaded();
        }
        const double initialize = double(clock.nsecsElapsed()) / 1e6;

        clock.restart();
        int announced = 0;
        double lastAnnouncement = 0.0;
        {
            NamingServiceImpl discovery;
            QObject::connect(&discovery, &NamingServiceImpl::NewGUIAble, [&] {
                if (++announced == modules)
                    lastAnnouncement = double(clock.nsecsElapsed()) / 1e6;
            });
            discovery.processReadyGUIAble();
        }

        if (answered != modules || loaded != modules || announced != modules) {
            std::fprintf(stderr, "run %d: plain %d, initialize %d, announced %d of %d modules\n", run, answered,
                         loaded, announced, modules);
            status = 1;
        }
        if (run == 0) {
            std::printf("first run, connections being opened  plain %.2f ms, initialize %.2f ms, announced %.2f ms\n",
                        plain, initialize, lastAnnouncement);
            continue;
        }
        plainMs.push_back(plain);
        initializeMs.push_back(initialize);
        announcedMs.push_back(lastAnnouncement);
    }

    std::printf("modules bound                         %d (engine simulator), %d runs after a warm-up\n", modules,
                runs);
    std::printf("plain omniORB list+resolve+ping       median %7.2f ms   max %7.2f ms\n", median(plainMs),
                maximum(plainMs));
    std::printf("NamingServiceImpl initialize()        median %7.2f ms   max %7.2f ms\n", median(initializeMs),
                maximum(initializeMs));
    std::printf("NamingServiceImpl to last NewGUIAble  median %7.2f ms   max %7.2f ms\n", median(announcedMs),
                maximum(announcedMs));
    std::printf("ratio to plain (median)               initialize %.2f   announced %.2f\n",
                median(initializeMs) / std::max(1e-9, median(plainMs)),
                median(announcedMs) / std::max(1e-9, median(plainMs)));

    const std::string what = "discovery of " + std::to_string(modules) + " modules";
    report.ratioAtMost(what + ": initialize(), median", median(initializeMs), "ms", "plain list+resolve+ping",
                       median(plainMs), 1.3);
    report.ratioAtMost(what + ": to last NewGUIAble, median", median(announcedMs), "ms", "plain list+resolve+ping",
                       median(plainMs), 1.3);

    qInstallMessageHandler(nullptr);
    simulator.stop();
    ORB_base::destroyProcessOrb();
    namingService.stop();
    return status;
}
