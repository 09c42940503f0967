// The demo as a new user meets it: omniNames, the engine simulator and the demo host
// started as scripts/run-demo starts them, driven from outside by tz-gui-client and the
// simulator; run-demo itself stopped by a signal to its process group; and every program
// and script answering --help and --version without a display and without a build.

#include "ChildProcess.h"
#include "NamingServiceProcess.h"
#include "ProcessSockets.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QUuid>
#include <QtTest>

#include <csignal>
#include <sys/types.h>
#include <unistd.h>

namespace {

// Every process a case starts carries this variable with the case's own value, and so
// do their children: a process that still carries it when the case ends survived it.
const char* const markerVariable = "TZ_DEMO_TEST_MARKER";

// The processes that carry \a marker in their environment or whose parent is this test.
QStringList survivors(const QString& marker)
{
    QStringList found;
    const QByteArray wanted = QByteArray(markerVariable) + '=' + marker.toLatin1();
    const QString self = QString::number(::getpid());
    for (const QString& pid : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        if (pid.toLongLong() <= 0 || pid == self)
            continue;
        QFile environment(QStringLiteral("/proc/%1/environ").arg(pid));
        QFile status(QStringLiteral("/proc/%1/stat").arg(pid));
        const bool marked = environment.open(QIODevice::ReadOnly) && environment.readAll().split('\0').contains(wanted);
        // The fields after the parenthesised name: state, parent, ...
        const QByteArray stat = status.open(QIODevice::ReadOnly) ? status.readAll() : QByteArray();
        const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        const bool ours = fields.size() > 1 && fields.at(1) == self.toLatin1() && fields.at(0) != "Z";
        if (marked || ours)
            found.append(pid + QLatin1Char(' ') + QString::fromLatin1(stat.left(60)));
    }
    return found;
}

// The position and state stored for \a screen in a layout text.
QString storedPlace(const QString& layout, const QString& screen)
{
    const QRegularExpression element(QStringLiteral("<screen [^>]*name=\"%1\"[^>]*>").arg(QRegularExpression::escape(screen)));
    const QString found = element.match(layout).captured(0);
    const QString pos = QRegularExpression(QStringLiteral("pos=\"([^\"]*)\"")).match(found).captured(1);
    const QString state = QRegularExpression(QStringLiteral("state=\"([^\"]*)\"")).match(found).captured(1);
    return found.isEmpty() ? QString() : pos + QLatin1Char(' ') + state;
}

QString readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

class TestDemo : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_marker = QUuid::createUuid().toString(QUuid::WithoutBraces); }

    void programsAnswerHelpAndVersion_data();
    void programsAnswerHelpAndVersion();
    void demoServesEnginesAndUserToTheEnd();
    void runDemoStopsItsChildrenInOrder_data();
    void runDemoStopsItsChildrenInOrder();
    void demoListensOnLoopbackOnlyAndJoinsNoGroup();

