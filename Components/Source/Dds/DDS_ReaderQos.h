#ifndef ORVANTH_DDS_READERQOS_H
#define ORVANTH_DDS_READERQOS_H

#include <fastdds/dds/subscriber/qos/DataReaderQos.hpp>

#include <cstdint>

namespace Orvanth {

/**
 * The QoS of a typed subscriber's data reader: \a defaults (the DDS subscriber's default
 * reader QoS) with the given durability, an unbounded history and the minimum separation.
 *
 * The reliability stays the default, best effort, because a best-effort reader matches
 * writers of either reliability while a reliable one silently matches no best-effort
 * writer. Fast DDS keeps the time-based filter without applying it; the subscriber
 * enforces the separation itself.
 */
inline eprosima::fastdds::dds::DataReaderQos readerQos(const eprosima::fastdds::dds::DataReaderQos& defaults,
                                                       std::int32_t seconds, std::uint32_t nanoseconds,
                                                       eprosima::fastdds::dds::DurabilityQosPolicyKind durability)
{
    eprosima::fastdds::dds::DataReaderQos qos = defaults;
    qos.durability().kind = durability;
    qos.history().kind = eprosima::fastdds::dds::KEEP_ALL_HISTORY_QOS;
    qos.time_based_filter().minimum_separation = eprosima::fastrtps::Duration_t(seconds, nanoseconds);
    // Shared-memory data sharing dropped fixed-size samples between processes here;
    // every sample goes through the loopback transport.
    qos.data_sharing().off();
    return qos;
}

} // namespace Orvanth

#endif
