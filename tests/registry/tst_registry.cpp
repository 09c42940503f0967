// The registry and what it rests on: the application options (their typed readers through
// the snap points), engine and ohm texts, the window lookup, the process launcher, and the
// registry's engine locker against a real omniNames and lock manager, also under racing
// threads (this test is built with the sanitizers as well).

#include "ChildProcess.h"
#include "LanguageScope.h"
#include "LogCapture.h"
#include "NamingServiceProcess.h"
#include "StreamCapture.h"

#include "ApplicationOptions.h"
#include "ApplicationOrb.h"
#include "ContainerImpl.h"
#include "CorbaText.h"
#include "DesktopImpl.h"
#include "EngineServer.h"
#include "GlobalImpl.h"
#include "LanguageSwitch.h"
#include "LockManagerServant.h"
#include "Locker.h"
#include "LockerGateway.h"
#include "ProcessManager.h"
#include "QTZUtil.h"
#include "SystemModule.h"

#include <QScriptEngine>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <atomic>
#include <thread>

using Values = QList<QPair<QString, QString>>;
Q_DECLARE_METATYPE(Values)

namespace {

bool isZero(const Orvanth::LockerID& id) { return id.owner == 0 && id.session == 0 && id.serial == 0; }

// A widget \a depth frames below \a top.
QWidget* nestedIn(QWidget* top, int depth)
{
    for (int i = 0; i < depth; ++i)
        top = new QFrame(top);
    return top;
}

} // namespace

class TestRegistry : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_naming.start()); }
    void cleanup();
    void cleanupTestCase();

    void parsesCommandLine_data();
    void parsesCommandLine();
    void readsEngineTextAndRewritesOhmForms();
    void keepsOneRegistryWhichOtherThreadsNeverBuild();
    void computesSnapPoints_data();
    void computesSnapPoints();
    void keepsScreensAndForgetsDestroyedPeers();
    void teardownStopsThreadsAndDeletesOwnedObjectsOnly();
    void findsWindowAndTitleOfNestedWidget();
    void launchesWithInstallationEnvironmentAndReportsEnds();
    void lockerRetriedSilentlyUntilLockManagerAnswers();
    void withdrawnLockManagerGivesZeroIdAndPassesExceptionOn();
    void firstUseFromSeveralThreadsBuildsOneLocker();
    void lockIdCallsRacingDesktopCloseEndCleanly();
    void subscriberThreadsStopBeforeLockerGoes();
    void followsTheLanguageOption_data();
    void followsTheLanguageOption();
    void loadsAHostCatalogBesideTheLibrarys();

private:
    NamingServiceProcess m_naming;
    ChildProcess m_engine;
    std::unique_ptr<Orvanth::EngineServer> m_server;
    Orvanth::LockManagerServant* m_manager = nullptr;
};

void TestRegistry::cleanup()
{
    while (GlobalImpl* registry = qApp->findChild<GlobalImpl*>())
        delete registry;
}

void TestRegistry::cleanupTestCase()
{
    if (m_server) {
        m_server->deactivate(m_manager);
        m_manager->_remove_ref();
        m_server.reset();
    }
    ORB_base::destroyProcessOrb();
    m_naming.stop();
}

void TestRegistry::parsesCommandLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<Values>("values");
    QTest::addColumn<QStringList>("rest");
    QTest::addColumn<int>("problems");
    QTest::newRow("options and switches") << QStringList{"-systype", "handheld", "-fullscreen", "-animation", "false", "-ORBInitRef", "N=c"}
                                          << Values{{"-systype", "handheld"}, {"-fullscreen", "true"}, {"-animation", "false"}, {"-ORBInitRef", "N=c"}}
                                          << QStringList{} << 0;
    QTest::newRow("other arguments are the host's") << QStringList{"-debug", "-res", "800x480", "--res", "x"} << Values{{"-res", "800x480"}}
                                                    << QStringList{"-debug", "--res", "x"} << 0;
    // The last valid repetition counts.
    QTest::newRow("malformed values") << QStringList{"-res", "800by480", "-grid", "2x", "-res", "1280x800", "-systype", "benchtop", "-res", "bad", "-size"}
                                      << Values{{"-res", "1280x800"}, {"-systype", "benchtop"}} << QStringList{} << 4;
}

