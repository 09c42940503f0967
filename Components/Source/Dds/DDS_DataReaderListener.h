#ifndef ORVANTH_DDS_DATAREADERLISTENER_H
#define ORVANTH_DDS_DATAREADERLISTENER_H

#include "DDS_SubscriberTraits.h"

#include <fastdds/dds/subscriber/DataReader.hpp>
#include <fastdds/dds/subscriber/DataReaderListener.hpp>
#include <fastdds/dds/subscriber/InstanceState.hpp>
#include <fastdds/dds/subscriber/SampleInfo.hpp>

#include <boost/core/noncopyable.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <iostream>
#include <string>

namespace Orvanth {

template <class T>
class DDS_Subscriber;

/**
 * The data-reader listener embedded in every typed subscriber: takes one sample per
 * notification and hands its value to the subscriber's callback, on the DDS thread that
 * delivers the notification.
 */
template <class T>
class DDS_DataReaderListener : public eprosima::fastdds::dds::DataReaderListener, private boost::noncopyable
{
public:
    using Sample = typename DDS_SubscriberTraits<T>::TopicType;

    DDS_DataReaderListener() = default;

    /// Set by the setup thread just before the data reader is created.
    void setSubscriber(DDS_Subscriber<T>* subscriber) { m_subscriber.store(subscriber); }

    void on_data_available(eprosima::fastdds::dds::DataReader* reader) override
    {
        // Fast DDS does not catch what a listener throws: an exception leaving this
        // function would end the process, so the delivery errors end here, logged.
        try {
            takeAndDeliver(reader);
        } catch (const Runtime_errors::Generic& e) {
            std::cerr << e.message.in() << std::endl;
        } catch (const std::exception& e) {
            std::cerr << signature() << " " << e.what() << std::endl;
        } catch (...) {
            std::cerr << signature() << " unknown exception from the callback" << std::endl;
        }
    }

    /**
     * Hands one taken sample on: a valid one to the subscriber, which calls the callback
     * with it now or, while its setup is still running, as that setup ends; an invalid one
     * is only reported by its instance state. Throws Runtime_errors::Generic for an
     * instance state that explains neither. Never waits for the setup.
     */
    void deliver(const Sample& sample, const eprosima::fastdds::dds::SampleInfo& info)
    {
        using namespace eprosima::fastdds::dds;
        DDS_Subscriber<T>* subscriber = m_subscriber.load();
        if (!subscriber)
            return;
        if (info.valid_data) {
            subscriber->deliverValue(sample);
            return;
        }
        if (info.instance_state == NOT_ALIVE_DISPOSED_INSTANCE_STATE) {
            std::cout << signature() << " instance is disposed" << std::endl;
            return;
        }
        if (info.instance_state == NOT_ALIVE_NO_WRITERS_INSTANCE_STATE) {
            std::cout << signature() << " instance is unregistered" << std::endl;
            return;
        }
        throw Runtime_errors::Generic((signature() + " ERROR: received unknown instance state").c_str());
    }

    void on_requested_deadline_missed(eprosima::fastdds::dds::DataReader*,
                                      const eprosima::fastrtps::RequestedDeadlineMissedStatus&) override
    {
    }

    /// A writer of the topic offers less than this reader requests, so the two never
    /// match: said on standard error, as nothing else would ever show it.
    void on_requested_incompatible_qos(eprosima::fastdds::dds::DataReader*,
                                       const eprosima::fastdds::dds::RequestedIncompatibleQosStatus& status) override
    {
        std::cerr << signature("on_requested_incompatible_qos(DDS::DataReader*, "
                               "const DDS::RequestedIncompatibleQosStatus&)")
                  << " incompatible QoS on topic \"" << topicName() << "\": " << policyName(status.last_policy_id)
                  << std::endl;
    }

    void on_sample_rejected(eprosima::fastdds::dds::DataReader*,
                            const eprosima::fastrtps::SampleRejectedStatus&) override
    {
    }
    void on_liveliness_changed(eprosima::fastdds::dds::DataReader*,
                               const eprosima::fastrtps::LivelinessChangedStatus&) override
    {
    }
    void on_subscription_matched(eprosima::fastdds::dds::DataReader*,
                                 const eprosima::fastdds::dds::SubscriptionMatchedStatus&) override
    {
    }

    /// The reader is best effort: samples lost on the wire are not sent again.
    void on_sample_lost(eprosima::fastdds::dds::DataReader*,
                        const eprosima::fastdds::dds::SampleLostStatus& status) override
    {
        std::cerr << signature("on_sample_lost(DDS::DataReader*, const DDS::SampleLostStatus&)")
                  << " samples lost on topic \"" << topicName() << "\": total " << status.total_count << std::endl;
    }

    /// The text that prefixes the delivery diagnostics.
    static std::string signature() { return signature("on_data_available(DDS::DataReader*)"); }

    /// The text that prefixes the diagnostics of the listener operation \a operation.
    static std::string signature(const char* operation)
    {
        return std::string("void Orvanth::DDS_DataReaderListener<T>::") + operation + " [with T = "
               + DDS_SubscriberTraits<T>::payloadName + "]";
    }

    /// The name of a QoS policy as DDS spells it ("RELIABILITY"), or its number.
    static std::string policyName(eprosima::fastdds::dds::QosPolicyId_t id)
    {
        static const char* const names[] = {"INVALID", "USERDATA", "DURABILITY", "PRESENTATION", "DEADLINE",
                                             "LATENCYBUDGET", "OWNERSHIP", "OWNERSHIPSTRENGTH", "LIVELINESS",
                                             "TIMEBASEDFILTER", "PARTITION", "RELIABILITY", "DESTINATIONORDER",
                                             "HISTORY", "RESOURCELIMITS", "ENTITYFACTORY", "WRITERDATALIFECYCLE",
                                             "READERDATALIFECYCLE", "TOPICDATA", "GROUPDATA", "TRANSPORTPRIORITY",
                                             "LIFESPAN", "DURABILITYSERVICE", "DATAREPRESENTATION",
                                             "TYPECONSISTENCYENFORCEMENT", "DISABLEPOSITIVEACKS"};
        if (std::size_t(id) < sizeof(names) / sizeof(names[0]))
            return names[id];
        return "policy " + std::to_string(std::uint32_t(id));
    }

private:
    void takeAndDeliver(eprosima::fastdds::dds::DataReader* reader)
    {
        DDS_Subscriber<T>* subscriber = m_subscriber.load();
        if (!subscriber || !subscriber->adoptReader(reader))
            return;
        // Each delivery thread takes into a sample of its own: a local writer's samples
        // arrive on the writing thread, remote ones on a receive thread, possibly at once.
        Sample sample;
        eprosima::fastdds::dds::SampleInfo info;
        if (reader->take_next_sample(&sample, &info) != eprosima::fastrtps::types::ReturnCode_t::RETCODE_OK)
            throw Runtime_errors::Generic((signature() + " take_next_sample error.").c_str());
        deliver(sample, info);
    }

    std::string topicName() const
    {
        // Set before the reader exists, so before any status reaches this listener.
        DDS_Subscriber<T>* subscriber = m_subscriber.load();
        return subscriber ? subscriber->topicName() : std::string();
    }

    std::atomic<DDS_Subscriber<T>*> m_subscriber{nullptr};
};

} // namespace Orvanth

#endif
