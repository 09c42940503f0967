// The typed subscriber against real publishers: another process (the test engine) and
// local writers.

#include "ChildProcess.h"
#include "SampleCollector.h"
#include "StreamCapture.h"
#include "TopicSamples.h"

#include "DDS_SetupHook.h"
#include "DDS_Subscriber.h"
#include "TopicPublisher.h"

#include <fastdds/dds/publisher/DataWriter.hpp>
#include <fastdds/dds/publisher/Publisher.hpp>
#include <fastdds/dds/publisher/qos/DataWriterQos.hpp>

#include <QAtomicInt>
#include <QElapsedTimer>
#include <QThread>
#include <QtTest>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

using namespace Orvanth;
using namespace Orvanth::TKWW_DDS;
using eprosima::fastdds::dds::TRANSIENT_LOCAL_DURABILITY_QOS;
using eprosima::fastdds::dds::VOLATILE_DURABILITY_QOS;

namespace {

ATTR_EVENT eventSample(std::uint32_t eventClass, int number)
{
    ATTR_EVENT sample;
    sample.value().code(number);
    sample.value().classification(Event::EventClass(eventClass));
    return sample;
}

ATTR_LONG longSample(int value)
{
    ATTR_LONG sample;
    sample.value(value);
    return sample;
}

// Publishes from a thread of its own: a local writer delivers on the writing thread,
// which must not be the test's main thread.
class PublisherThread
{
public:
    template <class Body>
    explicit PublisherThread(Body body) : m_thread(body) {}
    ~PublisherThread() { m_thread.join(); }

private:
    std::thread m_thread;
};

// A boolean writer of either reliability, straight on the participant: the engine's
// publisher is always reliable.
class BooleanWriter
{
public:
    BooleanWriter(const char* topicName, eprosima::fastdds::dds::ReliabilityQosPolicyKind reliability)
        : m_participant(DDS_BaseObj::DdsBase().participant)
    {
        m_type.register_type(m_participant);
        m_topic = DDS_BaseObj::findOrCreateTopic(m_participant, topicName, m_type.get_type_name());
        m_publisher = m_participant->create_publisher(eprosima::fastdds::dds::PUBLISHER_QOS_DEFAULT);
        eprosima::fastdds::dds::DataWriterQos qos = m_publisher->get_default_datawriter_qos();
        qos.reliability().kind = reliability;
        qos.data_sharing().off();
        m_writer = m_publisher->create_datawriter(m_topic, qos);
    }

    ~BooleanWriter()
    {
        m_publisher->delete_datawriter(m_writer);
        m_participant->delete_publisher(m_publisher);
        m_participant->delete_topic(m_topic);
    }

    int matchedReaders() const
    {
        eprosima::fastdds::dds::PublicationMatchedStatus status;
        m_writer->get_publication_matched_status(status);
        return status.current_count;
    }

    bool publish(ATTR_BOOLEAN sample) { return m_writer->write(&sample); }

private:
    eprosima::fastdds::dds::DomainParticipant* m_participant;
    eprosima::fastdds::dds::TypeSupport m_type{new ATTR_BOOLEANPubSubType()};
    eprosima::fastdds::dds::Topic* m_topic = nullptr;
    eprosima::fastdds::dds::Publisher* m_publisher = nullptr;
    eprosima::fastdds::dds::DataWriter* m_writer = nullptr;
};

} // namespace

class TestDdsSubscriber : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void cleanupTestCase();

    void deliversEachPayloadOnDeliveryThread();
    void reachesEverySubscriberFromWritersOfEitherReliability_data();
    void reachesEverySubscriberFromWritersOfEitherReliability();
    void reportsIncompatibleWriter();
    void holdsEarlySampleUntilSetupEnds();
    void setsUpAndTearsDownWhileWriterPublishes();
    void drainsBurstInOrder();
    void classMaskFiltersEvents_data();
    void classMaskFiltersEvents();
    void separationDeliversLatestOncePerWindow_data();
    void separationDeliversLatestOncePerWindow();
    void destroyingDropsHeldBackSample();
    void destroyingDuringSetupWaitsForSetup();
    void invalidSampleIsOnlyReported_data();
    void invalidSampleIsOnlyReported();
};

void TestDdsSubscriber::cleanup()
{
    DDS_SetupHook::clear();
}

