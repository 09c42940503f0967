// The instrument and an engine host as two network namespaces joined by a veth pair,
// ORVANTH_INSTRUMENT_HOST set in both: omniNames, the demo host and this test (as the
// instrument's user interface) on the instrument's side, the engine simulator and the
// command-line client on the engine host's. Discovery, events, battery, a button's Set
// and the remote GUI service across the link; every socket on its process's own address;
// no multicast on the link; and the link lost and restored.
//
// Needs root for the namespaces; skips, saying why, where they cannot be made. The test
// process enters the instrument's namespace before it starts anything, so its ORB, DDS
// and pool threads are made there.

#include "ChildProcess.h"
#include "LinkFrameCounter.h"
#include "LogCapture.h"
#include "NetworkNamespaces.h"
#include "ProcessSockets.h"

#include "DDS_BaseObj.h"
#include "GlobalImpl.h"
#include "HostAddress.h"
#include "NamingServiceImpl.h"
#include "ORB_base.h"
#include "ORB_wrapper_base.h"
#include "OrvanthNames.h"
#include "PushButtonImpl.h"
#include "QTZBatteryStatus.h"
#include "QTZLowBatteryAlert.h" // completes the alert type QTZBatteryStatus.h points to
#include "QTZStatusBar.h"
#include "SystemModule.h"

#include <Orvanth.hh>

#include <QElapsedTimer>
#include <QPushButton>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QTimer>
#include <QtTest>

#include <iostream>
#include <memory>
#include <unistd.h>

using Lumaro::gui::PushButtonImpl;

namespace {

const QString actionDone = QStringLiteral("ACTION RUNACTION1");
const QString moduleShown = QStringLiteral("UserInterface - Demo host - engine module in the navigation bar: \"%1\"");
const QString moduleLeft = QStringLiteral("UserInterface - Demo host - engine module left the navigation bar: \"%1\"");
// The module the simulator never takes away: its churn moves the highest one only.
const QString steadyModule = QStringLiteral("1");

// The ORB's and the widgets' time-outs that bound how soon a lost engine host shows.
constexpr int pingIntervalMs = 1000;
constexpr int failureShownMs = pingIntervalMs + int(NamingServiceImpl::PingTimeout.count())
    + ORB_base::DefaultConnectTimeoutMs + 1500;

} // namespace

class TestRemoteHosts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

    void discoveryFollowsSimulatorModules();
    void eventsAndBatteryReachStatusBar();
    void pressReachesSimulator();
    void clientReachesGuiManager();
    void everySocketOnItsOwnAddress();
    void lostLinkIsReportedAndRecovers();
    void noMulticastCrossesTheLink();

private:
    QProcessEnvironment environment() const;
    bool startIn(NetworkNamespaces::Side side, ChildProcess& process, const QString& program,
                 const QStringList& arguments, const QString& readyText);
    bool startIn(NetworkNamespaces::Side side, ChildProcess& process, const QString& program,
                 const QStringList& arguments, const QString& readyText, const QProcessEnvironment& environment);
    int runClient(const QStringList& arguments, QString* output);
    bool bindButton();
    bool press();

    // Declared first, so that it goes last: the processes inside are gone by then.
    NetworkNamespaces m_network;
    QString m_instrument;
    QString m_engine;
    std::unique_ptr<LinkFrameCounter> m_frames;
    bool m_failed = false;
    QTemporaryDir m_namingData;
    ChildProcess m_namingService;
    ChildProcess m_demoHost;
    ChildProcess m_simulator;

    std::unique_ptr<LogCapture> m_log;
    std::unique_ptr<NamingServiceImpl> m_discovery;
    std::unique_ptr<QWidget> m_window;
    QTZStatusBar* m_statusBar = nullptr;
    QTZBatteryStatus* m_battery = nullptr;
    PushButtonImpl* m_button = nullptr;
};

QProcessEnvironment TestRemoteHosts::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("ORVANTH_INSTRUMENT_HOST"), m_instrument);
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    // The naming service comes from the variable alone.
    environment.remove(QStringLiteral("ORBInitRef"));
    return environment;
}

bool TestRemoteHosts::startIn(NetworkNamespaces::Side side, ChildProcess& process, const QString& program,
                              const QStringList& arguments, const QString& readyText)
{
    return startIn(side, process, program, arguments, readyText, environment());
}

