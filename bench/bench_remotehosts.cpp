// What a link between the instrument and an engine host costs, against loopback in the
// same run: DDS one-way latency at 1 kHz, a CORBA call's round trip and the discovery of
// a new engine module.
//
//   tz-bench-remotehosts [--samples N] [--calls N] [--modules N]
//
// Needs root: it makes two network namespaces joined by a veth pair, as the two-host
// test does, and measures twice. On loopback, omniNames, an engine process and a
// measuring process all run in the instrument's namespace on 127.0.0.1; across the link,
// the engine process runs in the engine host's namespace and ORVANTH_INSTRUMENT_HOST is
// set everywhere. Each time the engine process (this program with --engine) serves a
// GUI module under Bench/NullCall, publishes N samples (default 5000) at 1 kHz stamped
// with CLOCK_MONOTONIC (one clock for every namespace of a host), then binds and
// announces M new modules (default 20) one after the other. The measuring process (this
// program with --measure) times N calls (default 2000) of GUI_Able::Ping, receives the
// samples through the typed subscriber and follows the modules with module discovery;
// a module's discovery time runs from the start of its binding to NewGUIAble. Prints
// the median and 99th percentile of each, in microseconds (discovery in milliseconds).
// DDS domain from ORVANTH_DDS_DOMAIN (default 198 here, away from the tests' domains).

#include "BenchReport.h"
#include "ChildProcess.h"
#include "NamingServiceProcess.h"

#include "DDS_BaseObj.h"
#include "DDS_Subscriber.h"
#include "GuiAbleServant.h"
#include "NamingServiceImpl.h"
#include "ORB_wrapper_base.h"
#include "OrvanthNames.h"
#include "StopSignals.h"
#include "TopicPublisher.h"

#include <OrvanthTopicsPubSubTypes.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <memory>
#include <mutex>
#include <thread>
#include <time.h>
#include <unistd.h>
#include <vector>

using namespace Orvanth;
using namespace Orvanth::TKWW_DDS;

namespace {

const char latencyTopic[] = "Bench/RemoteLatency";
const char nullPath[] = "Bench/NullCall";
constexpr int warmUpCalls = 100;

struct Settings
{
    int samples = 5000;
    int calls = 2000;
    int modules = 20;
};

std::int64_t monotonicNs()
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t(now.tv_sec) * 1000000000 + now.tv_nsec;
}

double percentile(std::vector<double> values, double fraction)
{
    if (values.empty())
        return 0.0;
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, std::size_t(fraction * double(values.size())))];
}

std::string modulePath(int index)
{
    return std::string(Names::GuiAbleContext) + "/" + std::to_string(index);
}

// The engine process: one module for the calls, the samples once a reader is there, then
// new modules once module discovery listens. Prints "BOUND index ns" as each binding starts.
int runEngine(const Settings& settings)
{
    const StopSignals stopSignals;
    int status = 0;
    {
        ORB_wrapper_base orb;
        GuiAbleServant servant;
        try {
            CORBA::Object_var object = orb.serve(nullPath, &servant);
            TopicPublisher<ATTR_EVENTPubSubType> samples(latencyTopic);
            TopicPublisher<ATTR_STRINGPubSubType> announcements(Names::GuiAbleTopic);
            std::cout << "READY" << std::endl;

            if (!samples.waitForSubscribers(1, std::chrono::seconds(60)))
                throw std::runtime_error("no reader of the samples");
            std::this_thread::sleep_for(std::chrono::milliseconds(500));
            Event::Message message;
            message.source("Engine 1");
            message.text("Input level high on channel 2; attenuation raised to 20 dB");
            ATTR_EVENT sample;
            const auto start = std::chrono::steady_clock::now();
            for (int i = 0; i < settings.samples; ++i) {
                std::this_thread::sleep_until(start + std::chrono::microseconds(std::int64_t(i) * 1000));
                message.code(i);
                message.timestamp(monotonicNs());
                sample.value(message);
                samples.publish(sample);
            }

            if (!announcements.waitForSubscribers(1, std::chrono::seconds(60)))
                throw std::runtime_error("no module discovery");
            std::this_thread::sleep_for(std::chrono::milliseconds(500));
            for (int index = 1; index <= settings.modules; ++index) {
                std::cout << "BOUND " << index << " " << monotonicNs() << std::endl;
                CORBA::Object_var module = orb.serve(modulePath(index), &servant);
                ATTR_STRING text;
                text.value("create," + std::to_string(index));
                announcements.publish(text);
                std::this_thread::sleep_for(std::chrono::milliseconds(200));
            }
            stopSignals.wait();
            for (int index = 1; index <= settings.modules; ++index)
                orb.UnbindName(modulePath(index));
            orb.withdraw(nullPath, &servant);
        } catch (const CORBA::Exception& e) {
            std::cerr << "engine: " << e._name() << std::endl;
            status = 1;
        } catch (const std::exception& e) {
            std::cerr << "engine: " << e.what() << std::endl;
            status = 1;
        }
    }
    ORB_base::destroyProcessOrb();
    DDS_BaseObj::shutdownDds();
    return status;
}

