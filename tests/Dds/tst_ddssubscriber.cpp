// The typed subscriber against real publishers: another process (the test engine) and
// local publishers on threads of their own.

#include "ChildProcess.h"
#include "StreamCapture.h"
#include "TopicSamples.h"

#include "DDS_SetupHook.h"
#include "DDS_Subscriber.h"
#include "TopicPublisher.h"

#include <QAtomicInt>
#include <QElapsedTimer>
#include <QMutex>
#include <QThread>
#include <QtTest>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

using namespace Orvanth;
using namespace Orvanth::TKWW_DDS;
using eprosima::fastdds::dds::VOLATILE_DURABILITY_QOS;

namespace {

// What one callback saw: the value as text, the thread it ran on, when, and whether
// the subscriber's setup had ended by then.
struct Delivery
{
    QString topic;
    QString value;
    Qt::HANDLE thread;
    qint64 atMs;
    bool setupDone;
};

class DeliveryLog
{
public:
    DeliveryLog() { m_clock.start(); }

    template <class T>
    void add(DDS_Subscriber<T>* const* subscriber, const char* topic, const QString& value)
    {
        QMutexLocker lock(&m_mutex);
        m_deliveries.push_back({QString::fromUtf8(topic), value, QThread::currentThreadId(), m_clock.elapsed(),
                                *subscriber && (*subscriber)->isInitDone()});
    }

    std::vector<Delivery> deliveries()
    {
        QMutexLocker lock(&m_mutex);
        return m_deliveries;
    }

    int size() { return int(deliveries().size()); }
    qint64 now() const { return m_clock.elapsed(); }

private:
    QElapsedTimer m_clock;
    QMutex m_mutex;
    std::vector<Delivery> m_deliveries;
};

QString eventText(const Event::Message& message)
{
    return QStringLiteral("%1|%2|%3")
        .arg(QString::fromStdString(message.text()))
        .arg(int(message.classification()))
        .arg(message.timestamp());
}

Event::Message eventOfClass(std::uint32_t eventClass, int number)
{
    Event::Message message;
    message.source("test");
    message.code(number);
    message.text("event " + std::to_string(number));
    message.classification(Event::EventClass(eventClass));
    message.timestamp(1700000000LL + number);
    return message;
}

ATTR_EVENT eventSample(const Event::Message& message)
{
    ATTR_EVENT sample;
    sample.value(message);
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

} // namespace

class TestDdsSubscriber : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void cleanupTestCase();

    void deliversEachPayloadOnDeliveryThread();
    void holdsEarlySampleUntilSetupEnds();
    void drainsBurstInOrder();
    void classMaskFiltersEvents_data();
    void classMaskFiltersEvents();
    void separationLetsOneSamplePerWindow_data();
    void separationLetsOneSamplePerWindow();
    void destroyingDuringSetupWaitsForSetup();
    void invalidSampleIsOnlyReported_data();
    void invalidSampleIsOnlyReported();
    void unknownInstanceStateIsRaised();
    void subscribersShareTopicName();
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
    DeliveryLog log;
    DDS_Subscriber<DDS_VoidMessage>* voids = nullptr;
    DDS_Subscriber<bool>* booleans = nullptr;
    DDS_Subscriber<int>* longs = nullptr;
    DDS_Subscriber<std::string>* strings = nullptr;
    DDS_Subscriber<Event::Message>* events = nullptr;
    DDS_Subscriber<MeterReading::Reading>* readings = nullptr;