void TestDdsSubscriber::cleanupTestCase()
{
    DDS_BaseObj::shutdownDds();
}

void TestDdsSubscriber::deliversEachPayloadOnDeliveryThread()
{
    SampleCollector<std::string> voids;
    SampleCollector<bool> booleans;
    SampleCollector<int> longs;
    SampleCollector<std::string> strings;
    SampleCollector<Event::Message> events;
    SampleCollector<MeterReading::Reading> readings;
    DDS_Subscriber<DDS_VoidMessage> voidSubscriber(
        TopicSamples::VoidTopic, [&](const char* topic) { voids.add(topic); }, 0, 0, VOLATILE_DURABILITY_QOS);
    DDS_Subscriber<bool> booleanSubscriber(
        TopicSamples::BooleanTopic, [&](const char*, CORBA::Boolean value) { booleans.add(value); }, 0, 0,
        VOLATILE_DURABILITY_QOS);
    DDS_Subscriber<int> longSubscriber(
        TopicSamples::LongTopic, [&](const char*, CORBA::Long value) { longs.add(value); }, 0, 0,
        VOLATILE_DURABILITY_QOS);
    DDS_Subscriber<std::string> stringSubscriber(
        TopicSamples::StringTopic, [&](const char*, std::string value) { strings.add(value); }, 0, 0,
        VOLATILE_DURABILITY_QOS);
    DDS_Subscriber<Event::Message> eventSubscriber(
        TopicSamples::EventTopic, [&](const char*, Event::Message value) { events.add(value); }, 0, 0,
        VOLATILE_DURABILITY_QOS);
    DDS_Subscriber<MeterReading::Reading> readingSubscriber(
        TopicSamples::ReadingTopic, [&](const char*, MeterReading::Reading value) { readings.add(value); }, 0, 0,
        VOLATILE_DURABILITY_QOS);
    voidSubscriber.waitForInitDone();
    booleanSubscriber.waitForInitDone();
    longSubscriber.waitForInitDone();
    stringSubscriber.waitForInitDone();
    eventSubscriber.waitForInitDone();
    readingSubscriber.waitForInitDone();

    // The engine writes each sample once, as soon as its new writer has matched a reader.
    // A best-effort reader drops what comes before it knows that writer itself, so the
    // engine runs again until each sample has come through.
    const auto allArrived = [&] {
        return voids.size() && booleans.size() && longs.size() && strings.size() && events.size() && readings.size();
    };
    for (int run = 0; run < 20 && !allArrived(); ++run) {
        ChildProcess engine;
        QVERIFY(engine.start(QStringLiteral(TZ_TEST_ENGINE), {"--publish-samples"},
                             QProcessEnvironment::systemEnvironment(), QStringLiteral("PUBLISHED"), 60000));
        QCOMPARE(engine.stop(), 0);
    }
    QVERIFY(allArrived());
    QCOMPARE(voids.values().front(), std::string(TopicSamples::VoidTopic));
    QCOMPARE(booleans.values().front(), bool(TopicSamples::booleanSample().value()));
    QCOMPARE(longs.values().front(), int(TopicSamples::longSample().value()));
    QCOMPARE(QString::fromStdString(strings.values().front()), QString::fromUtf8(TopicSamples::UnicodeText));
    QVERIFY(events.values().front() == TopicSamples::eventSample().value());
    QVERIFY(readings.values().front() == TopicSamples::readingSample().value());
    QVERIFY(!voids.anyOnTestThread() && !booleans.anyOnTestThread() && !longs.anyOnTestThread()
            && !strings.anyOnTestThread() && !events.anyOnTestThread() && !readings.anyOnTestThread());
}

void TestDdsSubscriber::reachesEverySubscriberFromWritersOfEitherReliability_data()
{
    QTest::addColumn<int>("reliability");
    QTest::newRow("reliable") << int(eprosima::fastdds::dds::RELIABLE_RELIABILITY_QOS);
    QTest::newRow("best effort") << int(eprosima::fastdds::dds::BEST_EFFORT_RELIABILITY_QOS);
}

