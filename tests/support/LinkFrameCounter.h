#ifndef LINKFRAMECOUNTER_H
#define LINKFRAMECOUNTER_H

#include <QStringList>

#include <atomic>
#include <mutex>
#include <thread>

/**
 * Counts the Ethernet frames that cross one network interface, both ways, through a raw
 * packet socket made in the calling thread's network namespace (needs CAP_NET_RAW).
 * Frames to a group address are multicast; broadcast is not, as ARP asks that way on
 * every link. The first few multicast frames are described for a failure message.
 */
class LinkFrameCounter
{
public:
    explicit LinkFrameCounter(const QString& interfaceName);
    ~LinkFrameCounter();

    /// Whether it counts; error() says why not.
    bool isCounting() const { return m_socket >= 0; }
    QString error() const { return m_error; }

    int frames() const { return m_frames; }
    int multicastFrames() const { return m_multicast; }
    QStringList multicastSamples() const { return std::lock_guard<std::mutex>(m_mutex), m_samples; }

private:
    void count(const unsigned char* frame, long length);

    int m_socket = -1;
    QString m_error;
    std::atomic<bool> m_stopping{false};
    std::atomic<int> m_frames{0};
    std::atomic<int> m_multicast{0};
    mutable std::mutex m_mutex;
    QStringList m_samples;
    std::thread m_reader;
};

#endif