void TestRegistry::parsesCommandLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(Values, values);
    QFETCH(QStringList, rest);
    QFETCH(int, problems);
    LogCapture log;
    const ApplicationOptions::Parsed parsed = ApplicationOptions::parse(QStringList{"host"} + arguments);
    QCOMPARE(parsed.values, values);
    QCOMPARE(parsed.rest, rest);
    QCOMPARE(log.lines().size(), problems);
}

void TestRegistry::readsEngineTextAndRewritesOhmForms()
{
    // UTF-8 where it is valid, Latin-1 where not: overlong forms, surrogates, cut sequences.
    const QList<QPair<QByteArray, QString>> texts{{"20 \xc2\xb0" "C", "20 °C"}, {"\xf0\x9f\x94\x8b", "\U0001f50b"}, {"Gr\xf6\xdf" "e", "Größe"},
                                                {"\xc0\xaf", "\u00c0\u00af"}, {"\xed\xa0\x80", "\u00ed\u00a0\u0080"}, {"x\xe2\x82", "x\u00e2\u0082"}};
    for (const auto& text : texts)
        QCOMPARE(CorbaText::fromCorba(text.first.constData()), text.second);
    QVERIFY(CorbaText::fromCorba(nullptr).isEmpty());

    // Once "ohms" occurs, a lone "ohm" stays as written; the written form wins over the
    // sign; Greek capital omega looks the same but is another character.
    const QString rich = QStringLiteral("<font face='Times'>\u2126</font>");
    const QList<QPair<QString, QString>> forms{{"1 ohm or 2 Ohms 測試", "1 ohm or 2 " + rich + " 測試"}, {"ohm \u2126", rich + " \u2126"}, {"10 \u03a9", "10 \u03a9"}};
    const QFontMetrics metrics(QFont(QStringLiteral("Sans"), 13));
    for (const auto& form : forms) {
        QString added = form.first, shown = form.second;
        QTZUtil::processString(added);
        QCOMPARE(added, form.second);
        // Measured as shown, the rich text as one sign.
        QCOMPARE(QTZUtil::calculateStringWidth(metrics, form.first), metrics.horizontalAdvance(shown.replace(rich, QStringLiteral("O"))));
    }
}

void TestRegistry::keepsOneRegistryWhichOtherThreadsNeverBuild()
{
    GlobalImpl* fromThread = nullptr;
    const auto askFromThread = [&fromThread] {
        std::thread([&fromThread] { fromThread = GlobalImpl::getInstance(); }).join();
        return fromThread;
    };
    QVERIFY(!askFromThread() && !GlobalImpl::existingInstance());
    GlobalImpl* registry = GlobalImpl::getInstance();
    QVERIFY(GlobalImpl::getInstance() == registry && registry->parent() == qApp && askFromThread() == registry);
    delete registry;
    // One the host built anywhere below the application object is found, not doubled;
    // built right under it, it is every thread's at once.
    QObject holder(qApp);
    auto* built = new GlobalImpl(&holder);
    QVERIFY(GlobalImpl::getInstance() == built && qApp->findChildren<GlobalImpl*>().size() == 1);
    delete built;
    built = new GlobalImpl(qApp);
    QCOMPARE(askFromThread(), built);
    // Its script engine, first asked for from another thread, lives in the registry's.
    QScriptEngine* engine = nullptr;
    std::thread([&engine, built] { engine = built->scriptEngine(); }).join();
    QVERIFY(engine == built->scriptEngine() && engine->thread() == built->thread());
}