bool TestRemoteHosts::startIn(NetworkNamespaces::Side side, ChildProcess& process, const QString& program,
                              const QStringList& arguments, const QString& readyText,
                              const QProcessEnvironment& environment)
{
    return process.start(m_network.wrapperProgram(), m_network.wrapperArguments(side, program, arguments),
                         environment, readyText);
}

void TestRemoteHosts::initTestCase()
{
    if (geteuid() != 0)
        QSKIP("network namespaces need root (ip netns); this test runs as another user");
    QString why;
    if (!m_network.create(&why))
        QSKIP(qPrintable(QStringLiteral("no network namespaces here: ") + why));
    m_instrument = m_network.address(NetworkNamespaces::Instrument);
    m_engine = m_network.address(NetworkNamespaces::Engine);

    QVERIFY2(m_network.enter(NetworkNamespaces::Instrument, &why), qPrintable(why));
    qputenv("ORVANTH_INSTRUMENT_HOST", m_instrument.toLatin1());
    m_frames = std::make_unique<LinkFrameCounter>(m_network.link(NetworkNamespaces::Instrument));
    QVERIFY2(m_frames->isCounting(), qPrintable(m_frames->error()));

    // The instrument's naming service, on its address and the well-known port only.
    QVERIFY(m_namingData.isValid());
    const QString port = QString::number(HostAddress::NamingServicePort);
    QVERIFY(startIn(NetworkNamespaces::Instrument, m_namingService, QStringLiteral(TZ_OMNINAMES),
                    {"-start", port, "-datadir", m_namingData.path(), "-ORBendPoint",
                     QStringLiteral("giop:tcp:%1:%2").arg(m_instrument, port)},
                    QString()));
    QElapsedTimer clock;
    clock.start();
    bool answers = false;
    while (!answers && clock.elapsed() < 10000 && m_namingService.isRunning()) {
        QTcpSocket probe;
        probe.connectToHost(m_instrument, HostAddress::NamingServicePort);
        answers = probe.waitForConnected(200);
        if (!answers)
            QTest::qWait(50);
    }
    QVERIFY2(answers, "omniNames does not answer in the instrument's namespace");

    // An endpoint variable that would add a listener on every interface: the engine
    // layer takes it out.
    QProcessEnvironment engineEnvironment = environment();
    engineEnvironment.insert(QStringLiteral("ORBendPoint"), QStringLiteral("giop:tcp:0.0.0.0:"));
    m_simulator.setOutputIncludesErrors(true);
    QVERIFY(startIn(NetworkNamespaces::Engine, m_simulator, QStringLiteral(TZ_ENGINE_SIMULATOR),
                    {"--modules", "2", "--module-churn", "2", "--events-per-second", "5", "--battery-period-ms", "200",
                     "--battery-drain", "600"},
                    QStringLiteral("READY"), engineEnvironment));
    QVERIFY2(m_simulator.output().contains(
                 QStringLiteral("Orvanth network - instrument host %1, own address %2").arg(m_instrument, m_engine)),
             qPrintable(m_simulator.output()));
    QVERIFY(m_simulator.output().contains(
        QStringLiteral("Orvanth ORB - removed the environment variable \"ORBendPoint=giop:tcp:0.0.0.0:\"")));

    m_demoHost.setOutputIncludesErrors(true);
    QVERIFY(startIn(NetworkNamespaces::Instrument, m_demoHost, QStringLiteral(TZ_DEMO_HOST),
                    {"-debug", "-res", "800x480"}, QStringLiteral("UserInterface - Demo host - desktop")));

    // This process as a user interface of the instrument: the registry, module discovery
    // through the naming service the variable names, a status bar and a bound button.
    GlobalImpl* registry = GlobalImpl::getInstance();
    m_log = std::make_unique<LogCapture>();
    m_discovery = std::make_unique<NamingServiceImpl>();
    m_discovery->initialize();
    m_discovery->postInit();
    registry->setNamingService(m_discovery.get());
    QVERIFY2(m_discovery->guiAbleLoaded() >= 1, qPrintable(m_log->lines().join(QLatin1Char('\n'))));

    m_window = std::make_unique<QWidget>();
    m_window->setObjectName(QStringLiteral("TopContainerObject"));
    m_window->resize(1000, 600);
    registry->systemModule()->setSystemScreen(QStringLiteral("MainWindow"), m_window.get());
    m_statusBar = new QTZStatusBar(m_window.get());
    m_battery = new QTZBatteryStatus(m_window.get());
    m_button = new PushButtonImpl(m_window.get());
    m_button->setButtonObjectName(QStringLiteral("RunButton"));
    m_button->setAttributeName(QStringLiteral("RUNACTION1"));
    m_window->show();
}