    voids = new DDS_Subscriber<DDS_VoidMessage>(
        TopicSamples::VoidTopic, [&](const char* topic) { log.add(&voids, topic, QStringLiteral("void")); }, 0, 0,
        VOLATILE_DURABILITY_QOS);
    booleans = new DDS_Subscriber<bool>(
        TopicSamples::BooleanTopic,
        [&](const char* topic, CORBA::Boolean value) { log.add(&booleans, topic, QString::number(int(value))); },
        0, 0, VOLATILE_DURABILITY_QOS);
    longs = new DDS_Subscriber<int>(
        TopicSamples::LongTopic,
        [&](const char* topic, CORBA::Long value) { log.add(&longs, topic, QString::number(value)); }, 0, 0,
        VOLATILE_DURABILITY_QOS);
    strings = new DDS_Subscriber<std::string>(
        TopicSamples::StringTopic,
        [&](const char* topic, std::string value) { log.add(&strings, topic, QString::fromStdString(value)); },
        0, 0, VOLATILE_DURABILITY_QOS);
    events = new DDS_Subscriber<Event::Message>(
        TopicSamples::EventTopic,
        [&](const char* topic, Event::Message value) { log.add(&events, topic, eventText(value)); }, 0, 0,
        VOLATILE_DURABILITY_QOS);
    readings = new DDS_Subscriber<MeterReading::Reading>(
        TopicSamples::ReadingTopic,
        [&](const char* topic, MeterReading::Reading value) {
            log.add(&readings, topic,
                    QStringLiteral("%1 of %2").arg(value.readings().front().value()).arg(value.readings().size()));
        },
        0, 0, VOLATILE_DURABILITY_QOS);
    // Constructors return at once; the setups finish on their own threads.
    for (DDS_BaseObj* subscriber : std::vector<DDS_BaseObj*>{voids, booleans, longs, strings, events, readings})
        QVERIFY(subscriber);
    voids->waitForInitDone();
    readings->waitForInitDone();
    QVERIFY(voids->isInitDone() && readings->isInitDone());

    ChildProcess engine;
    QVERIFY(engine.start(QStringLiteral(TZ_TEST_ENGINE), {"--publish-samples"},
                         QProcessEnvironment::systemEnvironment()));
    QTRY_COMPARE_WITH_TIMEOUT(log.size(), 6, 60000);

    QHash<QString, QString> values;
    for (const Delivery& delivery : log.deliveries()) {
        QVERIFY2(delivery.thread != QThread::currentThreadId(), qPrintable(delivery.topic));
        QVERIFY(delivery.setupDone);
        values.insert(delivery.topic, delivery.value);
    }
    QCOMPARE(values.value(TopicSamples::VoidTopic), QStringLiteral("void"));
    QCOMPARE(values.value(TopicSamples::BooleanTopic), QStringLiteral("1"));
    QCOMPARE(values.value(TopicSamples::LongTopic), QStringLiteral("-2147483647"));
    QCOMPARE(values.value(TopicSamples::StringTopic), QString::fromUtf8(TopicSamples::UnicodeText));
    QCOMPARE(values.value(TopicSamples::EventTopic),
             QString::fromUtf8(TopicSamples::UnicodeText) + QStringLiteral("|3|4102444800"));
    QCOMPARE(values.value(TopicSamples::ReadingTopic), QStringLiteral("87.25 of 2"));
    QCOMPARE(engine.stop(), 0);

    delete voids;
    delete booleans;
    delete longs;
    delete strings;
    delete events;
    delete readings;
}

void TestDdsSubscriber::holdsEarlySampleUntilSetupEnds()
{
    const char* topicName = "Test/Early";
    std::atomic<bool> writing{false};
    std::atomic<qint64> setupEndsAt{-1};
    std::unique_ptr<std::thread> publisher;
    DeliveryLog log;

    // The setup thread pauses after creating its reader; a sample written then must wait.
    DDS_SetupHook::set([&](const std::string& topic) {
        if (topic != topicName)
            return;
        publisher = std::make_unique<std::thread>([&] {
            TopicPublisher<ATTR_LONGPubSubType> writer(topicName);
            if (!writer.waitForSubscribers(1, std::chrono::seconds(10)))
                return;
            ATTR_LONG sample;
            sample.value(5);
            writing = true;
            writer.publish(sample);
        });
        QElapsedTimer waited;
        waited.start();
        while (!writing && waited.elapsed() < 10000)
            QThread::msleep(1);
        QThread::msleep(300);
        setupEndsAt = log.now();
    });

    DDS_Subscriber<int>* subscriber = nullptr;
    subscriber = new DDS_Subscriber<int>(
        topicName, [&](const char* topic, CORBA::Long value) { log.add(&subscriber, topic, QString::number(value)); },
        0, 0, VOLATILE_DURABILITY_QOS);
    QTRY_COMPARE_WITH_TIMEOUT(log.size(), 1, 20000);
    QVERIFY(writing);
    const Delivery delivery = log.deliveries().front();
    QCOMPARE(delivery.value, QStringLiteral("5"));
    QVERIFY(delivery.setupDone);
    QVERIFY2(delivery.atMs >= setupEndsAt, qPrintable(QStringLiteral("delivered at %1 ms, setup ended at %2 ms")
                                                          .arg(delivery.atMs)
                                                          .arg(setupEndsAt.load())));
    publisher->join();
    delete subscriber;
}

