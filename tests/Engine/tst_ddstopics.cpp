// The process's DDS participant: on the domain the environment names, loopback only.

#include "DDS_BaseObj.h"

#include <fastrtps/utils/IPLocator.h>

#include <QtTest>

using namespace eprosima::fastdds::dds;

class TestDdsTopics : public QObject
{
    Q_OBJECT

private slots:
    void participantStaysOnLoopback();
    void cleanupTestCase();
};

void TestDdsTopics::participantStaysOnLoopback()
{
    const DomainParticipantQos qos = Orvanth::DDS_BaseObj::loopbackParticipantQos();
    QVERIFY(!qos.transport().use_builtin_transports);
    QCOMPARE(qos.transport().user_transports.size(), std::size_t(1));
    for (const auto& locator : qos.wire_protocol().builtin.metatrafficUnicastLocatorList)
        QCOMPARE(QString::fromStdString(eprosima::fastrtps::rtps::IPLocator::ip_to_string(locator)),
                 QStringLiteral("127.0.0.1"));
    QVERIFY(qos.wire_protocol().builtin.initialPeersList.size() == 1);

    Orvanth::DDS_Context& context = Orvanth::DDS_BaseObj::DdsBase();
    QVERIFY(context.participant);
    QCOMPARE(int(context.domainId), qEnvironmentVariableIntValue("ORVANTH_DDS_DOMAIN"));
}

void TestDdsTopics::cleanupTestCase()
{
    Orvanth::DDS_BaseObj::shutdownDds();
}

QTEST_GUILESS_MAIN(TestDdsTopics)
#include "tst_ddstopics.moc"
