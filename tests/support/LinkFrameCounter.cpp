#include "LinkFrameCounter.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <linux/if_ether.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

LinkFrameCounter::LinkFrameCounter(const QString& interfaceName)
{
    sockaddr_ll address{};
    address.sll_family = AF_PACKET;
    address.sll_protocol = htons(ETH_P_ALL);
    address.sll_ifindex = int(::if_nametoindex(interfaceName.toLocal8Bit().constData()));
    m_socket = address.sll_ifindex ? ::socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, htons(ETH_P_ALL)) : -1;
    if (m_socket < 0 || ::bind(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        m_error = QStringLiteral("no packet socket on %1: %2").arg(interfaceName, QString::fromLocal8Bit(strerror(errno)));
        if (m_socket >= 0)
            ::close(std::exchange(m_socket, -1));
        return;
    }
    m_reader = std::thread([this] {
        unsigned char frame[2048];
        pollfd waiting{m_socket, POLLIN, 0};
        // Wakes up every 100 ms to see whether it is to stop.
        while (!m_stopping) {
            const ssize_t length = ::poll(&waiting, 1, 100) > 0 ? ::recv(m_socket, frame, sizeof frame, MSG_DONTWAIT) : 0;
            if (length >= ETH_HLEN)
                count(frame, long(length));
        }
    });
}

LinkFrameCounter::~LinkFrameCounter()
{
    m_stopping = true;
    if (m_reader.joinable())
        m_reader.join();
    if (m_socket >= 0)
        ::close(m_socket);
}

void LinkFrameCounter::count(const unsigned char* frame, long length)
{
    ++m_frames;
    const quint16 type = quint16(frame[12] << 8 | frame[13]);
    // The group bit of the destination, or an IPv4 packet to a group (224.0.0.0/4).
    const bool broadcast = std::all_of(frame, frame + ETH_ALEN, [](unsigned char octet) { return octet == 0xff; });
    const bool groupPacket = type == ETH_P_IP && length >= ETH_HLEN + 20 && (frame[ETH_HLEN + 16] & 0xf0) == 0xe0;
    if (broadcast || !((frame[0] & 0x01) || groupPacket))
        return;
    ++m_multicast;
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_samples.size() < 5)
        m_samples << QStringLiteral("to %1, type 0x%2, %3 bytes")
                         .arg(QString::fromLatin1(QByteArray(reinterpret_cast<const char*>(frame), ETH_ALEN).toHex(':')))
                         .arg(type, 4, 16, QLatin1Char('0'))
                         .arg(length);
}
