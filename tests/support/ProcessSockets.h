#ifndef PROCESSSOCKETS_H
#define PROCESSSOCKETS_H

#include <QList>
#include <QString>
#include <QStringList>

/**
 * The sockets a process listens on (TCP) or has bound (UDP), read from /proc as the
 * process sees its network namespace: the tables of /proc/PID/net matched with the
 * socket inodes among its open files.
 */
class ProcessSockets
{
public:
    struct Socket
    {
        /// "tcp", "udp", "tcp6" or "udp6"
        QString table;
        /// Dotted for IPv4 ("127.0.0.1"), the table's hexadecimal text for IPv6.
        QString address;
        quint16 port;
    };

    static QList<Socket> of(qint64 pid);
    /// The bytes waiting in the receive queues of the process's TCP connections: for a
    /// stopped process, the requests sent to it that it has not read.
    static int unreadBytes(qint64 pid);
    /// The process's established TCP connections.
    static int connections(qint64 pid);
    /// The multicast groups joined in the network namespace of \a pid (this process's
    /// when 0), one "DEVICE GROUP USERS" each (IPv4 dotted, IPv6 as the table's hexadecimal
    /// text), from /proc/PID/net/igmp and igmp6.
    static QStringList multicastGroups(qint64 pid = 0);
    /// Whether \a group (as above) is one the kernel joins for every interface: all-hosts
    /// (224.0.0.1, ff01::1, ff02::1) and IPv6 solicited-node (ff02::1:ffXX:XXXX).
    static bool kernelGroup(const QString& group);
    /// "udp 127.0.0.1:7410" for a failure message.
    static QString describe(const Socket& s) { return QStringLiteral("%1 %2:%3").arg(s.table, s.address).arg(s.port); }
};

#endif
