// The bound widgets against a real omniNames and the engine simulator: binding by name,
// the overlay following the engine's lock (throttled by the update delay), a refused and
// a granted lock on a touch, a lost engine, widgets coming back with their engine, and a
// push button's Set reaching the engine with this user interface's locker id, from the pool.

#include "LogCapture.h"
#include "ModuleWindow.h"
#include "SimulatorSession.h"

#include "ApplicationOrb.h"
#include "DDS_BaseObj.h"
#include "Locker.h"
#include "PushButtonImpl.h"
#include "QTZStatusBar.h"
#include "TopicPublisher.h"

#include <OrvanthTopicsPubSubTypes.h>

#include <QPushButton>
#include <QtTest>

#include <memory>

using Lumaro::gui::PushButtonImpl;

namespace {

const QString action = QStringLiteral("RUNACTION1");
const QString held = QStringLiteral("LOCK RUNACTION1 held");
const QString freed = QStringLiteral("LOCK RUNACTION1 free");
// Time between the engine's going and coming back: room for a case's steps in between.
constexpr int crowdSize = 200;

} // namespace

class TestBoundWidgets : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

    void bindsByNameAndFollowsTheEnginesLock();
    void showsTheLastLockStateAfterOneUpdateDelay();
    void touchIsRefusedWhileAnotherHoldsTheLock();
    void lostEngineIsShownAndToldOnce();
    void widgetsComeBackWithTheirEngine_data();
    void widgetsComeBackWithTheirEngine();
    void twoHundredWidgetsComeBackTogether();
    void pressSendsSetWithOurLockerId_data();
    void pressSendsSetWithOurLockerId();

private:
    NamingServiceProcess m_naming;
};

void TestBoundWidgets::initTestCase()
{
    QVERIFY(m_naming.start());
    qApp->setProperty("-ORBInitRef", QStringLiteral("NameService=") + m_naming.corbaname());
    ApplicationOrb::start();
}

void TestBoundWidgets::cleanup()
{
    if (GlobalImpl* registry = GlobalImpl::existingInstance())
        registry->releaseEntryMechanism(registry->entryMechanism());
}

void TestBoundWidgets::cleanupTestCase()
{
    QThreadPool::globalInstance()->waitForDone();
    delete GlobalImpl::existingInstance();
    ORB_base::destroyProcessOrb();
    Orvanth::DDS_BaseObj::shutdownDds();
    m_naming.stop();
}

void TestBoundWidgets::bindsByNameAndFollowsTheEnginesLock()
{
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming, {"--lock-toggle", "0.4"}));
    ModuleWindow host;
    // A name no module has leaves the widget unbound; rebound to one the engine has, it works.
    QVERIFY(!host.bind(QStringLiteral("NOSUCHATTRIBUTE1")));
    QVERIFY(!host.button->hasReading());
    QVERIFY(host.bind(action));
    QVERIFY(host.button->isBound());
    // Each take and each release by the engine's own locker reaches the overlay.
    QPushButton* overlay = host.button->lockOverlay();
    for (bool locked : {true, false, true}) {
        QTRY_COMPARE_WITH_TIMEOUT(overlay->isVisible(), locked, 5000);
        QCOMPARE(host.button->isLocked(), locked);
    }
    QVERIFY(engine.count(held) >= 2 && engine.count(freed) >= 1);
}

void TestBoundWidgets::showsTheLastLockStateAfterOneUpdateDelay()
{
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming));
    ModuleWindow host(800);
    QVERIFY(host.bind(action));
    QSignalSpy shown(host.button, &WidgetBaseImpl::SetLocked);
    // Another user interface takes the lock: the first notice is handled at once.
    Orvanth::Locker other;
    Orvanth::EngineAttribBase_var attribute = engine.attribute(action);
    Orvanth::Lock_Authority_var authority = other.LockAuthority();
    CORBA::Long handle = attribute->Lock(authority.in());
    QTRY_VERIFY_WITH_TIMEOUT(host.button->lockOverlay()->isVisible(), 5000);
    // A release and a take within the same delay: held back until it ends, then shown as they stand.
    attribute->Unlock(other.MyLockerID(), handle);
    handle = attribute->Lock(authority.in());
    QVERIFY(engine.waitForLine(held, 2));
    QTest::qWait(1300);
    QVERIFY(host.button->lockOverlay()->isVisible());
    QCOMPARE(shown.count(), 1);
    attribute->Unlock(other.MyLockerID(), handle);
}

