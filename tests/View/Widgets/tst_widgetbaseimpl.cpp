// The widget base against a real omniNames and the engine simulator: binding by name, the
// lock overlay following the engine's lock notices (throttled by the update delay), the
// engine lock and the entry slot taken on a touch, and engines that refuse or die.

#include "LogCapture.h"
#include "NamingServiceProcess.h"
#include "SimulatorSession.h"

#include "ApplicationOrb.h"
#include "DDS_BaseObj.h"
#include "GlobalImpl.h"
#include "Locker.h"
#include "QTZStatusBar.h"
#include "TopicPublisher.h"
#include "WidgetBaseImpl.h"

#include <OrvanthTopicsPubSubTypes.h>

#include <QPushButton>
#include <QtTest>

#include <memory>

namespace {

const QString action = QStringLiteral("RUNACTION1");
const QString actionHeld = QStringLiteral("LOCK RUNACTION1 held");
const QString actionFree = QStringLiteral("LOCK RUNACTION1 free");

// A module window as the widgets find it: marked "TopContainerObject", with a title.
struct ModuleWindow
{
    ModuleWindow()
    {
        window.setObjectName(QStringLiteral("TopContainerObject"));
        window.setWindowTitle(QStringLiteral("Signal Generator"));
        window.resize(300, 200);
        widget = new WidgetBaseImpl(&window);
        widget->setGeometry(20, 20, 160, 80);
        window.show();
    }

    QWidget window;
    WidgetBaseImpl* widget;
};

} // namespace

class TestWidgetBaseImpl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void cleanup();

    void touchOfAnUnboundWidget_data();
    void touchOfAnUnboundWidget();
    void fedValuesDriveTheWidgetWithoutAnEngine();
    void followsTheEnginesOwnLock();
    void showsTheLastLockStateAfterOneUpdateDelay_data();
    void showsTheLastLockStateAfterOneUpdateDelay();
    void touchTakesTheEngineLockForAnEntry_data();
    void touchTakesTheEngineLockForAnEntry();
    void refusedLockIsLoggedAndLockedWidgetSwallowsTouches();
    void unknownAttributeIsLoggedAndWidgetStaysUsable();
    void lostEngineUnbindsAndShowsLocked();

private:
    /// Binds \a widget to \a name through discovery and waits for the outcome.
    static bool bind(WidgetBaseImpl* widget, const QString& name);

    NamingServiceProcess m_naming;
};

void TestWidgetBaseImpl::initTestCase()
{
    QVERIFY(m_naming.start());
    qApp->setProperty("-ORBInitRef", QStringLiteral("NameService=") + m_naming.corbaname());
    ApplicationOrb::start();
}

void TestWidgetBaseImpl::cleanupTestCase()
{
    QThreadPool::globalInstance()->waitForDone();
    delete GlobalImpl::existingInstance();
    ORB_base::destroyProcessOrb();
    Orvanth::DDS_BaseObj::shutdownDds();
    m_naming.stop();
}

void TestWidgetBaseImpl::cleanup()
{
    if (GlobalImpl* registry = GlobalImpl::existingInstance())
        registry->releaseEntryMechanism(registry->entryMechanism());
}

bool TestWidgetBaseImpl::bind(WidgetBaseImpl* widget, const QString& name)
{
    QSignalSpy finished(widget, &WidgetBaseImpl::bindingFinished);
    widget->setAttributeName(name);
    widget->bindAttributeByName();
    return (!finished.isEmpty() || finished.wait(10000)) && finished.last().at(0).toBool();
}

void TestWidgetBaseImpl::touchOfAnUnboundWidget_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<bool>("suppressed");
    QTest::addColumn<bool>("entry");
    QTest::newRow("plain touch claims the entry slot") << Qt::KeyboardModifiers() << QPoint(10, 10) << false << true;
    QTest::newRow("control touch silences receive logging")
        << Qt::KeyboardModifiers(Qt::ControlModifier) << QPoint(10, 10) << true << false;
    QTest::newRow("release outside does nothing") << Qt::KeyboardModifiers() << QPoint(400, 10) << false << false;
}