// Two consumers of one topic in one process (two status bars) each get every sample.
void TestDdsSubscriber::reachesEverySubscriberFromWritersOfEitherReliability()
{
    QFETCH(int, reliability);

    const std::string topicName = std::string("Test/Reliability/") + QTest::currentDataTag();
    SampleCollector<bool> first;
    SampleCollector<bool> second;
    DDS_Subscriber<bool> one(
        topicName, [&](const char*, CORBA::Boolean value) { first.add(value); }, 0, 0, VOLATILE_DURABILITY_QOS);
    DDS_Subscriber<bool> two(
        topicName, [&](const char*, CORBA::Boolean value) { second.add(value); }, 0, 0, VOLATILE_DURABILITY_QOS);
    one.waitForInitDone();
    two.waitForInitDone();
    QVERIFY(!one.initFailed() && !two.initFailed());
    BooleanWriter writer(topicName.c_str(), eprosima::fastdds::dds::ReliabilityQosPolicyKind(reliability));
    QTRY_COMPARE_WITH_TIMEOUT(writer.matchedReaders(), 2, 10000);
    QVERIFY(writer.publish(TopicSamples::booleanSample()));
    QTRY_COMPARE_WITH_TIMEOUT(first.values(), std::vector<bool>{true}, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(second.values(), std::vector<bool>{true}, 10000);
}

void TestDdsSubscriber::reportsIncompatibleWriter()
{
    // The engine's writers are volatile: a reader that asks for more never matches them.
    const char* topicName = "Test/Incompatible";
    StreamCapture errors(std::cerr);
    DDS_Subscriber<bool> subscriber(
        topicName, [](const char*, CORBA::Boolean) {}, 0, 0, TRANSIENT_LOCAL_DURABILITY_QOS);
    subscriber.waitForInitDone();
    TopicPublisher<ATTR_BOOLEANPubSubType> writer(topicName);
    QTRY_VERIFY_WITH_TIMEOUT(errors.text().contains(QStringLiteral("incompatible QoS")), 10000);
    QCOMPARE(errors.text().split(QLatin1Char('\n')).filter(QStringLiteral("incompatible QoS")).value(0),
             QStringLiteral("void Orvanth::DDS_DataReaderListener<T>::on_requested_incompatible_qos(DDS::DataReader*, "
                            "const DDS::RequestedIncompatibleQosStatus&) [with T = bool] "
                            "incompatible QoS on topic \"Test/Incompatible\": DURABILITY"));
    QCOMPARE(writer.matchedSubscribers(), 0);
}

void TestDdsSubscriber::holdsEarlySampleUntilSetupEnds()
{
    const char* topicName = "Test/Early";
    std::atomic<bool> writing{false};
    std::atomic<qint64> setupEndsAt{-1};
    std::unique_ptr<std::thread> publisher;
    SampleCollector<int> log;

    // The setup thread pauses after creating its reader; samples written then must wait,
    // and then come in the order they were written.
    DDS_SetupHook::set([&](const std::string& topic) {
        if (topic != topicName)
            return;
        publisher = std::make_unique<std::thread>([&] {
            TopicPublisher<ATTR_LONGPubSubType> writer(topicName);
            if (!writer.waitForSubscribers(1, std::chrono::seconds(10)))
                return;
            writing = true;
            writer.publish(longSample(5));
            writer.publish(longSample(6));
        });
        QElapsedTimer waited;
        waited.start();
        while (!writing && waited.elapsed() < 10000)
            QThread::msleep(1);
        QThread::msleep(300);
        setupEndsAt = log.elapsedMs();
    });

    std::atomic<DDS_Subscriber<int>*> subscriber{nullptr};
    std::atomic<bool> setupDoneAtEachDelivery{true};
    subscriber = new DDS_Subscriber<int>(
        topicName,
        [&](const char*, CORBA::Long value) {
            if (!subscriber.load() || !subscriber.load()->isInitDone())
                setupDoneAtEachDelivery = false;
            log.add(value);
        },
        0, 0, VOLATILE_DURABILITY_QOS);
    QTRY_COMPARE_WITH_TIMEOUT(log.size(), 2, 20000);
    QVERIFY(writing);
    QCOMPARE(log.values(), (std::vector<int>{5, 6}));
    const auto delivery = log.deliveries().front();
    QVERIFY(setupDoneAtEachDelivery);
    QVERIFY2(delivery.atMs >= setupEndsAt, qPrintable(QStringLiteral("delivered at %1 ms, setup ended at %2 ms")
                                                          .arg(delivery.atMs)
                                                          .arg(setupEndsAt.load())));
    publisher->join();
    delete subscriber.load();
}

// Samples that arrive while readers are still being created must stall neither the
// DDS thread that brings them nor the setups, nor the teardown after.
void TestDdsSubscriber::setsUpAndTearsDownWhileWriterPublishes()
{
    const char* topicName = "Test/Busy";
    constexpr int Rounds = 10;
    constexpr int Count = 20;
    std::atomic<bool> publishing{true};
    std::atomic<bool> done{false};
    TopicPublisher<ATTR_LONGPubSubType> writer(topicName);
    std::thread publisher([&] {
        for (int i = 0; publishing; ++i)
            writer.publish(longSample(i));
    });
    std::thread scenario([&] {
        for (int round = 0; round < Rounds; ++round) {
            std::vector<QAtomicInt> calls(Count);
            std::vector<std::unique_ptr<DDS_Subscriber<int>>> subscribers;
            for (int i = 0; i < Count; ++i)
                subscribers.push_back(std::make_unique<DDS_Subscriber<int>>(
                    topicName, [&calls, i](const char*, CORBA::Long) { calls[std::size_t(i)].ref(); }, 0, 0,
                    VOLATILE_DURABILITY_QOS));
            for (QAtomicInt& count : calls)
                while (count.loadRelaxed() == 0)
                    QThread::msleep(1);
        }
        done = true;
    });
    QElapsedTimer waited;
    waited.start();
    while (!done && waited.elapsed() < 30000)
        QTest::qWait(10);
    // Threads stuck inside DDS can be neither joined nor cleaned up after.
    if (!done)
        qFatal("subscribers of a busy topic still not set up, served and torn down after 30 s");
    scenario.join();
    publishing = false;
    publisher.join();
}

void TestDdsSubscriber::drainsBurstInOrder()
{
    const char* topicName = "Test/Burst";
    constexpr int Count = 300;
    SampleCollector<int> log;
    DDS_Subscriber<Event::Message> subscriber(
        topicName, [&](const char*, Event::Message value) { log.add(value.code()); }, 0, 0,
        VOLATILE_DURABILITY_QOS);
    subscriber.waitForInitDone();
    {
        PublisherThread thread([&] {
            TopicPublisher<ATTR_EVENTPubSubType> writer(topicName);
            writer.waitForSubscribers(1, std::chrono::seconds(10));
            for (int i = 0; i < Count; ++i)
                writer.publish(eventSample(std::uint32_t(i % 6), i));
            writer.waitForAcknowledgments(std::chrono::seconds(10));
        });
    }
    QTRY_COMPARE_WITH_TIMEOUT(log.size(), Count, 20000);
    const std::vector<int> codes = log.values();
    for (int i = 0; i < Count; ++i)
        QCOMPARE(codes[std::size_t(i)], i);
}

void TestDdsSubscriber::classMaskFiltersEvents_data()
{
    QTest::addColumn<quint32>("mask");
    QTest::addColumn<QList<quint32>>("published");
    QTest::addColumn<QList<quint32>>("delivered");
    QTest::addColumn<int>("unknownLines");

    QTest::newRow("all classes") << quint32(0x3F) << QList<quint32>{0, 1, 2, 3, 4, 5} << QList<quint32>{0, 1, 2, 3, 4, 5}
                                 << 0;
    QTest::newRow("warnings masked") << quint32(0x3F & ~(1u << 3)) << QList<quint32>{0, 3, 4, 3, 5}
                                     << QList<quint32>{0, 4, 5} << 0;
    QTest::newRow("only critical") << quint32(1u << 1) << QList<quint32>{0, 1, 2, 1} << QList<quint32>{1, 1} << 0;
    QTest::newRow("unknown classes") << quint32(0xFFFFFFFF) << QList<quint32>{6, 2, 7, 0xFFFFFFFF}
                                     << QList<quint32>{2} << 3;
}

void TestDdsSubscriber::classMaskFiltersEvents()
{
    QFETCH(quint32, mask);
    QFETCH(QList<quint32>, published);
    QFETCH(QList<quint32>, delivered);
    QFETCH(int, unknownLines);

    const std::string topicName = std::string("Test/Mask/") + QTest::currentDataTag();
    StreamCapture errors(std::cerr);
    SampleCollector<quint32> log;
    DDS_Subscriber<Event::Message> subscriber(
        topicName, [&](const char*, Event::Message value) { log.add(quint32(value.classification())); }, 0, 0,
        VOLATILE_DURABILITY_QOS);
    subscriber.setClassMask(mask);
    subscriber.waitForInitDone();
    {
        PublisherThread thread([&] {
            TopicPublisher<ATTR_EVENTPubSubType> writer(topicName);
            writer.waitForSubscribers(1, std::chrono::seconds(10));
            int number = 0;
            for (quint32 eventClass : published)
                writer.publish(eventSample(eventClass, number++));
            writer.waitForAcknowledgments(std::chrono::seconds(10));
        });
    }
    QTRY_COMPARE_WITH_TIMEOUT(errors.count(QStringLiteral("ERROR: unknown classification \n")), unknownLines, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(log.size(), delivered.size(), 10000);
    const std::vector<quint32> classes = log.values();
    QCOMPARE(QList<quint32>(classes.begin(), classes.end()), delivered);
}

void TestDdsSubscriber::separationDeliversLatestOncePerWindow_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<uint>("nanoseconds");
    QTest::addColumn<int>("windowMs");
    QTest::addColumn<QList<int>>("publishAtMs");

    // A lock and its release within a widget's UpdateDelay: the release must still show.
    QTest::newRow("lock, unlock within 1.5 s") << 1 << 500000000u << 1500 << QList<int>{0, 100};
    QList<int> stream;
    for (int at = 0; at <= 800; at += 50)
        stream << at;
    QTest::newRow("stream over 0.3 s windows") << 0 << 300000000u << 300 << stream;
    QTest::newRow("none") << 0 << 0u << 0 << QList<int>{0, 10, 20, 30};
}

void TestDdsSubscriber::separationDeliversLatestOncePerWindow()
{
    QFETCH(int, seconds);
    QFETCH(uint, nanoseconds);
    QFETCH(int, windowMs);
    QFETCH(QList<int>, publishAtMs);

    // Each sample's value is its index, so the last one published is the newest state.
    const int last = publishAtMs.size() - 1;
    const std::string topicName = std::string("Test/Separation/") + QTest::currentDataTag();
    SampleCollector<int> log;
    DDS_Subscriber<int> subscriber(
        topicName, [&](const char*, CORBA::Long value) { log.add(value); }, seconds, nanoseconds,
        VOLATILE_DURABILITY_QOS);
    subscriber.waitForInitDone();
    {
        PublisherThread thread([&] {
            TopicPublisher<ATTR_LONGPubSubType> writer(topicName);
            writer.waitForSubscribers(1, std::chrono::seconds(10));
            const auto start = std::chrono::steady_clock::now();
            for (int i = 0; i <= last; ++i) {
                std::this_thread::sleep_until(start + std::chrono::milliseconds(publishAtMs[i]));
                writer.publish(longSample(i));
            }
        });
    }
    QTRY_VERIFY_WITH_TIMEOUT(log.contains(last), windowMs + 10000);
    // Whatever else were to come would come within one more window.
    QTest::qWait(windowMs + 100);

    const auto deliveries = log.deliveries();
    QCOMPARE(deliveries.front().value, 0);
    QCOMPARE(deliveries.back().value, last);
    if (windowMs == 0) {
        QCOMPARE(int(deliveries.size()), publishAtMs.size());
        return;
    }
    QVERIFY2(int(deliveries.size()) <= publishAtMs.last() / windowMs + 2,
             qPrintable(QStringLiteral("%1 deliveries").arg(deliveries.size())));
    for (std::size_t i = 1; i < deliveries.size(); ++i) {
        // Stamped in the callback, a little after the subscriber's own time of delivery.
        const qint64 gap = deliveries[i].atMs - deliveries[i - 1].atMs;
        QVERIFY2(gap >= windowMs - 25, qPrintable(QStringLiteral("gap %1 ms").arg(gap)));
        QVERIFY(deliveries[i].value > deliveries[i - 1].value);
        QVERIFY(deliveries[i].thread != QThread::currentThreadId());
    }
}

void TestDdsSubscriber::destroyingDropsHeldBackSample()
{
    const char* topicName = "Test/HeldBack";
    SampleCollector<int> log;
    auto* subscriber = new DDS_Subscriber<int>(
        topicName, [&](const char*, CORBA::Long value) { log.add(value); }, 0, 300000000, VOLATILE_DURABILITY_QOS);
    subscriber->waitForInitDone();
    {
        PublisherThread thread([&] {
            TopicPublisher<ATTR_LONGPubSubType> writer(topicName);
            writer.waitForSubscribers(1, std::chrono::seconds(10));
            writer.publish(longSample(1));
            writer.publish(longSample(2));
        });
    }
    QTRY_COMPARE_WITH_TIMEOUT(log.values(), std::vector<int>{1}, 10000);
    delete subscriber;
    QTest::qWait(400);
    QCOMPARE(log.values(), std::vector<int>{1});
}

void TestDdsSubscriber::destroyingDuringSetupWaitsForSetup()
{
    const char* topicName = "Test/SlowSetup";
    std::atomic<bool> inSetup{false};
    std::atomic<bool> release{false};
    DDS_SetupHook::set([&](const std::string& topic) {
        if (topic != topicName)
            return;
        inSetup = true;
        while (!release)
            QThread::msleep(1);
    });

    QAtomicInt calls;
    auto* subscriber = new DDS_Subscriber<bool>(
        topicName, [&](const char*, CORBA::Boolean) { calls.ref(); }, 0, 0, VOLATILE_DURABILITY_QOS);
    QTRY_VERIFY_WITH_TIMEOUT(inSetup.load(), 10000);

    std::atomic<bool> destroyed{false};
    std::thread destroyer([&] {
        delete subscriber;
        destroyed = true;
    });
    // Teardown must wait while the setup still runs: nothing may be deleted under it.
    QTest::qWait(200);
    QVERIFY(!destroyed);
    release = true;
    QTRY_VERIFY_WITH_TIMEOUT(destroyed.load(), 10000);
    destroyer.join();
    QCOMPARE(calls.loadRelaxed(), 0);
}

void TestDdsSubscriber::invalidSampleIsOnlyReported_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("report");

    QTest::newRow("disposed") << int(eprosima::fastdds::dds::NOT_ALIVE_DISPOSED_INSTANCE_STATE)
                              << QStringLiteral(" instance is disposed\n");
    QTest::newRow("no writers") << int(eprosima::fastdds::dds::NOT_ALIVE_NO_WRITERS_INSTANCE_STATE)
                                << QStringLiteral(" instance is unregistered\n");
    // Raised, not printed.
    QTest::newRow("alive") << int(eprosima::fastdds::dds::ALIVE_INSTANCE_STATE)
                           << QStringLiteral(" ERROR: received unknown instance state");
}

