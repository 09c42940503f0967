#ifndef SAMPLECOLLECTOR_H
#define SAMPLECOLLECTOR_H

#include <QElapsedTimer>
#include <QThread>

#include <algorithm>
#include <mutex>
#include <vector>

/**
 * Keeps what subscriber callbacks hand over on any thread for the test thread to look
 * at: each value with the thread it came on and when, in milliseconds since the
 * collector was made.
 */
template <class Value>
class SampleCollector
{
public:
    struct Delivery { Value value; Qt::HANDLE thread; qint64 atMs; };

    SampleCollector() { m_clock.start(); }

    void add(const Value& value)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_deliveries.push_back({value, QThread::currentThreadId(), m_clock.elapsed()});
    }

    std::vector<Delivery> deliveries() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_deliveries;
    }

    std::vector<Value> values() const
    {
        std::vector<Value> all;
        for (const Delivery& delivery : deliveries())
            all.push_back(delivery.value);
        return all;
    }

    int size() const { return int(deliveries().size()); }
    bool contains(const Value& value) const { return anyDelivery([&](const Delivery& d) { return d.value == value; }); }
    /// Whether a value came on the thread that made the collector, the test's own.
    bool anyOnTestThread() const { return anyDelivery([this](const Delivery& d) { return d.thread == m_testThread; }); }
    qint64 elapsedMs() const { return m_clock.elapsed(); }

private:
    template <class Test>
    bool anyDelivery(const Test& test) const
    {
        const std::vector<Delivery> all = deliveries();
        return std::any_of(all.begin(), all.end(), test);
    }

    QElapsedTimer m_clock;
    const Qt::HANDLE m_testThread = QThread::currentThreadId();
    mutable std::mutex m_mutex;
    std::vector<Delivery> m_deliveries;
};

#endif
