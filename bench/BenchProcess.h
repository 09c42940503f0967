#ifndef BENCHPROCESS_H
#define BENCHPROCESS_H

#include <QByteArray>
#include <QtGlobal>

class QProcess;

/**
 * What the benchmarks need of the processes they start: a free loopback port, waiting
 * (bounded) for a port or a line of output, and stopping a process by its PID.
 */
class BenchProcess
{
public:
    /// A free TCP port on 127.0.0.1 at the time of the call; 0 when there is none.
    static quint16 freeLoopbackPort();
    /// Whether something accepts connections on 127.0.0.1:\a port within \a timeoutMs.
    static bool waitForPort(quint16 port, int timeoutMs);
    /// Whether \a process writes \a text (on standard output, or on standard error when
    /// that is not forwarded) within \a timeoutMs; what it wrote is added to \a output.
    static bool waitForLine(QProcess& process, const QByteArray& text, int timeoutMs, QByteArray* output = nullptr);
    /// Terminates \a process, and kills it when it does not end within ten seconds.
    static void stop(QProcess& process);
};

#endif
