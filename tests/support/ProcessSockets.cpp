#include "ProcessSockets.h"

#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QSet>
#include <QtEndian>

#include <algorithm>

namespace {

// The kernel writes an IPv4 address as the hexadecimal of its 32 bits in host order:
// "0100007F" is 127.0.0.1 on a little-endian machine.
QString ipv4(const QString& hex)
{
    return QHostAddress(qFromBigEndian(hex.toUInt(nullptr, 16))).toString();
}

// The rows of the process's socket tables whose socket it holds open (all rows with
// \a everyRow), split in fields, the table's name first.
QList<QStringList> socketRows(qint64 pid, const QStringList& tables, bool everyRow = false)
{
    // The socket inodes a process holds open: /proc/PID/fd/N links to "socket:[INODE]".
    QSet<QString> inodes;
    const QDir fds(QStringLiteral("/proc/%1/fd").arg(pid));
    for (const QString& fd : fds.entryList(QDir::NoDotAndDotDot | QDir::System | QDir::Files)) {
        const QString target = QFile::symLinkTarget(fds.filePath(fd)).section(QLatin1Char('/'), -1);
        if (target.startsWith(QLatin1String("socket:[")))
            inodes.insert(target.mid(8, target.size() - 9));
    }
    QList<QStringList> rows;
    for (const QString& table : tables) {
        QFile file(QStringLiteral("/proc/%1/net/%2").arg(pid).arg(table));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        file.readLine(); // header
        while (!file.atEnd()) {
            const QStringList fields = QString::fromLatin1(file.readLine()).simplified().split(QLatin1Char(' '));
            if (fields.size() >= 10 && (everyRow || inodes.contains(fields.at(9))))
                rows.append(QStringList{table} + fields);
        }
    }
    return rows;
}

} // namespace

QList<ProcessSockets::Socket> ProcessSockets::of(qint64 pid)
{
    QList<Socket> sockets;
    for (const QStringList& row : socketRows(pid, {"tcp", "udp", "tcp6", "udp6"})) {
        // TCP: only the listening sockets (state 0A); a connection is on its listener's address.
        if (row.at(0).startsWith(QLatin1Char('t')) && row.at(4) != QLatin1String("0A"))
            continue;
        const QString address = row.at(2).section(QLatin1Char(':'), 0, 0);
        sockets.append({row.at(0), address.size() == 8 ? ipv4(address) : address,
                        quint16(row.at(2).section(QLatin1Char(':'), 1, 1).toUInt(nullptr, 16))});
    }
    return sockets;
}

int ProcessSockets::unreadBytes(qint64 pid)
{
    // A connection the process has not accepted yet is no file of its own: it is found
    // by the port of the listener it waits on.
    QSet<quint16> listening;
    for (const Socket& socket : of(pid))
        listening.insert(socket.port);
    QSet<QString> owned;
    for (const QStringList& row : socketRows(pid, {"tcp", "tcp6"}))
        owned.insert(row.at(10));
    int unread = 0;
    for (const QStringList& row : socketRows(pid, {"tcp", "tcp6"}, true)) {
        const bool waiting = row.at(10) == QLatin1String("0")
            && listening.contains(quint16(row.at(2).section(QLatin1Char(':'), 1, 1).toUInt(nullptr, 16)));
        if (owned.contains(row.at(10)) || waiting)
            unread += row.at(5).section(QLatin1Char(':'), 1, 1).toInt(nullptr, 16); // "tx_queue:rx_queue"
    }
    return unread;
}

int ProcessSockets::connections(qint64 pid)
{
    const QList<QStringList> rows = socketRows(pid, {"tcp", "tcp6"});
    return int(std::count_if(rows.begin(), rows.end(), [](const QStringList& row) { return row.at(4) == QLatin1String("01"); }));
}

QStringList ProcessSockets::multicastGroups(qint64 pid)
{
    const QString net = pid ? QStringLiteral("/proc/%1/net/").arg(pid) : QStringLiteral("/proc/net/");
    QStringList groups;
    // igmp: a "INDEX DEVICE : COUNT QUERIER" line per device, then one "GROUP USERS
    // TIMER REPORTER" line per group, indented.
    QFile igmp(net + QLatin1String("igmp"));
    QString device;
    if (igmp.open(QIODevice::ReadOnly)) {
        igmp.readLine(); // header
        while (!igmp.atEnd()) {
            const QByteArray line = igmp.readLine();
            const QStringList fields = QString::fromLatin1(line).simplified().split(QLatin1Char(' '));
            if (!line.startsWith('\t') && fields.size() > 1)
                device = fields.at(1);
            else if (fields.size() > 1)
                groups.append(QStringLiteral("%1 %2 %3").arg(device, ipv4(fields.at(0)), fields.at(1)));
        }
    }
    // igmp6: "INDEX DEVICE GROUP USERS FLAGS TIMER" per group.
    QFile igmp6(net + QLatin1String("igmp6"));
    if (igmp6.open(QIODevice::ReadOnly)) {
        while (!igmp6.atEnd()) {
            const QStringList fields = QString::fromLatin1(igmp6.readLine()).simplified().split(QLatin1Char(' '));
            if (fields.size() > 3)
                groups.append(fields.mid(1, 3).join(QLatin1Char(' ')));
        }
    }
    return groups;
}

bool ProcessSockets::kernelGroup(const QString& group)
{
    const QString address = group.section(QLatin1Char(' '), 1, 1);
    return address == QLatin1String("224.0.0.1") || address == QLatin1String("ff010000000000000000000000000001")
        || address == QLatin1String("ff020000000000000000000000000001")
        || address.startsWith(QLatin1String("ff0200000000000000000001ff"));
}
