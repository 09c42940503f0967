// The typed subscriber in a process where DDS does not run.

#include "StreamCapture.h"

#include "DDS_Subscriber.h"

#include <QAtomicInt>
#include <QtTest>

using namespace Orvanth;
using eprosima::fastdds::dds::VOLATILE_DURABILITY_QOS;

class TestDdsSubscriberNoDds : public QObject
{
    Q_OBJECT

private slots:
    void failedSetupReportsOnceAndTearsDown_data();
    void failedSetupReportsOnceAndTearsDown();
};

namespace {

template <class T>
bool runFailingSubscriber(QAtomicInt* calls)
{
    auto* subscriber = new DDS_Subscriber<T>(
        "Lumaro/local/EVTMSG", [calls](const char*, auto) { calls->ref(); }, 0, 0, VOLATILE_DURABILITY_QOS);
    subscriber->waitForInitDone();
    const bool failed = subscriber->initFailed() && !subscriber->isInitDone();
    delete subscriber; // must not wait for a setup that will never be done
    return failed;
}

template <>
bool runFailingSubscriber<DDS_VoidMessage>(QAtomicInt* calls)
{
    auto* subscriber = new DDS_Subscriber<DDS_VoidMessage>(
        "Lumaro/local/lock", [calls](const char*) { calls->ref(); }, 1, 500000000, VOLATILE_DURABILITY_QOS);
    subscriber->waitForInitDone();
    const bool failed = subscriber->initFailed() && !subscriber->isInitDone();
    delete subscriber;
    return failed;
}

} // namespace

void TestDdsSubscriberNoDds::failedSetupReportsOnceAndTearsDown_data()
{
    QTest::addColumn<int>("payload");
    QTest::addColumn<QString>("signature");

    const QString head = QStringLiteral(
        "void Orvanth::DDS_SubscriberBase<T, U>::InitSubBase(Orvanth::DDS_Subscriber<T>*, long int, long unsigned int, "
        "DDS::DurabilityQosPolicyKind) ");
    QTest::newRow("void") << 0 << head + "[with T = Orvanth::DDS_VoidMessage, F = void(const char*)]";
    QTest::newRow("bool") << 1 << head + "[with T = bool, F = void(const char*, CORBA::Boolean)]";
    QTest::newRow("int") << 2 << head + "[with T = int, F = void(const char*, CORBA::Long)]";
    QTest::newRow("string") << 3 << head + "[with T = std::string, F = void(const char*, std::string)]";
    QTest::newRow("event") << 4
                           << head + "[with T = Orvanth::Event::Message, F = void(const char*, Orvanth::Event::Message)]";
    QTest::newRow("reading") << 5
                             << head + "[with T = Orvanth::MeterReading::Reading, "
                                       "F = void(const char*, Orvanth::MeterReading::Reading)]";
}

void TestDdsSubscriberNoDds::failedSetupReportsOnceAndTearsDown()
{
    QFETCH(int, payload);
    QFETCH(QString, signature);

    QAtomicInt calls;
    bool failed = false;
    StreamCapture errors(std::cerr);
    switch (payload) {
    case 0: failed = runFailingSubscriber<DDS_VoidMessage>(&calls); break;
    case 1: failed = runFailingSubscriber<bool>(&calls); break;
    case 2: failed = runFailingSubscriber<int>(&calls); break;
    case 3: failed = runFailingSubscriber<std::string>(&calls); break;
    case 4: failed = runFailingSubscriber<Event::Message>(&calls); break;
    default: failed = runFailingSubscriber<MeterReading::Reading>(&calls); break;
    }
    QVERIFY(failed);
    QCOMPARE(errors.count(signature + " err: Participant NULL\n"), 1);
    QCOMPARE(errors.count(QStringLiteral("err:")), 1);
    QCOMPARE(calls.loadRelaxed(), 0);
}

QTEST_GUILESS_MAIN(TestDdsSubscriberNoDds)
#include "tst_ddssubscriber_nodds.moc"
