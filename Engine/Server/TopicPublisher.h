#ifndef ORVANTH_TOPICPUBLISHER_H
#define ORVANTH_TOPICPUBLISHER_H

#include "DDS_BaseObj.h"

#include <Orvanth.hh>

#include <fastdds/dds/domain/DomainParticipant.hpp>
#include <fastdds/dds/publisher/DataWriter.hpp>
#include <fastdds/dds/publisher/Publisher.hpp>
#include <fastdds/dds/publisher/qos/DataWriterQos.hpp>
#include <fastdds/dds/topic/Topic.hpp>
#include <fastdds/dds/topic/TypeSupport.hpp>

#include <chrono>
#include <string>
#include <thread>

namespace Orvanth {

/**
 * Publishes samples of one topic type (given as its fastddsgen PubSubType) on one topic
 * through the process's participant.
 *
 * Construction throws Connection_errors::Not_Connected when DDS is not running or an
 * entity cannot be created. The writer is reliable and volatile, keeps the last 100
 * samples for late acknowledgements and does not use data sharing.
 */
template <class PubSubType>
class TopicPublisher : public DDS_BaseObj
{
public:
    using Sample = typename PubSubType::type;

    explicit TopicPublisher(const std::string& topicName)
        : m_topicName(topicName), m_type(new PubSubType())
    {
        using namespace eprosima::fastdds::dds;
        m_participant = DdsBase().participant;
        if (!m_participant)
            fail("no participant");
        if (m_type.register_type(m_participant) != ReturnCode_t::RETCODE_OK)
            fail("register_type");
        m_topic = findOrCreateTopic(m_participant, topicName, m_type.get_type_name());
        if (!m_topic)
            fail("create_topic");
        m_publisher = m_participant->create_publisher(PUBLISHER_QOS_DEFAULT);
        if (!m_publisher)
            fail("create_publisher");
        DataWriterQos qos = m_publisher->get_default_datawriter_qos();
        qos.reliability().kind = RELIABLE_RELIABILITY_QOS;
        qos.durability().kind = VOLATILE_DURABILITY_QOS;
        qos.history().kind = KEEP_LAST_HISTORY_QOS;
        qos.history().depth = 100;
        // Data sharing would hand fixed-size samples over through shared memory, which
        // this deployment does not use: every sample goes through the loopback transport.
        qos.data_sharing().off();
        // Readers acknowledge on a heartbeat; the default period of 3 s made every
        // waitForAcknowledgments() take seconds. Heartbeats are small, so send them often.
        qos.reliable_writer_qos().times.heartbeatPeriod = eprosima::fastrtps::Duration_t(0, 100000000);
        m_writer = m_publisher->create_datawriter(m_topic, qos);
        if (!m_writer)
            fail("create_datawriter");
    }

    ~TopicPublisher() override { release(); }

    TopicPublisher(const TopicPublisher&) = delete;
    TopicPublisher& operator=(const TopicPublisher&) = delete;

    const std::string& topicName() const { return m_topicName; }

    bool publish(const Sample& sample)
    {
        return m_writer->write(const_cast<Sample*>(&sample));
    }

    /// The number of readers currently matched with this writer.
    int matchedSubscribers() const
    {
        eprosima::fastdds::dds::PublicationMatchedStatus status;
        m_writer->get_publication_matched_status(status);
        return status.current_count;
    }

    /// Waits until at least \a count readers are matched; false on time-out.
    bool waitForSubscribers(int count, std::chrono::milliseconds timeout) const
    {
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        while (matchedSubscribers() < count) {
            if (std::chrono::steady_clock::now() >= deadline)
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return true;
    }

    /// Waits until every sample written so far is acknowledged by the matched readers.
    bool waitForAcknowledgments(std::chrono::milliseconds timeout)
    {
        const eprosima::fastrtps::Duration_t wait(int32_t(timeout.count() / 1000),
                                                 uint32_t((timeout.count() % 1000) * 1000000));
        return m_writer->wait_for_acknowledgments(wait) == eprosima::fastrtps::types::ReturnCode_t::RETCODE_OK;
    }

    eprosima::fastdds::dds::DataWriter* writer() const { return m_writer; }

private:
    void release()
    {
        if (m_publisher) {
            if (m_writer)
                m_publisher->delete_datawriter(m_writer);
            m_participant->delete_publisher(m_publisher);
        }
        if (m_topic)
            m_participant->delete_topic(m_topic);
        m_writer = nullptr;
        m_publisher = nullptr;
        m_topic = nullptr;
    }

    [[noreturn]] void fail(const char* what)
    {
        release();
        const std::string text = "TopicPublisher \"" + m_topicName + "\": " + what + " failed";
        throw Connection_errors::Not_Connected(text.c_str());
    }

    std::string m_topicName;
    eprosima::fastdds::dds::TypeSupport m_type;
    eprosima::fastdds::dds::DomainParticipant* m_participant = nullptr;
    eprosima::fastdds::dds::Topic* m_topic = nullptr;
    eprosima::fastdds::dds::Publisher* m_publisher = nullptr;
    eprosima::fastdds::dds::DataWriter* m_writer = nullptr;
};

} // namespace Orvanth

#endif
