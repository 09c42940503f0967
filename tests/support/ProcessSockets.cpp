#include "ProcessSockets.h"

#include <QDir>
#include <QFile>
#include <QSet>

#include <unistd.h>

namespace {

// The socket inodes a process holds open: /proc/PID/fd/N links to "socket:[INODE]".
QSet<QString> socketInodes(qint64 pid)
{
    QSet<QString> inodes;
    const QDir fds(QStringLiteral("/proc/%1/fd").arg(pid));
    for (const QString& fd : fds.entryList(QDir::NoDotAndDotDot | QDir::System | QDir::Files)) {
        const QByteArray path = QFile::encodeName(fds.filePath(fd));
        char target[128] = {};
        const ssize_t length = readlink(path.constData(), target, sizeof target - 1);
        const QString text = QString::fromLatin1(target, length > 0 ? int(length) : 0);
        if (text.startsWith(QLatin1String("socket:[")))
            inodes.insert(text.mid(8, text.size() - 9));
    }
    return inodes;
}

// The kernel writes an IPv4 address as the hexadecimal of its 32 bits in host order:
// "0100007F" is 127.0.0.1 on a little-endian machine.
QString dottedAddress(const QString& hex)
{
    if (hex.size() != 8)
        return hex;
    const quint32 value = hex.toUInt(nullptr, 16);
    const auto* bytes = reinterpret_cast<const unsigned char*>(&value);
    return QStringLiteral("%1.%2.%3.%4").arg(bytes[0]).arg(bytes[1]).arg(bytes[2]).arg(bytes[3]);
}

} // namespace

QList<ProcessSockets::Socket> ProcessSockets::of(qint64 pid)
{
    const QSet<QString> inodes = socketInodes(pid);
    QList<Socket> sockets;
    for (const QString& table : {QStringLiteral("tcp"), QStringLiteral("udp"), QStringLiteral("tcp6"),
                                 QStringLiteral("udp6")}) {
        QFile file(QStringLiteral("/proc/%1/net/%2").arg(pid).arg(table));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        file.readLine(); // header
        while (!file.atEnd()) {
            const QStringList fields = QString::fromLatin1(file.readLine()).simplified().split(QLatin1Char(' '));
            if (fields.size() < 10 || !inodes.contains(fields.at(9)))
                continue;
            // TCP: only the listening sockets (state 0A); a connection is on its listener's address.
            if (table.startsWith(QLatin1String("tcp")) && fields.at(3) != QLatin1String("0A"))
                continue;
            const QString local = fields.at(1);
            sockets.append({table, dottedAddress(local.section(QLatin1Char(':'), 0, 0)),
                            quint16(local.section(QLatin1Char(':'), 1, 1).toUInt(nullptr, 16))});
        }
    }
    return sockets;
}

QString ProcessSockets::describe(const Socket& socket)
{
    return QStringLiteral("%1 %2:%3").arg(socket.table, socket.address).arg(socket.port);
}
