#ifndef ORVANTH_HOSTADDRESS_H
#define ORVANTH_HOSTADDRESS_H

#include <string>
#include <vector>

/**
 * Where this process is reached and where the instrument is, for the ORB and DDS alike.
 *
 * Without ORVANTH_INSTRUMENT_HOST both are 127.0.0.1 and nothing leaves the host. With it
 * (the instrument's IPv4 address, the same value on every host) the instrument is that
 * address, and the process's own address is the one the kernel sends from towards it:
 * the instrument's address on the instrument itself, the address of the route towards it
 * elsewhere. ORVANTH_HOST_ADDRESS names the own address instead, for a host with several
 * routes. A value that cannot be used is reported and left aside: a bad own address for
 * the route's choice, a bad instrument address for loopback, never a crash.
 */
class HostAddress
{
public:
    /// The naming service's port on the instrument.
    static constexpr int NamingServicePort = 2809;

    /// Works the addresses out from the two values (null or empty: unset), sending
    /// nothing; \a problems receives a line for each value that was not taken.
    static HostAddress fromValues(const char* instrumentHost, const char* hostAddress,
                                  std::vector<std::string>* problems);

    /// The process's addresses from ORVANTH_INSTRUMENT_HOST and ORVANTH_HOST_ADDRESS,
    /// worked out once; the first call reports through ORB_base::report what was not
    /// taken and, off loopback, the addresses chosen.
    static const HostAddress& process();

    /// Whether the process talks to other hosts (ORVANTH_INSTRUMENT_HOST was taken).
    bool isRemote() const { return m_remote; }
    /// The address everything of this process listens on and hands out.
    const std::string& own() const { return m_own; }
    /// The instrument's address: its naming service and the DDS peer every host asks.
    const std::string& instrument() const { return m_instrument; }
    /// "corbaname::INSTRUMENT:2809"
    std::string namingService() const;

    /// The local IPv4 address the kernel would send from towards \a address: a UDP socket
    /// connected there, which sends nothing. Empty, with \a error saying why, when there
    /// is no route.
    static std::string sourceAddressTowards(const std::string& address, std::string* error);
    /// Whether \a address is an IPv4 address assigned to this host (it can be bound).
    static bool isLocalAddress(const std::string& address, std::string* error);
    /// Whether \a text is the dotted IPv4 address of a host (not any, broadcast or a
    /// multicast group); names are not taken, as looking one up would ask a name server.
    static bool isIPv4Address(const std::string& text);

private:
    HostAddress();

    bool m_remote = false;
    std::string m_own;
    std::string m_instrument;
};

#endif