private:
    QProcessEnvironment environment() const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QLatin1String(markerVariable), m_marker);
        return environment;
    }

    // Runs \a program to its end (bounded): its exit code, -1 when it crashed or hung.
    int run(const QString& program, const QStringList& arguments, QString* output = nullptr,
            const QProcessEnvironment& environment = {})
    {
        ChildProcess process;
        process.setOutputIncludesErrors(true);
        const bool started = process.start(program, arguments, environment.isEmpty() ? this->environment() : environment, {});
        const int code = started ? process.wait(20000) : -1;
        if (output)
            *output = process.output();
        return code;
    }

    int client(const QStringList& arguments, QString* output = nullptr)
    {
        return run(QStringLiteral(TZ_GUI_CLIENT), QStringList{"-ORBInitRef", "NameService=" + m_corbaname} + arguments, output);
    }

    QString screens()
    {
        QString listing;
        return client({"--screens"}, &listing) == 0 ? listing : QString();
    }

    QString storedLayout(const QString& file)
    {
        return client({"--save-state", file}) == 0 ? readFile(file) : QString();
    }

    // Starts scripts/run-demo in a session of its own, as a terminal starts a command
    // (its process group is its PID), and waits until the desktop serves.
    void startRunDemo(ChildProcess& demo, const QStringList& variables = {})
    {
        QProcessEnvironment environment = this->environment();
        for (const QString& variable : variables)
            environment.insert(variable.section(QLatin1Char('='), 0, 0), variable.section(QLatin1Char('='), 1));
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        environment.insert(QStringLiteral("TZ_DEMO_SIMULATOR"), QStringLiteral("--modules 2 --events-per-second 0"));
        demo.setOutputIncludesErrors(true);
        QVERIFY(demo.start(QStringLiteral("setsid"), {QStringLiteral(TZ_SOURCE_DIR "/scripts/run-demo"), QStringLiteral(TZ_BUILD_DIR), "-res", "800x480"},
                           environment, QStringLiteral("READY")));
        QCOMPARE(qint64(::getpgid(pid_t(demo.pid()))), demo.pid());
        m_corbaname = QRegularExpression(QStringLiteral("ORBInitRef=NameService=(\\S+)")).match(demo.output()).captured(1);
        QVERIFY2(!m_corbaname.isEmpty(), qPrintable(demo.output()));
        QTRY_VERIFY_WITH_TIMEOUT(screens().contains(QLatin1String("Power Meter\n")), 20000);
    }

    QString m_marker;
    QString m_corbaname;
};

void TestDemo::programsAnswerHelpAndVersion_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("name");
    QTest::newRow("tz-demo-host") << QStringLiteral(TZ_DEMO_HOST) << QStringLiteral("tz-demo-host");
    QTest::newRow("tz-engine-simulator") << QStringLiteral(TZ_ENGINE_SIMULATOR) << QStringLiteral("tz-engine-simulator");
    QTest::newRow("tz-gui-client") << QStringLiteral(TZ_GUI_CLIENT) << QStringLiteral("tz-gui-client");
    // The scripts answer before they would install, build or start anything.
    for (const char* script : {"demo", "run-demo", "setup", "test", "soak", "screenshots"})
        QTest::newRow(script) << QStringLiteral(TZ_SOURCE_DIR "/scripts/%1").arg(QLatin1String(script)) << QString::fromLatin1(script);
}

void TestDemo::programsAnswerHelpAndVersion()
{
    QFETCH(QString, program);
    QFETCH(QString, name);
    // No display of any kind: a program that built its user interface first fails.
    QProcessEnvironment bare = environment();
    bare.remove(QStringLiteral("DISPLAY"));
    bare.remove(QStringLiteral("WAYLAND_DISPLAY"));
    bare.remove(QStringLiteral("QT_QPA_PLATFORM"));
    bare.insert(QStringLiteral("TZ_BUILD_DIR"), QDir::temp().filePath(QStringLiteral("tz-demo-test-no-build-") + m_marker));

    QString help;
    QCOMPARE(run(program, {"--help"}, &help, bare), 0);
    QVERIFY2(help.contains(QLatin1String("Usage: ")) && help.contains(name) && help.contains(QLatin1String("--version")),
             qPrintable(help));
    QString version;
    QCOMPARE(run(program, {"--version"}, &version, bare), 0);
    QCOMPARE(version, QStringLiteral("%1 %2\n").arg(name, QLatin1String(TZ_VERSION)));
    QVERIFY(!QFileInfo::exists(bare.value(QStringLiteral("TZ_BUILD_DIR"))));
    QVERIFY2(survivors(m_marker).isEmpty(), qPrintable(survivors(m_marker).join('\n')));
}