void TestRegistry::computesSnapPoints_data()
{
    QTest::addColumn<QVariant>("resolution");
    QTest::addColumn<QVariant>("grid");
    QTest::addColumn<QList<QPoint>>("points");
    QTest::newRow("800x480 in 2 rows of 4") << QVariant("800x480") << QVariant("2x4")
                                            << QList<QPoint>{{0, 0}, {200, 0}, {400, 0}, {600, 0}, {0, 240}, {200, 240}, {400, 240}, {600, 240}};
    QTest::newRow("portrait in 3 rows of 1 truncates") << QVariant("480x800") << QVariant("3x1") << QList<QPoint>{{0, 0}, {0, 266}, {0, 533}};
    QTest::newRow("grid without resolution") << QVariant() << QVariant("2x4") << QList<QPoint>{};
    QTest::newRow("widest screen in 2 rows of 4")
        << QVariant("2147483647x800") << QVariant("2x4")
        << QList<QPoint>{{0, 0}, {536870911, 0}, {1073741823, 0}, {1610612735, 0},
                         {0, 400}, {536870911, 400}, {1073741823, 400}, {1610612735, 400}};
    QTest::newRow("64 rows of 1") << QVariant("1x64") << QVariant("64x1") << [] {
        QList<QPoint> column;
        for (int row = 0; row < 64; ++row)
            column.append({0, row});
        return column;
    }();
    // More cells than a finger can hit, and more than the registry could lay out quickly.
    QTest::newRow("grid of 65 rows") << QVariant("800x480") << QVariant("65x1") << QList<QPoint>{};
    QTest::newRow("grid of 200 rows of 602602") << QVariant("800x480") << QVariant("200x602602") << QList<QPoint>{};
    // "AxB" texts that are none.
    for (const char* bad : {"", "2X4", "1x2x3", "2x", "0x4", "2x-4", "2\u00d74"})
        QTest::addRow("grid \"%s\"", bad) << QVariant("800x480") << QVariant(QString::fromUtf8(bad)) << QList<QPoint>{};
}

void TestRegistry::computesSnapPoints()
{
    QFETCH(QVariant, resolution);
    QFETCH(QVariant, grid);
    QFETCH(QList<QPoint>, points);
    qApp->setProperty("-res", resolution);
    qApp->setProperty("-grid", grid);
    QCOMPARE(GlobalImpl::getInstance()->gridPoints, points);
}

void TestRegistry::keepsScreensAndForgetsDestroyedPeers()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    QWidget a, b, replacement;
    registry->addScreen(QStringLiteral("A"), &a);
    registry->addScreen(QStringLiteral("A"), &b);
    QCOMPARE(registry->getScreen(QStringLiteral("A")), &b);
    // An unknown name reads null and is listed from then on; names are case-sensitive.
    QVERIFY(!registry->getScreen(QStringLiteral("a")) && registry->getScreenList().size() == 2);
    // Null may not match the null entry of "a".
    registry->swapMenuItems(nullptr, &replacement);
    QVERIFY(!registry->getScreen(QStringLiteral("a")));
    registry->swapMenuItems(&b, &replacement);
    QCOMPARE(registry->getScreen(QStringLiteral("A")), &replacement);
    QVERIFY(registry->removeScreen(QStringLiteral("A")) && !registry->removeScreen(QStringLiteral("A")));

    // The data-entry mechanism stays with its first claimant until released or destroyed.
    auto second = std::make_unique<QWidget>();
    registry->setEntryMechanism(second.get());
    registry->setEntryMechanism(&a);
    QCOMPARE(registry->entryMechanism(), second.get());
    second.reset();
    registry->setEntryMechanism(&a);
    registry->releaseEntryMechanism(&b);
    QCOMPARE(registry->entryMechanism(), &a);
    auto* desktop = new DesktopImpl(&a);
    registry->setDesktop(desktop);
    delete desktop;
    QVERIFY(!registry->desktop());
}

