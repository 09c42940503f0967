// The instrument and an engine host as two network namespaces joined by a veth pair,
// ORVANTH_INSTRUMENT_HOST set in both: omniNames, the demo host and this test (as the
// instrument's user interface) on the instrument's side, the engine simulator and the
// command-line client on the engine host's. Discovery, events, battery, a button's Set
// and the remote GUI service across the link; every socket on its process's own address;
// no multicast group joined on either side; and the link lost and restored.
//
// Needs root for the namespaces; skips, saying why, where they cannot be made. The test
// process enters the instrument's namespace before it starts anything, so its ORB, DDS
// and pool threads are made there.

#include "LogCapture.h"
#include "NamingServiceProcess.h"
#include "ProcessSockets.h"
#include "QueuedSignalSpy.h"

#include "DDS_BaseObj.h"
#include "GlobalImpl.h"
#include "HostAddress.h"
#include "NamingServiceImpl.h"
#include "ORB_base.h"
#include "PushButtonImpl.h"
#include "QTZBatteryStatus.h"
#include "QTZLowBatteryAlert.h" // completes the alert type QTZBatteryStatus.h points to
#include "QTZStatusBar.h"
#include "SystemModule.h"

#include <QPushButton>
#include <QtTest>

#include <unistd.h>

using Side = NetworkNamespaces::Side;

namespace {

const QString actionDone = QStringLiteral("ACTION RUNACTION1");
const QString moduleShown = QStringLiteral("UserInterface - Demo host - engine module in the navigation bar: \"%1\"");
const QString moduleLeft = QStringLiteral("UserInterface - Demo host - engine module left the navigation bar: \"%1\"");
// The ORB's and the widgets' time-outs that bound how soon a lost engine host shows.
constexpr int pingIntervalMs = 1000;
constexpr int failureShownMs = pingIntervalMs + int(NamingServiceImpl::PingTimeout.count())
    + ORB_base::DefaultConnectTimeoutMs + 1500;
// The GUI thread's longest pause while an engine host is lost: far below the call time-out
// that a call made on it would take.
constexpr qint64 longestGuiPauseMs = 100 * TZ_TEST_SLOWDOWN;

} // namespace

