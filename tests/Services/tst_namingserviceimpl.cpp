// Module discovery against a real omniNames, the engine simulator and small engine
// processes: the start-up search, the module broadcast, bad broadcasts, modules that
// cannot be loaded, dead engines and a naming service that comes up late.

#include "ChildProcess.h"
#include "LogCapture.h"
#include "NamingServiceProcess.h"

#include "ApplicationOrb.h"
#include "DDS_BaseObj.h"
#include "EngineServer.h"
#include "LockManagerServant.h"
#include "NamingServiceImpl.h"
#include "OrvanthNames.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <string>

namespace {

const QString topic = QString::fromLatin1(Orvanth::Names::GuiAbleTopic);

QStringList sorted(QStringList list)
{
    std::sort(list.begin(), list.end(), [](const QString& a, const QString& b) { return a.toInt() < b.toInt(); });
    return list;
}

std::string modulePath(int index)
{
    return std::string(Orvanth::Names::GuiAbleContext) + "/" + std::to_string(index);
}

// What a host sees: the announcements, received in the test's thread as a host's
// GUI-thread receiver gets them (queued when they come from another thread).
class Announcements : public QObject
{
public:
    explicit Announcements(NamingServiceImpl& discovery)
    {
        connect(&discovery, &NamingServiceImpl::NewGUIAble, this, [this](const QString& idx) { created << idx; });
        connect(&discovery, &NamingServiceImpl::destroy, this, [this](const QString& idx) { destroyed << idx; });
        connect(&discovery, &NamingServiceImpl::guiableListChanged, this, [this](int n) { listed << n; });
    }

    QStringList created;
    QStringList destroyed;
    QList<int> listed;
};

} // namespace

class TestNamingServiceImpl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void recoversWhenNamingServiceComesUpLate();
    void loadsModulesPresentAtStartSilently();
    void followsModulesComingAndGoing();
    void ignoresMalformedBroadcasts_data();
    void ignoresMalformedBroadcasts();
    void skipsModulesThatCannotBeLoaded_data();
    void skipsModulesThatCannotBeLoaded();
    void dropsKilledEngineOnNextPing();

private:
    bool startNamingService();
    bool startSimulator(ChildProcess& simulator, const QStringList& arguments);
    QProcessEnvironment childEnvironment() const;

    quint16 m_port = 0;
    QTemporaryDir m_namingData;
    std::unique_ptr<ChildProcess> m_namingService;
    std::unique_ptr<Orvanth::EngineServer> m_server;
};

void TestNamingServiceImpl::initTestCase()
{
    // The process ORB keeps the naming service it was started with, so the port is
    // fixed before anything runs there.
    m_port = NamingServiceProcess::freeLoopbackPort();
    QVERIFY(m_port != 0);
    QCoreApplication::instance()->setProperty("-ORBInitRef",
                                              QStringLiteral("NameService=corbaname::127.0.0.1:%1").arg(m_port));
    ApplicationOrb::start();
    m_server = std::make_unique<Orvanth::EngineServer>();
}

void TestNamingServiceImpl::cleanupTestCase()
{
    m_server.reset();
    ORB_base::destroyProcessOrb();
    Orvanth::DDS_BaseObj::shutdownDds();
    m_namingService.reset();
}

bool TestNamingServiceImpl::startNamingService()
{
    if (m_namingService && m_namingService->isRunning())
        return true;
    m_namingService = std::make_unique<ChildProcess>();
    const QString port = QString::number(m_port);
    // Started again, it reads the bindings it kept in its data directory.
    const bool firstStart = QDir(m_namingData.path()).isEmpty();
    // omniNames reports on standard error; the shell hands it to the ready check.
    const QString command = QStringLiteral("exec \"$0\" %1 -datadir \"$1\" -ORBendPoint giop:tcp:127.0.0.1:%2 2>&1")
                                .arg(firstStart ? QStringLiteral("-start ") + port : QString(), port);
    return m_namingService->start(QStringLiteral("/bin/sh"),
                                  {QStringLiteral("-c"), command, QStringLiteral(TZ_OMNINAMES), m_namingData.path()},
                                  QProcessEnvironment::systemEnvironment(), QStringLiteral("Root context is"));
}

