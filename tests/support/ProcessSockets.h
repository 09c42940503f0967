#ifndef PROCESSSOCKETS_H
#define PROCESSSOCKETS_H

#include <QList>
#include <QString>

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
    /// "udp 127.0.0.1:7410" for a failure message.
    static QString describe(const Socket& s) { return QStringLiteral("%1 %2:%3").arg(s.table, s.address).arg(s.port); }
};

#endif
