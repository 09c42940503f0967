// Nothing of ours listens beyond 127.0.0.1: the sockets of this process (ORB and DDS),
// of an engine process and of omniNames, read from /proc while all of them are up.

#include "ChildProcess.h"
#include "NamingServiceProcess.h"

#include "DDS_BaseObj.h"
#include "ORB_wrapper_base.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QtTest>

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

struct Endpoint
{
    QString table;
    QString localAddress;
    QString inode;
};

// Every socket in /proc/net/{tcp,udp,tcp6,udp6}; for TCP only those listening (state 0A).
QList<Endpoint> boundSockets()
{
    QList<Endpoint> endpoints;
    for (const QString& table : {QStringLiteral("tcp"), QStringLiteral("udp"), QStringLiteral("tcp6"),
                                 QStringLiteral("udp6")}) {
        QFile file(QStringLiteral("/proc/net/") + table);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        file.readLine(); // header
        while (!file.atEnd()) {
            const QStringList fields = QString::fromLatin1(file.readLine()).simplified().split(QLatin1Char(' '));
            if (fields.size() < 10)
                continue;
            if (table.startsWith(QLatin1String("tcp")) && fields.at(3) != QLatin1String("0A"))
                continue;
            endpoints.append({table, fields.at(1).section(QLatin1Char(':'), 0, 0), fields.at(9)});
        }
    }
    return endpoints;
}

} // namespace

class TestLoopbackOnly : public QObject
{
    Q_OBJECT

private slots:
    void everySocketIsOnLoopback();
};

void TestLoopbackOnly::everySocketIsOnLoopback()
{
    NamingServiceProcess naming;
    QVERIFY(naming.start());
    ORB_wrapper_base orb(naming.orbOptions());
    orb.rootPoa(); // opens this process's listening endpoint
    QVERIFY(Orvanth::DDS_BaseObj::DdsBase().participant);

    // omniORB would add an endpoint of its environment to ours; the engine layer takes it out.
    QProcessEnvironment environment = naming.childEnvironment();
    environment.insert(QStringLiteral("ORBendPoint"), QStringLiteral("giop:tcp:0.0.0.0:"));
    ChildProcess engine;
    QVERIFY(engine.start(QStringLiteral(TZ_TEST_ENGINE), {"--bind", "Test/Loopback", "--publish-samples"},
                         environment));

    QSet<QString> ours = socketInodes(QCoreApplication::applicationPid());
    ours.unite(socketInodes(engine.pid()));
    ours.unite(socketInodes(naming.pid()));

    QMap<QString, int> checked;
    // 0100007F is 127.0.0.1 as /proc/net/tcp and udp write it.
    for (const Endpoint& endpoint : boundSockets()) {
        if (!ours.contains(endpoint.inode))
            continue;
        ++checked[endpoint.table];
        QVERIFY2(endpoint.table == QLatin1String("tcp") || endpoint.table == QLatin1String("udp"),
                 qPrintable(endpoint.table + QLatin1String(" socket ") + endpoint.localAddress));
        QCOMPARE(endpoint.localAddress, QStringLiteral("0100007F"));
    }
    // omniNames and two ORB endpoints; the DDS ports of two participants.
    QVERIFY2(checked.value(QStringLiteral("tcp")) >= 3, qPrintable(QString::number(checked.value("tcp"))));
    QVERIFY2(checked.value(QStringLiteral("udp")) >= 4, qPrintable(QString::number(checked.value("udp"))));

    QCOMPARE(engine.stop(), 0);
    ORB_base::destroyProcessOrb();
    Orvanth::DDS_BaseObj::shutdownDds();
}

QTEST_GUILESS_MAIN(TestLoopbackOnly)
#include "tst_loopbackonly.moc"