// The measuring process: prints "RESULT name value" lines and "FOUND index ns" as module
// discovery announces each new module.
int runMeasure(int argc, char* argv[], const Settings& settings)
{
    QCoreApplication application(argc, argv);
    int status = 0;
    {
        ORB_wrapper_base orb;
        CORBA::Object_var object = orb.ResolveName(nullPath);
        GUI_Able_var module = GUI_Able::_narrow(object);
        if (CORBA::is_nil(module)) {
            std::cerr << "measure: nothing bound under " << nullPath << std::endl;
            return 1;
        }
        std::vector<double> roundTrips;
        for (int i = -warmUpCalls; i < settings.calls; ++i) {
            const std::int64_t sent = monotonicNs();
            CORBA::String_var answer = module->Ping("");
            if (i >= 0)
                roundTrips.push_back(double(monotonicNs() - sent) / 1e3);
        }
        std::printf("RESULT corba-median %.1f\nRESULT corba-p99 %.1f\n", percentile(roundTrips, 0.5),
                    percentile(roundTrips, 0.99));

        std::mutex mutex;
        std::vector<double> latencies;
        {
            DDS_Subscriber<Event::Message> subscriber(
                latencyTopic,
                [&](const char*, Event::Message message) {
                    const double latency = double(monotonicNs() - message.timestamp()) / 1e3;
                    std::lock_guard<std::mutex> lock(mutex);
                    latencies.push_back(latency);
                },
                0, 0, eprosima::fastdds::dds::VOLATILE_DURABILITY_QOS);
            QElapsedTimer clock;
            clock.start();
            const auto received = [&] {
                std::lock_guard<std::mutex> lock(mutex);
                return int(latencies.size());
            };
            while (received() < settings.samples && clock.elapsed() < settings.samples + 30000)
                QThread::msleep(20);
        }
        std::printf("RESULT dds-received %zu\nRESULT dds-median %.1f\nRESULT dds-p99 %.1f\n", latencies.size(),
                    percentile(latencies, 0.5), percentile(latencies, 0.99));
        std::fflush(stdout);

        std::atomic<int> found{0};
        NamingServiceImpl discovery;
        QObject::connect(&discovery, &NamingServiceImpl::NewGUIAble, [&](const QString& index) {
            std::printf("FOUND %s %lld\n", qPrintable(index), static_cast<long long>(monotonicNs()));
            std::fflush(stdout);
            ++found;
        });
        discovery.initialize();
        discovery.postInit();
        QElapsedTimer clock;
        clock.start();
        while (found < settings.modules && clock.elapsed() < 30000)
            QThread::msleep(20);
        if (found < settings.modules)
            status = 1;
    }
    ORB_base::destroyProcessOrb();
    DDS_BaseObj::shutdownDds();
    return status;
}

struct Placement
{
    QMap<QString, double> results;
    std::vector<double> discoveryMs;
    QString failure;
};

// One round: omniNames, the engine process and the measuring process; when \a remote the
// engine process runs on the engine host's side and the variable is set, otherwise
// everything shares the instrument's loopback.
Placement measure(NetworkNamespaces& network, bool remote, const Settings& settings, const QStringList& options)
{
    using Side = NetworkNamespaces::Side;
    Placement placement;
    const QString namingAddress = remote ? network.address(Side::Instrument) : QStringLiteral("127.0.0.1");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("ORBInitRef"));
    environment.remove(QStringLiteral("ORVANTH_INSTRUMENT_HOST"));
    // Module discovery's diagnostic lines would bury the table.
    environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("*.debug=false"));
    if (remote)
        environment.insert(QStringLiteral("ORVANTH_INSTRUMENT_HOST"), namingAddress);
    else
        environment.insert(QStringLiteral("ORBInitRef"), QStringLiteral("NameService=corbaname::127.0.0.1:2809"));

    NamingServiceProcess namingService;
    ChildProcess engine;
    ChildProcess measuring;
    const QString self = QCoreApplication::applicationFilePath();
    const Side engineSide = remote ? Side::Engine : Side::Instrument;
    if (!namingService.start(network, Side::Instrument, namingAddress, 2809)) {
        placement.failure = QStringLiteral("omniNames did not start");
    } else if (!engine.start(network.wrapperProgram(), network.wrapperArguments(engineSide, self, QStringList{"--engine"} + options),
                             environment, QStringLiteral("READY"), 30000)) {
        placement.failure = QStringLiteral("the engine process did not start");
    } else {
        measuring.start(network.wrapperProgram(), network.wrapperArguments(Side::Instrument, self, QStringList{"--measure"} + options),
                        environment, QString());
        const int budgetMs = settings.samples + 90000;
        QElapsedTimer clock;
        clock.start();
        // Each process's pipe is read while waiting on the other.
        while (measuring.isRunning() && clock.elapsed() < budgetMs) {
            measuring.wait(50);
            engine.output();
        }
        if (measuring.wait(0) != 0)
            placement.failure = QStringLiteral("the measuring process failed");
    }
    const QByteArray measureOutput = measuring.output().toUtf8();
    const QByteArray engineOutput = engine.output().toUtf8();
    measuring.stop();
    engine.stop();
    namingService.stop();

    QMap<QString, qint64> bound;
    for (const QByteArray& line : engineOutput.split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        if (fields.size() == 3 && fields[0] == "BOUND")
            bound.insert(QString::fromLatin1(fields[1]), fields[2].toLongLong());
    }
    for (const QByteArray& line : measureOutput.split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        if (fields.size() == 3 && fields[0] == "RESULT")
            placement.results.insert(QString::fromLatin1(fields[1]), fields[2].toDouble());
        else if (fields.size() == 3 && fields[0] == "FOUND" && bound.contains(QString::fromLatin1(fields[1])))
            placement.discoveryMs.push_back(double(fields[2].toLongLong() - bound.value(QString::fromLatin1(fields[1])))
                                            / 1e6);
    }
    return placement;
}

} // namespace

