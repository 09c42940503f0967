// The process launcher against real short-lived child programs: the environment they
// get, and how their start, end and failure to start are reported.

#include "LogCapture.h"

#include "ProcessManager.h"

#include <QStandardPaths>
#include <QtTest>

class TestProcessManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void childSeesInstallationEnvironment_data();
    void childSeesInstallationEnvironment();
    void addedVariableReachesOnlyLaterPrograms();
    void reportsEachEndWithItsOwnCommandCodeAndStatus();
    void unstartableCommandIsLoggedAndLauncherCarriesOn();

private:
    // Starts `env` through the launcher and returns its variables once it has ended.
    QHash<QString, QString> childEnvironment(ProcessManager& manager);

    QString m_env;
    QString m_shell;
};

void TestProcessManager::initTestCase()
{
    m_env = QStandardPaths::findExecutable(QStringLiteral("env"));
    m_shell = QStandardPaths::findExecutable(QStringLiteral("sh"));
    QVERIFY(!m_env.isEmpty() && !m_shell.isEmpty());
}

QHash<QString, QString> TestProcessManager::childEnvironment(ProcessManager& manager)
{
    QSignalSpy finished(&manager, &ProcessManager::finished);
    manager.startProcess(m_env);
    // The launcher keeps the child's output to itself; read it from its process object.
    const QList<QProcess*> children = manager.findChildren<QProcess*>();
    if (children.isEmpty())
        return {};
    // Ended programs' objects may still wait for deletion: the newest comes last.
    QProcess* child = children.last();
    QByteArray output;
    connect(child, &QProcess::readyReadStandardOutput, this, [&output, child] { output += child->readAllStandardOutput(); });
    if (!finished.wait(10000))
        return {};
    QHash<QString, QString> variables;
    for (const QByteArray& line : output.split('\n')) {
        const int equals = line.indexOf('=');
        if (equals > 0)
            variables.insert(QString::fromUtf8(line.left(equals)), QString::fromUtf8(line.mid(equals + 1)));
    }
    return variables;
}

void TestProcessManager::childSeesInstallationEnvironment_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QString>("childPath");
    QTest::newRow("PATH extended") << QByteArray("/usr/bin:/bin") << "/usr/bin:/bin:/space/tz/target/X86/UI";
    QTest::newRow("PATH unset") << QByteArray() << ":/space/tz/target/X86/UI";
}

void TestProcessManager::childSeesInstallationEnvironment()
{
    QFETCH(QByteArray, path);
    QFETCH(QString, childPath);

    const QByteArray ownPath = qgetenv("PATH");
    const QString marker = QStringLiteral("Pr\u00fcfung \u6e2c\u8a66");
    path.isEmpty() ? qunsetenv("PATH") : qputenv("PATH", path);
    qputenv("LD_LIBRARY_PATH", "/usr/lib/elsewhere");
    qputenv("TZ_TEST_MARKER", marker.toUtf8());
    ProcessManager manager(nullptr);
    qputenv("PATH", ownPath);
    qunsetenv("LD_LIBRARY_PATH");
    // The environment is taken when the launcher is built, not when a program starts.
    qunsetenv("TZ_TEST_MARKER");

    const QHash<QString, QString> variables = childEnvironment(manager);
    QCOMPARE(variables.value(QStringLiteral("PATH")), childPath);
    QCOMPARE(variables.value(QStringLiteral("LD_LIBRARY_PATH")),
             QStringLiteral("/space/tz/x86/ACE_wrappers/lib:/space/tz/x86/DDS/lib:/space/tz/x86/boost/lib:"
                            "/space/tz/x86/pgsql/lib:/space/tz/x86/qt/lib:/space/tz/target/X86/engines/lib:"
                            "/space/tz/target/X86/UI/plugins/designer:/space/tz/x86/omniOrb/lib:/space/tz/target/X86/UI"));
    QCOMPARE(variables.value(QStringLiteral("PYTHONPATH")),
             QStringLiteral("/space/tz/x86/pyomniORB/lib/python2.6/site-packages/"));
    QCOMPARE(variables.value(QStringLiteral("QT_PLUGIN_PATH")), QStringLiteral("/space/tz/target/X86/UI/plugins"));
    QCOMPARE(variables.value(QStringLiteral("TZ_TEST_MARKER")), marker);
}

