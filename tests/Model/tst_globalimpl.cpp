// The registry: instance lookup (from the GUI thread and from others), snap points, the
// screen table, data-entry ownership, peers that go away, and teardown. The window
// lookup has a test of its own (tst_windowlookup).

#include "LogCapture.h"

#include "DesktopImpl.h"
#include "GlobalImpl.h"
#include "ProcessManager.h"
#include "SystemModule.h"

#include <QApplication>
#include <QThreadPool>
#include <QtTest>

#include <thread>

class TestGlobalImpl : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void getInstanceKeepsOneRegistryUnderTheApplication();
    void otherThreadsNeverBuildRegistry();
    void computesSnapPoints_data();
    void computesSnapPoints();
    void screenTableKeepsOneWidgetPerName();
    void entryMechanismStaysWithFirstClaimant();
    void forgetsDestroyedPeers();
    void teardownStopsThreadsAndDeletesOwnedObjectsOnly();
};

void TestGlobalImpl::cleanup()
{
    while (GlobalImpl* registry = qApp->findChild<GlobalImpl*>())
        delete registry;
    qApp->setProperty("-res", QVariant());
    qApp->setProperty("-grid", QVariant());
}

void TestGlobalImpl::getInstanceKeepsOneRegistryUnderTheApplication()
{
    // What runs at shutdown asks without building.
    QVERIFY(!GlobalImpl::existingInstance());
    QVERIFY(qApp->findChildren<GlobalImpl*>().isEmpty());

    GlobalImpl* registry = GlobalImpl::getInstance();
    QCOMPARE(GlobalImpl::getInstance(), registry);
    QCOMPARE(GlobalImpl::existingInstance(), registry);
    QCOMPARE(registry->parent(), qApp);
    QCOMPARE(QThreadPool::globalInstance()->maxThreadCount(), 8);
    delete registry;
    QVERIFY(!GlobalImpl::existingInstance());

    // One built by the host anywhere below the application object is found, not doubled.
    QObject holder(qApp);
    auto* built = new GlobalImpl(&holder);
    QCOMPARE(GlobalImpl::existingInstance(), built);
    QCOMPARE(GlobalImpl::getInstance(), built);
    QCOMPARE(qApp->findChildren<GlobalImpl*>().size(), 1);
}

void TestGlobalImpl::otherThreadsNeverBuildRegistry()
{
    GlobalImpl* fromThread = nullptr;
    const auto askFromThread = [&fromThread] {
        std::thread([&fromThread] { fromThread = GlobalImpl::getInstance(); }).join();
        return fromThread;
    };
    {
        LogCapture log;
        QVERIFY(!askFromThread());
        QVERIFY(qApp->findChildren<GlobalImpl*>().isEmpty());
        QCOMPARE(log.linesContaining(QStringLiteral("outside the GUI thread")).size(), 1);
    }

    // A registry the host built under the application object is every thread's at once,
    // before the GUI thread ever looked for it.
    auto* built = new GlobalImpl(qApp);
    QCOMPARE(askFromThread(), built);
    delete built;
    QVERIFY(!askFromThread());

    GlobalImpl* registry = GlobalImpl::getInstance();
    QCOMPARE(askFromThread(), registry);
}

void TestGlobalImpl::computesSnapPoints_data()
{
    QTest::addColumn<QVariant>("resolution");
    QTest::addColumn<QVariant>("grid");
    QTest::addColumn<QList<QPoint>>("points");

    QTest::newRow("800x480 in 2 rows of 4")
        << QVariant("800x480") << QVariant("2x4")
        << QList<QPoint>{{0, 0}, {200, 0}, {400, 0}, {600, 0}, {0, 240}, {200, 240}, {400, 240}, {600, 240}};
    QTest::newRow("1280x800 in 3x3 truncates")
        << QVariant("1280x800") << QVariant("3x3")
        << QList<QPoint>{{0, 0}, {426, 0}, {853, 0}, {0, 266}, {426, 266}, {853, 266}, {0, 533}, {426, 533}, {853, 533}};
    QTest::newRow("portrait in 3 rows of 1") << QVariant("480x800") << QVariant("3x1")
                                             << QList<QPoint>{{0, 0}, {0, 266}, {0, 533}};
    QTest::newRow("grid without resolution") << QVariant() << QVariant("2x4") << QList<QPoint>{};
    QTest::newRow("zero rows") << QVariant("800x480") << QVariant("0x4") << QList<QPoint>{};
    QTest::newRow("malformed grid") << QVariant("800x480") << QVariant("2x4x1") << QList<QPoint>{};
    QTest::newRow("malformed resolution") << QVariant("800X480") << QVariant("2x4") << QList<QPoint>{};
}