void TestRemoteHosts::cleanup()
{
    m_failed = m_failed || QTest::currentTestFailed();
}

void TestRemoteHosts::cleanupTestCase()
{
    // The other processes' own account, which a failure message has no room for.
    if (m_failed || QTest::currentTestFailed()) {
        std::cerr << "--- demo host:\n" << m_demoHost.output().right(6000).toStdString() << "\n--- engine simulator:\n"
                  << m_simulator.output().right(3000).toStdString() << std::endl;
    }
    // The widgets and discovery first, once the pool's engine calls are done; then the
    // registry and its locker, the ORB and DDS; the processes; the namespaces last.
    if (m_discovery)
        m_discovery->setPingInterval(0);
    QThreadPool::globalInstance()->waitForDone();
    m_window.reset();
    m_discovery.reset();
    delete GlobalImpl::existingInstance();
    m_log.reset();
    ORB_base::destroyProcessOrb();
    Orvanth::DDS_BaseObj::shutdownDds();
    m_simulator.stop();
    m_demoHost.stop();
    m_namingService.stop();
    m_frames.reset();
    m_network.remove();
}

int TestRemoteHosts::runClient(const QStringList& arguments, QString* output)
{
    QProcess client;
    client.setProcessEnvironment(environment());
    client.setProcessChannelMode(QProcess::MergedChannels);
    client.start(m_network.wrapperProgram(),
                 m_network.wrapperArguments(NetworkNamespaces::Engine, QStringLiteral(TZ_GUI_CLIENT), arguments));
    if (!client.waitForFinished(15000)) {
        client.kill();
        client.waitForFinished(5000);
        return -1;
    }
    *output = QString::fromLocal8Bit(client.readAll());
    return client.exitStatus() == QProcess::NormalExit ? client.exitCode() : -1;
}

bool TestRemoteHosts::bindButton()
{
    if (m_button->isBound())
        return true;
    QSignalSpy finished(m_button, &WidgetBaseImpl::bindingFinished);
    m_button->bindAttributeByName();
    return (!finished.isEmpty() || finished.wait(10000)) && finished.last().at(0).toBool();
}

// Presses the button and waits (bounded) for the simulator to say that the action came.
bool TestRemoteHosts::press()
{
    const int before = m_simulator.output().count(actionDone);
    QTest::mouseClick(m_button->button(), Qt::LeftButton);
    QElapsedTimer clock;
    clock.start();
    while (m_simulator.output().count(actionDone) == before && clock.elapsed() < 10000)
        QTest::qWait(20);
    return m_simulator.output().count(actionDone) > before;
}

void TestRemoteHosts::discoveryFollowsSimulatorModules()
{
    // The demo host found both modules, and follows the second one going and coming back.
    QTRY_VERIFY_WITH_TIMEOUT(m_demoHost.output().contains(moduleShown.arg(steadyModule)), 15000);
    QTRY_VERIFY_WITH_TIMEOUT(m_demoHost.output().contains(moduleShown.arg(2)), 15000);
    QTRY_VERIFY_WITH_TIMEOUT(m_demoHost.output().contains(moduleLeft.arg(2)), 15000);
    const int left = m_demoHost.output().lastIndexOf(moduleLeft.arg(2));
    QTRY_VERIFY_WITH_TIMEOUT(m_demoHost.output().indexOf(moduleShown.arg(2), left) > left, 15000);

    // So does this process's discovery.
    QSignalSpy created(m_discovery.get(), &NamingServiceImpl::NewGUIAble);
    QSignalSpy destroyed(m_discovery.get(), &NamingServiceImpl::destroy);
    QTRY_VERIFY_WITH_TIMEOUT(!created.isEmpty() && !destroyed.isEmpty(), 15000);
    QCOMPARE(created.first().at(0).toString(), QStringLiteral("2"));
    QCOMPARE(destroyed.first().at(0).toString(), QStringLiteral("2"));
}