int main(int argc, char* argv[])
{
    BenchReport report("remotehosts", argc, argv);
    Settings settings;
    QStringList options;
    enum class Role { Orchestrate, Engine, Measure } role = Role::Orchestrate;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--engine") {
            role = Role::Engine;
        } else if (argument == "--measure") {
            role = Role::Measure;
        } else if ((argument == "--samples" || argument == "--calls" || argument == "--modules") && i + 1 < argc) {
            const int value = std::max(1, std::atoi(argv[++i]));
            (argument == "--samples" ? settings.samples : argument == "--calls" ? settings.calls : settings.modules) = value;
            options << QString::fromStdString(argument) << QString::number(value);
        } else {
            std::cerr << "usage: tz-bench-remotehosts [--samples N] [--calls N] [--modules N] [--report FILE]" << std::endl;
            return 2;
        }
    }
    setenv("ORVANTH_DDS_DOMAIN", "198", 0);
    if (role == Role::Engine)
        return runEngine(settings);
    if (role == Role::Measure)
        return runMeasure(argc, argv, settings);

    QCoreApplication application(argc, argv);
    if (geteuid() != 0) {
        std::printf("tz-bench-remotehosts: skipped, network namespaces need root (ip netns)\n");
        return 0;
    }
    NetworkNamespaces network;
    QString why;
    if (!network.create(&why)) {
        std::printf("tz-bench-remotehosts: skipped, no network namespaces here: %s\n", qPrintable(why));
        return 0;
    }
    const Placement loopback = measure(network, false, settings, options);
    const Placement link = measure(network, true, settings, options);
    network.remove();

    std::printf("%d DDS samples at 1 kHz, %d CORBA calls after %d to warm up, %d new modules\n", settings.samples,
                settings.calls, warmUpCalls, settings.modules);
    std::printf("%-28s %14s %16s %12s\n", "", "loopback", "across the link", "difference");
    const auto row = [&](const char* label, double onLoopback, double acrossLink) {
        std::printf("%-28s %14.1f %16.1f %+12.1f\n", label, onLoopback, acrossLink, acrossLink - onLoopback);
        report.add({std::string(label) + " across the link", acrossLink, "", "loopback", onLoopback,
                    BenchReport::Goal::Info, NAN});
    };
    row("DDS one-way median (us)", loopback.results.value("dds-median"), link.results.value("dds-median"));
    row("DDS one-way p99 (us)", loopback.results.value("dds-p99"), link.results.value("dds-p99"));
    row("DDS samples received", loopback.results.value("dds-received"), link.results.value("dds-received"));
    row("CORBA round trip median (us)", loopback.results.value("corba-median"), link.results.value("corba-median"));
    row("CORBA round trip p99 (us)", loopback.results.value("corba-p99"), link.results.value("corba-p99"));
    row("module discovery median (ms)", percentile(loopback.discoveryMs, 0.5), percentile(link.discoveryMs, 0.5));
    row("module discovery max (ms)", percentile(loopback.discoveryMs, 1.0), percentile(link.discoveryMs, 1.0));
    int status = 0;
    for (const Placement* placement : {&loopback, &link}) {
        if (!placement->failure.isEmpty()) {
            std::printf("%s: %s\n", placement == &loopback ? "loopback" : "across the link",
                        qPrintable(placement->failure));
            status = 1;
        }
    }
    return status;
}