QProcessEnvironment TestNamingServiceImpl::childEnvironment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("ORBInitRef"), QStringLiteral("NameService=corbaname::127.0.0.1:%1").arg(m_port));
    return environment;
}

bool TestNamingServiceImpl::startSimulator(ChildProcess& simulator, const QStringList& arguments)
{
    return simulator.start(QStringLiteral(TZ_ENGINE_SIMULATOR),
                           QStringList{"--events-per-second", "0"} + arguments, childEnvironment());
}

void TestNamingServiceImpl::recoversWhenNamingServiceComesUpLate()
{
    // Modules bound, then the naming service goes down and keeps them in its data.
    QVERIFY(startNamingService());
    ChildProcess simulator;
    QVERIFY(startSimulator(simulator, {"--modules", "2"}));
    m_namingService.reset();

    LogCapture log;
    NamingServiceImpl discovery;
    Announcements seen(discovery);
    discovery.initialize();
    QVERIFY(log.contains(QStringLiteral("UserInterface - Failed to resolve initial references")));
    QVERIFY(log.contains(QStringLiteral("UserInterface - Failed to search Naming Service")));
    QVERIFY(log.contains(QStringLiteral("UserInterface - Naming service unreachable, retrying every 2000 ms:")));
    QCOMPARE(log.lines().last(), QStringLiteral("UserInterface - End NamingService Search"));
    QVERIFY(discovery.getModuleList().isEmpty());

    // The retry finds them once it is back, without a broadcast (none is followed
    // here), and announces them.
    QVERIFY(startNamingService());
    QTRY_COMPARE_WITH_TIMEOUT(sorted(seen.created), (QStringList{"1", "2"}), 10000);
    QCOMPARE(sorted(discovery.getModuleList()), (QStringList{"1", "2"}));
    QVERIFY(log.contains(QStringLiteral("UserInterface - Naming service answers again")));
    QCOMPARE(log.linesContaining(QStringLiteral("retrying every")).size(), 1);
}

void TestNamingServiceImpl::loadsModulesPresentAtStartSilently()
{
    QVERIFY(startNamingService());
    ChildProcess simulator;
    QVERIFY(startSimulator(simulator, {"--modules", "3"}));

    LogCapture log;
    NamingServiceImpl discovery;
    Announcements seen(discovery);
    discovery.initialize();
    QCOMPARE(sorted(discovery.getModuleList()), (QStringList{"1", "2", "3"}));
    QCOMPARE(log.linesContaining(QStringLiteral("Fetching GUI_ABLE")),
             (QStringList{"UserInterface - Fetching GUI_ABLE: \"1\"", "UserInterface - Fetching GUI_ABLE: \"2\"",
                          "UserInterface - Fetching GUI_ABLE: \"3\""}));
    QVERIFY(CORBA::is_nil(discovery.getModule(QStringLiteral("4"))));
    QVERIFY(!CORBA::is_nil(discovery.getModule(QStringLiteral("2"))));
    QCOMPARE(discovery.guiAbleLoaded(), 3);

    // Listed but not loadable: announced all the same, after the list changed.
    auto* notAModule = new Orvanth::LockManagerServant;
    CORBA::Object_var bound = m_server->serve(modulePath(5), notAModule);
    log.clear();
    discovery.processReadyGUIAble();
    QCOMPARE(seen.listed, QList<int>{4});
    QVERIFY(log.contains(QStringLiteral("UserInterface - Loading new GUI_ABLE List: (5)")));
    QVERIFY(log.contains(QStringLiteral("UserInterface - Failed to load - \"5\" (not a GUI module)")));
    QCOMPARE(seen.created, QStringList{"5"});
    QCOMPARE(discovery.guiAbleLoaded(), 3);
    m_server->withdraw(modulePath(5), notAModule);
    notAModule->_remove_ref();
}

