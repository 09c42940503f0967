// The typed DDS subscriber against real publishers (the test engine process and local
// writers), its setup and teardown, and a widget's record of its subscriptions.

#include "ChildProcess.h"
#include "SampleCollector.h"
#include "StreamCapture.h"
#include "TopicSamples.h"

#include "DDS_SetupHook.h"
#include "DDS_Subscriber.h"
#include "DDS_Subscriber_Object.h"
#include "TopicPublisher.h"

#include <QtTest>

#include <thread>

using namespace Orvanth;
using namespace Orvanth::TKWW_DDS;
namespace fdds = eprosima::fastdds::dds;

namespace {

std::vector<ATTR_LONG> longSamples(int count)
{
    std::vector<ATTR_LONG> samples(count);
    for (int i = 0; i < count; ++i)
        samples[std::size_t(i)].value(i);
    return samples;
}

// Publishes \a samples from a thread of its own (a local writer delivers on the writing
// thread, which must not be the test's), each at its time in \a atMs when given.
template <class PubSubType>
void publish(const std::string& topic, const std::vector<typename PubSubType::type>& samples, QList<int> atMs = {})
{
    std::thread([&] {
        TopicPublisher<PubSubType> writer(topic);
        writer.waitForSubscribers(1, std::chrono::seconds(10));
        const auto start = std::chrono::steady_clock::now();
        for (std::size_t i = 0; i < samples.size(); ++i) {
            std::this_thread::sleep_until(start + std::chrono::milliseconds(atMs.value(int(i))));
            writer.publish(samples[i]);
        }
        writer.waitForAcknowledgments(std::chrono::seconds(10));
    }).join();
}

// A subscriber whose callback adds each value to \a log (a void one adds its topic).
template <class T, class Log>
std::unique_ptr<DDS_Subscriber<T>> subscribe(const std::string& topic, Log& log, int windowMs = 0,
                                             fdds::DurabilityQosPolicyKind durability = fdds::VOLATILE_DURABILITY_QOS)
{
    auto subscriber = std::make_unique<DDS_Subscriber<T>>(
        topic, [&log](const char* name, auto... value) { log.add(std::get<sizeof...(value)>(std::tie(name, value...))); },
        windowMs / 1000,
        std::uint32_t(windowMs % 1000) * 1000000u, durability);
    subscriber->waitForInitDone();
    return subscriber;
}

// Counts callbacks of any kind.
struct CallCount
{
    std::atomic<int> calls{0};
    template <class Value> void add(const Value&) { ++calls; }
};

} // namespace

