// Nothing of ours listens beyond 127.0.0.1: the sockets of this process (ORB and DDS),
// of an engine process and of omniNames, read from /proc while all of them are up.

#include "ChildProcess.h"
#include "NamingServiceProcess.h"
#include "ProcessSockets.h"

#include "DDS_BaseObj.h"
#include "ORB_wrapper_base.h"

#include <QtTest>

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

    // omniORB would add endpoints of its environment and of its configuration file to
    // ours; the engine layer takes them out.
    QTemporaryDir directory;
    QFile configuration(directory.filePath(QStringLiteral("omniORB.cfg")));
    QVERIFY(configuration.open(QIODevice::WriteOnly));
    configuration.write("# an installation's own settings\ntraceLevel = 0\nendPoint = giop:tcp:0.0.0.0:\n"
                        "         = giop:tcp:0.0.0.0:0\n");
    configuration.close();
    QProcessEnvironment environment = naming.childEnvironment();
    environment.insert(QStringLiteral("ORBendPoint"), QStringLiteral("giop:tcp:0.0.0.0:"));
    environment.insert(QStringLiteral("OMNIORB_CONFIG"), configuration.fileName());
    ChildProcess engine;
    QVERIFY(engine.start(QStringLiteral(TZ_TEST_ENGINE), {"--bind", "Test/Loopback", "--publish-samples"},
                         environment));

    QMap<QString, int> checked;
    for (const qint64 pid : {QCoreApplication::applicationPid(), engine.pid(), naming.pid()}) {
        for (const ProcessSockets::Socket& socket : ProcessSockets::of(pid)) {
            ++checked[socket.table];
            QVERIFY2(socket.address == QLatin1String("127.0.0.1")
                         && (socket.table == QLatin1String("tcp") || socket.table == QLatin1String("udp")),
                     qPrintable(ProcessSockets::describe(socket)));
        }
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
