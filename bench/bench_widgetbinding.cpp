// Widgets bound to the engine simulator's attributes: how long binding takes and whether
// the GUI thread ever stalls meanwhile, and what a storm of lock changes costs the GUI
// thread beside a plain Fast DDS reader of the same lock samples in the same run.
//
//   tz-bench-widgetbinding [--bind N] [--widgets N] [--rate HZ] [--seconds S] [--update-delay MS]
//                          [--report FILE]
//
// Starts omniNames on a free loopback port and the engine simulator (one module), then:
//  1. binds N widgets (default 100) by name to the simulator's four lockable attributes,
//     all at once, while a 1 ms timer in the GUI thread measures the longest gap between
//     its ticks (goal: never above 16 ms); prints the time until every binding is done;
//  2. binds N more widgets (default 200) and has another locker take and give back each
//     attribute HZ times a second (default 100), so every widget receives HZ lock notices
//     a second, for S seconds (default 5). A plain DataReader on the four lock topics counts
//     the samples as they arrive. Prints the samples the plain reader got, the lock states
//     the widgets showed, the share of the run the GUI thread was busy (its CPU time over
//     the wall time), its gaps, and the time until every widget shows the final state.
// Diagnostic lines are discarded, as a desktop without -debug does. Offscreen Qt platform
// unless QT_QPA_PLATFORM says otherwise; DDS domain from ORVANTH_DDS_DOMAIN (default 197).

#include "ApplicationOrb.h"
#include "DDS_BaseObj.h"
#include "GlobalImpl.h"
#include "Locker.h"
#include "NamingServiceImpl.h"
#include "ORB_base.h"
#include "WidgetBaseImpl.h"

#include "BenchReport.h"
#include "ChildProcess.h"
#include "NamingServiceProcess.h"

#include <Orvanth.hh>
#include <OrvanthTopicsPubSubTypes.h>

#include <fastdds/dds/domain/DomainParticipant.hpp>
#include <fastdds/dds/subscriber/DataReader.hpp>
#include <fastdds/dds/subscriber/DataReaderListener.hpp>
#include <fastdds/dds/subscriber/SampleInfo.hpp>
#include <fastdds/dds/subscriber/Subscriber.hpp>
#include <fastdds/dds/subscriber/qos/DataReaderQos.hpp>
#include <fastdds/dds/topic/Topic.hpp>
#include <fastdds/dds/topic/TypeSupport.hpp>

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QHostAddress>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QThread>
#include <QThreadPool>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <time.h>
#include <vector>

using namespace eprosima::fastdds::dds;

namespace {

const std::vector<std::string> attributeNames{"RUNACTION1", "DISPLAYMODE1", "REFOSCILLATOR1", "MenuBarTimeout1"};

void discardMessages(QtMsgType, const QMessageLogContext&, const QString&)
{
}

double threadCpuMs()
{
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

double processCpuMs()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1e3
           + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e3;
}

// What the GUI thread does: the longest gap between the ticks of a 1 ms timer, the gaps
// longer than a frame, and the GUI thread's CPU time against the wall time.
class GuiMeter
{
public:
    GuiMeter()
    {
        m_ticker.setInterval(1);
        m_ticker.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_ticker, &QTimer::timeout, [this] {
            const qint64 now = m_clock.nsecsElapsed();
            m_longestGapNs = std::max(m_longestGapNs, now - m_lastTickNs);
            if (now - m_lastTickNs > 16000000)
                ++m_longGaps;
            m_lastTickNs = now;
        });
    }

    void start()
    {
        m_clock.start();
        m_lastTickNs = 0;
        m_longestGapNs = 0;
        m_longGaps = 0;
        m_cpuAtStartMs = threadCpuMs();
        m_ticker.start();
    }

    void stop()
    {
        m_ticker.stop();
        m_wallMs = double(m_clock.nsecsElapsed()) / 1e6;
        m_cpuMs = threadCpuMs() - m_cpuAtStartMs;
    }