void TestWidgetBaseImpl::touchOfAnUnboundWidget()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(QPoint, position);
    QFETCH(bool, suppressed);
    QFETCH(bool, entry);
    ModuleWindow host;
    host.widget->setAttributeName(action);
    QSignalSpy entrySpy(host.widget, &WidgetBaseImpl::DisplayEntryMechanism);
    QSignalSpy suppressSpy(host.widget, &WidgetBaseImpl::suppressDebug);
    LogCapture log;

    QTest::mouseClick(host.widget, Qt::LeftButton, modifiers, position);
    QCOMPARE(host.widget->getSuppressDebug(), suppressed);
    QCOMPARE(suppressSpy.count(), suppressed ? 1 : 0);
    QCOMPARE(log.contains(QStringLiteral("UserInterface - Debug is now OFF for: \"RUNACTION1\" @ \"Signal Generator\"")),
             suppressed);
    QCOMPARE(entrySpy.count(), entry ? 1 : 0);
    QCOMPARE(GlobalImpl::getInstance()->entryMechanism() == host.widget, entry);

}

void TestWidgetBaseImpl::fedValuesDriveTheWidgetWithoutAnEngine()
{
    ModuleWindow host;
    host.widget->setAttributeName(action);
    AttributeFeed* feed = host.widget->attributeFeed();
    QSignalSpy posted(host.widget, &WidgetBaseImpl::exceptionMessage);
    QSignalSpy bound(host.widget, &WidgetBaseImpl::bindingFinished);

    emit feed->bindingFinished(true, true);
    QCOMPARE(bound.count(), 1);
    QVERIFY(host.widget->lockOverlay()->isVisible());
    emit feed->lockChanged(false);
    QVERIFY(!host.widget->isLocked());
    QVERIFY(!host.widget->lockOverlay()->isVisible());
    emit feed->lockChanged(true);
    QVERIFY(host.widget->isLocked());
    QVERIFY(host.widget->lockOverlay()->isVisible());

    emit feed->engineLost(QStringLiteral("CORBA::TRANSIENT"), false);
    QCOMPARE(posted.count(), 1);
    QCOMPARE(posted.first().at(0).toString(),
             QStringLiteral("CORBA::TRANSIENT RUNACTION1, disconnecting from engine: Signal Generator"));
}

void TestWidgetBaseImpl::followsTheEnginesOwnLock()
{
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming, {"--lock-toggle", "0.4"}));
    ModuleWindow host;
    QVERIFY(bind(host.widget, action));
    QVERIFY(host.widget->isBound());

    // Each take and each release by the engine's own locker reaches the overlay.
    QPushButton* overlay = host.widget->lockOverlay();
    QTRY_VERIFY_WITH_TIMEOUT(overlay->isVisible(), 5000);
    QVERIFY(engine.count(actionHeld) >= 1);
    QVERIFY(host.widget->isLocked());
    QCOMPARE(overlay->size(), host.widget->size());
    QVERIFY(overlay->styleSheet().contains(QStringLiteral("url(:/images/lock.png)")));
    QVERIFY(!QPixmap(QStringLiteral(":/images/lock.png")).isNull());
    QTRY_VERIFY_WITH_TIMEOUT(!overlay->isVisible(), 5000);
    QVERIFY(engine.count(actionFree) >= 1);
    QVERIFY(!host.widget->isLocked());
    QTRY_VERIFY_WITH_TIMEOUT(overlay->isVisible(), 5000);
}

void TestWidgetBaseImpl::showsTheLastLockStateAfterOneUpdateDelay_data()
{
    QTest::addColumn<int>("changes");
    QTest::addColumn<bool>("locked");
    QTest::newRow("taken, given back") << 2 << false;
    QTest::newRow("taken, given back, taken") << 3 << true;
}

