#include "ProcessSockets.h"

#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QSet>
#include <QtEndian>

QList<ProcessSockets::Socket> ProcessSockets::of(qint64 pid)
{
    // The socket inodes a process holds open: /proc/PID/fd/N links to "socket:[INODE]".
    QSet<QString> inodes;
    const QDir fds(QStringLiteral("/proc/%1/fd").arg(pid));
    for (const QString& fd : fds.entryList(QDir::NoDotAndDotDot | QDir::System | QDir::Files)) {
        const QString target = QFile::symLinkTarget(fds.filePath(fd)).section(QLatin1Char('/'), -1);
        if (target.startsWith(QLatin1String("socket:[")))
            inodes.insert(target.mid(8, target.size() - 9));
    }
    QList<Socket> sockets;
    for (const char* table : {"tcp", "udp", "tcp6", "udp6"}) {
        QFile file(QStringLiteral("/proc/%1/net/%2").arg(pid).arg(QLatin1String(table)));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        file.readLine(); // header
        while (!file.atEnd()) {
            const QStringList fields = QString::fromLatin1(file.readLine()).simplified().split(QLatin1Char(' '));
            // TCP: only the listening sockets (state 0A); a connection is on its listener's address.
            if (fields.size() < 10 || !inodes.contains(fields.at(9)) || (table[0] == 't' && fields.at(3) != QLatin1String("0A")))
                continue;
            // The kernel writes an IPv4 address as the hexadecimal of its 32 bits in host
            // order: "0100007F" is 127.0.0.1 on a little-endian machine.
            const QString address = fields.at(1).section(QLatin1Char(':'), 0, 0);
            sockets.append({QLatin1String(table),
                            address.size() == 8 ? QHostAddress(qFromBigEndian(address.toUInt(nullptr, 16))).toString()
                                                : address,
                            quint16(fields.at(1).section(QLatin1Char(':'), 1, 1).toUInt(nullptr, 16))});
        }
    }
    return sockets;
}
