// The process launcher against real short-lived child programs: the environment they
// get, and how their start, end and failure to start are reported.

#include "LogCapture.h"

#include "ProcessManager.h"

#include <QStandardPaths>
#include <QtTest>

namespace {

const QString installPath = QStringLiteral(":/space/tz/target/X86/UI");

// Restores one variable of this process's environment when it goes.
class EnvironmentOverride
{
public:
    EnvironmentOverride(const char* name, const QByteArray& value, bool set)
        : m_name(name)
        , m_wasSet(qEnvironmentVariableIsSet(name))
        , m_previous(qgetenv(name))
    {
        if (set)
            qputenv(name, value);
        else
            qunsetenv(name);
    }
    ~EnvironmentOverride()
    {
        if (m_wasSet)
            qputenv(m_name, m_previous);
        else
            qunsetenv(m_name);
    }

private:
    const char* m_name;
    bool m_wasSet;
    QByteArray m_previous;
};

} // namespace

class TestProcessManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void childSeesInstallationEnvironment_data();
    void childSeesInstallationEnvironment();
    void addedVariableReachesOnlyLaterPrograms();
    void reportsEachEndWithItsOwnCommandAndCode();
    void reportsCrashAsExitStatusOne();
    void missingProgramIsLoggedAndLauncherCarriesOn();
    void emptyCommandIsLoggedAndStartsNothing_data();
    void emptyCommandIsLoggedAndStartsNothing();

private:
    // Starts `env` through the launcher and returns its variables once it has ended.
    QHash<QString, QString> childEnvironment(ProcessManager& manager);
    static QString endLine(const QString& command, int code, int status);

    QString m_env;
    QString m_shell;
};

void TestProcessManager::initTestCase()
{
    m_env = QStandardPaths::findExecutable(QStringLiteral("env"));
    m_shell = QStandardPaths::findExecutable(QStringLiteral("sh"));
    QVERIFY(!m_env.isEmpty());
    QVERIFY(!m_shell.isEmpty());
}

QHash<QString, QString> TestProcessManager::childEnvironment(ProcessManager& manager)
{
    QSignalSpy finished(&manager, &ProcessManager::finished);
    manager.startProcess(m_env);
    // The launcher keeps the child's output to itself; read it from its process object.
    QByteArray output;
    QProcess* child = manager.findChildren<QProcess*>().last();
    connect(child, &QProcess::readyReadStandardOutput, this, [&output, child] { output += child->readAllStandardOutput(); });
    if (!finished.wait(10000))
        return {};
    QHash<QString, QString> variables;
    for (const QByteArray& line : output.split('\n')) {
        const int equals = line.indexOf('=');
        if (equals > 0)
            variables.insert(QString::fromLocal8Bit(line.left(equals)), QString::fromUtf8(line.mid(equals + 1)));
    }
    return variables;
}

QString TestProcessManager::endLine(const QString& command, int code, int status)
{
    QString quoted = command;
    quoted.replace(QLatin1Char('"'), QStringLiteral("\\\""));
    return QStringLiteral("UserInterface - ProcessManager completed execution: \"%1\" | finish code: %2 | Exit status: %3")
        .arg(quoted)
        .arg(code)
        .arg(status);
}

void TestProcessManager::childSeesInstallationEnvironment_data()
{
    QTest::addColumn<bool>("pathSet");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QString>("childPath");

    QTest::newRow("PATH extended") << true << QByteArray("/usr/bin:/bin") << QStringLiteral("/usr/bin:/bin") + installPath;
    QTest::newRow("PATH unset") << false << QByteArray() << installPath;
    QTest::newRow("PATH empty") << true << QByteArray() << installPath;
}

void TestProcessManager::childSeesInstallationEnvironment()
{
    QFETCH(bool, pathSet);
    QFETCH(QByteArray, path);
    QFETCH(QString, childPath);

    QHash<QString, QString> variables;
    {
        const EnvironmentOverride pathOverride("PATH", path, pathSet);
        const EnvironmentOverride library("LD_LIBRARY_PATH", "/usr/lib/elsewhere", true);
        const EnvironmentOverride marker("TZ_TEST_MARKER", QStringLiteral("Pr\u00fcfung \u6e2c\u8a66").toUtf8(), true);
        ProcessManager manager(nullptr);
        // The environment is taken when the launcher is built, not when a program starts.
        qunsetenv("TZ_TEST_MARKER");
        variables = childEnvironment(manager);
    }
    QVERIFY(!variables.isEmpty());
    QCOMPARE(variables.value(QStringLiteral("PATH")), childPath);
    QCOMPARE(variables.value(QStringLiteral("LD_LIBRARY_PATH")),
             QStringLiteral("/space/tz/x86/ACE_wrappers/lib:/space/tz/x86/DDS/lib:/space/tz/x86/boost/lib:"
                            "/space/tz/x86/pgsql/lib:/space/tz/x86/qt/lib:/space/tz/target/X86/engines/lib:"
                            "/space/tz/target/X86/UI/plugins/designer:/space/tz/x86/omniOrb/lib:/space/tz/target/X86/UI"));
    QCOMPARE(variables.value(QStringLiteral("PYTHONPATH")),
             QStringLiteral("/space/tz/x86/pyomniORB/lib/python2.6/site-packages/"));
    QCOMPARE(variables.value(QStringLiteral("QT_PLUGIN_PATH")), QStringLiteral("/space/tz/target/X86/UI/plugins"));
    QCOMPARE(variables.value(QStringLiteral("TZ_TEST_MARKER")), QStringLiteral("Pr\u00fcfung \u6e2c\u8a66"));
}