void TestBoundWidgets::touchIsRefusedWhileAnotherHoldsTheLock()
{
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming));
    Orvanth::Locker other;
    Orvanth::EngineAttribBase_var attribute = engine.attribute(action);
    Orvanth::Lock_Authority_var authority = other.LockAuthority();
    const CORBA::Long handle = attribute->Lock(authority.in());
    ModuleWindow host;
    QVERIFY(host.bind(action));
    QVERIFY(host.button->lockOverlay()->isVisible());
    QSignalSpy entry(host.button, &WidgetBaseImpl::DisplayEntryMechanism);
    LogCapture log;
    host.touch();
    QTRY_VERIFY_WITH_TIMEOUT(log.contains(QStringLiteral("UserInterface - Unable to obtain Lock for \"RUNACTION1\"")), 5000);
    QVERIFY(entry.isEmpty());
    QVERIFY(!GlobalImpl::getInstance()->entryMechanism());
    QVERIFY(host.button->isBound());

    // Given back, the lock is ours on the next touch: taken for the entry, then handed
    // straight back, as a button's entry is its press.
    attribute->Unlock(other.MyLockerID(), handle);
    QTRY_VERIFY_WITH_TIMEOUT(!host.button->lockOverlay()->isVisible(), 5000);
    host.touch();
    QVERIFY(entry.wait(5000));
    QVERIFY(host.button->lockHandle() != 0);
    QVERIFY(engine.waitForLine(held, 2));
    QVERIFY(engine.waitForLine(freed, 2));
    QVERIFY(!host.button->lockOverlay()->isVisible());
}

void TestBoundWidgets::lostEngineIsShownAndToldOnce()
{
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming));
    QWidget desktop;
    QTZStatusBar statusBar(&desktop);
    GlobalImpl::getInstance()->setStatusBar(&statusBar);
    ModuleWindow host;
    ModuleWindow watcher;
    QVERIFY(host.bind(action) && watcher.bind(action));
    QSignalSpy posted(host.button, &WidgetBaseImpl::exceptionMessage);
    QSignalSpy clicked(host.button, &PushButtonImpl::clicked);
    QSignalSpy watcherPosted(watcher.button, &WidgetBaseImpl::exceptionMessage);
    // A binding's last calls (the type check, the lock asked again after a second) would
    // otherwise meet the dead engine and report the loss before the notice below.
    QTest::qWait(1500);
    // The engine dies: a press still returns at once, its Set fails on the pool.
    engine.kill();
    QElapsedTimer clock;
    clock.start();
    QTest::mouseClick(host.button->button(), Qt::LeftButton);
    QVERIFY2(clock.elapsed() < 200, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(clicked.count(), 1);
    QTRY_VERIFY_WITH_TIMEOUT(!posted.isEmpty(), 10000);
    QVERIFY(!host.button->hasReading());
    const QString message = posted.first().at(0).toString();
    QVERIFY2(QRegularExpression(QStringLiteral("^CORBA::(TRANSIENT|COMM_FAILURE) RUNACTION1, disconnecting from "
                                               "engine: Sweep$")).match(message).hasMatch(),
             qPrintable(message));
    QTRY_COMPARE(statusBar.lastText(), message);

    QCOMPARE(host.button->attributeState(), WidgetBaseImpl::EngineLost);
    // Lost, the button takes no press: nothing is sent, nothing more is told.
    QTest::mouseClick(host.button->button(), Qt::LeftButton);
    QThreadPool::globalInstance()->waitForDone();
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(posted.count(), 1);

    // A lock notice that still comes (from another publisher of the topic) makes the
    // other widget ask the engine, which fails: shown lost, not locked.
    Orvanth::TopicPublisher<Orvanth::TKWW_DDS::ATTR_VOIDPubSubType> notices("Lumaro/local/LOCK/RUNACTION1");
    // Both widgets keep their readers: a notice sent before the watcher's is matched is lost.
    QVERIFY(notices.waitForSubscribers(2, std::chrono::seconds(5)));
    QVERIFY(notices.publish(Orvanth::TKWW_DDS::ATTR_VOID()));
    QTRY_VERIFY_WITH_TIMEOUT(!watcherPosted.isEmpty(), 10000);
    QVERIFY(!watcher.button->hasReading());
    QCOMPARE(watcher.button->attributeState(), WidgetBaseImpl::EngineLost);
    QVERIFY(!watcher.button->isLocked());
    QVERIFY(!watcher.button->lockOverlay()->isVisible());
    QVERIFY(watcher.button->engineLostOverlay()->isVisible());
}