void TestRegistry::teardownStopsThreadsAndDeletesOwnedObjectsOnly()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    QPointer<SystemModule> systemModule = registry->systemModule();
    // Scripts find the launcher by name through the meta-object system.
    QObject* found = nullptr;
    QVERIFY(QMetaObject::invokeMethod(systemModule, "getModule", Q_RETURN_ARG(QObject*, found), Q_ARG(QString, "ProcessManager")));
    QPointer<QObject> launcher = found;
    QVERIFY(qobject_cast<ProcessManager*>(launcher));
    // One thread runs an event loop, the other a loop that only an interruption request ends.
    QThread running;
    running.start();
    std::unique_ptr<QThread> polling(QThread::create([] {
        while (!QThread::currentThread()->isInterruptionRequested())
            QThread::msleep(1);
    }));
    polling->start();
    auto* deletedEarly = new QThread;
    for (QThread* thread : {deletedEarly, &running, polling.get()})
        registry->storeSubscriberThread(thread);
    delete deletedEarly;
    QWidget screen;
    registry->addScreen(QStringLiteral("Scope"), &screen);
    systemModule->setSystemScreen(QStringLiteral("MainWindow"), &screen);
    delete registry;
    QVERIFY(running.isFinished() && polling->isFinished() && systemModule.isNull() && launcher.isNull());
    // The host's widget is still its own (ASan would see a use after free here).
    screen.setObjectName(QStringLiteral("stillAlive"));
}

void TestRegistry::findsWindowAndTitleOfNestedWidget()
{
    QWidget desktop;
    ContainerImpl outer(&desktop);
    outer.setWindowTitle(QStringLiteral("Outer"), 3);
    auto* inner = new ContainerImpl(nestedIn(outer.getContainerFrame(), 12));
    inner->setWindowTitle(QStringLiteral("Inner"));
    QCOMPARE(GlobalImpl::getParentWindow(nestedIn(inner->getContainerFrame(), 12)), inner);
    QCOMPARE(GlobalImpl::getParentWindow(inner), &outer);
    QVERIFY(!GlobalImpl::getParentWindow(&outer));
    // The title without the instance number: a window's own, and that of its title-bar buttons.
    QCOMPARE(GlobalImpl::getParentWindowName(inner), QStringLiteral("Inner"));
    QCOMPARE(GlobalImpl::getParentWindowName(outer.getContainerControl()->findChild<QWidget*>()), QStringLiteral("Outer"));
    // Outside every window, also below a frame named as a container's: nothing.
    auto* named = new QFrame(&desktop);
    named->setObjectName(QStringLiteral("ContainerFrame"));
    QVERIFY(!GlobalImpl::getParentWindow(nestedIn(named, 8)) && GlobalImpl::getParentWindowName(nestedIn(named, 8)).isEmpty());
}