void TestDdsSubscriber::drainsBurstInOrder()
{
    const char* topicName = "Test/Burst";
    constexpr int Count = 300;
    DeliveryLog log;
    DDS_Subscriber<Event::Message>* subscriber = nullptr;
    subscriber = new DDS_Subscriber<Event::Message>(
        topicName,
        [&](const char* topic, Event::Message value) { log.add(&subscriber, topic, QString::number(value.code())); },
        0, 0, VOLATILE_DURABILITY_QOS);
    subscriber->waitForInitDone();
    {
        PublisherThread thread([&] {
            TopicPublisher<ATTR_EVENTPubSubType> writer(topicName);
            writer.waitForSubscribers(1, std::chrono::seconds(10));
            for (int i = 0; i < Count; ++i)
                writer.publish(eventSample(eventOfClass(std::uint32_t(i % 6), i)));
            writer.waitForAcknowledgments(std::chrono::seconds(10));
        });
    }
    QTRY_COMPARE_WITH_TIMEOUT(log.size(), Count, 20000);
    const std::vector<Delivery> deliveries = log.deliveries();
    for (int i = 0; i < Count; ++i)
        QCOMPARE(deliveries[std::size_t(i)].value, QString::number(i));
    delete subscriber;
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
    DeliveryLog log;
    DDS_Subscriber<Event::Message>* subscriber = nullptr;
    subscriber = new DDS_Subscriber<Event::Message>(
        topicName,
        [&](const char* topic, Event::Message value) {
            log.add(&subscriber, topic, QString::number(quint32(value.classification())));
        },
        0, 0, VOLATILE_DURABILITY_QOS);
    subscriber->setClassMask(mask);
    subscriber->waitForInitDone();
    {
        // The last sample, of class 0 with every bit set, marks the end of the run.
        PublisherThread thread([&] {
            TopicPublisher<ATTR_EVENTPubSubType> writer(topicName);
            writer.waitForSubscribers(1, std::chrono::seconds(10));
            int number = 0;
            for (quint32 eventClass : published)
                writer.publish(eventSample(eventOfClass(eventClass, number++)));
            writer.waitForAcknowledgments(std::chrono::seconds(10));
        });
    }
    QTRY_COMPARE_WITH_TIMEOUT(errors.count(QStringLiteral("ERROR: unknown classification \n")), unknownLines, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(log.size(), delivered.size(), 10000);
    QList<quint32> classes;
    for (const Delivery& delivery : log.deliveries())
        classes << delivery.value.toUInt();
    QCOMPARE(classes, delivered);
    delete subscriber;
}

void TestDdsSubscriber::separationLetsOneSamplePerWindow_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<uint>("nanoseconds");
    QTest::addColumn<int>("windowMs");

    QTest::newRow("1 s 500000000 ns") << 1 << 500000000u << 1500;
    QTest::newRow("0 s 300000000 ns") << 0 << 300000000u << 300;
    QTest::newRow("none") << 0 << 0u << 0;
}

void TestDdsSubscriber::separationLetsOneSamplePerWindow()
{
    QFETCH(int, seconds);
    QFETCH(uint, nanoseconds);
    QFETCH(int, windowMs);

    constexpr int PeriodMs = 50;
    // Two windows and a bit: the third delivery shows the window restarts each time.
    const int Count = (2 * std::max(windowMs, 100) + 300) / PeriodMs + 1;
    const std::string topicName = std::string("Test/Separation/") + QTest::currentDataTag();
    DeliveryLog log;
    DDS_Subscriber<DDS_VoidMessage>* subscriber = nullptr;
    subscriber = new DDS_Subscriber<DDS_VoidMessage>(
        topicName, [&](const char* topic) { log.add(&subscriber, topic, QString()); }, seconds, nanoseconds,
        VOLATILE_DURABILITY_QOS);
    subscriber->waitForInitDone();
    {
        PublisherThread thread([&] {
            TopicPublisher<ATTR_VOIDPubSubType> writer(topicName);
            writer.waitForSubscribers(1, std::chrono::seconds(10));
            const auto start = std::chrono::steady_clock::now();
            for (int i = 0; i < Count; ++i) {
                std::this_thread::sleep_until(start + std::chrono::milliseconds(i * PeriodMs));
                ATTR_VOID sample;
                sample.sequence_number(std::uint8_t(i));
                writer.publish(sample);
            }
            writer.waitForAcknowledgments(std::chrono::seconds(10));
        });
    }
    const std::vector<Delivery> deliveries = log.deliveries();
    if (windowMs == 0) {
        QCOMPARE(int(deliveries.size()), Count);
        delete subscriber;
        return;
    }
    const int expected = (Count - 1) * PeriodMs / windowMs + 1;
    // The first sample after each window passes: never sooner, and at most about one
    // publishing period (plus scheduling) later.
    QVERIFY2(int(deliveries.size()) >= expected - 1 && int(deliveries.size()) <= expected,
             qPrintable(QStringLiteral("%1 deliveries, expected %2").arg(deliveries.size()).arg(expected)));
    for (std::size_t i = 1; i < deliveries.size(); ++i) {
        const qint64 gap = deliveries[i].atMs - deliveries[i - 1].atMs;
        QVERIFY2(gap >= windowMs - 5 && gap <= windowMs + 3 * PeriodMs,
                 qPrintable(QStringLiteral("gap %1 ms").arg(gap)));
    }
    delete subscriber;
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
    QTest::addColumn<QString>("line");

    QTest::newRow("disposed") << int(eprosima::fastdds::dds::NOT_ALIVE_DISPOSED_INSTANCE_STATE)
                              << QStringLiteral(" instance is disposed\n");
    QTest::newRow("no writers") << int(eprosima::fastdds::dds::NOT_ALIVE_NO_WRITERS_INSTANCE_STATE)
                                << QStringLiteral(" instance is unregistered\n");
}