void TestRemoteHosts::eventsAndBatteryReachStatusBar()
{
    const int messages = m_statusBar->messageCount();
    QSet<int> levels;
    QObject recorder;
    connect(m_battery, &QTZBatteryStatus::updateBatteryStatus, &recorder, [&] { levels.insert(m_battery->level()); });
    QTRY_VERIFY_WITH_TIMEOUT(m_statusBar->messageCount() >= messages + 3, 15000);
    QVERIFY(!m_statusBar->lastText().isEmpty());
    // 10 % a second in readings every 200 ms: the level moves.
    QTRY_VERIFY_WITH_TIMEOUT(levels.size() >= 2, 15000);
}

void TestRemoteHosts::pressReachesSimulator()
{
    QVERIFY(bindButton());
    QVERIFY(press());
    QTRY_VERIFY(m_log->contains(QStringLiteral("UserInterface - PushButton Set returned.")));
}

void TestRemoteHosts::clientReachesGuiManager()
{
    // The demo host serves the remote GUI service on the naming service the variable names.
    ORB_wrapper_base naming;
    const auto bound = [&naming] {
        try {
            return !CORBA::is_nil(CORBA::Object_var(naming.ResolveName(Orvanth::Names::GuiManagerPath)));
        } catch (const CORBA::Exception&) {
            return false;
        }
    };
    QTRY_VERIFY_WITH_TIMEOUT(bound(), 10000);

    QString output;
    QCOMPARE(runClient({"--screens"}, &output), 0);
    QVERIFY2(output.split(QLatin1Char('\n')).contains(QStringLiteral("Engine Controls")), qPrintable(output));

    // A dialog opened from the engine host without waiting for the answer, seen open and
    // closed again from there.
    const QString title = QStringLiteral("Remote check");
    QVERIFY2(runClient({"--dialog", title, "Opened from the engine host", "OK,1", "--no-wait"}, &output) >= 0,
             qPrintable(output));
    QVERIFY2(runClient({"--active", title}, &output) == 0, qPrintable(output));
    QVERIFY2(runClient({"--close-dialog", title}, &output) == 0, qPrintable(output));
    QVERIFY2(runClient({"--active", title}, &output) == 1, qPrintable(output));
}

void TestRemoteHosts::everySocketOnItsOwnAddress()
{
    struct Process
    {
        const char* name;
        qint64 pid;
        QString own;
        bool serves;
        bool dds;
    };
    // A user interface listens only once it serves something: the demo host serves the
    // remote GUI service, this one nothing.
    const Process processes[] = {
        {"omniNames", m_namingService.pid(), m_instrument, true, false},
        {"demo host", m_demoHost.pid(), m_instrument, true, true},
        {"this user interface", QCoreApplication::applicationPid(), m_instrument, false, true},
        {"engine simulator", m_simulator.pid(), m_engine, true, true},
    };
    for (const Process& process : processes) {
        int tcp = 0;
        int udp = 0;
        for (const ProcessSockets::Socket& socket : ProcessSockets::of(process.pid)) {
            const QString where = QLatin1String(process.name) + QLatin1Char(' ') + ProcessSockets::describe(socket);
            QVERIFY2(socket.table == QLatin1String("tcp") || socket.table == QLatin1String("udp"), qPrintable(where));
            QVERIFY2(socket.address == process.own, qPrintable(where));
            ++(socket.table == QLatin1String("tcp") ? tcp : udp);
        }
        // The ORB's listener where objects are served, and DDS's ports where a participant runs.
        QVERIFY2(!process.serves || tcp >= 1, process.name);
        QVERIFY2(!process.dds || udp >= 2, process.name);
    }
}