class TestRemoteHosts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (geteuid() != 0)
            QSKIP("network namespaces need root (ip netns); this test runs as another user");
        QString why;
        if (!m_network.create(&why))
            QSKIP(qPrintable(QStringLiteral("no network namespaces here: ") + why));
        QVERIFY2(m_network.enter(Side::Instrument, &why), qPrintable(why));
        // Here and in every process started: the naming service comes from the variable alone.
        qputenv("ORVANTH_INSTRUMENT_HOST", m_network.address(Side::Instrument).toLatin1());
        qunsetenv("ORBInitRef");
        // The instrument's naming service, on its address and the well-known port only.
        QVERIFY(m_naming.start(m_network, Side::Instrument, m_network.address(Side::Instrument),
                               HostAddress::NamingServicePort));

        // An endpoint variable that would add a listener on every interface: the engine
        // layer takes it out.
        QProcessEnvironment engineEnvironment = QProcessEnvironment::systemEnvironment();
        engineEnvironment.insert(QStringLiteral("ORBendPoint"), QStringLiteral("giop:tcp:0.0.0.0:"));
        m_simulator.setOutputIncludesErrors(true);
        QVERIFY(startIn(Side::Engine, m_simulator, QStringLiteral(TZ_ENGINE_SIMULATOR),
                        {"--modules", "2", "--module-churn", "2", "--events-per-second", "5", "--battery-period-ms",
                         "200", "--battery-drain", "600"}, QStringLiteral("READY"), engineEnvironment));
        m_demoHost.setOutputIncludesErrors(true);
        QVERIFY(startIn(Side::Instrument, m_demoHost, QStringLiteral(TZ_DEMO_HOST), {"-debug", "-res", "800x480"},
                        QStringLiteral("UserInterface - Demo host - desktop")));

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
        registry->systemModule()->setSystemScreen(QStringLiteral("MainWindow"), m_window.get());
        m_statusBar = new QTZStatusBar(m_window.get());
        m_battery = new QTZBatteryStatus(m_window.get());
        m_button = new Lumaro::gui::PushButtonImpl(m_window.get());
        m_button->setButtonObjectName(QStringLiteral("RunButton"));
        m_button->setAttributeName(QStringLiteral("RUNACTION1"));
        m_window->show();
    }

    void cleanupTestCase()
    {
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
    }

    void discoveryFollowsSimulatorModules()
    {
        // The demo host found both modules, and follows the second one going and coming back.
        QTRY_VERIFY_WITH_TIMEOUT(m_demoHost.output().contains(moduleShown.arg(1)), 15000);
        QTRY_VERIFY_WITH_TIMEOUT(m_demoHost.output().contains(moduleLeft.arg(2)), 15000);
        const int left = m_demoHost.output().lastIndexOf(moduleLeft.arg(2));
        QTRY_VERIFY_WITH_TIMEOUT(m_demoHost.output().indexOf(moduleShown.arg(2), left) > left, 15000);
        // So does this process's discovery.
        // Emitted on the DDS thread that delivers the broadcast.
        QueuedSignalSpy destroyed(m_discovery.get(), &NamingServiceImpl::destroy);
        QTRY_COMPARE_WITH_TIMEOUT(destroyed.value(0).value(0).toString(), QStringLiteral("2"), 15000);
    }

    void eventsBatteryAndPressCrossTheLink()
    {
        const int messages = m_statusBar->messageCount();
        QSet<int> levels;
        connect(m_battery, &QTZBatteryStatus::updateBatteryStatus, this, [&] { levels.insert(m_battery->level()); });
        QTRY_VERIFY_WITH_TIMEOUT(m_statusBar->messageCount() >= messages + 3, 15000);
        // 10 % a second in readings every 200 ms: the level moves.
        QTRY_VERIFY_WITH_TIMEOUT(levels.size() >= 2, 15000);
        disconnect(m_battery, nullptr, this, nullptr);
        QVERIFY(press());
        // The demo host serves the remote GUI service on the naming service the variable
        // names, to a client on the engine host.
        const auto screens = [this] {
            ChildProcess client;
            return startIn(Side::Engine, client, QStringLiteral(TZ_GUI_CLIENT), {"--screens"}, {}) && client.wait(15000) == 0
                ? client.output() : QString();
        };
        QTRY_VERIFY_WITH_TIMEOUT(screens().split(QLatin1Char('\n')).contains(QStringLiteral("Engine Controls")), 10000);
    }

    void everySocketOnItsOwnAddress()
    {
        // A user interface listens only once it serves something: the demo host serves the
        // remote GUI service, this one nothing.
        const struct { const char* name; qint64 pid; Side side; bool serves; bool dds; } processes[] = {
            {"omniNames", m_naming.pid(), Side::Instrument, true, false},
            {"demo host", m_demoHost.pid(), Side::Instrument, true, true},
            {"this user interface", QCoreApplication::applicationPid(), Side::Instrument, false, true},
            {"engine simulator", m_simulator.pid(), Side::Engine, true, true},
        };
        for (const auto& process : processes) {
            QMap<QString, int> count;
            for (const ProcessSockets::Socket& socket : ProcessSockets::of(process.pid)) {
                ++count[socket.table];
                QVERIFY2(socket.address == m_network.address(process.side) && !socket.table.endsWith(QLatin1Char('6')),
                         qPrintable(QLatin1String(process.name) + QLatin1Char(' ') + ProcessSockets::describe(socket)));
            }
            // The ORB's listener where objects are served, and DDS's ports where a participant runs.
            QVERIFY2((!process.serves || count["tcp"] >= 1) && (!process.dds || count["udp"] >= 2), process.name);
        }
    }

    void lostLinkIsReportedAndRecovers()
    {
        QVERIFY(bindButton());
        const Orvanth::GUI_Able_var steady = m_discovery->getModule(QStringLiteral("1"));
        QVERIFY(!CORBA::is_nil(steady));
        QueuedSignalSpy created(m_discovery.get(), &NamingServiceImpl::NewGUIAble);
        QSignalSpy failures(m_button, &WidgetBaseImpl::exceptionMessage);
        m_discovery->setPingInterval(pingIntervalMs);
        m_log->clear();
        QString why;
        QVERIFY2(m_network.setLinkUp(Side::Engine, false, &why), qPrintable(why));
        // The GUI thread's longest pause from here on, through a 10 ms timer; it starts
        // after the link went down, as taking it down runs ip(8) on this thread.
        QElapsedTimer sinceTick;
        qint64 longestPause = 0;
        QTimer ticker;
        connect(&ticker, &QTimer::timeout, this, [&] { longestPause = std::max(longestPause, sinceTick.restart()); });
        sinceTick.start();
        ticker.start(10);
        const int actions = m_simulator.output().count(actionDone);
        QTest::mouseClick(m_button->button(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(m_log->contains(QStringLiteral("UserInterface - GUI_ABLE not answering, dropped: \"1\"")),
                                 failureShownMs);
        // The press's Set fails within the widgets' call time-out and says so on the status bar.
        QTRY_VERIFY_WITH_TIMEOUT(!failures.isEmpty(), failureShownMs);
        ticker.stop();
        QVERIFY2(longestPause < longestGuiPauseMs, qPrintable(QString::number(longestPause)));
        QCOMPARE(m_simulator.output().count(actionDone), actions);

        // The timed-out calls took their connection with them: a call that may wait long
        // needs a new one, and gives up after the connect time-out, not the kernel's two
        // minutes of retries.
        ORB_base::setCallTimeout(steady, std::chrono::seconds(20));
        QElapsedTimer connecting;
        connecting.start();
        QVERIFY_EXCEPTION_THROWN(CORBA::String_var(steady->Ping("PingTest")), CORBA::SystemException);
        QVERIFY2(connecting.elapsed() < ORB_base::DefaultConnectTimeoutMs + 1000, qPrintable(QString::number(connecting.elapsed())));

        // Back on the link: module announcements, events and calls come through again.
        m_discovery->setPingInterval(0);
        QVERIFY2(m_network.setLinkUp(Side::Engine, true, &why) && m_network.waitUntilRunning(&why), qPrintable(why));
        const int messages = m_statusBar->messageCount();
        created.clear();
        QTRY_VERIFY_WITH_TIMEOUT(!created.isEmpty(), 20000);
        QTRY_VERIFY_WITH_TIMEOUT(m_statusBar->messageCount() > messages, 20000);
        // The steady module was dropped: a host searches again, as after any outage.
        m_discovery->processReadyGUIAble();
        QVERIFY(!CORBA::is_nil(m_discovery->getModule(QStringLiteral("1"))));
        // The button lost its engine with the link; it binds again by itself.
        QTRY_VERIFY_WITH_TIMEOUT(m_button->attributeState() == WidgetBaseImpl::Free, 20000);
        QVERIFY(press());
    }

    void noMulticastGroupOnEitherSide()
    {
        // What a host's own interfaces join is the kernel's; anything else is a process's.
        QStringList joined;
        for (const qint64 pid : {QCoreApplication::applicationPid(), m_simulator.pid()})
            for (const QString& group : ProcessSockets::multicastGroups(pid))
                if (!ProcessSockets::kernelGroup(group))
                    joined << group;
        QVERIFY2(joined.isEmpty(), qPrintable(joined.join(QStringLiteral("; "))));
    }

private:
    bool startIn(Side side, ChildProcess& process, const QString& program, const QStringList& arguments,
                 const QString& readyText, const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment())
    {
        return process.start(m_network.wrapperProgram(), m_network.wrapperArguments(side, program, arguments),
                             environment, readyText);
    }

    bool bindButton()
    {
        QSignalSpy finished(m_button, &WidgetBaseImpl::bindingFinished);
        if (!m_button->isBound())
            m_button->bindAttributeByName();
        return m_button->isBound() || (finished.wait(10000) && finished.last().at(0).toBool());
    }

    // Presses the button and waits (bounded) for the simulator to say that the action came.
    bool press()
    {
        const int before = bindButton() ? m_simulator.output().count(actionDone) : -1;
        QTest::mouseClick(m_button->button(), Qt::LeftButton);
        return before >= 0 && QTest::qWaitFor([&] { return m_simulator.output().count(actionDone) > before; }, 10000);
    }

    // Declared first, so that it goes last: the processes inside are gone by then.
    NetworkNamespaces m_network;
    NamingServiceProcess m_naming;
    ChildProcess m_demoHost;
    ChildProcess m_simulator;
    std::unique_ptr<LogCapture> m_log;
    std::unique_ptr<NamingServiceImpl> m_discovery;
    std::unique_ptr<QWidget> m_window;
    QTZStatusBar* m_statusBar = nullptr;
    QTZBatteryStatus* m_battery = nullptr;
    Lumaro::gui::PushButtonImpl* m_button = nullptr;
};

QTEST_MAIN(TestRemoteHosts)
#include "tst_remotehosts.moc"
