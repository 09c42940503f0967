// The registry: instance lookup, snap points, the screen table, data-entry ownership,
// teardown and the window lookup.

#include "GlobalImpl.h"
#include "ProcessManager.h"
#include "SystemModule.h"

#include <QApplication>
#include <QPushButton>
#include <QThreadPool>
#include <QtTest>

class TestGlobalImpl : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void getInstanceBuildsOneRegistryUnderTheApplication();
    void getInstanceAdoptsRegistryBuiltByHost();
    void getInstanceBuildsAnewAfterDeletion();

    void computesSnapPoints_data();
    void computesSnapPoints();

    void laterScreenOfSameNameReplacesEarlier();
    void unknownScreenReadsNullAndIsListedFromThenOn();
    void removesOnlyRegisteredScreens();
    void swapsMenuItemUnderItsName();
    void swapIgnoresUnregisteredItem();

    void entryMechanismStaysWithFirstClaimant();
    void entryMechanismIsFreedWhenHolderIsDestroyed();

    void teardownAsksSubscriberThreadsToQuit();
    void teardownDeletesOwnedObjectsOnly();

    void findsNearestWindowAboveWidget();
    void namesWindowHoldingWidget();
    void widgetOutsideAnyWindowHasNoWindow();

private:
    static void setOptions(const QVariant& resolution, const QVariant& grid);
};

void TestGlobalImpl::cleanup()
{
    while (GlobalImpl* registry = qApp->findChild<GlobalImpl*>())
        delete registry;
    setOptions(QVariant(), QVariant());
}

void TestGlobalImpl::setOptions(const QVariant& resolution, const QVariant& grid)
{
    qApp->setProperty("-res", resolution);
    qApp->setProperty("-grid", grid);
}

void TestGlobalImpl::getInstanceBuildsOneRegistryUnderTheApplication()
{
    QThreadPool::globalInstance()->setMaxThreadCount(2);
    GlobalImpl* registry = GlobalImpl::getInstance();
    QVERIFY(registry);
    QCOMPARE(GlobalImpl::getInstance(), registry);
    QCOMPARE(registry->parent(), qApp);
    QCOMPARE(registry->objectName(), QStringLiteral("GlobalImpl"));
    QCOMPARE(qApp->findChildren<GlobalImpl*>().size(), 1);
    QCOMPARE(QThreadPool::globalInstance()->maxThreadCount(), 8);
}

void TestGlobalImpl::getInstanceAdoptsRegistryBuiltByHost()
{
    // A host may hang its registry anywhere below the application object.
    QObject holder(qApp);
    auto* built = new GlobalImpl(&holder);
    QCOMPARE(GlobalImpl::getInstance(), built);
    QCOMPARE(qApp->findChildren<GlobalImpl*>().size(), 1);
    delete built;
}

void TestGlobalImpl::getInstanceBuildsAnewAfterDeletion()
{
    QPointer<GlobalImpl> first = GlobalImpl::getInstance();
    delete first;
    QVERIFY(first.isNull());
    GlobalImpl* second = GlobalImpl::getInstance();
    QVERIFY(second);
    QCOMPARE(qApp->findChildren<GlobalImpl*>(), QList<GlobalImpl*>{second});
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
    QTest::newRow("portrait 480x800 in 4 rows of 1")
        << QVariant("480x800") << QVariant("4x1") << QList<QPoint>{{0, 0}, {0, 200}, {0, 400}, {0, 600}};
    QTest::newRow("one cell") << QVariant("800x480") << QVariant("1x1") << QList<QPoint>{{0, 0}};
    QTest::newRow("grid without resolution") << QVariant() << QVariant("2x4") << QList<QPoint>{};
    QTest::newRow("resolution without grid") << QVariant("800x480") << QVariant() << QList<QPoint>{};
    QTest::newRow("zero rows") << QVariant("800x480") << QVariant("0x4") << QList<QPoint>{};
    QTest::newRow("negative columns") << QVariant("800x480") << QVariant("2x-4") << QList<QPoint>{};
    QTest::newRow("grid with words") << QVariant("800x480") << QVariant("two by four") << QList<QPoint>{};
    QTest::newRow("grid with three numbers") << QVariant("800x480") << QVariant("2x4x1") << QList<QPoint>{};
    QTest::newRow("resolution with capital X") << QVariant("800X480") << QVariant("2x4") << QList<QPoint>{};
    QTest::newRow("resolution without height") << QVariant("800x") << QVariant("2x4") << QList<QPoint>{};
    QTest::newRow("empty resolution") << QVariant("") << QVariant("2x4") << QList<QPoint>{};
    QTest::newRow("full-width digits") << QVariant("800x480") << QVariant("\uff12x\uff14") << QList<QPoint>{};
}