class TestSubscriber : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { DDS_SetupHook::clear(); }
    void cleanupTestCase() { DDS_BaseObj::shutdownDds(); }

    void deliversEachPayloadFromEngineOffTestThread()
    {
        SampleCollector<std::string> voids;
        SampleCollector<bool> booleans;
        SampleCollector<bool> booleansAgain;
        SampleCollector<int> longs;
        SampleCollector<std::string> strings;
        SampleCollector<Event::Message> events;
        SampleCollector<MeterReading::Reading> readings;
        // Two consumers of one topic in one process (two status bars) each get every sample.
        const auto subscribers = std::make_tuple(
            subscribe<DDS_VoidMessage>(TopicSamples::VoidTopic, voids),
            subscribe<bool>(TopicSamples::BooleanTopic, booleans), subscribe<int>(TopicSamples::LongTopic, longs),
            subscribe<bool>(TopicSamples::BooleanTopic, booleansAgain),
            subscribe<std::string>(TopicSamples::StringTopic, strings),
            subscribe<Event::Message>(TopicSamples::EventTopic, events),
            subscribe<MeterReading::Reading>(TopicSamples::ReadingTopic, readings));

        // The engine writes every topic again and again until stopped: a best-effort reader
        // drops what comes before it knows the writer.
        ChildProcess engine;
        QVERIFY(engine.start(QStringLiteral(TZ_TEST_ENGINE), {"--publish-samples"},
                             QProcessEnvironment::systemEnvironment(), QStringLiteral("PUBLISHED"), 60000));
        QTRY_VERIFY_WITH_TIMEOUT(voids.size() && booleans.size() && booleansAgain.size() && longs.size() && strings.size()
                                     && events.size() && readings.size(),
                                 30000);
        QCOMPARE(engine.stop(), 0);
        QCOMPARE(voids.values().front(), std::string(TopicSamples::VoidTopic));
        QCOMPARE(booleans.values().front(), bool(TopicSamples::booleanSample().value()));
        QCOMPARE(booleansAgain.values().front(), booleans.values().front());
        QCOMPARE(longs.values().front(), int(TopicSamples::longSample().value()));
        QCOMPARE(QString::fromStdString(strings.values().front()), QString::fromUtf8(TopicSamples::UnicodeText));
        QVERIFY(events.values().front() == TopicSamples::eventSample().value());
        QVERIFY(readings.values().front() == TopicSamples::readingSample().value());
        QVERIFY(!voids.anyOnTestThread() && !booleans.anyOnTestThread() && !longs.anyOnTestThread()
                && !strings.anyOnTestThread() && !events.anyOnTestThread() && !readings.anyOnTestThread());
    }

    void holdsEarlySamplesUntilSetupEnds()
    {
        // The setup pauses after creating its reader; samples written then must wait, and
        // then come in the order they were written.
        std::unique_ptr<std::thread> publisher;
        std::atomic<bool> written{false};
        std::atomic<qint64> setupEndsAt{-1};
        SampleCollector<int> log;
        DDS_SetupHook::set([&](const std::string&) {
            publisher = std::make_unique<std::thread>([&written] {
                publish<ATTR_LONGPubSubType>("Test/Early", longSamples(2));
                written = true;
            });
            for (int waited = 0; !written && waited < 10000; ++waited)
                QThread::msleep(1);
            QThread::msleep(300);
            setupEndsAt = log.elapsedMs();
        });
        auto* subscriber = new DDS_Subscriber<int>(
            "Test/Early", [&](const char*, CORBA::Long value) { log.add(value); }, 0, 0, fdds::VOLATILE_DURABILITY_QOS);
        QTRY_COMPARE_WITH_TIMEOUT(log.size(), 2, 20000);
        QCOMPARE(log.values(), (std::vector<int>{0, 1}));
        QVERIFY2(log.deliveries().front().atMs >= setupEndsAt, qPrintable(QString::number(setupEndsAt)));
        publisher->join();
        delete subscriber;
    }

    // Samples that arrive while readers are being created must stall neither the DDS
    // thread that brings them nor the setups, nor the teardown after.
    void setsUpAndTearsDownWhileWriterPublishes()
    {
        std::atomic<bool> publishing{true};
        TopicPublisher<ATTR_LONGPubSubType> writer("Test/Busy");
        std::thread publisher([&] {
            while (publishing)
                writer.publish(longSamples(1).front());
        });
        const auto stop = qScopeGuard([&] { publishing = false, publisher.join(); });
        for (int round = 0; round < 5; ++round) {
            std::vector<SampleCollector<int>> logs(20);
            std::vector<std::unique_ptr<DDS_Subscriber<int>>> subscribers;
            for (SampleCollector<int>& log : logs)
                subscribers.push_back(subscribe<int>("Test/Busy", log));
            for (SampleCollector<int>& log : logs)
                QTRY_VERIFY_WITH_TIMEOUT(log.size() > 0, 10000);
        }
    }

    void classMaskFiltersEventsInOrder_data()
    {
        QTest::addColumn<quint32>("mask");
        QTest::addColumn<QList<quint32>>("published");
        QTest::addColumn<QList<quint32>>("delivered");
        QTest::addColumn<int>("unknownLines");
        QList<quint32> burst;
        for (quint32 i = 0; i < 300; ++i)
            burst << i % 6;
        QTest::newRow("burst of all classes") << quint32(0x3F) << burst << burst << 0;
        QTest::newRow("warnings masked") << quint32(0x3F & ~(1u << 3)) << QList<quint32>{0, 3, 4, 3, 5}
                                         << QList<quint32>{0, 4, 5} << 0;
        QTest::newRow("only critical") << quint32(1u << 1) << QList<quint32>{0, 1, 2, 1} << QList<quint32>{1, 1} << 0;
        QTest::newRow("unknown classes") << quint32(0xFFFFFFFF) << QList<quint32>{6, 2, 7, 0xFFFFFFFF}
                                         << QList<quint32>{2} << 3;
    }

    void classMaskFiltersEventsInOrder()
    {
        QFETCH(quint32, mask);
        QFETCH(QList<quint32>, published);
        QFETCH(QList<quint32>, delivered);
        QFETCH(int, unknownLines);
        const std::string topicName = std::string("Test/Mask/") + QTest::currentDataTag();
        StreamCapture errors(std::cerr);
        SampleCollector<Event::Message> log;
        DDS_Subscriber<Event::Message> subscriber(
            topicName, [&](const char*, Event::Message value) { log.add(value); }, 0, 0, fdds::VOLATILE_DURABILITY_QOS);
        subscriber.setClassMask(mask);
        subscriber.waitForInitDone();
        std::vector<ATTR_EVENT> samples(published.size());
        for (int i = 0; i < published.size(); ++i) {
            samples[std::size_t(i)].value().code(i);
            samples[std::size_t(i)].value().classification(Event::EventClass(published[i]));
        }
        publish<ATTR_EVENTPubSubType>(topicName, samples);
        QTRY_COMPARE_WITH_TIMEOUT(errors.count(QStringLiteral("ERROR: unknown classification \n")), unknownLines, 10000);
        QTRY_COMPARE_WITH_TIMEOUT(log.size(), delivered.size(), 20000);
        QList<quint32> classes;
        int lastCode = -1;
        for (const Event::Message& message : log.values()) {
            QVERIFY(message.code() > std::exchange(lastCode, message.code()));
            classes << quint32(message.classification());
        }
        QCOMPARE(classes, delivered);
    }

    void separationDeliversLatestOncePerWindow_data()
    {
        QTest::addColumn<int>("windowMs");
        QTest::addColumn<QList<int>>("publishAtMs");
        // A lock and its release within a widget's UpdateDelay: the release must still show.
        QTest::newRow("lock, unlock within 1.5 s") << 1500 << QList<int>{0, 100};
        QList<int> stream;
        for (int at = 0; at <= 800; at += 50)
            stream << at;
        QTest::newRow("stream over 0.3 s windows") << 300 << stream;
        QTest::newRow("none") << 0 << QList<int>{0, 10, 20, 30};
    }

    void separationDeliversLatestOncePerWindow()
    {
        QFETCH(int, windowMs);
        QFETCH(QList<int>, publishAtMs);
        // Each sample's value is its index, so the last one published is the newest state.
        const int last = publishAtMs.size() - 1;
        const std::string topicName = std::string("Test/Separation/") + QTest::currentDataTag();
        SampleCollector<int> log;
        const auto subscriber = subscribe<int>(topicName, log, windowMs);
        publish<ATTR_LONGPubSubType>(topicName, longSamples(publishAtMs.size()), publishAtMs);
        QTRY_VERIFY_WITH_TIMEOUT(log.contains(last), windowMs + 10000);
        // Whatever else were to come would come within one more window.
        QTest::qWait(windowMs + 100);
        const auto deliveries = log.deliveries();
        QCOMPARE(deliveries.front().value, 0);
        QCOMPARE(deliveries.back().value, last);
        QVERIFY(windowMs ? int(deliveries.size()) <= publishAtMs.last() / windowMs + 2
                         : int(deliveries.size()) == publishAtMs.size());
        for (std::size_t i = 1; i < deliveries.size(); ++i) {
            // Stamped in the callback, a little after the subscriber's own time of delivery.
            const qint64 gap = deliveries[i].atMs - deliveries[i - 1].atMs;
            QVERIFY2(gap >= windowMs - 25, qPrintable(QStringLiteral("gap %1 ms").arg(gap)));
            QVERIFY(deliveries[i].value > deliveries[i - 1].value);
        }
        QVERIFY(!log.anyOnTestThread());
    }

    void destroyingDropsHeldBackSample()
    {
        SampleCollector<int> log;
        auto subscriber = subscribe<int>("Test/HeldBack", log, 300);
        publish<ATTR_LONGPubSubType>("Test/HeldBack", longSamples(2));
        QTRY_COMPARE_WITH_TIMEOUT(log.values(), std::vector<int>{0}, 10000);
        subscriber.reset();
        QTest::qWait(400);
        QCOMPARE(log.values(), std::vector<int>{0});
    }

    void destroyingDuringSetupWaitsForSetup()
    {
        std::atomic<bool> inSetup{false};
        std::atomic<bool> release{false};
        DDS_SetupHook::set([&](const std::string&) {
            for (inSetup = true; !release;)
                QThread::msleep(1);
        });
        SampleCollector<bool> log;
        auto* subscriber = new DDS_Subscriber<bool>(
            "Test/SlowSetup", [&](const char*, CORBA::Boolean value) { log.add(value); }, 0, 0,
            fdds::VOLATILE_DURABILITY_QOS);
        QTRY_VERIFY_WITH_TIMEOUT(inSetup.load(), 10000);
        std::atomic<bool> destroyed{false};
        std::thread destroyer([&] { delete subscriber; destroyed = true; });
        // Teardown must wait while the setup still runs: nothing may be deleted under it.
        QTest::qWait(200);
        QVERIFY(!destroyed);
        release = true;
        QTRY_VERIFY_WITH_TIMEOUT(destroyed.load(), 10000);
        destroyer.join();
        QCOMPARE(log.size(), 0);
    }

    // DDS is off for a whole process, so the case runs again in a child process.
    void failsSetupWithoutDds()
    {
        if (!qEnvironmentVariableIsSet("ORVANTH_DDS_DISABLE"))
            QVERIFY(ChildProcess::rerunTest(QTest::currentTestFunction(), {"ORVANTH_DDS_DISABLE=1"}));
        if (!qEnvironmentVariableIsSet("ORVANTH_DDS_DISABLE"))
            return;
        // Each setup fails, says so once, and teardown does not wait for it.
        StreamCapture errors(std::cerr);
        CallCount log;
        const auto subscribers = std::make_tuple(
            subscribe<DDS_VoidMessage>("Lumaro/local/lock", log, 1500), subscribe<bool>("Lumaro/local/EVTMSG", log),
            subscribe<int>("Test/int", log), subscribe<std::string>("Test/string", log),
            subscribe<Event::Message>("Test/event", log), subscribe<MeterReading::Reading>("Test/reading", log));
        QVERIFY(std::apply([](const auto&... s) { return ((s->initFailed() && !s->isInitDone()) && ...); }, subscribers));
        QCOMPARE(errors.count(QStringLiteral("err: Participant NULL\n")), 6);
    }

    void recordDestroysOnlyItsOwnKind_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("slot");
        QTest::addColumn<int>("deletions");
        QTest::newRow("void record") << int(DDS_Subscriber_Object::VoidKind) << 8 << 1;
        QTest::newRow("last kind") << 12 << 12 << 1;
        QTest::newRow("pointer in another slot") << int(DDS_Subscriber_Object::EventKind) << 8 << 0;
        QTest::newRow("kind out of range") << 13 << 12 << 0;
    }

    void recordDestroysOnlyItsOwnKind()
    {
        QFETCH(int, kind);
        QFETCH(int, slot);
        QFETCH(int, deletions);
        int deleted = 0;
        struct Counted : DDS_BaseObj { int* deleted; ~Counted() override { ++*deleted; } };
        auto subscriber = std::make_unique<Counted>();
        subscriber->deleted = &deleted;
        DDS_Subscriber_Object record;
        record.kind = kind;
        record.subscribers[std::size_t(slot)] = subscriber.get();
        record.destroy();
        record.destroy(); // a second teardown must not delete twice
        QCOMPARE(deleted, deletions);
        if (deletions) // deleted by the record
            subscriber.release();
        QCOMPARE(record.subscriber(), static_cast<DDS_BaseObj*>(nullptr));
    }
};

QTEST_MAIN(TestSubscriber)
#include "tst_subscriber.moc"
