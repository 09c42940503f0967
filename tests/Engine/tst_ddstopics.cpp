// The process's DDS participant: on the domain the environment names, loopback only.

#include "DDS_BaseObj.h"
#include "HostAddress.h"

#include <fastdds/rtps/transport/UDPv4TransportDescriptor.h>

#include <fastrtps/utils/IPLocator.h>

#include <QtTest>

using namespace eprosima::fastdds::dds;

class TestDdsTopics : public QObject
{
    Q_OBJECT

private slots:
    void participantStaysOnLoopback();
    void participantOffLoopbackAsksInstrument();
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

void TestDdsTopics::participantOffLoopbackAsksInstrument()
{
    using eprosima::fastrtps::rtps::IPLocator;
    const auto text = [](const eprosima::fastrtps::rtps::Locator_t& locator) {
        return QString::fromStdString(IPLocator::ip_to_string(locator));
    };
    const HostAddress address = HostAddress::fromValues("127.0.0.9", "127.0.0.5", nullptr);
    const DomainParticipantQos qos = Orvanth::DDS_BaseObj::participantQos(address);

    QVERIFY(!qos.transport().use_builtin_transports);
    QCOMPARE(qos.transport().user_transports.size(), std::size_t(1));
    const auto udp = std::dynamic_pointer_cast<eprosima::fastdds::rtps::UDPv4TransportDescriptor>(
        qos.transport().user_transports.front());
    QVERIFY(udp);
    QCOMPARE(udp->interfaceWhiteList, std::vector<std::string>{"127.0.0.5"});

    const auto& builtin = qos.wire_protocol().builtin;
    QCOMPARE(builtin.metatrafficUnicastLocatorList.size(), std::size_t(1));
    QCOMPARE(text(*builtin.metatrafficUnicastLocatorList.begin()), QStringLiteral("127.0.0.5"));
    QVERIFY(builtin.metatrafficMulticastLocatorList.empty());
    QStringList peers;
    for (const auto& locator : builtin.initialPeersList)
        peers << text(locator);
    QCOMPARE(peers, (QStringList{"127.0.0.9", "127.0.0.5"}));
    QCOMPARE(qos.wire_protocol().default_unicast_locator_list.size(), std::size_t(1));
    QCOMPARE(text(*qos.wire_protocol().default_unicast_locator_list.begin()), QStringLiteral("127.0.0.5"));
}

void TestDdsTopics::cleanupTestCase()
{
    Orvanth::DDS_BaseObj::shutdownDds();
}

QTEST_GUILESS_MAIN(TestDdsTopics)
#include "tst_ddstopics.moc"