void TestGlobalImpl::computesSnapPoints()
{
    QFETCH(QVariant, resolution);
    QFETCH(QVariant, grid);
    QFETCH(QList<QPoint>, points);

    setOptions(resolution, grid);
    QCOMPARE(GlobalImpl::getInstance()->gridPoints, points);
}

void TestGlobalImpl::laterScreenOfSameNameReplacesEarlier()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    QWidget first;
    QWidget second;
    registry->addScreen(QStringLiteral("A"), &first);
    registry->addScreen(QStringLiteral("A"), &second);
    QCOMPARE(registry->getScreen(QStringLiteral("A")), &second);
    QCOMPARE(registry->getScreenList(), QList<QString>{QStringLiteral("A")});
}

void TestGlobalImpl::unknownScreenReadsNullAndIsListedFromThenOn()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    QWidget screen;
    registry->addScreen(QStringLiteral("Scope"), &screen);
    QVERIFY(!registry->getScreen(QStringLiteral("B")));
    QVERIFY(!registry->getScreen(QStringLiteral("scope")));
    QList<QString> names = registry->getScreenList();
    std::sort(names.begin(), names.end());
    QCOMPARE(names, (QList<QString>{QStringLiteral("B"), QStringLiteral("Scope"), QStringLiteral("scope")}));
}

void TestGlobalImpl::removesOnlyRegisteredScreens()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    QWidget screen;
    registry->addScreen(QStringLiteral("A"), &screen);
    QVERIFY(!registry->removeScreen(QStringLiteral("B")));
    QVERIFY(registry->removeScreen(QStringLiteral("A")));
    QVERIFY(!registry->removeScreen(QStringLiteral("A")));
    QVERIFY(registry->getScreenList().isEmpty());
}

void TestGlobalImpl::swapsMenuItemUnderItsName()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    QWidget a;
    QWidget b;
    QWidget other;
    registry->addScreen(QStringLiteral("A"), &a);
    registry->addScreen(QStringLiteral("Other"), &other);
    registry->swapMenuItems(&a, &b);
    QCOMPARE(registry->getScreen(QStringLiteral("A")), &b);
    QCOMPARE(registry->getScreen(QStringLiteral("Other")), &other);
    QCOMPARE(registry->getScreenList().size(), 2);
}

void TestGlobalImpl::swapIgnoresUnregisteredItem()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    QWidget a;
    QWidget stranger;
    QWidget b;
    registry->addScreen(QStringLiteral("A"), &a);
    // A name looked up but never registered holds null; a null item must not match it.
    QVERIFY(!registry->getScreen(QStringLiteral("Empty")));
    registry->swapMenuItems(&stranger, &b);
    registry->swapMenuItems(nullptr, &b);
    QCOMPARE(registry->getScreen(QStringLiteral("A")), &a);
    QVERIFY(!registry->getScreen(QStringLiteral("Empty")));
    QCOMPARE(registry->getScreenList().size(), 2);
}

void TestGlobalImpl::entryMechanismStaysWithFirstClaimant()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    QWidget first;
    QWidget second;
    registry->setEntryMechanism(&first);
    registry->setEntryMechanism(&second);
    QCOMPARE(registry->entryMechanism(), &first);
    registry->releaseEntryMechanism(&second);
    QCOMPARE(registry->entryMechanism(), &first);
    registry->releaseEntryMechanism(&first);
    QVERIFY(!registry->entryMechanism());
    registry->setEntryMechanism(&second);
    QCOMPARE(registry->entryMechanism(), &second);
}

