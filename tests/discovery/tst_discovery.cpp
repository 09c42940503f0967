// Module discovery against a real omniNames, the engine simulator and small engine
// processes: the start-up search, the module broadcast, bad broadcasts, modules that
// cannot be loaded and dead engines. A naming service that goes and comes back is
// tst_faults' case.

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
#include <QtTest>

namespace {

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

std::string modulePath(int index)
{
    return std::string(Orvanth::Names::GuiAbleContext) + "/" + std::to_string(index);
}

// What a host sees: the announcements, received in the test's thread as a host's
// GUI-thread receiver gets them (queued when they come from another thread).
struct Announcements : QObject
{
    explicit Announcements(NamingServiceImpl& discovery)
    {
        connect(&discovery, &NamingServiceImpl::NewGUIAble, this, [this](const QString& idx) { created << idx; });
        connect(&discovery, &NamingServiceImpl::destroy, this, [this](const QString& idx) { destroyed << idx; });
    }
    QStringList created, destroyed;
};

} // namespace

class TestDiscovery : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void loadsModulesPresentAtStartAndDropsKilledEngine();
    void followsModulesComingAndGoing();
    void ignoresBroadcastsItCannotUse_data();
    void ignoresBroadcastsItCannotUse();

private:
    static bool startChild(ChildProcess& child, const QString& program, const QStringList& arguments)
    {
        return child.start(program, arguments, QProcessEnvironment::systemEnvironment());
    }

    NamingServiceProcess m_naming;
    std::unique_ptr<Orvanth::EngineServer> m_server;
};

void TestDiscovery::initTestCase()
{
    QVERIFY(m_naming.start());
    const QString initRef = QStringLiteral("NameService=") + m_naming.corbaname();
    QCoreApplication::instance()->setProperty("-ORBInitRef", initRef);
    qputenv("ORBInitRef", initRef.toLatin1());
    ApplicationOrb::start();
    m_server = std::make_unique<Orvanth::EngineServer>();
}

void TestDiscovery::cleanupTestCase()
{
    m_server.reset();
    ORB_base::destroyProcessOrb();
    Orvanth::DDS_BaseObj::shutdownDds();
}

void TestDiscovery::followsModulesComingAndGoing()
{
    ChildProcess simulator;
    QVERIFY(startChild(simulator, QStringLiteral(TZ_ENGINE_SIMULATOR), {"--events-per-second", "0", "--modules", "2", "--module-churn", "0.5"}));

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

void TestDiscovery::ignoresBroadcastsItCannotUse_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("engine");
    QTest::addColumn<QString>("reason");
    QTest::newRow("empty") << QByteArray() << QString() << "Ignoring an empty GUI_ABLE broadcast";
    QTest::newRow("no comma") << QByteArray("create4") << QString() << "without a comma";
    QTest::newRow("non-numeric index") << QByteArray("create,four") << QString() << "with a bad module index: \"four\"";
    QTest::newRow("no index") << QByteArray("create,") << QString() << "with a bad module index: \"\"";
    QTest::newRow("unknown operation") << QByteArray("rename,3") << QString() << "with an unknown operation: \"rename\"";
    QTest::newRow("megabyte index") << "create," + QByteArray(1 << 20, '7') << QString() << "with a bad module index: \"7777";
    // A module index of two digits, and what is found under it.
    QTest::newRow("nothing bound") << QByteArray("create,12") << QString() << "Failed to load - \"12\" (nothing bound)";
    QTest::newRow("not a GUI module") << QByteArray("create,12") << "lock manager" << "Failed to load - \"12\" (not a GUI module)";
    // Longer than the process's call time-out in this test (3 s): only the ping's own
    // time-out lets the call return early.
    QTest::newRow("hung engine") << QByteArray("create,12") << "4000" << "Failed to load - \"12\" (TIMEOUT";
}

