// The demo host as a program: started offscreen with options, it builds the registry
// and the desktop, then closes itself and ends cleanly.

#include "NamingServiceProcess.h"

#include <QProcess>
#include <QtTest>

class TestDemoHost : public QObject
{
    Q_OBJECT

private slots:
    void buildsDesktopAndQuitsOnClose_data();
    void buildsDesktopAndQuitsOnClose();
    void diagnosticsStayOffWithoutDebug();
    void servesRemoteGuiWhenGivenNamingService();

private:
    // Runs the host until it ends by itself; returns its exit code (-1 when it had to be
    // killed or crashed) and its standard error.
    static int run(const QStringList& arguments, QString* errorOutput);
};

int TestDemoHost::run(const QStringList& arguments, QString* errorOutput)
{
    QProcess host;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    // The host must start without any naming service configured.
    environment.remove(QStringLiteral("ORBInitRef"));
    host.setProcessEnvironment(environment);
    host.start(QStringLiteral(TZ_DEMO_HOST), arguments);
    if (!host.waitForFinished(20000)) {
        host.kill();
        host.waitForFinished(5000);
        return -1;
    }
    *errorOutput = QString::fromLocal8Bit(host.readAllStandardError());
    return host.exitStatus() == QProcess::NormalExit ? host.exitCode() : -1;
}

void TestDemoHost::buildsDesktopAndQuitsOnClose_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("expectedLines");

    QTest::newRow("landscape grid")
        << QStringList{"-res", "800x480", "-grid", "2x4"}
        << QStringList{"UserInterface - Demo host - option \"-res\" \"800x480\"",
                       "UserInterface - Demo host - option \"-systype\" \"benchtop\"",
                       "UserInterface - Demo host - desktop QSize(800, 480) snap points 8"};
    QTest::newRow("portrait handheld")
        << QStringList{"-res", "480x800", "-grid", "3x2", "-systype", "handheld"}
        << QStringList{"UserInterface - Demo host - option \"-systype\" \"handheld\"",
                       "UserInterface - Demo host - desktop QSize(480, 800) snap points 6"};
    QTest::newRow("malformed options behave as absent")
        << QStringList{"-res", "800by480", "-grid", "2x4"}
        << QStringList{"UserInterface - ApplicationOptions - ignoring malformed option \"-res\" \"800by480\"",
                       "UserInterface - Demo host - desktop QSize(800, 480) snap points 0"};
    // Nothing listens there: the host must not need a naming service to start.
    const QString initRef = QStringLiteral("NameService=corbaname::127.0.0.1:%1")
                                .arg(NamingServiceProcess::freeLoopbackPort());
    QTest::newRow("ORB reference passed through")
        << QStringList{"-ORBInitRef", initRef, "-fullscreen"}
        << QStringList{QStringLiteral("UserInterface - Demo host - option \"-ORBInitRef\" \"%1\"").arg(initRef),
                       "UserInterface - Demo host - option \"-fullscreen\" \"true\""};
}

void TestDemoHost::buildsDesktopAndQuitsOnClose()
{
    QFETCH(QStringList, arguments);
    QFETCH(QStringList, expectedLines);

    QString errorOutput;
    QCOMPARE(run(arguments + QStringList{"-debug", "-quit-after", "50"}, &errorOutput), 0);
    const QStringList lines = errorOutput.split(QLatin1Char('\n'));
    const QStringList always{"UserInterface - Global::Global", "UserInterface - ThreadPool count after setting: 8",
                             "DesktopManager::DesktopManager", "UserInterface - Demo host - exit 0"};
    for (const QString& expected : always + expectedLines)
        QVERIFY2(lines.contains(expected), qPrintable(expected + QStringLiteral("\n--- got:\n") + errorOutput));
    // Closing takes the one registry away; nothing builds a second one on the way out.
    QCOMPARE(lines.count(QStringLiteral("UserInterface - Global::Global")), 1);
}

void TestDemoHost::diagnosticsStayOffWithoutDebug()
{
    QString errorOutput;
    QCOMPARE(run({"-res", "800x480", "-grid", "zero", "-quit-after", "50"}, &errorOutput), 0);
    // Option problems are reported before the output switch takes over; nothing after.
    QVERIFY2(errorOutput.contains(QStringLiteral("UserInterface - ApplicationOptions - ignoring malformed option \"-grid\" \"zero\"")),
             qPrintable(errorOutput));
    QVERIFY(!errorOutput.contains(QStringLiteral("UserInterface - Global::Global")));
    QVERIFY(!errorOutput.contains(QStringLiteral("Demo host - exit")));
}

void TestDemoHost::servesRemoteGuiWhenGivenNamingService()
{
    NamingServiceProcess naming;
    QVERIFY(naming.start());
    QProcess host;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    host.setProcessEnvironment(environment);
    host.setProcessChannelMode(QProcess::ForwardedChannels);
    host.start(QStringLiteral(TZ_DEMO_HOST), naming.orbArguments() + QStringList{"-res", "800x480", "-quit-after", "20000"});
    QVERIFY(host.waitForStarted());

    // The demo's screens, as an engine lists them once the host has bound the service.
    QStringList screens;
    QDeadlineTimer deadline(15000);
    while (!screens.contains(QStringLiteral("Power Meter")) && !deadline.hasExpired()) {
        QProcess client;
        client.start(QStringLiteral(TZ_GUI_CLIENT), naming.orbArguments() + QStringList{"--screens"});
        client.waitForFinished(5000);
        screens = QString::fromUtf8(client.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        if (!screens.contains(QStringLiteral("Power Meter")))
            QTest::qWait(100);
    }
    QVERIFY2(screens.contains(QStringLiteral("Power Meter")) && screens.contains(QStringLiteral("Notes")),
             qPrintable(screens.join(", ")));
    QProcess client;
    client.start(QStringLiteral(TZ_GUI_CLIENT), naming.orbArguments() + QStringList{"--dcs"});
    QVERIFY(client.waitForFinished(5000));
    QCOMPARE(client.exitCode(), 0);

    host.terminate();
    host.close();
}

QTEST_GUILESS_MAIN(TestDemoHost)
#include "tst_demohost.moc"