void TestDemo::demoServesEnginesAndUserToTheEnd()
{
    QTemporaryDir files;
    const QString messages = files.filePath(QStringLiteral("messages.log"));
    NamingServiceProcess naming;
    QVERIFY(naming.start());
    m_corbaname = naming.corbaname();
    QProcessEnvironment engines = naming.childEnvironment();
    engines.insert(QLatin1String(markerVariable), m_marker);

    // A second module that goes and comes back every second; no alerts, whose box would
    // take the click meant for the dialog.
    ChildProcess simulator;
    QVERIFY(simulator.start(QStringLiteral(TZ_ENGINE_SIMULATOR),
                            {"--modules", "2", "--module-churn", "1", "--events-per-second", "20", "--event-classes", "0,3"},
                            engines));
    ChildProcess host;
    QVERIFY(host.start(QStringLiteral(TZ_DEMO_HOST),
                       naming.orbArguments()
                           + QStringList{"-res", "1280x800", "-message-log", messages, "-answer-dialogs", "100"},
                       environment(), {}));

    // The remote service lists the demo's screens and the simulator's modules, which come
    // and go. Each sighting is kept: QTRY asks once more after the loop, and a listing
    // that takes longer than the module stays (under the sanitizers) would miss it.
    QTRY_VERIFY_WITH_TIMEOUT(screens().contains(QLatin1String("Power Meter\n")), 20000);
    bool shown = false;
    QTRY_VERIFY_WITH_TIMEOUT(shown = shown || screens().contains(QLatin1String("Module 2\n")), 20000);
    bool gone = false;
    QTRY_VERIFY_WITH_TIMEOUT(gone = gone || !screens().contains(QLatin1String("Module 2\n")), 20000);
    bool back = false;
    QTRY_VERIFY_WITH_TIMEOUT(back = back || screens().contains(QLatin1String("Module 2\n")), 20000);
    QVERIFY(screens().contains(QLatin1String("Module 1\n")));

    // The simulator's events reach the status bar, whose messages the host copies.
    QTRY_VERIFY_WITH_TIMEOUT(readFile(messages).contains(QLatin1String("Input level high")), 20000);

    // A dialog is answered by a click on its first button, whose code comes back.
    QString answer;
    QCOMPARE(client({"--dialog", "Sweep", "Start the sweep?", "Yes,7|No,0", "--timeout", "30"}, &answer), 7);
    QCOMPARE(answer, QStringLiteral("7\n"));
    QCOMPARE(client({"--active", "Sweep"}), 1);

    // A layout saved, changed and restored.
    const QString saved = storedLayout(files.filePath(QStringLiteral("saved.xml")));
    const QString meter = storedPlace(saved, QStringLiteral("Power Meter"));
    const QString notes = storedPlace(saved, QStringLiteral("Notes"));
    QVERIFY2(meter.endsWith(QLatin1String(" Min")) && notes.endsWith(QLatin1String(" Min")), qPrintable(saved));
    QCOMPARE(client({"--move", "Power Meter", "610", "470"}), 0);
    QCOMPARE(client({"--size", "Notes", "Max"}), 0);
    const QString changed = files.filePath(QStringLiteral("changed.xml"));
    QTRY_COMPARE_WITH_TIMEOUT(storedPlace(storedLayout(changed), QStringLiteral("Power Meter")), QStringLiteral("610,470 Min"), 10000);
    QTRY_COMPARE_WITH_TIMEOUT(storedPlace(storedLayout(changed), QStringLiteral("Notes")).section(' ', 1), QStringLiteral("Max"), 10000);
    QCOMPARE(client({"--restore-state", files.filePath(QStringLiteral("saved.xml"))}), 0);
    const QString restored = files.filePath(QStringLiteral("restored.xml"));
    QTRY_COMPARE_WITH_TIMEOUT(storedPlace(storedLayout(restored), QStringLiteral("Power Meter")), meter, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(storedPlace(storedLayout(restored), QStringLiteral("Notes")), notes, 10000);

    // Stopped as run-demo stops them: the host closes on SIGTERM and withdraws its name,
    // the simulator unbinds, both while omniNames still runs.
    QCOMPARE(host.stop(), 0);
    QCOMPARE(client({"--screens"}), 251);
    QCOMPARE(simulator.stop(), 0);
    QVERIFY2(!simulator.output().contains(QLatin1String("cannot unbind")), qPrintable(simulator.output()));
    naming.stop();
    QVERIFY2(survivors(m_marker).isEmpty(), qPrintable(survivors(m_marker).join('\n')));
}

void TestDemo::runDemoStopsItsChildrenInOrder_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<int>("status");
    QTest::newRow("Ctrl-C") << int(SIGINT) << 130;
    QTest::newRow("terminal closed") << int(SIGHUP) << 129;
}