void TestProcessManager::addedVariableReachesOnlyLaterPrograms()
{
    ProcessManager manager(nullptr);
    const QHash<QString, QString> before = childEnvironment(manager);
    QVERIFY(manager.getEnvVarValue(QStringLiteral("TZ_TEST_MODE")).isNull());
    // Scripts reach the launcher through the meta-object system.
    QVERIFY(QMetaObject::invokeMethod(&manager, "addEnvVar", Q_ARG(QString, QStringLiteral("TZ_TEST_MODE")),
                                      Q_ARG(QString, QStringLiteral("\u2126 mode"))));
    manager.addEnvVar(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral("/opt/plugins"));
    const QHash<QString, QString> after = childEnvironment(manager);

    QVERIFY(!before.isEmpty() && !before.contains(QStringLiteral("TZ_TEST_MODE")));
    QCOMPARE(before.value(QStringLiteral("QT_PLUGIN_PATH")), QStringLiteral("/space/tz/target/X86/UI/plugins"));
    QCOMPARE(after.value(QStringLiteral("TZ_TEST_MODE")), QStringLiteral("\u2126 mode"));
    QCOMPARE(after.value(QStringLiteral("QT_PLUGIN_PATH")), QStringLiteral("/opt/plugins"));
    QVERIFY(!qEnvironmentVariableIsSet("TZ_TEST_MODE"));
}

void TestProcessManager::reportsEachEndWithItsOwnCommandCodeAndStatus()
{
    ProcessManager manager(nullptr);
    QSignalSpy started(&manager, &ProcessManager::started);
    QSignalSpy finished(&manager, &ProcessManager::finished);
    LogCapture log;

    manager.startProcess(m_shell + QStringLiteral(" -c \"exit 3\""));
    QVERIFY(QMetaObject::invokeMethod(&manager, "startProcess", Q_ARG(QString, m_shell + QStringLiteral(" -c 'exit 5'"))));
    manager.startProcess(m_shell + QStringLiteral(" -c \"kill -SEGV $$\""));
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 3, 10000);
    QCOMPARE(started.size(), 3);

    // Single quotes do not group: the second shell runs "'exit" and fails with 2.
    const QString prefix = QStringLiteral("UserInterface - ProcessManager completed execution: \"") + m_shell;
    const QStringList expected{prefix + QStringLiteral(" -c \\\"exit 3\\\"\" | finish code: 3 | Exit status: 0"),
                               prefix + QStringLiteral(" -c 'exit 5'\" | finish code: 2 | Exit status: 0")};
    for (const QString& line : expected)
        QVERIFY2(log.lines().contains(line), qPrintable(log.lines().join(QLatin1Char('\n'))));
    const QStringList crash = log.linesContaining(QStringLiteral("kill -SEGV"));
    QCOMPARE(crash.size(), 2);
    QVERIFY2(crash.at(1).endsWith(QStringLiteral("| Exit status: 1")), qPrintable(crash.at(1)));
    QTRY_VERIFY(manager.findChildren<QProcess*>().isEmpty());
}

void TestProcessManager::unstartableCommandIsLoggedAndLauncherCarriesOn()
{
    ProcessManager manager(nullptr);
    QSignalSpy started(&manager, &ProcessManager::started);
    QSignalSpy finished(&manager, &ProcessManager::finished);
    LogCapture log;

    manager.startProcess(QStringLiteral("   "));
    QVERIFY(log.contains(QStringLiteral("UserInterface - ProcessManager::startProcess - nothing to start in \"   \"")));
    manager.startProcess(QStringLiteral("/nonexistent/tz-no-such-program --flag"));
    QTRY_VERIFY_WITH_TIMEOUT(
        log.contains(QStringLiteral("UserInterface - ProcessManager could not start \"/nonexistent/tz-no-such-program --flag\"")),
        10000);
    QTRY_VERIFY(manager.findChildren<QProcess*>().isEmpty());

    manager.startProcess(m_shell + QStringLiteral(" -c true"));
    QVERIFY(finished.wait(10000));
    QCOMPARE(started.size(), 1);
    QCOMPARE(finished.size(), 1);
}

QTEST_MAIN(TestProcessManager)
#include "tst_processmanager.moc"