void TestWidgetBaseImpl::showsTheLastLockStateAfterOneUpdateDelay()
{
    QFETCH(int, changes);
    QFETCH(bool, locked);
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming));
    ModuleWindow host;
    host.widget->setUpdateDelay(800);
    QVERIFY(bind(host.widget, action));
    QSignalSpy shown(host.widget, &WidgetBaseImpl::SetLocked);
    QPushButton* overlay = host.widget->lockOverlay();

    // Another user interface takes the lock: the first notice is handled at once.
    Orvanth::Locker other;
    Orvanth::EngineAttribBase_var attribute = engine.attribute(action);
    QVERIFY(!CORBA::is_nil(attribute));
    Orvanth::Lock_Authority_var authority = other.LockAuthority();
    CORBA::Long handle = attribute->Lock(authority.in());
    QTRY_VERIFY_WITH_TIMEOUT(overlay->isVisible(), 5000);

    // The further changes come within the same update delay: held back until it ends,
    // then shown as they stand.
    for (int change = 1; change < changes; ++change) {
        if (change % 2 == 0)
            handle = attribute->Lock(authority.in());
        else
            attribute->Unlock(other.MyLockerID(), handle);
    }
    QVERIFY(engine.waitForLine(locked ? actionHeld : actionFree, locked ? 2 : 1));
    QTest::qWait(300);
    QVERIFY(overlay->isVisible());
    QTest::qWait(1000);
    QCOMPARE(overlay->isVisible(), locked);
    QCOMPARE(host.widget->isLocked(), locked);
    QCOMPARE(shown.count(), locked ? 1 : 2);
    if (locked)
        attribute->Unlock(other.MyLockerID(), handle);
}

void TestWidgetBaseImpl::touchTakesTheEngineLockForAnEntry_data()
{
    QTest::addColumn<bool>("slotTaken");
    QTest::newRow("free entry slot") << false;
    QTest::newRow("entry slot held by another widget") << true;
}

void TestWidgetBaseImpl::touchTakesTheEngineLockForAnEntry()
{
    QFETCH(bool, slotTaken);
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming));
    ModuleWindow host;
    QVERIFY(bind(host.widget, action));
    QWidget otherEditor;
    if (slotTaken)
        GlobalImpl::getInstance()->setEntryMechanism(&otherEditor);
    QSignalSpy entry(host.widget, &WidgetBaseImpl::DisplayEntryMechanism);

    QTest::mouseClick(host.widget, Qt::LeftButton, Qt::KeyboardModifiers(), QPoint(10, 10));
    QVERIFY(engine.waitForLine(actionHeld));
    if (slotTaken) {
        // The lock goes straight back and the other widget keeps the slot.
        QVERIFY(engine.waitForLine(actionFree));
        QCOMPARE(entry.count(), 0);
        QCOMPARE(GlobalImpl::getInstance()->entryMechanism(), &otherEditor);
        return;
    }
    QVERIFY(entry.count() == 1 || entry.wait(5000));
    QCOMPARE(GlobalImpl::getInstance()->entryMechanism(), host.widget);
    QVERIFY(host.widget->lockHandle() != 0);
    // Our own lock is no lock against us: the notice it sends leaves the overlay off.
    QTRY_VERIFY(!host.widget->isLocked());
    QVERIFY(!host.widget->lockOverlay()->isVisible());

    host.widget->releaseLock();
    QVERIFY(!host.widget->isLocked());
    QVERIFY(!GlobalImpl::getInstance()->entryMechanism());
    QVERIFY(engine.waitForLine(actionFree));
}

void TestWidgetBaseImpl::refusedLockIsLoggedAndLockedWidgetSwallowsTouches()
{
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming));
    Orvanth::Locker other;
    Orvanth::EngineAttribBase_var attribute = engine.attribute(action);
    Orvanth::Lock_Authority_var authority = other.LockAuthority();
    const CORBA::Long handle = attribute->Lock(authority.in());

    ModuleWindow host;
    QVERIFY(QTest::qWaitForWindowExposed(&host.window));
    QVERIFY(bind(host.widget, action));
    QVERIFY(host.widget->lockOverlay()->isVisible());
    QSignalSpy entry(host.widget, &WidgetBaseImpl::DisplayEntryMechanism);
    LogCapture log;

    // A touch through the window lands on the overlay.
    QTest::mouseClick(host.window.windowHandle(), Qt::LeftButton, Qt::KeyboardModifiers(), QPoint(30, 30));
    QTest::qWait(100);
    QVERIFY(log.linesContaining(QStringLiteral("Unable to obtain Lock")).isEmpty());

    // Given to the widget itself, it asks for the lock, which the engine refuses.
    QTest::mouseClick(host.widget, Qt::LeftButton, Qt::KeyboardModifiers(), QPoint(10, 10));
    QTRY_VERIFY_WITH_TIMEOUT(log.contains(QStringLiteral("UserInterface - Unable to obtain Lock for \"RUNACTION1\"")),
                             5000);
    QVERIFY(!host.widget->isLocked());
    QCOMPARE(entry.count(), 0);
    QVERIFY(!GlobalImpl::getInstance()->entryMechanism());
    QVERIFY(host.widget->isBound());
    attribute->Unlock(other.MyLockerID(), handle);
    QTRY_VERIFY_WITH_TIMEOUT(!host.widget->lockOverlay()->isVisible(), 5000);
}

