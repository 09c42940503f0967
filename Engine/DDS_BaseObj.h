#ifndef ORVANTH_DDS_BASEOBJ_H
#define ORVANTH_DDS_BASEOBJ_H

#include <fastdds/dds/domain/DomainParticipant.hpp>
#include <fastdds/dds/domain/qos/DomainParticipantQos.hpp>
#include <fastdds/dds/topic/Topic.hpp>

#include <string>

class HostAddress;

namespace Orvanth {

/// The process's DDS context: its domain and its one participant.
struct DDS_Context
{
    eprosima::fastdds::dds::DomainId_t domainId;
    /// Null when DDS is not running in this process.
    eprosima::fastdds::dds::DomainParticipant* participant;
};

/**
 * Base of every object that talks DDS; gives access to the process's participant.
 *
 * The participant is created on first use. Its domain comes from ORVANTH_DDS_DOMAIN
 * (default 0). Unless ORVANTH_DDS_PROFILE names a Fast DDS XML profile file, the
 * participant is restricted to unicast UDPv4 on the process's own address (HostAddress:
 * 127.0.0.1 unless ORVANTH_INSTRUMENT_HOST is set) and finds its peers by asking the
 * instrument's address: nothing of it listens on another interface and nothing is sent
 * to a multicast group. ORVANTH_DDS_DISABLE=1 runs the process without DDS.
 */
class DDS_BaseObj
{
public:
    virtual ~DDS_BaseObj();

    /// The process's DDS context; its participant is null when DDS could not start.
    static DDS_Context& DdsBase();

    /// The participant QoS of a process on loopback only.
    static eprosima::fastdds::dds::DomainParticipantQos loopbackParticipantQos();
    /// The participant QoS used when no profile file is given, for a process placed at
    /// \a address: UDPv4 on its own address only, the instrument as the initial peer.
    static eprosima::fastdds::dds::DomainParticipantQos participantQos(const HostAddress& address);

    /// The topic \a name of type \a typeName for one more reader or writer of this process:
    /// a proxy of the topic when another entity has made it already, a new topic otherwise;
    /// null when neither can be had. Every topic returned goes back through delete_topic.
    static eprosima::fastdds::dds::Topic* findOrCreateTopic(eprosima::fastdds::dds::DomainParticipant* participant,
                                                            const std::string& name, const std::string& typeName);

    /// Deletes the participant and everything it still contains. Call at the very end
    /// of a program, once every subscriber and publisher is gone; DdsBase() reports a
    /// null participant afterwards.
    static void shutdownDds();
};

} // namespace Orvanth

#endif