void TestRemoteHosts::lostLinkIsReportedAndRecovers()
{
    QVERIFY(bindButton());
    const Orvanth::GUI_Able_var steady = m_discovery->getModule(steadyModule);
    QVERIFY(!CORBA::is_nil(steady));
    QSignalSpy created(m_discovery.get(), &NamingServiceImpl::NewGUIAble);
    QSignalSpy failures(m_button, &WidgetBaseImpl::exceptionMessage);
    m_discovery->setPingInterval(pingIntervalMs);
    m_log->clear();

    // The GUI thread's longest pause from here on, through a 10 ms timer.
    QElapsedTimer sinceTick;
    qint64 longestPause = 0;
    QTimer ticker;
    ticker.setInterval(10);
    connect(&ticker, &QTimer::timeout, this, [&] { longestPause = std::max(longestPause, sinceTick.restart()); });
    sinceTick.start();
    ticker.start();

    QString why;
    QVERIFY2(m_network.setLinkUp(NetworkNamespaces::Engine, false, &why), qPrintable(why));
    QElapsedTimer sinceLoss;
    sinceLoss.start();
    const int actions = m_simulator.output().count(actionDone);
    QTest::mouseClick(m_button->button(), Qt::LeftButton);

    const QString notAnswering = QStringLiteral("UserInterface - GUI_ABLE not answering, dropped: \"%1\"").arg(steadyModule);
    QTRY_VERIFY_WITH_TIMEOUT(m_log->contains(notAnswering), failureShownMs);
    const qint64 reportedAfter = sinceLoss.elapsed();
    // The ORB names the host that went silent.
    const QStringList silent = m_log->linesContaining(QStringLiteral("Orvanth ORB - no answer from %1:").arg(m_engine));
    QVERIFY2(!silent.isEmpty(), qPrintable(m_log->linesContaining(QStringLiteral("Orvanth ORB")).join(QLatin1Char('\n'))));
    // The press's Set fails within the widgets' call time-out and says so on the status bar.
    QTRY_VERIFY_WITH_TIMEOUT(!failures.isEmpty(), failureShownMs);
    ticker.stop();
    // Beside the log capture, for the record of a run.
    std::cerr << "engine host lost: reported after " << reportedAfter << " ms (" << silent.first().toStdString()
              << "), the press failed after " << sinceLoss.elapsed() << " ms, longest GUI pause " << longestPause
              << " ms" << std::endl;
    QVERIFY2(longestPause < 100, qPrintable(QString::number(longestPause)));
    QCOMPARE(m_simulator.output().count(actionDone), actions);

    // The timed-out calls took their connection with them: a call that may wait long
    // needs a new one, and gives up after the connect time-out, not the kernel's two
    // minutes of retries.
    ORB_base::setCallTimeout(steady, std::chrono::seconds(20));
    QElapsedTimer connecting;
    connecting.start();
    QString failure;
    try {
        CORBA::String_var answer = steady->Ping("PingTest");
    } catch (const CORBA::SystemException& exception) {
        failure = QStringLiteral("%1 %2").arg(QLatin1String(exception._name()), QLatin1String(exception.NP_minorString()));
    }
    std::cerr << "a new connection to the lost engine host failed after " << connecting.elapsed() << " ms: "
              << failure.toStdString() << std::endl;
    QVERIFY2(!failure.isEmpty(), "the call went through");
    QVERIFY2(connecting.elapsed() < ORB_base::DefaultConnectTimeoutMs + 1000, qPrintable(failure));

    // Back on the link: module announcements, events and calls come through again.
    m_discovery->setPingInterval(0);
    QVERIFY2(m_network.setLinkUp(NetworkNamespaces::Engine, true, &why) && m_network.waitUntilRunning(&why),
             qPrintable(why));
    const int messages = m_statusBar->messageCount();
    created.clear();
    QTRY_VERIFY_WITH_TIMEOUT(!created.isEmpty(), 20000);
    QTRY_VERIFY_WITH_TIMEOUT(m_statusBar->messageCount() > messages, 20000);
    // The steady module was dropped: a host searches again, as after any outage.
    m_discovery->processReadyGUIAble();
    QVERIFY(!CORBA::is_nil(m_discovery->getModule(steadyModule)));
    QVERIFY(bindButton());
    QVERIFY(press());
}

void TestRemoteHosts::noMulticastCrossesTheLink()
{
    // Everything above crossed the link while it was counted.
    QVERIFY2(m_frames->frames() > 100, qPrintable(QString::number(m_frames->frames())));
    QVERIFY2(m_frames->multicastFrames() == 0, qPrintable(m_frames->multicastSamples().join(QStringLiteral("; "))));
}

QTEST_MAIN(TestRemoteHosts)
#include "tst_remotehosts.moc"
