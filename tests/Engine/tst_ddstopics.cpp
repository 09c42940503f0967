// Each topic type travels intact from another process's participant to ours.

#include "ChildProcess.h"
#include "TopicSamples.h"

#include "DDS_BaseObj.h"

#include <OrvanthTopicsPubSubTypes.h>

#include <fastdds/dds/subscriber/DataReader.hpp>
#include <fastdds/dds/subscriber/DataReaderListener.hpp>
#include <fastdds/dds/subscriber/SampleInfo.hpp>
#include <fastdds/dds/subscriber/Subscriber.hpp>
#include <fastdds/dds/subscriber/qos/DataReaderQos.hpp>
#include <fastdds/dds/topic/Topic.hpp>

#include <QMutex>
#include <QtTest>

#include <memory>
#include <vector>

using namespace eprosima::fastdds::dds;
using namespace Orvanth::TKWW_DDS;

namespace {

// A plain reader that keeps every valid sample it is given.
template <class PubSubType>
class SampleCollector : public DataReaderListener
{
public:
    using Sample = typename PubSubType::type;

    SampleCollector(DomainParticipant* participant, const char* topicName)
        : m_participant(participant), m_type(new PubSubType())
    {
        m_type.register_type(participant);
        m_topic = participant->create_topic(topicName, m_type.get_type_name(), TOPIC_QOS_DEFAULT);
        m_subscriber = participant->create_subscriber(SUBSCRIBER_QOS_DEFAULT);
        DataReaderQos qos = m_subscriber->get_default_datareader_qos();
        qos.reliability().kind = RELIABLE_RELIABILITY_QOS;
        qos.history().kind = KEEP_ALL_HISTORY_QOS;
        qos.data_sharing().off();
        m_reader = m_subscriber->create_datareader(m_topic, qos, this);
    }

    ~SampleCollector() override
    {
        m_subscriber->delete_datareader(m_reader);
        m_participant->delete_subscriber(m_subscriber);
        m_participant->delete_topic(m_topic);
    }

    bool isReady() const { return m_topic && m_reader; }

    void on_data_available(DataReader* reader) override
    {
        Sample sample;
        SampleInfo info;
        while (reader->take_next_sample(&sample, &info) == ReturnCode_t::RETCODE_OK) {
            if (!info.valid_data)
                continue;
            QMutexLocker lock(&m_mutex);
            m_samples.push_back(sample);
        }
    }

    std::vector<Sample> samples()
    {
        QMutexLocker lock(&m_mutex);
        return m_samples;
    }

private:
    DomainParticipant* m_participant;
    TypeSupport m_type;
    Topic* m_topic = nullptr;
    Subscriber* m_subscriber = nullptr;
    DataReader* m_reader = nullptr;
    QMutex m_mutex;
    std::vector<Sample> m_samples;
};

} // namespace

class TestDdsTopics : public QObject
{
    Q_OBJECT

private slots:
    void participantStaysOnLoopback();
    void everyTopicTypeArrivesIntact();
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

void TestDdsTopics::everyTopicTypeArrivesIntact()
{
    DomainParticipant* participant = Orvanth::DDS_BaseObj::DdsBase().participant;
    QVERIFY(participant);
    SampleCollector<ATTR_VOIDPubSubType> voids(participant, TopicSamples::VoidTopic);
    SampleCollector<ATTR_BOOLEANPubSubType> booleans(participant, TopicSamples::BooleanTopic);
    SampleCollector<ATTR_LONGPubSubType> longs(participant, TopicSamples::LongTopic);
    SampleCollector<ATTR_STRINGPubSubType> strings(participant, TopicSamples::StringTopic);
    SampleCollector<ATTR_EVENTPubSubType> events(participant, TopicSamples::EventTopic);
    SampleCollector<ATTR_METER_READINGPubSubType> readings(participant, TopicSamples::ReadingTopic);
    QVERIFY(voids.isReady() && booleans.isReady() && longs.isReady() && strings.isReady() && events.isReady()
            && readings.isReady());

    ChildProcess engine;
    QVERIFY(engine.start(QStringLiteral(TZ_TEST_ENGINE), {"--publish-samples"},
                         QProcessEnvironment::systemEnvironment()));
    QTRY_VERIFY_WITH_TIMEOUT(engine.output().contains("PUBLISHED"), 60000);

    QTRY_COMPARE_WITH_TIMEOUT(voids.samples().size(), std::size_t(1), 10000);
    QCOMPARE(voids.samples().front(), TopicSamples::voidSample());
    QTRY_COMPARE_WITH_TIMEOUT(booleans.samples().size(), std::size_t(1), 10000);
    QCOMPARE(booleans.samples().front(), TopicSamples::booleanSample());
    QTRY_COMPARE_WITH_TIMEOUT(longs.samples().size(), std::size_t(1), 10000);
    QCOMPARE(longs.samples().front(), TopicSamples::longSample());
    QTRY_COMPARE_WITH_TIMEOUT(strings.samples().size(), std::size_t(1), 10000);
    QCOMPARE(QString::fromStdString(strings.samples().front().value()),
             QString::fromUtf8(TopicSamples::UnicodeText));
    QTRY_COMPARE_WITH_TIMEOUT(events.samples().size(), std::size_t(1), 10000);
    const Orvanth::Event::Message message = events.samples().front().value();
    QCOMPARE(QString::fromStdString(message.text()), QString::fromUtf8(TopicSamples::UnicodeText));
    QCOMPARE(message.classification(), Orvanth::Event::EVENT_WARNING);
    QCOMPARE(message.timestamp(), 4102444800LL);
    QVERIFY(events.samples().front() == TopicSamples::eventSample());
    QTRY_COMPARE_WITH_TIMEOUT(readings.samples().size(), std::size_t(1), 10000);
    QCOMPARE(readings.samples().front().value().readings().front().value(), 87.25);
    QVERIFY(readings.samples().front() == TopicSamples::readingSample());

    QCOMPARE(engine.stop(), 0);
}

void TestDdsTopics::cleanupTestCase()
{
    Orvanth::DDS_BaseObj::shutdownDds();
}

QTEST_GUILESS_MAIN(TestDdsTopics)
#include "tst_ddstopics.moc"