void TestBoundWidgets::widgetsComeBackWithTheirEngine_data()
{
    QTest::addColumn<bool>("byName");
    QTest::newRow("bound by name") << true;
    QTest::newRow("bound by reference") << false;
}

void TestBoundWidgets::widgetsComeBackWithTheirEngine()
{
    QFETCH(bool, byName);
    // The engine's attributes go with its module and come back with new references.
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming));
    engine.discovery().postInit();
    ModuleWindow host;
    host.button->setAttributeName(action);
    QSignalSpy finished(host.button, &WidgetBaseImpl::bindingFinished);
    if (byName)
        host.button->bindAttributeByName();
    else
        host.button->bindAttribute(Orvanth::EngineAttribBase_var(engine.attribute(action)).in());
    QTRY_COMPARE_WITH_TIMEOUT(host.button->attributeState(), WidgetBaseImpl::Free, 5000);
    // Another user interface holds the lock while the engine is away.
    Orvanth::Locker other;
    Orvanth::Lock_Authority_var authority = other.LockAuthority();
    const CORBA::Long handle = engine.attribute(action)->Lock(authority.in());
    QTRY_COMPARE_WITH_TIMEOUT(host.button->attributeState(), WidgetBaseImpl::Locked, 5000);

    QSignalSpy posted(host.button, &WidgetBaseImpl::exceptionMessage);
    QSignalSpy states(host.button, &WidgetBaseImpl::attributeStateChanged);
    engine.churnModule();
    QVERIFY(engine.waitForLine(QStringLiteral("MODULE destroy,1")));
    QTRY_COMPARE_WITH_TIMEOUT(host.button->attributeState(), WidgetBaseImpl::EngineLost, 5000);
    QCOMPARE(posted.count(), 1);
    QVERIFY(posted.first().at(0).toString().startsWith(QLatin1String("CORBA::OBJECT_NOT_EXIST RUNACTION1")));
    QVERIFY(!host.button->lockOverlay()->isVisible());

    // Back without a word from the host: bound anew, asked again, and shown as it stands.
    engine.churnModule();
    QVERIFY(engine.waitForLine(QStringLiteral("MODULE create,1"), 2));
    QTRY_COMPARE_WITH_TIMEOUT(host.button->attributeState(), WidgetBaseImpl::Locked, 5000);
    QVERIFY(host.button->lockOverlay()->isVisible());
    QVERIFY(!host.button->engineLostOverlay()->isVisible());
    QCOMPARE(posted.count(), 1);
    QCOMPARE(host.button->attributeFeed()->moduleIndex(), QStringLiteral("1"));
    engine.attribute(action)->Unlock(other.MyLockerID(), handle);
    QTRY_COMPARE_WITH_TIMEOUT(host.button->attributeState(), WidgetBaseImpl::Free, 5000);
    QCOMPARE(states.count(), 3);
    // The new references take the press.
    QTest::mouseClick(host.button->button(), Qt::LeftButton);
    QVERIFY(engine.waitForLine(QStringLiteral("ACTION RUNACTION1")));
}

