#ifndef NETWORKNAMESPACES_H
#define NETWORKNAMESPACES_H

#include <QStringList>

/**
 * Two network namespaces standing for the instrument and an engine host, for one test or
 * benchmark: joined by a veth pair whose private addresses (10.251.0.1 and 10.251.0.2 of
 * a /30) exist only inside them, loopback up in each and IPv6 off, so that the kernel
 * sends none of its own multicast (router solicitations, listener reports) over the link.
 *
 * The names carry the process's PID. When the object goes, the processes still inside are
 * ended by PID and the namespaces deleted by name, which takes the veth pair with them.
 * Should the process die first, the processes end with it (wrapperArguments()), and the
 * next create() removes the namespaces of runs whose PID is gone. Needs root.
 */
class NetworkNamespaces
{
public:
    enum Side { Instrument, Engine };

    NetworkNamespaces();
    ~NetworkNamespaces() { remove(); }

    NetworkNamespaces(const NetworkNamespaces&) = delete;
    NetworkNamespaces& operator=(const NetworkNamespaces&) = delete;

    /// Makes both namespaces and the link; false with \a why when they cannot be made.
    bool create(QString* why);
    /// Ends the processes inside (but this one) and deletes both namespaces.
    void remove();

    QString name(Side side) const { return (side == Instrument ? "tz-instrument-" : "tz-engine-") + m_suffix; }
    /// The side's address on the link.
    QString address(Side side) const { return side == Instrument ? "10.251.0.1" : "10.251.0.2"; }
    /// The side's end of the veth pair (interface names have at most 15 characters).
    QString link(Side side) const { return (side == Instrument ? "tzi" : "tze") + m_suffix; }

    /// Sets the side's end of the link up or down.
    bool setLinkUp(Side side, bool up, QString* why = nullptr);
    /// Waits (bounded) until both ends of the link run.
    bool waitUntilRunning(QString* why = nullptr);
    /// Moves the calling thread into the side's namespace; threads it starts afterwards
    /// are made there too.
    bool enter(Side side, QString* why) const;

    /// The program and arguments that run \a program inside the side's namespace, ended
    /// by the kernel should this process die first; the PID is \a program's own.
    QString wrapperProgram() const;
    QStringList wrapperArguments(Side side, const QString& program, const QStringList& arguments) const;

private:
    static bool ip(const QStringList& arguments, QString* why, QString* output = nullptr);
    static void removeNamespace(const QString& name);

    QString m_suffix;
    bool m_created = false;
};

#endif