void TestDiscovery::ignoresBroadcastsItCannotUse()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, engine);
    QFETCH(QString, reason);
    const std::string path = modulePath(12);
    Orvanth::LockManagerServant* lockManager = nullptr;
    ChildProcess hungEngine;
    if (engine == QLatin1String("lock manager")) {
        lockManager = new Orvanth::LockManagerServant;
        CORBA::Object_var bound = m_server->serve(path, lockManager);
    } else if (!engine.isEmpty()) {
        QVERIFY(startChild(hungEngine, QStringLiteral(TZ_TEST_ENGINE), {"--bind", QString::fromStdString(path), "--ping-delay-ms", engine}));
    }

    NamingServiceImpl discovery;
    QSignalSpy created(&discovery, &NamingServiceImpl::NewGUIAble), destroyed(&discovery, &NamingServiceImpl::destroy);
    LogCapture log;
    QElapsedTimer clock;
    clock.start();
    discovery.dds_callback(Orvanth::Names::GuiAbleTopic, payload.toStdString());
    QVERIFY(clock.elapsed() < NamingServiceImpl::PingTimeout.count() + 1000);
    QVERIFY2(log.contains(reason), qPrintable(log.lines().join('\n').left(1000)));
    // No line floods the log.
    for (const QString& line : log.lines())
        QVERIFY(line.size() < 200);
    QCOMPARE(created.size() + destroyed.size() + discovery.guiAbleLoaded(), 0);

    hungEngine.stop(0);
    lockManager ? m_server->withdraw(path, lockManager) : m_server->UnbindName(path);
    if (lockManager)
        lockManager->_remove_ref();
}

void TestDiscovery::loadsModulesPresentAtStartAndDropsKilledEngine()
{
    ChildProcess simulator;
    QVERIFY(startChild(simulator, QStringLiteral(TZ_ENGINE_SIMULATOR), {"--events-per-second", "0", "--modules", "2"}));
    ChildProcess engine;
    QVERIFY(startChild(engine, QStringLiteral(TZ_TEST_ENGINE), {"--bind", QString::fromStdString(modulePath(9))}));

    // Found at start: loaded, not announced.
    NamingServiceImpl discovery;
    Announcements seen(discovery);
    discovery.initialize();
    QCOMPARE(sorted(discovery.getModuleList()), (QStringList{"1", "2", "9"}));
    QVERIFY(CORBA::is_nil(discovery.getModule(QStringLiteral("4"))));
    QVERIFY(!CORBA::is_nil(discovery.getModule(QStringLiteral("2"))));
    QCOMPARE(discovery.findAttribute(QStringLiteral("RUNACTION1")).size(), 2);
    QVERIFY(seen.created.isEmpty());

    // The dead engine's failure is logged with its number, the others still answer.
    engine.stop(0);
    LogCapture log;
    const QList<Orvanth::EngineReadingBase_var> found = discovery.findAttribute(QStringLiteral("RUNACTION1"));
    QCOMPARE(found.size(), 2);
    QCOMPARE(QByteArray(CORBA::String_var(found.last()->Name()).in()), QByteArray("RUNACTION1"));
    QVERIFY(log.contains(QStringLiteral("UserInterface - Offending engine #: \"9\"")));
    discovery.setPingInterval(100);
    QTRY_COMPARE_WITH_TIMEOUT(seen.destroyed, QStringList{"9"}, 5000);
    QCOMPARE(sorted(discovery.getModuleList()), (QStringList{"1", "2"}));
    discovery.setPingInterval(0);
    m_server->UnbindName(modulePath(9));

    // Listed but not loadable: announced all the same, after the list changed.
    auto* notAModule = new Orvanth::LockManagerServant;
    CORBA::Object_var bound = m_server->serve(modulePath(5), notAModule);
    QSignalSpy listed(&discovery, &NamingServiceImpl::guiableListChanged);
    discovery.processReadyGUIAble();
    QCOMPARE(listed.size(), 1);
    QCOMPARE(seen.created, QStringList{"5"});
    QCOMPARE(discovery.guiAbleLoaded(), 2);
    m_server->withdraw(modulePath(5), notAModule);
    notAModule->_remove_ref();
}

QTEST_GUILESS_MAIN(TestDiscovery)
#include "tst_discovery.moc"