void TestNamingServiceImpl::followsModulesComingAndGoing()
{
    QVERIFY(startNamingService());
    ChildProcess simulator;
    QVERIFY(startSimulator(simulator, {"--modules", "2", "--module-churn", "0.5"}));

    NamingServiceImpl discovery;
    Announcements seen(discovery);
    discovery.initialize();
    discovery.postInit();
    QTRY_VERIFY_WITH_TIMEOUT(seen.destroyed.contains(QStringLiteral("2")), 10000);
    QVERIFY(!discovery.getModuleList().contains(QStringLiteral("2")));
    QTRY_VERIFY_WITH_TIMEOUT(seen.created.contains(QStringLiteral("2")), 10000);
    QVERIFY(!CORBA::is_nil(discovery.getModule(QStringLiteral("2"))));
    QVERIFY(discovery.getModuleList().contains(QStringLiteral("1")));
}

void TestNamingServiceImpl::ignoresMalformedBroadcasts_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("reason");

    const QByteArray megabyte(1 << 20, '7');
    const QString ignored = QStringLiteral("UserInterface - Ignoring a GUI_ABLE broadcast ");
    QTest::newRow("empty") << QByteArray() << "UserInterface - Ignoring an empty GUI_ABLE broadcast";
    QTest::newRow("no comma") << QByteArray("create4") << ignored + "without a comma";
    QTest::newRow("non-numeric index") << QByteArray("create,four") << ignored + "with a bad module index: \"four\"";
    QTest::newRow("negative index") << QByteArray("destroy,-2") << ignored + "with a bad module index: \"-2\"";
    QTest::newRow("no index") << QByteArray("create,") << ignored + "with a bad module index: \"\"";
    QTest::newRow("unknown operation") << QByteArray("rename,3") << ignored + "with an unknown operation: \"rename\"";
    QTest::newRow("megabyte without comma") << megabyte << ignored + "without a comma";
    QTest::newRow("megabyte index") << "create," + megabyte << ignored + "with a bad module index: \"7777";
}

void TestNamingServiceImpl::ignoresMalformedBroadcasts()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, reason);

    NamingServiceImpl discovery;
    QSignalSpy created(&discovery, &NamingServiceImpl::NewGUIAble);
    QSignalSpy destroyed(&discovery, &NamingServiceImpl::destroy);
    LogCapture log;
    discovery.dds_callback(Orvanth::Names::GuiAbleTopic, payload.toStdString());

    const QStringList lines = log.lines();
    QCOMPARE(lines.size(), 2);
    const QString broadcast = "UserInterface - >>>>> DDS Broadcast @ " + topic + " - \"";
    QVERIFY2(lines.at(0).startsWith(broadcast), qPrintable(lines.at(0)));
    QVERIFY2(lines.at(1).startsWith(reason), qPrintable(lines.at(1)));
    for (const QString& line : lines)
        QVERIFY2(line.size() < 200, qPrintable(line.left(200)));
    QCOMPARE(created.size(), 0);
    QCOMPARE(destroyed.size(), 0);
}

void TestNamingServiceImpl::skipsModulesThatCannotBeLoaded_data()
{
    QTest::addColumn<QString>("engine");
    QTest::addColumn<QString>("reason");

    QTest::newRow("nothing bound") << QString() << "(nothing bound)";
    QTest::newRow("not a GUI module") << "lock manager" << "(not a GUI module)";
    // Longer than the process's call time-out in this test (3 s): only the ping's own
    // time-out lets the call return early.
    QTest::newRow("hung engine") << "4000" << "(TIMEOUT";
}

