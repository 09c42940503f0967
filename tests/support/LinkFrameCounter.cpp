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
    const QByteArray name = interfaceName.toLocal8Bit();
    const unsigned index = ::if_nametoindex(name.constData());
    if (index == 0) {
        m_error = QStringLiteral("no interface %1: %2").arg(interfaceName, QString::fromLocal8Bit(strerror(errno)));
        return;
    }
    m_socket = ::socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, htons(ETH_P_ALL));
    sockaddr_ll address{};
    address.sll_family = AF_PACKET;
    address.sll_protocol = htons(ETH_P_ALL);
    address.sll_ifindex = int(index);
    if (m_socket < 0 || ::bind(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        m_error = QStringLiteral("no packet socket on %1: %2").arg(interfaceName, QString::fromLocal8Bit(strerror(errno)));
        if (m_socket >= 0)
            ::close(m_socket);
        m_socket = -1;
        return;
    }
    m_reader = std::thread([this] { read(); });
}

LinkFrameCounter::~LinkFrameCounter()
{
    m_stopping = true;
    if (m_reader.joinable())
        m_reader.join();
    if (m_socket >= 0)
        ::close(m_socket);
}

QStringList LinkFrameCounter::multicastSamples() const
{
    QMutexLocker lock(&m_mutex);
    return m_samples;
}

void LinkFrameCounter::read()
{
    unsigned char frame[2048];
    pollfd waiting{m_socket, POLLIN, 0};
    // Wakes up every 100 ms to see whether it is to stop.
    while (!m_stopping) {
        if (::poll(&waiting, 1, 100) <= 0)
            continue;
        const ssize_t length = ::recv(m_socket, frame, sizeof frame, MSG_DONTWAIT);
        if (length >= ETH_HLEN)
            count(frame, long(length));
    }
}

void LinkFrameCounter::count(const unsigned char* frame, long length)
{
    ++m_frames;
    const bool broadcast = std::all_of(frame, frame + ETH_ALEN, [](unsigned char octet) { return octet == 0xff; });
    if (broadcast) {
        ++m_broadcast;
        return;
    }
    const quint16 type = quint16(frame[12] << 8 | frame[13]);
    // The group bit of the destination, or an IPv4 packet to a group (224.0.0.0/4).
    const bool groupFrame = frame[0] & 0x01;
    const bool groupPacket = type == ETH_P_IP && length >= ETH_HLEN + 20 && (frame[ETH_HLEN + 16] & 0xf0) == 0xe0;
    if (!groupFrame && !groupPacket)
        return;
    ++m_multicast;
    QMutexLocker lock(&m_mutex);
    if (m_samples.size() < 5) {
        QString destination;
        for (int i = 0; i < ETH_ALEN; ++i)
            destination += QStringLiteral("%1%2").arg(i ? ":" : "").arg(frame[i], 2, 16, QLatin1Char('0'));
        m_samples << QStringLiteral("to %1, type 0x%2, %3 bytes").arg(destination).arg(type, 4, 16, QLatin1Char('0')).arg(length);
    }
}
