#include "EventHandOff.h"

#include <QElapsedTimer>
#include <QMetaObject>
#include <QMutexLocker>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <iterator>
#include <utility>

EventHandOff::EventHandOff(Sink sink, QObject* parent)
    : QObject(parent), m_sink(std::move(sink)), m_nextSlice(new QTimer(this))
{
    m_nextSlice->setSingleShot(true);
    m_nextSlice->setInterval(0);
    connect(m_nextSlice, &QTimer::timeout, this, &EventHandOff::drain);
}

void EventHandOff::push(Message message)
{
    if (QThread::currentThread() == thread()) {
        drainAll();
        m_sink(message);
        return;
    }
    QMutexLocker lock(&m_mutex);
    m_queue.push_back(std::move(message));
    if (m_woken)
        return;
    m_woken = true;
    lock.unlock();
    QMetaObject::invokeMethod(this, &EventHandOff::drain, Qt::QueuedConnection);
}

int EventHandOff::pending() const
{
    QMutexLocker lock(&m_mutex);
    return int(m_queue.size());
}

void EventHandOff::drain()
{
    QElapsedTimer slice;
    slice.start();
    std::deque<Message> taken;
    for (;;) {
        {
            QMutexLocker lock(&m_mutex);
            if (m_queue.empty()) {
                m_woken = false;
                return;
            }
            // A slice's worth at most: what is left stays queued, in order, for the next.
            const std::size_t count = std::min<std::size_t>(m_queue.size(), 256);
            std::move(m_queue.begin(), m_queue.begin() + count, std::back_inserter(taken));
            m_queue.erase(m_queue.begin(), m_queue.begin() + count);
        }
        for (const Message& message : taken)
            m_sink(message);
        taken.clear();
        if (slice.elapsed() >= SliceMs)
            break;
    }
    // The rest comes after the timers and paints that are due: a zero timer waits its
    // turn behind them, where a posted call (QTimer::singleShot(0) is one) would run in
    // this same pass of the event queue, which a steady stream never lets end.
    m_nextSlice->start();
}

void EventHandOff::drainAll()
{
    std::deque<Message> taken;
    {
        QMutexLocker lock(&m_mutex);
        taken.swap(m_queue);
    }
    for (const Message& message : taken)
        m_sink(message);
}