void TestRegistry::launchesWithInstallationEnvironmentAndReportsEnds()
{
    // The environment is taken when the launcher is built, not when a program starts.
    const QByteArray ownPath = qgetenv("PATH");
    qputenv("PATH", "/usr/bin:/bin");
    ProcessManager manager(nullptr);
    qputenv("PATH", ownPath);
    QSignalSpy started(&manager, &ProcessManager::started), finished(&manager, &ProcessManager::finished);
    // Scripts reach the launcher through the meta-object system.
    QVERIFY(QMetaObject::invokeMethod(&manager, "addEnvVar", Q_ARG(QString, "TZ_TEST_MODE"), Q_ARG(QString, "\u2126 mode")));
    manager.startProcess(QStandardPaths::findExecutable(QStringLiteral("env")));
    QProcess* child = manager.findChildren<QProcess*>().value(0);
    QByteArray output;
    QVERIFY(child && connect(child, &QProcess::readyReadStandardOutput, [&output, child] { output += child->readAllStandardOutput(); }));
    QVERIFY(finished.wait(10000));
    const QStringList environment = QString::fromUtf8(output).split('\n');
    QVERIFY(environment.contains(QStringLiteral("PATH=/usr/bin:/bin:/space/tz/target/X86/UI")) && !qEnvironmentVariableIsSet("TZ_TEST_MODE"));
    QVERIFY(environment.contains(QStringLiteral("TZ_TEST_MODE=\u2126 mode")));

    // Each end is reported with its own code; single quotes do not group, so the second
    // shell runs "'exit" and fails with 2.
    LogCapture log;
    const QString shell = QStandardPaths::findExecutable(QStringLiteral("sh"));
    manager.startProcess(shell + QStringLiteral(" -c \"exit 3\""));
    manager.startProcess(shell + QStringLiteral(" -c 'exit 5'"));
    manager.startProcess(shell + QStringLiteral(" -c \"kill -SEGV $$\""));
    manager.startProcess(QStringLiteral("   "));
    manager.startProcess(QStringLiteral("/nonexistent/tz-no-such-program --flag"));
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 4, 10000);
    QCOMPARE(started.size(), 4);
    QVERIFY(finished.contains(QVariantList{3}) && finished.contains(QVariantList{2}));
    QVERIFY(log.linesContaining(QStringLiteral("kill -SEGV")).last().endsWith(QStringLiteral("| Exit status: 1")));
    QVERIFY(log.contains(QStringLiteral("nothing to start in \"   \"")));
    // A program that cannot start is reported on its own time, not with the others' ends.
    QTRY_VERIFY(log.contains(QStringLiteral("could not start \"/nonexistent/tz-no-such-program --flag\"")));
}

void TestRegistry::lockerRetriedSilentlyUntilLockManagerAnswers()
{
    // Nothing but the application option tells this process where the naming service is.
    QVERIFY(qgetenv("ORBInitRef").isEmpty());
    qApp->setProperty("-ORBInitRef", QStringLiteral("NameService=") + m_naming.corbaname());
    GlobalImpl* registry = GlobalImpl::getInstance();
    {
        // No lock manager yet: every call tries to build the locker again, and only the log says so.
        StreamCapture standardError(std::cerr);
        LogCapture log;
        QVERIFY(!registry->getLocker() && isZero(registry->getLockerID()) && registry->getLockAuthority().length() == 0);
        QCOMPARE(log.linesContaining(QStringLiteral("Failed to instantiate UI Locker")).size(), 3);
        QCOMPARE(standardError.text(), QString());
    }
    QVERIFY(m_engine.start(QStringLiteral(TZ_TEST_ENGINE), {"--locker"}, m_naming.childEnvironment()));
    std::unique_ptr<Orvanth::Locker> previous(registry->getLocker());
    const Orvanth::LockerID id = registry->getLockerID();
    const Orvanth::Lock_Authority authority = registry->getLockAuthority();
    QVERIFY(previous && !isZero(id) && authority.length() == 1 && authority[0].owner == id.owner);
    // A replaced locker answers from then on; the previous one stays ours to delete.
    registry->setLocker(new Orvanth::Locker);
    QVERIFY(registry->getLockerID().owner != previous->MyLockerID().owner);

    // Options given once the ORB runs are ignored, with one line in the log.
    LogCapture log;
    qApp->setProperty("-ORBInitRef", QStringLiteral("NameService=corbaname::127.0.0.1:1"));
    ApplicationOrb::start();
    ApplicationOrb::start();
    QCOMPARE(log.linesContaining(QStringLiteral("Orvanth ORB")), QStringList{"Orvanth ORB - the process ORB is already running; ignoring the options "
                                                                             "\"-ORBInitRef NameService=corbaname::127.0.0.1:1\""});
    QVERIFY(Orvanth::Locker().MyLockerID().owner != 0);

    // The lock manager gone: a zero id, and an empty authority unless the connection broke.
    QCOMPARE(m_engine.stop(), 0);
    QVERIFY(isZero(registry->getLockerID()));
    try {
        QCOMPARE(registry->getLockAuthority().length(), CORBA::ULong(0));
    } catch (const CORBA::COMM_FAILURE&) {
    }
}

