#include "DDS_BaseObj.h"

#include "HostAddress.h"

#include <fastdds/dds/domain/DomainParticipantFactory.hpp>
#include <fastdds/rtps/transport/UDPv4TransportDescriptor.h>
#include <fastrtps/utils/IPLocator.h>

#include <arpa/inet.h>
#include <cstdlib>
#include <ifaddrs.h>
#include <iostream>
#include <memory>
#include <mutex>
#include <net/if.h>
#include <netinet/in.h>
#include <string>
#include <unistd.h>

using eprosima::fastdds::dds::DomainParticipant;
using eprosima::fastdds::dds::DomainParticipantFactory;
using eprosima::fastdds::dds::DomainParticipantQos;

namespace Orvanth {

namespace {

// Fast DDS derives the ports from the domain; above 232 they leave the port range.
constexpr int HighestDomain = 232;
// How many participants per host the unicast discovery probes for.
constexpr uint32_t PeerRange = 32;

std::mutex contextMutex;
bool contextMade = false;
DDS_Context context{0, nullptr};

bool environmentFlag(const char* name)
{
    const char* text = std::getenv(name);
    return text && std::string(text) == "1";
}

bool domainFromEnvironment(eprosima::fastdds::dds::DomainId_t* domain)
{
    const char* text = std::getenv("ORVANTH_DDS_DOMAIN");
    if (!text || !*text) {
        *domain = 0;
        return true;
    }
    char* end = nullptr;
    const long value = std::strtol(text, &end, 10);
    if (end == text || *end != '\0' || value < 0 || value > HighestDomain) {
        std::cerr << "Orvanth DDS - ORVANTH_DDS_DOMAIN \"" << text
                  << "\" is not a domain id from 0 to " << HighestDomain << "; DDS is not started" << std::endl;
        return false;
    }
    *domain = eprosima::fastdds::dds::DomainId_t(value);
    return true;
}

// Whether an interface that runs (up, with its carrier) has \a address.
bool isRunningAddress(const std::string& address)
{
    ifaddrs* interfaces = nullptr;
    if (getifaddrs(&interfaces) != 0)
        return false;
    bool running = false;
    for (const ifaddrs* entry = interfaces; entry && !running; entry = entry->ifa_next) {
        if (!entry->ifa_addr || entry->ifa_addr->sa_family != AF_INET)
            continue;
        char text[INET_ADDRSTRLEN] = {};
        inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(entry->ifa_addr)->sin_addr, text, sizeof text);
        running = address == text && (entry->ifa_flags & IFF_UP) && (entry->ifa_flags & IFF_RUNNING);
    }
    freeifaddrs(interfaces);
    return running;
}

DomainParticipant* createParticipant(eprosima::fastdds::dds::DomainId_t domain)
{
    DomainParticipantFactory* factory = DomainParticipantFactory::get_instance();
    if (const char* profileFile = std::getenv("ORVANTH_DDS_PROFILE")) {
        if (factory->load_XML_profiles_file(profileFile) != eprosima::fastrtps::types::ReturnCode_t::RETCODE_OK) {
            std::cerr << "Orvanth DDS - cannot load the profile file \"" << profileFile << "\"" << std::endl;
            return nullptr;
        }
        return factory->create_participant(domain, factory->get_default_participant_qos());
    }
    const HostAddress& address = HostAddress::process();
    // Fast DDS leaves out an interface that does not run yet (a link just set up, a
    // cable out) and the participant then reaches no other host, silently.
    if (address.isRemote() && !isRunningAddress(address.own()))
        std::cerr << "Orvanth DDS - no running interface has the address " << address.own()
                  << "; DDS reaches no other host until this process starts again" << std::endl;
    return factory->create_participant(domain, DDS_BaseObj::participantQos(address));
}

} // namespace

DDS_BaseObj::~DDS_BaseObj() = default;

DomainParticipantQos DDS_BaseObj::loopbackParticipantQos()
{
    return participantQos(HostAddress::fromValues(nullptr, nullptr, nullptr));
}

DomainParticipantQos DDS_BaseObj::participantQos(const HostAddress& address)
{
    using eprosima::fastrtps::rtps::IPLocator;
    using eprosima::fastrtps::rtps::Locator_t;

    DomainParticipantQos qos;
    qos.name("orvanth-" + std::to_string(getpid()));

    auto udp = std::make_shared<eprosima::fastdds::rtps::UDPv4TransportDescriptor>();
    udp->interfaceWhiteList.emplace_back(address.own());
    udp->maxInitialPeersRange = PeerRange;
    qos.transport().use_builtin_transports = false;
    qos.transport().user_transports.clear();
    qos.transport().user_transports.push_back(udp);

    // Port 0 lets Fast DDS fill in the well-known ports of the domain. Giving a unicast
    // metatraffic locator keeps discovery from adding its default multicast group.
    auto locator = [](const std::string& ip) {
        Locator_t result;
        result.kind = LOCATOR_KIND_UDPv4;
        IPLocator::setIPv4(result, ip);
        return result;
    };
    auto& builtin = qos.wire_protocol().builtin;
    builtin.initialPeersList.clear();
    // Every host asks the instrument; the instrument's participants find each other
    // there too. Participants on another host also ask their own address, or two engines
    // beside each other there would never meet.
    builtin.initialPeersList.push_back(locator(address.instrument()));
    if (address.own() != address.instrument())
        builtin.initialPeersList.push_back(locator(address.own()));
    builtin.metatrafficUnicastLocatorList.clear();
    builtin.metatrafficUnicastLocatorList.push_back(locator(address.own()));
    qos.wire_protocol().default_unicast_locator_list.clear();
    qos.wire_protocol().default_unicast_locator_list.push_back(locator(address.own()));
    return qos;
}

DDS_Context& DDS_BaseObj::DdsBase()
{
    std::lock_guard<std::mutex> lock(contextMutex);
    if (contextMade)
        return context;
    contextMade = true;
    if (environmentFlag("ORVANTH_DDS_DISABLE")) {
        std::cerr << "Orvanth DDS - disabled by ORVANTH_DDS_DISABLE" << std::endl;
        return context;
    }
    if (!domainFromEnvironment(&context.domainId))
        return context;
    context.participant = createParticipant(context.domainId);
    if (!context.participant)
        std::cerr << "Orvanth DDS - no participant for domain " << context.domainId
                  << "; DDS is not running" << std::endl;
    return context;
}

eprosima::fastdds::dds::Topic* DDS_BaseObj::findOrCreateTopic(DomainParticipant* participant,
                                                              const std::string& name, const std::string& typeName)
{
    // Looking first keeps create_topic from logging an error for a topic that exists.
    // Subscribers set up on threads of their own: two of one topic would both find
    // nothing and the second create would fail, so finding and creating go together.
    static std::mutex topicMutex;
    std::lock_guard<std::mutex> lock(topicMutex);
    if (eprosima::fastdds::dds::Topic* found = participant->find_topic(name, eprosima::fastrtps::Duration_t(0, 0)))
        return found;
    return participant->create_topic(name, typeName, eprosima::fastdds::dds::TOPIC_QOS_DEFAULT, nullptr,
                                     eprosima::fastdds::dds::StatusMask::all());
}

void DDS_BaseObj::shutdownDds()
{
    std::lock_guard<std::mutex> lock(contextMutex);
    contextMade = true;
    if (!context.participant)
        return;
    context.participant->delete_contained_entities();
    DomainParticipantFactory::get_instance()->delete_participant(context.participant);
    context.participant = nullptr;
}

} // namespace Orvanth