// Fast DDS refuses dispose and unregister on our key-less topic types, and a writer that
// goes away produces no sample; so an invalid sample is handed to the listener directly.
void TestDdsSubscriber::invalidSampleIsOnlyReported()
{
    QFETCH(int, state);
    QFETCH(QString, line);

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
    subscriber.listener().deliver(sample, info);
    QCOMPARE(output.text(),
             QStringLiteral("void Orvanth::DDS_DataReaderListener<T>::on_data_available(DDS::DataReader*) "
                            "[with T = std::string]")
                 + line);
    QCOMPARE(calls.loadRelaxed(), 0);
}

void TestDdsSubscriber::unknownInstanceStateIsRaised()
{
    QAtomicInt calls;
    DDS_Subscriber<int> subscriber(
        "Test/InvalidState", [&](const char*, CORBA::Long) { calls.ref(); }, 0, 0, VOLATILE_DURABILITY_QOS);
    subscriber.waitForInitDone();
    eprosima::fastdds::dds::SampleInfo info;
    info.valid_data = false;
    info.instance_state = eprosima::fastdds::dds::ALIVE_INSTANCE_STATE;
    QString message;
    try {
        subscriber.listener().deliver(ATTR_LONG(), info);
    } catch (const Runtime_errors::Generic& e) {
        message = QString::fromUtf8(e.message.in());
    }
    QCOMPARE(message, QStringLiteral("void Orvanth::DDS_DataReaderListener<T>::on_data_available(DDS::DataReader*) "
                                     "[with T = int] ERROR: received unknown instance state"));
    QCOMPARE(calls.loadRelaxed(), 0);
}

void TestDdsSubscriber::subscribersShareTopicName()
{
    // Two consumers of one topic in one process (two status bars) each get every sample.
    const char* topicName = "Test/Shared";
    QAtomicInt first;
    QAtomicInt second;
    auto* one = new DDS_Subscriber<bool>(
        topicName, [&](const char*, CORBA::Boolean) { first.ref(); }, 0, 0, VOLATILE_DURABILITY_QOS);
    auto* two = new DDS_Subscriber<bool>(
        topicName, [&](const char*, CORBA::Boolean) { second.ref(); }, 0, 0, VOLATILE_DURABILITY_QOS);
    one->waitForInitDone();
    two->waitForInitDone();
    QVERIFY(!one->initFailed() && !two->initFailed());
    {
        PublisherThread thread([&] {
            TopicPublisher<ATTR_BOOLEANPubSubType> writer(topicName);
            writer.waitForSubscribers(2, std::chrono::seconds(10));
            writer.publish(TopicSamples::booleanSample());
            writer.waitForAcknowledgments(std::chrono::seconds(10));
        });
    }
    QTRY_COMPARE_WITH_TIMEOUT(first.loadRelaxed(), 1, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(second.loadRelaxed(), 1, 10000);
    delete one;
    delete two;
}

QTEST_GUILESS_MAIN(TestDdsSubscriber)
#include "tst_ddssubscriber.moc"