void TestGlobalImpl::entryMechanismIsFreedWhenHolderIsDestroyed()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    auto holder = std::make_unique<QWidget>();
    registry->setEntryMechanism(holder.get());
    holder.reset();
    QVERIFY(!registry->entryMechanism());
    QWidget next;
    registry->setEntryMechanism(&next);
    QCOMPARE(registry->entryMechanism(), &next);
}

void TestGlobalImpl::teardownAsksSubscriberThreadsToQuit()
{
    auto* registry = new GlobalImpl(qApp);
    QThread first;
    QThread second;
    auto* gone = new QThread;
    first.start();
    second.start();
    registry->storeSubscriberThread(&first);
    registry->storeSubscriberThread(gone);
    registry->storeSubscriberThread(&second);
    // A thread the host deleted early must not be touched.
    delete gone;

    delete registry;
    QVERIFY(first.wait(5000));
    QVERIFY(second.wait(5000));
}

void TestGlobalImpl::teardownDeletesOwnedObjectsOnly()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    QPointer<SystemModule> systemModule = registry->systemModule();
    QPointer<QObject> launcher = systemModule->getModule(QStringLiteral("ProcessManager"));
    QVERIFY(qobject_cast<ProcessManager*>(launcher));
    QCOMPARE(launcher->parent(), registry);

    QWidget screen;
    QWidget entry;
    QObject module;
    registry->addScreen(QStringLiteral("Scope"), &screen);
    registry->setEntryMechanism(&entry);
    systemModule->setModule(QStringLiteral("ScreenStateManager"), &module);
    systemModule->setSystemScreen(QStringLiteral("MainWindow"), &screen);

    delete registry;
    QVERIFY(systemModule.isNull());
    QVERIFY(launcher.isNull());
    // Registered objects belong to the host: still usable.
    screen.setObjectName(QStringLiteral("stillAlive"));
    entry.setObjectName(QStringLiteral("stillAlive"));
    module.setObjectName(QStringLiteral("stillAlive"));
}

void TestGlobalImpl::findsNearestWindowAboveWidget()
{
    QWidget desktop;
    auto* outer = new QWidget(&desktop);
    outer->setObjectName(QStringLiteral("TopContainerObject"));
    auto* frame = new QWidget(outer);
    auto* inner = new QWidget(frame);
    inner->setObjectName(QStringLiteral("TopContainerObject"));
    auto* button = new QPushButton(inner);
    auto* beside = new QPushButton(frame);

    QCOMPARE(GlobalImpl::getParentWindow(button), inner);
    QCOMPARE(GlobalImpl::getParentWindow(beside), outer);
    // A window is never its own window.
    QCOMPARE(GlobalImpl::getParentWindow(inner), outer);
    QVERIFY(!GlobalImpl::getParentWindow(outer));
}

void TestGlobalImpl::namesWindowHoldingWidget()
{
    QWidget desktop;
    auto* container = new QWidget(&desktop);
    container->setObjectName(QStringLiteral("TopContainerObject"));
    container->setWindowTitle(QStringLiteral("Spektrum \u6e2c\u8a66 \u2126"));
    auto* frame = new QWidget(container);
    auto* button = new QPushButton(frame);

    QCOMPARE(GlobalImpl::getParentWindowName(button), container->windowTitle());
    // Unlike getParentWindow, the name lookup starts at the widget itself.
    QCOMPARE(GlobalImpl::getParentWindowName(container), container->windowTitle());
    QCOMPARE(GlobalImpl::getParentWindowName(&desktop), QString());
}

void TestGlobalImpl::widgetOutsideAnyWindowHasNoWindow()
{
    QWidget desktop;
    desktop.setWindowTitle(QStringLiteral("Desktop"));
    auto* button = new QPushButton(&desktop);
    QVERIFY(!GlobalImpl::getParentWindow(button));
    QVERIFY(GlobalImpl::getParentWindowName(button).isEmpty());
    QVERIFY(!GlobalImpl::getParentWindow(nullptr));
    QVERIFY(GlobalImpl::getParentWindowName(nullptr).isEmpty());
}

QTEST_MAIN(TestGlobalImpl)
#include "tst_globalimpl.moc"
