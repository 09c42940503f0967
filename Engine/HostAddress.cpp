#include "HostAddress.h"

#include "ORB_base.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

const char loopback[] = "127.0.0.1";

bool isSet(const char* value)
{
    return value && *value;
}

// A UDP socket, closed when it goes.
class UdpSocket
{
public:
    UdpSocket() : m_fd(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {}
    ~UdpSocket()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;

    int fd() const { return m_fd; }

private:
    int m_fd;
};

sockaddr_in socketAddress(const std::string& address, int port)
{
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_port = htons(std::uint16_t(port));
    ::inet_pton(AF_INET, address.c_str(), &result.sin_addr);
    return result;
}

} // namespace

HostAddress::HostAddress()
    : m_own(loopback)
    , m_instrument(loopback)
{
}

bool HostAddress::isIPv4Address(const std::string& text)
{
    in_addr parsed{};
    if (::inet_pton(AF_INET, text.c_str(), &parsed) != 1)
        return false;
    // Nothing listens on "any", and group or broadcast addresses are no host.
    const std::uint32_t value = ntohl(parsed.s_addr);
    return value != INADDR_ANY && value != INADDR_BROADCAST && !IN_MULTICAST(value);
}

std::string HostAddress::sourceAddressTowards(const std::string& address, std::string* error)
{
    UdpSocket socket;
    // Connecting a UDP socket only looks the route up and fixes the source; no packet leaves.
    const sockaddr_in target = socketAddress(address, NamingServicePort);
    sockaddr_in source{};
    socklen_t length = sizeof source;
    if (socket.fd() < 0 || ::connect(socket.fd(), reinterpret_cast<const sockaddr*>(&target), sizeof target) != 0
        || ::getsockname(socket.fd(), reinterpret_cast<sockaddr*>(&source), &length) != 0) {
        if (error)
            *error = std::strerror(errno);
        return std::string();
    }
    char text[INET_ADDRSTRLEN] = {};
    ::inet_ntop(AF_INET, &source.sin_addr, text, sizeof text);
    return text;
}

bool HostAddress::isLocalAddress(const std::string& address, std::string* error)
{
    UdpSocket socket;
    const sockaddr_in local = socketAddress(address, 0);
    if (socket.fd() < 0 || ::bind(socket.fd(), reinterpret_cast<const sockaddr*>(&local), sizeof local) != 0) {
        if (error)
            *error = std::strerror(errno);
        return false;
    }
    return true;
}

HostAddress HostAddress::fromValues(const char* instrumentHost, const char* hostAddress,
                                    std::vector<std::string>* problems)
{
    auto report = [problems](const std::string& line) {
        if (problems)
            problems->push_back(line);
    };

    HostAddress result;
    if (!isSet(instrumentHost)) {
        if (isSet(hostAddress))
            report(std::string("Orvanth network - ORVANTH_HOST_ADDRESS \"") + hostAddress
                   + "\" ignored without ORVANTH_INSTRUMENT_HOST; staying on 127.0.0.1");
        return result;
    }
    if (!isIPv4Address(instrumentHost)) {
        report(std::string("Orvanth network - ORVANTH_INSTRUMENT_HOST \"") + instrumentHost
               + "\" is not the IPv4 address of a host; staying on 127.0.0.1");
        return result;
    }
    std::string reason;
    const std::string routed = sourceAddressTowards(instrumentHost, &reason);
    if (routed.empty()) {
        report(std::string("Orvanth network - no route to the instrument host ") + instrumentHost + " (" + reason
               + "); staying on 127.0.0.1");
        return result;
    }
    result.m_remote = true;
    result.m_instrument = instrumentHost;
    result.m_own = routed;
    if (isSet(hostAddress)) {
        reason = "not the IPv4 address of a host";
        if (isIPv4Address(hostAddress) && isLocalAddress(hostAddress, &reason))
            result.m_own = hostAddress;
        else
            report(std::string("Orvanth network - ORVANTH_HOST_ADDRESS \"") + hostAddress
                   + "\" is not an address of this host (" + reason + "); using " + routed
                   + ", the source address towards " + instrumentHost);
    }
    return result;
}

const HostAddress& HostAddress::process()
{
    // Worked out once, also when the ORB and DDS start on two threads at once.
    static const HostAddress address = [] {
        std::vector<std::string> problems;
        HostAddress chosen =
            fromValues(std::getenv("ORVANTH_INSTRUMENT_HOST"), std::getenv("ORVANTH_HOST_ADDRESS"), &problems);
        for (const std::string& line : problems)
            ORB_base::report(line);
        if (chosen.isRemote())
            ORB_base::report("Orvanth network - instrument host " + chosen.instrument() + ", own address "
                             + chosen.own());
        return chosen;
    }();
    return address;
}

std::string HostAddress::namingService() const
{
    return "corbaname::" + m_instrument + ":" + std::to_string(NamingServicePort);
}