void TestWidgetBaseImpl::unknownAttributeIsLoggedAndWidgetStaysUsable()
{
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming));
    ModuleWindow host;
    LogCapture log;
    QVERIFY(!bind(host.widget, QStringLiteral("NOSUCHATTRIBUTE1")));
    QVERIFY(log.contains(
        QStringLiteral("UserInterface - No engine module has the attribute \"NOSUCHATTRIBUTE1\" @ \"Signal Generator\"")));
    QVERIFY(!host.widget->hasReading());

    QSignalSpy entry(host.widget, &WidgetBaseImpl::DisplayEntryMechanism);
    QTest::mouseClick(host.widget, Qt::LeftButton, Qt::KeyboardModifiers(), QPoint(10, 10));
    QCOMPARE(entry.count(), 1);

    // Rebound to a name the engine has, it works as any other.
    QVERIFY(bind(host.widget, action));
}

void TestWidgetBaseImpl::lostEngineUnbindsAndShowsLocked()
{
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming));
    QWidget desktop;
    QTZStatusBar statusBar(&desktop);
    GlobalImpl::getInstance()->setStatusBar(&statusBar);
    ModuleWindow host;
    QVERIFY(bind(host.widget, action));
    QSignalSpy posted(host.widget, &WidgetBaseImpl::exceptionMessage);
    LogCapture log;

    // The engine dies; a lock notice that still comes (from another publisher of the
    // topic) makes the widget ask it, which fails.
    engine.kill();
    Orvanth::TopicPublisher<Orvanth::TKWW_DDS::ATTR_VOIDPubSubType> notices("Lumaro/local/LOCK/RUNACTION1");
    QVERIFY(notices.waitForSubscribers(1, std::chrono::seconds(5)));
    QVERIFY(notices.publish(Orvanth::TKWW_DDS::ATTR_VOID()));
    QTRY_VERIFY_WITH_TIMEOUT(!posted.isEmpty(), 10000);

    const QString reason = posted.first().at(0).toString().section(QLatin1Char(' '), 0, 0);
    QVERIFY2(reason == QLatin1String("CORBA::TRANSIENT") || reason == QLatin1String("CORBA::COMM_FAILURE"),
             qPrintable(reason));
    QCOMPARE(posted.first().at(0).toString(),
             reason + QStringLiteral(" RUNACTION1, disconnecting from engine: Signal Generator"));
    QVERIFY(log.contains(QStringLiteral("UserInterface - WidgetBaseImpl \"%1\" error, disconnecting \"RUNACTION1\" "
                                        "from engine: \"Signal Generator\"")
                             .arg(reason)));
    QVERIFY(!host.widget->hasReading());
    QVERIFY(host.widget->isLocked());
    QVERIFY(host.widget->lockOverlay()->isVisible());
    QTRY_VERIFY(statusBar.lastText().contains(posted.first().at(0).toString()));

    // Unbound, a touch still claims the entry slot.
    QSignalSpy entry(host.widget, &WidgetBaseImpl::DisplayEntryMechanism);
    QTest::mouseClick(host.widget, Qt::LeftButton, Qt::KeyboardModifiers(), QPoint(10, 10));
    QCOMPARE(entry.count(), 1);
}

QTEST_MAIN(TestWidgetBaseImpl)
#include "tst_widgetbaseimpl.moc"