void TestRegistry::withdrawnLockManagerGivesZeroIdAndPassesExceptionOn()
{
    // A lock manager in this process, withdrawn while the registry's locker still refers to it.
    m_server = std::make_unique<Orvanth::EngineServer>();
    auto* manager = new Orvanth::LockManagerServant;
    CORBA::Object_var bound = m_server->serve(Orvanth::Locker::ManagerPath, manager);
    GlobalImpl* registry = GlobalImpl::getInstance();
    QVERIFY(!isZero(registry->getLockerID()));
    m_server->deactivate(manager);
    manager->_remove_ref();
    QVERIFY(isZero(registry->getLockerID()));
    QVERIFY_EXCEPTION_THROWN(registry->getLockAuthority(), CORBA::OBJECT_NOT_EXIST);

    // The lock manager of the tests that follow: quick calls, so one is nearly always under way.
    m_manager = new Orvanth::LockManagerServant;
    bound = m_server->serve(Orvanth::Locker::ManagerPath, m_manager);
}

void TestRegistry::firstUseFromSeveralThreadsBuildsOneLocker()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    const std::size_t lockers = m_manager->lockerCount();
    std::atomic<bool> go{false};
    Orvanth::LockerID ids[4] = {};
    std::thread threads[4];
    for (int i = 0; i < 4; ++i)
        threads[i] = std::thread([&go, &ids, i, registry] {
            while (!go)
                std::this_thread::yield();
            ids[i] = registry->getLockerID();
        });
    go = true;
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(m_manager->lockerCount(), lockers + 1);
    for (const Orvanth::LockerID& id : ids)
        QVERIFY(!isZero(id) && id.owner == ids[0].owner);
}

void TestRegistry::lockIdCallsRacingDesktopCloseEndCleanly()
{
    // A few rounds, so that a call is under way in the middle of the close in some.
    for (int round = 0; round < 5; ++round) {
        QPointer<GlobalImpl> registry = GlobalImpl::getInstance();
        QVERIFY(!isZero(registry->getLockerID()));
        QWidget parent;
        auto* desktop = new DesktopImpl(&parent);
        registry->setDesktop(desktop);
        const std::size_t lockers = m_manager->lockerCount();
        // Two play DDS threads: they ask for the registry and, through the gateway they hold
        // for the call, for the lock id, until well after the close.
        std::atomic<bool> closed{false};
        std::atomic<int> idsBeforeClose{0}, registriesAfterClose{0};
        const auto playDds = [&] {
            for (int roundsAfterClose = 0; roundsAfterClose < 100;) {
                const bool afterClose = closed;
                const bool found = GlobalImpl::getInstance() || GlobalImpl::existingInstance();
                const std::shared_ptr<LockerGateway> gateway = GlobalImpl::currentLockerGateway();
                idsBeforeClose += !afterClose && gateway && !isZero(gateway->getLockerID()) ? 1 : 0;
                registriesAfterClose += afterClose && found ? 1 : 0;
                roundsAfterClose += afterClose ? 1 : 0;
            }
        };
        std::thread first(playDds), second(playDds);
        QTRY_VERIFY_WITH_TIMEOUT(idsBeforeClose >= 20, 10000);
        QVERIFY(desktop->close());
        closed = true;
        first.join(), second.join();
        QVERIFY(registry.isNull() && qApp->findChildren<GlobalImpl*>().isEmpty() && registriesAfterClose == 0);
        // Nothing built a locker after the registry's, before the close or after it.
        QCOMPARE(m_manager->lockerCount(), lockers);
    }
    // Nor does a desktop closed after the registry went build one: a registry being built
    // sets the global pool to 8 threads.
    QWidget parent;
    QThreadPool::globalInstance()->setMaxThreadCount(3);
    QVERIFY(DesktopImpl(&parent).close());
    QCOMPARE(QThreadPool::globalInstance()->maxThreadCount(), 3);
}