void TestGlobalImpl::computesSnapPoints()
{
    QFETCH(QVariant, resolution);
    QFETCH(QVariant, grid);
    QFETCH(QList<QPoint>, points);
    qApp->setProperty("-res", resolution);
    qApp->setProperty("-grid", grid);
    QCOMPARE(GlobalImpl::getInstance()->gridPoints, points);
}

void TestGlobalImpl::screenTableKeepsOneWidgetPerName()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    QWidget a, b, replacement, stranger;
    registry->addScreen(QStringLiteral("A"), &a);
    registry->addScreen(QStringLiteral("A"), &b);
    QCOMPARE(registry->getScreen(QStringLiteral("A")), &b);

    // An unknown name reads null and is listed from then on; names are case-sensitive.
    QVERIFY(!registry->getScreen(QStringLiteral("a")));
    QList<QString> names = registry->getScreenList();
    std::sort(names.begin(), names.end());
    QCOMPARE(names, (QList<QString>{QStringLiteral("A"), QStringLiteral("a")}));

    // Neither an unregistered widget nor null may match the null entry of "a".
    registry->swapMenuItems(&stranger, &replacement);
    registry->swapMenuItems(nullptr, &replacement);
    QVERIFY(!registry->getScreen(QStringLiteral("a")));
    registry->swapMenuItems(&b, &replacement);
    QCOMPARE(registry->getScreen(QStringLiteral("A")), &replacement);
    QCOMPARE(registry->getScreenList().size(), 2);

    QVERIFY(registry->removeScreen(QStringLiteral("A")));
    QVERIFY(!registry->removeScreen(QStringLiteral("A")));
}

void TestGlobalImpl::entryMechanismStaysWithFirstClaimant()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    QWidget first;
    auto second = std::make_unique<QWidget>();
    registry->setEntryMechanism(&first);
    registry->setEntryMechanism(second.get());
    registry->releaseEntryMechanism(second.get());
    QCOMPARE(registry->entryMechanism(), &first);
    registry->releaseEntryMechanism(&first);
    registry->setEntryMechanism(second.get());
    QCOMPARE(registry->entryMechanism(), second.get());
    // A holder destroyed without releasing does not block the slot for ever.
    second.reset();
    registry->setEntryMechanism(&first);
    QCOMPARE(registry->entryMechanism(), &first);
}

void TestGlobalImpl::forgetsDestroyedPeers()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    QWidget parent;
    auto* desktop = new DesktopImpl(&parent);
    registry->setDesktop(desktop);
    auto* systemModule = new SystemModule(&parent);
    registry->setSystemModule(systemModule);
    QCOMPARE(registry->desktop(), desktop);
    QCOMPARE(registry->systemModule(), systemModule);

    delete desktop;
    delete systemModule;
    QVERIFY(!registry->desktop());
    QVERIFY(!registry->systemModule());
}

void TestGlobalImpl::teardownStopsThreadsAndDeletesOwnedObjectsOnly()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    QPointer<SystemModule> systemModule = registry->systemModule();
    // Scripts find the launcher by name through the meta-object system.
    QObject* found = nullptr;
    QVERIFY(QMetaObject::invokeMethod(systemModule, "getModule", Q_RETURN_ARG(QObject*, found),
                                      Q_ARG(QString, QStringLiteral("ProcessManager"))));
    QPointer<QObject> launcher = found;
    QVERIFY(qobject_cast<ProcessManager*>(launcher));

    // One thread runs an event loop, the other a loop of its own that only an
    // interruption request ends.
    QThread running;
    running.start();
    std::unique_ptr<QThread> polling(QThread::create([] {
        while (!QThread::currentThread()->isInterruptionRequested())
            QThread::msleep(1);
    }));
    polling->start();
    auto* deletedEarly = new QThread;
    registry->storeSubscriberThread(deletedEarly);
    registry->storeSubscriberThread(&running);
    registry->storeSubscriberThread(polling.get());
    delete deletedEarly;
    QWidget screen;
    registry->addScreen(QStringLiteral("Scope"), &screen);
    systemModule->setSystemScreen(QStringLiteral("MainWindow"), &screen);

    delete registry;
    // Stopped, not merely asked to stop, by the time the registry is gone.
    QVERIFY(running.isFinished());
    QVERIFY(polling->isFinished());
    QVERIFY(systemModule.isNull());
    QVERIFY(launcher.isNull());
    // The host's widget is still its own (ASan would see a use after free here).
    screen.setObjectName(QStringLiteral("stillAlive"));
    QVERIFY(GlobalImpl::getInstance() != nullptr);
}

QTEST_MAIN(TestGlobalImpl)
#include "tst_globalimpl.moc"