    double longestGapMs() const { return double(m_longestGapNs) / 1e6; }
    double wallMs() const { return m_wallMs; }
    double cpuShare() const { return m_wallMs > 0 ? m_cpuMs / m_wallMs : 0.0; }
    /// Gaps above one frame (16 ms).
    int longGaps() const { return m_longGaps; }

private:
    QTimer m_ticker;
    QElapsedTimer m_clock;
    qint64 m_lastTickNs = 0;
    qint64 m_longestGapNs = 0;
    int m_longGaps = 0;
    double m_cpuAtStartMs = 0;
    double m_cpuMs = 0;
    double m_wallMs = 0;
};

// A plain Fast DDS reader of one lock topic: counts the samples in its listener.
class PlainLockReader : public DataReaderListener
{
public:
    PlainLockReader(DomainParticipant* participant, const std::string& topicName) : m_participant(participant)
    {
        m_type.register_type(participant);
        m_topic = Orvanth::DDS_BaseObj::findOrCreateTopic(participant, topicName, m_type.get_type_name());
        m_subscriber = participant->create_subscriber(SUBSCRIBER_QOS_DEFAULT);
        DataReaderQos qos = m_subscriber->get_default_datareader_qos();
        qos.durability().kind = VOLATILE_DURABILITY_QOS;
        qos.history().kind = KEEP_ALL_HISTORY_QOS;
        qos.data_sharing().off();
        m_reader = m_subscriber->create_datareader(m_topic, qos, this, StatusMask::all());
    }

    ~PlainLockReader() override
    {
        m_subscriber->delete_datareader(m_reader);
        m_participant->delete_subscriber(m_subscriber);
        m_participant->delete_topic(m_topic);
    }

    void on_data_available(DataReader* reader) override
    {
        Orvanth::TKWW_DDS::ATTR_VOID sample;
        SampleInfo info;
        while (reader->take_next_sample(&sample, &info) == ReturnCode_t::RETCODE_OK) {
            if (info.valid_data)
                ++samples;
        }
    }

    std::atomic<long> samples{0};

private:
    DomainParticipant* m_participant;
    TypeSupport m_type{new Orvanth::TKWW_DDS::ATTR_VOIDPubSubType()};
    Topic* m_topic = nullptr;
    Subscriber* m_subscriber = nullptr;
    DataReader* m_reader = nullptr;
};

// Widgets of one run, bound by name to the four attributes in turn.
struct WidgetSet
{
    WidgetSet(int count, int updateDelay)
    {
        for (int i = 0; i < count; ++i) {
            auto* widget = new WidgetBaseImpl(&host);
            widget->setAttributeName(QString::fromStdString(attributeNames[std::size_t(i) % attributeNames.size()]));
            widget->setUpdateDelay(updateDelay);
            QObject::connect(widget, &WidgetBaseImpl::bindingFinished, [this](bool ok) { ++(ok ? bound : failed); });
            QObject::connect(widget, &WidgetBaseImpl::SetLocked, [this] { ++shown; });
            widgets.push_back(widget);
        }
    }

    void bindAll()
    {
        for (WidgetBaseImpl* widget : widgets)
            widget->bindAttributeByName();
    }

    /// Runs the event loop, which waits for events as a desktop's does, until \a done
    /// (checked every 5 ms) or \a timeoutMs; false on time-out.
    static bool runUntil(const std::function<bool()>& done, int timeoutMs)
    {
        if (done())
            return true;
        QEventLoop loop;
        QTimer check;
        QObject::connect(&check, &QTimer::timeout, &loop, [&] {
            if (done())
                loop.quit();
        });
        check.start(5);
        QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
        loop.exec();
        return done();
    }

    int lockedCount() const
    {
        return int(std::count_if(widgets.begin(), widgets.end(), [](WidgetBaseImpl* w) { return w->isLocked(); }));
    }

    QWidget host;
    std::vector<WidgetBaseImpl*> widgets;
    int bound = 0;
    int failed = 0;
    long shown = 0;
};

} // namespace