void TestBoundWidgets::twoHundredWidgetsComeBackTogether()
{
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming));
    engine.discovery().postInit();
    QWidget window;
    window.setObjectName(QStringLiteral("TopContainerObject"));
    window.setWindowTitle(QStringLiteral("Crowd"));
    std::vector<WidgetBaseImpl*> widgets;
    std::vector<std::unique_ptr<QSignalSpy>> posted;
    for (int i = 0; i < crowdSize; ++i) {
        auto* widget = new WidgetBaseImpl(&window);
        widget->setAttributeName(action);
        widget->bindAttributeByName();
        widgets.push_back(widget);
        posted.push_back(std::make_unique<QSignalSpy>(widget, &WidgetBaseImpl::exceptionMessage));
    }
    const auto countIn = [&widgets](WidgetBaseImpl::AttributeState state) {
        return int(std::count_if(widgets.begin(), widgets.end(),
                                 [state](const WidgetBaseImpl* widget) { return widget->attributeState() == state; }));
    };
    QTRY_COMPARE_WITH_TIMEOUT(countIn(WidgetBaseImpl::Free), crowdSize, 20000);
    LogCapture log;
    engine.churnModule();
    QTRY_COMPARE_WITH_TIMEOUT(countIn(WidgetBaseImpl::EngineLost), crowdSize, 10000);
    engine.churnModule();
    QTRY_COMPARE_WITH_TIMEOUT(countIn(WidgetBaseImpl::Free), crowdSize, 10000);
    // Each widget told of its loss once, and came back by the same reader it had.
    QCOMPARE(int(std::count_if(posted.begin(), posted.end(), [](const auto& spy) { return spy->count() == 1; })),
             crowdSize);
    QCOMPARE(log.linesContaining(QStringLiteral("error, disconnecting")).size(), crowdSize);
    QCOMPARE(log.linesContaining(QStringLiteral("Engine back for")).size(), crowdSize);
}

void TestBoundWidgets::pressSendsSetWithOurLockerId_data()
{
    QTest::addColumn<QString>("holder");
    QTest::newRow("free") << QString();
    QTest::newRow("held by this user interface") << QStringLiteral("us");
    QTest::newRow("held by another locker") << QStringLiteral("other");
    QTest::newRow("entry slot held by another widget") << QStringLiteral("entry");
}

void TestBoundWidgets::pressSendsSetWithOurLockerId()
{
    QFETCH(QString, holder);
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming));
    ModuleWindow host;
    host.button->setButtonObjectName(QStringLiteral("RunButton"));
    QVERIFY(host.bind(action));
    Orvanth::EngineAttribBase_var attribute = engine.attribute(action);
    Orvanth::Locker other;
    Orvanth::Lock_Authority_var otherAuthority = other.LockAuthority();
    const bool ours = holder == QLatin1String("us");
    CORBA::Long handle = 0;
    if (ours || holder == QLatin1String("other"))
        handle = attribute->Lock(ours ? GlobalImpl::getInstance()->getLockAuthority() : otherAuthority.in());
    QWidget editor;
    if (holder == QLatin1String("entry"))
        GlobalImpl::getInstance()->setEntryMechanism(&editor);

    QSignalSpy pressed(host.button, &PushButtonImpl::buttonPressed);
    QSignalSpy posted(host.button, &WidgetBaseImpl::exceptionMessage);
    QTest::mouseClick(host.button->button(), Qt::LeftButton);
    QThreadPool::globalInstance()->waitForDone();
    if (holder == QLatin1String("entry")) {
        // A bound button ignores a press while another widget takes an entry.
        QVERIFY(pressed.isEmpty());
        QCOMPARE(engine.count(QStringLiteral("ACTION RUNACTION1")), 0);
        return;
    }
    QCOMPARE(pressed.count(), 1);
    QCOMPARE(pressed.first().at(0).toString(), QStringLiteral("RunButton"));
    if (holder == QLatin1String("other")) {
        QTRY_COMPARE_WITH_TIMEOUT(posted.count(), 1, 5000);
        QCOMPARE(posted.first().at(0).toString(), QStringLiteral("RUNACTION1 threw an exception while sending notify event"));
        QCOMPARE(engine.count(QStringLiteral("ACTION RUNACTION1")), 0);
        QVERIFY(host.button->isBound());
        attribute->Unlock(other.MyLockerID(), handle);
    } else {
        QVERIFY(engine.waitForLine(QStringLiteral("ACTION RUNACTION1")));
        QVERIFY(posted.isEmpty());
    }
    if (ours)
        attribute->Unlock(GlobalImpl::getInstance()->getLockerID(), handle);
}

QTEST_MAIN(TestBoundWidgets)
#include "tst_boundwidgets.moc"