void TestProcessManager::addedVariableReachesOnlyLaterPrograms()
{
    ProcessManager manager(nullptr);
    const QHash<QString, QString> before = childEnvironment(manager);
    QVERIFY(!before.isEmpty());
    QVERIFY(getenv("TZ_TEST_MODE") == nullptr);
    QVERIFY(manager.getEnvVarValue(QStringLiteral("TZ_TEST_MODE")).isNull());

    QVERIFY(QMetaObject::invokeMethod(&manager, "addEnvVar", Q_ARG(QString, QStringLiteral("TZ_TEST_MODE")),
                                      Q_ARG(QString, QStringLiteral("\u2126 mode"))));
    manager.addEnvVar(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral("/opt/plugins"));
    const QHash<QString, QString> after = childEnvironment(manager);

    QVERIFY(!before.contains(QStringLiteral("TZ_TEST_MODE")));
    QCOMPARE(before.value(QStringLiteral("QT_PLUGIN_PATH")), QStringLiteral("/space/tz/target/X86/UI/plugins"));
    QCOMPARE(after.value(QStringLiteral("TZ_TEST_MODE")), QStringLiteral("\u2126 mode"));
    QCOMPARE(after.value(QStringLiteral("QT_PLUGIN_PATH")), QStringLiteral("/opt/plugins"));
    // The launcher's own process is left alone.
    QVERIFY(getenv("TZ_TEST_MODE") == nullptr);
}

void TestProcessManager::reportsEachEndWithItsOwnCommandAndCode()
{
    ProcessManager manager(nullptr);
    QSignalSpy started(&manager, &ProcessManager::started);
    QSignalSpy finished(&manager, &ProcessManager::finished);
    LogCapture log;

    const QString three = m_shell + QStringLiteral(" -c \"exit 3\"");
    const QString five = m_shell + QStringLiteral(" -c \"sleep 0.2; exit 5\"");
    manager.startProcess(three);
    QVERIFY(QMetaObject::invokeMethod(&manager, "startProcess", Q_ARG(QString, five)));
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 2, 10000);
    QCOMPARE(started.size(), 2);

    QList<int> codes{finished.at(0).at(0).toInt(), finished.at(1).at(0).toInt()};
    std::sort(codes.begin(), codes.end());
    QCOMPARE(codes, (QList<int>{3, 5}));
    QVERIFY2(log.lines().contains(endLine(three, 3, 0)), qPrintable(log.lines().join(QLatin1Char('\n'))));
    QVERIFY(log.lines().contains(endLine(five, 5, 0)));
    QCOMPARE(log.linesContaining(QStringLiteral("UserInterface - ProcessManager::startProcess - \"")).size(), 2);
    // Ended programs leave nothing behind.
    QTRY_VERIFY(manager.findChildren<QProcess*>().isEmpty());
}

void TestProcessManager::reportsCrashAsExitStatusOne()
{
    ProcessManager manager(nullptr);
    QSignalSpy finished(&manager, &ProcessManager::finished);
    LogCapture log;
    const QString crash = m_shell + QStringLiteral(" -c \"kill -SEGV $$\"");
    manager.startProcess(crash);
    QVERIFY(finished.wait(10000));
    const QStringList ends = log.linesContaining(QStringLiteral("ProcessManager completed execution:"));
    QCOMPARE(ends.size(), 1);
    QVERIFY2(ends.at(0).endsWith(QStringLiteral("| Exit status: 1")), qPrintable(ends.at(0)));
}

void TestProcessManager::missingProgramIsLoggedAndLauncherCarriesOn()
{
    ProcessManager manager(nullptr);
    QSignalSpy started(&manager, &ProcessManager::started);
    QSignalSpy finished(&manager, &ProcessManager::finished);
    LogCapture log;

    manager.startProcess(QStringLiteral("/nonexistent/tz-no-such-program --flag"));
    QTRY_VERIFY_WITH_TIMEOUT(log.contains(QStringLiteral("UserInterface - ProcessManager could not start")), 10000);
    QVERIFY(log.linesContaining(QStringLiteral("could not start")).at(0).contains(
        QStringLiteral("\"/nonexistent/tz-no-such-program --flag\"")));
    QTRY_VERIFY(manager.findChildren<QProcess*>().isEmpty());

    manager.startProcess(m_shell + QStringLiteral(" -c true"));
    QVERIFY(finished.wait(10000));
    QCOMPARE(started.size(), 1);
    QCOMPARE(finished.size(), 1);
    QCOMPARE(finished.at(0).at(0).toInt(), 0);
}

void TestProcessManager::emptyCommandIsLoggedAndStartsNothing_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("empty") << QString();
    QTest::newRow("blanks") << QStringLiteral("   ");
    QTest::newRow("empty quotes") << QStringLiteral("\"\"");
}

void TestProcessManager::emptyCommandIsLoggedAndStartsNothing()
{
    QFETCH(QString, command);
    ProcessManager manager(nullptr);
    LogCapture log;
    manager.startProcess(command);
    QVERIFY(manager.findChildren<QProcess*>().isEmpty());
    QVERIFY(log.contains(QStringLiteral("UserInterface - ProcessManager::startProcess - nothing to start in")));
}

QTEST_MAIN(TestProcessManager)
#include "tst_processmanager.moc"