void TestRegistry::subscriberThreadsStopBeforeLockerGoes()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    QVERIFY(!isZero(registry->getLockerID()));
    const std::shared_ptr<LockerGateway> gateway = GlobalImpl::currentLockerGateway();
    const std::size_t lockers = m_manager->lockerCount();
    // The subscriber's last act, on its own thread as it ends, needs the lock id.
    QThread subscriber;
    Orvanth::LockerID lastId{};
    connect(&subscriber, &QThread::finished, [&lastId, registry] { lastId = registry->getLockerID(); });
    subscriber.start();
    registry->storeSubscriberThread(&subscriber);
    delete registry;
    QVERIFY(subscriber.isFinished() && !isZero(lastId));
    // A gateway still held after the registry went answers without building a locker.
    QVERIFY(gateway && gateway->isClosed() && !gateway->getLocker() && isZero(gateway->getLockerID()));
    QCOMPARE(gateway->getLockAuthority().length(), CORBA::ULong(0));
    QCOMPARE(m_manager->lockerCount(), lockers);
}

void TestRegistry::followsTheLanguageOption_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("ok");
    QTest::addColumn<QString>("logged");
    QTest::newRow("traditional chinese") << "zh_tw" << "zh_TW" << QStringLiteral("確定") << "";
    QTest::newRow("as a locale names it") << "zh-TW" << "zh_TW" << QStringLiteral("確定") << "";
    // No simplified catalog: the traditional one is not taken for it.
    QTest::newRow("simplified chinese") << "zh_cn" << "zh_CN" << "OK" << "no translations for";
    QTest::newRow("english") << "en" << "en" << "OK" << "no translations for";
    QTest::newRow("empty") << "" << "" << "OK" << "";
    QTest::newRow("a path") << "../../zh_TW" << "" << "OK" << "not a language";
}

void TestRegistry::followsTheLanguageOption()
{
    QFETCH(QString, option);
    QFETCH(QString, language);
    QFETCH(QString, ok);
    QFETCH(QString, logged);
    const auto translatedOk = [] { return QCoreApplication::translate("GUIManagerReceiver", "OK"); };
    LanguageSwitch* languages = GlobalImpl::getInstance()->languageSwitch();
    LogCapture log;
    QSignalSpy changes(languages, &LanguageSwitch::languageChanged);
    {
        LanguageScope scope(option.toLatin1().constData());
        QCOMPARE(languages->language(), language);
        QCOMPARE(translatedOk(), ok);
        QCOMPARE(languages->loadedCatalogs().isEmpty(), ok == QLatin1String("OK"));
        if (!logged.isEmpty())
            QVERIFY(log.contains(logged));
    }
    // Taking the option away brings the source texts back.
    QCOMPARE(translatedOk(), QStringLiteral("OK"));
    QVERIFY(languages->loadedCatalogs().isEmpty());
    QCOMPARE(changes.count(), 2);
    QCOMPARE(changes.first().at(0).toString(), language);

    // A registry built while the option is set starts in that language.
    LanguageScope scope(option.toLatin1().constData());
    cleanup();
    QCOMPARE(GlobalImpl::getInstance()->languageSwitch()->language(), language);
    QCOMPARE(translatedOk(), ok);
}

void TestRegistry::loadsAHostCatalogBesideTheLibrarys()
{
    QTemporaryDir folder;
    QVERIFY(QFile::copy(QStringLiteral(":/translations/tzuicomponents_zh_TW.qm"), folder.filePath("host_zh.qm")));
    LanguageSwitch* languages = GlobalImpl::getInstance()->languageSwitch();
    LanguageScope scope("zh_tw");
    languages->addCatalog(QStringLiteral("host"), folder.path());
    // NAME_zh serves zh_TW when there is no NAME_zh_TW.
    QCOMPARE(languages->loadedCatalogs(), QStringList({"tzuicomponents", "host"}));
    scope.set("de");
    QVERIFY(languages->loadedCatalogs().isEmpty());
}

QTEST_MAIN(TestRegistry)
#include "tst_registry.moc"