int main(int argc, char* argv[])
{
    BenchReport report("widgetbinding", argc, argv);
    setenv("ORVANTH_DDS_DOMAIN", "197", 0);
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication application(argc, argv);
    int bindCount = 100;
    int stormCount = 200;
    int rate = 100;
    int seconds = 5;
    int updateDelay = 0;
    const QStringList arguments = application.arguments();
    for (int i = 1; i < arguments.size(); ++i) {
        const bool hasValue = i + 1 < arguments.size();
        if (arguments[i] == QLatin1String("--bind") && hasValue)
            bindCount = std::max(1, arguments[++i].toInt());
        else if (arguments[i] == QLatin1String("--widgets") && hasValue)
            stormCount = std::max(1, arguments[++i].toInt());
        else if (arguments[i] == QLatin1String("--rate") && hasValue)
            rate = std::max(1, arguments[++i].toInt());
        else if (arguments[i] == QLatin1String("--seconds") && hasValue)
            seconds = std::max(1, arguments[++i].toInt());
        else if (arguments[i] == QLatin1String("--update-delay") && hasValue)
            updateDelay = std::max(0, arguments[++i].toInt());
        else {
            std::fprintf(stderr, "usage: tz-bench-widgetbinding [--bind N] [--widgets N] [--rate HZ] [--seconds S] "
                                 "[--update-delay MS]\n");
            return 2;
        }
    }

    NamingServiceProcess namingService;
    if (!namingService.start()) {
        std::fprintf(stderr, "omniNames did not start\n");
        return 1;
    }
    // Its announcements of every lock change are read while the event loop runs, so its
    // pipe never fills.
    ChildProcess simulator;
    if (!simulator.start(QStringLiteral(TZ_ENGINE_SIMULATOR), {"--modules", "1", "--events-per-second", "0"},
                         namingService.childEnvironment(), QStringLiteral("READY"), 30000)) {
        std::fprintf(stderr, "the engine simulator did not start\n");
        return 1;
    }

    application.setProperty("-ORBInitRef", namingService.orbArguments().last());
    ApplicationOrb::start();
    qInstallMessageHandler(discardMessages);
    GlobalImpl* registry = GlobalImpl::getInstance();
    auto discovery = std::make_unique<NamingServiceImpl>();
    // The simulator binds its module shortly after it starts.
    QElapsedTimer waited;
    waited.start();
    while (discovery->guiAbleLoaded() == 0 && waited.elapsed() < 20000) {
        QThread::msleep(100);
        discovery->initialize();
    }
    if (discovery->guiAbleLoaded() == 0) {
        std::fprintf(stderr, "no engine module found\n");
        return 1;
    }
    registry->setNamingService(discovery.get());
    int status = 0;

    // 1. Binding.
    {
        GuiMeter meter;
        WidgetSet set(bindCount, 0);
        meter.start();
        QElapsedTimer clock;
        clock.start();
        set.bindAll();
        const bool done = WidgetSet::runUntil([&] { return set.bound + set.failed == bindCount; }, 60000);
        const double totalMs = double(clock.nsecsElapsed()) / 1e6;
        meter.stop();
        std::printf("bind %d widgets: %s in %.1f ms (%.2f ms per widget), %d bound, %d failed\n", bindCount,
                    done ? "done" : "TIMED OUT", totalMs, totalMs / bindCount, set.bound, set.failed);
        std::printf("  GUI thread: longest gap %.2f ms (goal <= 16), %d gaps above 16 ms, busy %.1f %%\n",
                    meter.longestGapMs(), meter.longGaps(), 100.0 * meter.cpuShare());
        report.info("binding " + std::to_string(bindCount) + " widgets", totalMs, "ms");
        report.atMost("binding: longest GUI-thread gap", meter.longestGapMs(), "ms", 16);
        if (!done || set.failed > 0 || meter.longestGapMs() > 16.0)
            status = 1;
    }
    QThreadPool::globalInstance()->waitForDone();

    // 2. Lock storm.
    {
        WidgetSet set(stormCount, updateDelay);
        set.bindAll();
        if (!WidgetSet::runUntil([&] { return set.bound + set.failed == stormCount; }, 60000) || set.failed > 0) {
            std::fprintf(stderr, "binding %d widgets failed\n", stormCount);
            status = 1;
        }
        std::vector<std::unique_ptr<PlainLockReader>> plainReaders;
        DomainParticipant* participant = Orvanth::DDS_BaseObj::DdsBase().participant;
        for (const std::string& name : attributeNames)
            plainReaders.push_back(std::make_unique<PlainLockReader>(participant, "Lumaro/local/LOCK/" + name));
        // Both kinds of reader matched with the simulator's writers before the storm.
        WidgetSet::runUntil([] { return false; }, 1500);
        set.shown = 0;

        Orvanth::Locker other;
        Orvanth::Lock_Authority_var authority = other.LockAuthority();
        const Orvanth::LockerID otherId = other.MyLockerID();
        std::vector<Orvanth::EngineAttribBase_var> attributes;
        for (const std::string& name : attributeNames) {
            QList<Orvanth::EngineReadingBase_var> found = discovery->findAttribute(QString::fromStdString(name));
            attributes.push_back(found.isEmpty() ? Orvanth::EngineAttribBase::_nil()
                                                 : Orvanth::EngineAttribBase::_narrow(found[0].in()));
        }

        std::atomic<bool> storming{true};
        std::atomic<long> changes{0};
        std::atomic<long> refused{0};
        std::vector<std::thread> togglers;
        const auto period = std::chrono::microseconds(1000000 / rate);
        for (const Orvanth::EngineAttribBase_var& attribute : attributes) {
            togglers.emplace_back([&, attribute] {
                bool held = false;
                CORBA::Long handle = 0;
                auto next = std::chrono::steady_clock::now();
                while (storming || held) {
                    try {
                        if (held)
                            attribute->Unlock(otherId, handle);
                        else
                            handle = attribute->Lock(authority.in());
                        held = !held;
                        ++changes;
                    } catch (const CORBA::Exception&) {
                        ++refused;
                    }
                    next += period;
                    std::this_thread::sleep_until(next);
                }
            });
        }

        const double processCpuAtStart = processCpuMs();
        GuiMeter meter;
        meter.start();
        WidgetSet::runUntil([] { return false; }, seconds * 1000);
        meter.stop();
        const double processShare = (processCpuMs() - processCpuAtStart) / meter.wallMs();
        const long shownInStorm = set.shown;
        long plainSamples = 0;
        for (const auto& reader : plainReaders)
            plainSamples += reader->samples;
        storming = false;
        for (std::thread& toggler : togglers)
            toggler.join();
        QElapsedTimer settle;
        settle.start();
        const bool settled = WidgetSet::runUntil([&] { return set.lockedCount() == 0; }, 20000);
        const double settleMs = double(settle.nsecsElapsed()) / 1e6;

        const double stormSeconds = meter.wallMs() / 1e3;
        std::printf("lock storm: %d widgets, %d changes/s per attribute (%ld made, %ld refused), update delay %d ms, "
                    "%.1f s\n",
                    stormCount, rate, long(changes), long(refused), updateDelay, stormSeconds);
        std::printf("  plain DDS reader: %ld lock samples (%.0f per topic per s, each topic feeds %d widgets)\n",
                    plainSamples, double(plainSamples) / double(attributeNames.size()) / stormSeconds,
                    stormCount / int(attributeNames.size()));
        std::printf("  widgets: %ld lock states shown (%.1f per widget per s); all free %.0f ms after the last "
                    "change%s\n",
                    shownInStorm, double(shownInStorm) / stormCount / stormSeconds, settleMs,
                    settled ? "" : " (NOT SETTLED)");
        std::printf("  GUI thread: busy %.1f %%, longest gap %.2f ms, %d gaps above 16 ms; whole process CPU %.0f %% "
                    "of one core\n",
                    100.0 * meter.cpuShare(), meter.longestGapMs(), meter.longGaps(), 100.0 * processShare);
        const std::string storm = std::to_string(stormCount) + " widgets, " + std::to_string(rate)
                                  + " lock changes/s";
        report.info("lock storm (" + storm + "): GUI thread busy", 100.0 * meter.cpuShare(), "%");
        report.atMost("lock storm: longest GUI-thread gap", meter.longestGapMs(), "ms", 16);
        report.add({"lock storm: lock states shown per widget per s", double(shownInStorm) / stormCount / stormSeconds,
                    "1/s", "plain DDS reader, per topic",
                    double(plainSamples) / double(attributeNames.size()) / stormSeconds, BenchReport::Goal::Info, NAN});
        if (!settled)
            status = 1;
        plainReaders.clear();
    }

    QThreadPool::globalInstance()->waitForDone();
    delete GlobalImpl::existingInstance();
    discovery.reset();
    simulator.stop();
    ORB_base::destroyProcessOrb();
    Orvanth::DDS_BaseObj::shutdownDds();
    namingService.stop();
    return status;
}
