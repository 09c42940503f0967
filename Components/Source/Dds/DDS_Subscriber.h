#ifndef ORVANTH_DDS_SUBSCRIBER_H
#define ORVANTH_DDS_SUBSCRIBER_H

#include "DDS_SubscriberBase.h"

namespace Orvanth {

/**
 * The typed subscriber for payload \c T: one of DDS_VoidMessage, bool, int, std::string,
 * Event::Message and MeterReading::Reading. The callback receives the topic name and,
 * except for the void payload, the value:
 *
 *     DDS_Subscriber<bool> power("Lumaro/local/ExternalVoltage",
 *                                boost::bind(&Battery::onPower, this, _1, _2),
 *                                0, 0, eprosima::fastdds::dds::VOLATILE_DURABILITY_QOS);
 */
template <class T>
class DDS_Subscriber : public DDS_SubscriberBase<T, typename DDS_SubscriberTraits<T>::Callback>
{
public:
    using Base = DDS_SubscriberBase<T, typename DDS_SubscriberTraits<T>::Callback>;

    DDS_Subscriber(const std::string& topicName, const typename Base::Callback& callback, std::int32_t seconds,
                   std::uint32_t nanoseconds, eprosima::fastdds::dds::DurabilityQosPolicyKind durability)
        : Base(topicName, callback, seconds, nanoseconds)
    {
        Base::startSetup(this, long(seconds), static_cast<unsigned long>(nanoseconds), durability);
    }

    /// Waits for a setup still running, then deletes the DDS entities; serialised with
    /// every other subscriber's teardown.
    ~DDS_Subscriber() override { this->tearDown(); }
};

} // namespace Orvanth

#endif