void TestDemo::runDemoStopsItsChildrenInOrder()
{
    QFETCH(int, signal);
    QFETCH(int, status);
    ChildProcess demo;
    startRunDemo(demo);
    if (QTest::currentTestFailed())
        return;

    // The signal reaches the whole group, as a terminal sends it.
    QCOMPARE(::kill(-pid_t(demo.pid()), signal), 0);
    QCOMPARE(demo.wait(20000), status);
    const QString output = demo.output();
    QVERIFY2(output.contains(QLatin1String("MODULE destroy,1")) && output.contains(QLatin1String("MODULE destroy,2")),
             qPrintable(output));
    QVERIFY2(!output.contains(QLatin1String("cannot unbind")), qPrintable(output));
    QVERIFY2(survivors(m_marker).isEmpty(), qPrintable(survivors(m_marker).join('\n')));
}

void TestDemo::demoListensOnLoopbackOnlyAndJoinsNoGroup()
{
    // Each group's users before the demo: a join by the demo adds a group or a user.
    const auto usersByGroup = [] {
        QHash<QString, int> users;
        for (const QString& group : ProcessSockets::multicastGroups())
            users.insert(group.section(' ', 0, 1), group.section(' ', 2).toInt());
        return users;
    };
    const QHash<QString, int> before = usersByGroup();
    // An omniORB configuration that would add listeners on every interface: the engine
    // layer takes its endpoints out.
    QTemporaryDir directory;
    QFile configuration(directory.filePath(QStringLiteral("omniORB.cfg")));
    QVERIFY(configuration.open(QIODevice::WriteOnly)
            && configuration.write("endPoint = giop:tcp:0.0.0.0:\n         = giop:tcp:0.0.0.0:0\n") > 0);
    configuration.close();
    ChildProcess demo;
    startRunDemo(demo, {QStringLiteral("OMNIORB_CONFIG=") + configuration.fileName()});
    if (QTest::currentTestFailed())
        return;
    QStringList exposed;
    const QStringList processes = survivors(m_marker);
    for (const QString& process : processes) {
        for (const ProcessSockets::Socket& socket : ProcessSockets::of(process.section(' ', 0, 0).toLongLong()))
            if (socket.address != QLatin1String("127.0.0.1"))
                exposed.append(process + ": " + ProcessSockets::describe(socket));
    }
    QStringList joined;
    const QHash<QString, int> during = usersByGroup();
    for (auto group = during.cbegin(); group != during.cend(); ++group) {
        if (!ProcessSockets::kernelGroup(group.key()) && group.value() > before.value(group.key()))
            joined.append(QStringLiteral("multicast group joined: ") + group.key());
    }
    QCOMPARE(::kill(-pid_t(demo.pid()), SIGTERM), 0);
    QCOMPARE(demo.wait(20000), 143);
    // run-demo, omniNames, the simulator and the host at least.
    QVERIFY2(processes.size() >= 4, qPrintable(processes.join('\n')));
    QVERIFY2(exposed.isEmpty() && joined.isEmpty(), qPrintable((exposed + joined).join('\n')));
}

QTEST_MAIN(TestDemo)
#include "tst_demo.moc"