void TestNamingServiceImpl::skipsModulesThatCannotBeLoaded()
{
    QFETCH(QString, engine);
    QFETCH(QString, reason);

    QVERIFY(startNamingService());
    const std::string path = modulePath(7);
    Orvanth::LockManagerServant* lockManager = nullptr;
    ChildProcess hungEngine;
    if (engine == QLatin1String("lock manager")) {
        lockManager = new Orvanth::LockManagerServant;
        CORBA::Object_var bound = m_server->serve(path, lockManager);
    } else if (!engine.isEmpty()) {
        QVERIFY(hungEngine.start(QStringLiteral(TZ_TEST_ENGINE),
                                 {"--bind", QString::fromStdString(path), "--ping-delay-ms", engine},
                                 childEnvironment()));
    }

    NamingServiceImpl discovery;
    QSignalSpy created(&discovery, &NamingServiceImpl::NewGUIAble);
    LogCapture log;
    QElapsedTimer clock;
    clock.start();
    discovery.dds_callback(Orvanth::Names::GuiAbleTopic, "create,7");
    const qint64 elapsedMs = clock.elapsed();

    QVERIFY2(log.contains("UserInterface - Failed to load - \"7\" " + reason), qPrintable(log.lines().join('\n')));
    QCOMPARE(created.size(), 0);
    QCOMPARE(discovery.guiAbleLoaded(), 0);
    QVERIFY2(elapsedMs < NamingServiceImpl::PingTimeout.count() + 1000, qPrintable(QString::number(elapsedMs)));

    if (lockManager) {
        m_server->withdraw(path, lockManager);
        lockManager->_remove_ref();
    } else {
        hungEngine.stop(0);
        m_server->UnbindName(path);
    }
}

void TestNamingServiceImpl::dropsKilledEngineOnNextPing()
{
    QVERIFY(startNamingService());
    ChildProcess simulator;
    QVERIFY(startSimulator(simulator, {"--modules", "2"}));
    ChildProcess engine;
    QVERIFY(engine.start(QStringLiteral(TZ_TEST_ENGINE), {"--bind", QString::fromStdString(modulePath(9))},
                         childEnvironment()));

    NamingServiceImpl discovery;
    Announcements seen(discovery);
    discovery.initialize();
    QCOMPARE(sorted(discovery.getModuleList()), (QStringList{"1", "2", "9"}));
    QCOMPARE(discovery.findAttribute(QStringLiteral("RUNACTION1")).size(), 2);

    engine.stop(0);
    {
        // The dead engine's failure is logged, the others still answer.
        LogCapture log;
        const QList<Orvanth::EngineReadingBase_var> found = discovery.findAttribute(QStringLiteral("RUNACTION1"));
        QCOMPARE(found.size(), 2);
        for (const Orvanth::EngineReadingBase_var& reading : found) {
            CORBA::String_var name = reading->Name();
            QCOMPARE(QByteArray(name.in()), QByteArray("RUNACTION1"));
        }
        const QStringList lines = log.lines();
        QCOMPARE(lines.size(), 3);
        // A refused connection is TRANSIENT; a connection that broke is COMM_FAILURE.
        const bool failed = lines.at(0).startsWith(QStringLiteral("UserInterface - TRANSIENT "))
            || lines.at(0).startsWith(QStringLiteral("UserInterface - COMM_FAILURE "));
        QVERIFY2(failed, qPrintable(lines.at(0)));
        QCOMPARE(lines.at(1), QStringLiteral("UserInterface - Exception finding attribute: \"RUNACTION1\""));
        QCOMPARE(lines.at(2), QStringLiteral("UserInterface - Offending engine #: \"9\""));
    }

    LogCapture log;
    discovery.setPingInterval(100);
    QTRY_COMPARE_WITH_TIMEOUT(seen.destroyed, QStringList{"9"}, 5000);
    QCOMPARE(sorted(discovery.getModuleList()), (QStringList{"1", "2"}));
    QVERIFY(log.contains(QStringLiteral("UserInterface - GUI_ABLE not answering, dropped: \"9\"")));
    discovery.setPingInterval(0);
    m_server->UnbindName(modulePath(9));
}

QTEST_GUILESS_MAIN(TestNamingServiceImpl)
#include "tst_namingserviceimpl.moc"
