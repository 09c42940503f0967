#ifndef QUEUEDSIGNALSPY_H
#define QUEUEDSIGNALSPY_H

#include <QList>
#include <QObject>
#include <QVariant>
#include <QtTest/QTest>

#include <type_traits>

/**
 * A signal spy for signals emitted on other threads (DDS delivery, ORB, pool threads).
 * QSignalSpy records on the emitting thread while the test reads its list on its own;
 * this one receives each emission through a queued connection, so its list is written
 * and read in the thread that made it only. Reads like a QSignalSpy: one list of
 * arguments per emission.
 */
class QueuedSignalSpy : public QObject, public QList<QList<QVariant>>
{
public:
    template <class Sender, class... Args>
    QueuedSignalSpy(const Sender* sender, void (Sender::*signal)(Args...))
    {
        connect(sender, signal, this, [this](Args... arguments) {
            append(QList<QVariant>{QVariant::fromValue(std::decay_t<Args>(arguments))...});
        }, Qt::QueuedConnection);
    }

    /// Processes events until one more emission has arrived or \a timeoutMs has passed.
    bool wait(int timeoutMs = 5000)
    {
        const int before = size();
        return QTest::qWaitFor([&] { return size() > before; }, timeoutMs);
    }
};

#endif