// Fast DDS refuses dispose and unregister on our key-less topic types, and a writer that
// goes away produces no sample; so an invalid sample is handed to the listener directly.
void TestDdsSubscriber::invalidSampleIsOnlyReported()
{
    QFETCH(int, state);
    QFETCH(QString, report);

    QAtomicInt calls;
    DDS_Subscriber<std::string> subscriber(
        "Test/Invalid", [&](const char*, std::string) { calls.ref(); }, 0, 0, VOLATILE_DURABILITY_QOS);
    subscriber.waitForInitDone();

    eprosima::fastdds::dds::SampleInfo info;
    info.valid_data = false;
    info.instance_state = eprosima::fastdds::dds::InstanceStateKind(state);
    ATTR_STRING sample;
    sample.value("must not arrive");

    StreamCapture output(std::cout);
    QString reported;
    try {
        subscriber.listener().deliver(sample, info);
        reported = output.text();
    } catch (const Runtime_errors::Generic& e) {
        reported = QString::fromUtf8(e.message.in());
    }
    QCOMPARE(reported, QStringLiteral("void Orvanth::DDS_DataReaderListener<T>::on_data_available(DDS::DataReader*) "
                                      "[with T = std::string]")
                           + report);
    QCOMPARE(calls.loadRelaxed(), 0);
}

QTEST_GUILESS_MAIN(TestDdsSubscriber)
#include "tst_ddssubscriber.moc"
