// The push button: its looks and lock badge, and presses against a real omniNames and the
// engine simulator, whose action attribute must receive the Set with this user
// interface's locker id, from the pool, whatever the engine does.

#include "LogCapture.h"
#include "NamingServiceProcess.h"
#include "SimulatorSession.h"

#include "ApplicationOrb.h"
#include "DDS_BaseObj.h"
#include "GlobalImpl.h"
#include "Locker.h"
#include "PushButtonImpl.h"

#include <QLabel>
#include <QPushButton>
#include <QtTest>

#include <memory>

using Lumaro::gui::PushButtonImpl;

namespace {

const QString action = QStringLiteral("RUNACTION1");
const QString actionDone = QStringLiteral("ACTION RUNACTION1");
const QString setFailed = QStringLiteral("UserInterface - VOID: \"RUNACTION1\" threw an exception while sending notify event");

struct ButtonWindow
{
    ButtonWindow()
    {
        window.setObjectName(QStringLiteral("TopContainerObject"));
        window.setWindowTitle(QStringLiteral("Sweep"));
        button = new PushButtonImpl(&window);
        button->setButtonObjectName(QStringLiteral("RunButton"));
        button->setButtonText(QStringLiteral("Run"));
        window.resize(300, 200);
        window.show();
    }

    QWidget window;
    PushButtonImpl* button;
};

bool bind(PushButtonImpl* button, const QString& name)
{
    QSignalSpy finished(button, &WidgetBaseImpl::bindingFinished);
    button->setAttributeName(name);
    button->bindAttributeByName();
    return (!finished.isEmpty() || finished.wait(10000)) && finished.last().at(0).toBool();
}

void press(PushButtonImpl* button)
{
    QTest::mouseClick(button->button(), Qt::LeftButton);
}

} // namespace

class TestPushButtonImpl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void cleanup();

    void retranslateFollowsTheLanguage_data();
    void retranslateFollowsTheLanguage();
    void sizesShareOneLookAndCriticalLookReplacesIt();
    void lockedButtonShowsTheBadge();
    void pressSendsSetWithOurLockerId_data();
    void pressSendsSetWithOurLockerId();
    void pressWhileAnotherWidgetHoldsTheEntrySlot_data();
    void pressWhileAnotherWidgetHoldsTheEntrySlot();
    void pressNeverWaitsForTheEngine_data();
    void pressNeverWaitsForTheEngine();
    void attributeOfAnotherTypeIsLoggedAndIgnored();

private:
    NamingServiceProcess m_naming;
};

void TestPushButtonImpl::initTestCase()
{
    QVERIFY(m_naming.start());
    qApp->setProperty("-ORBInitRef", QStringLiteral("NameService=") + m_naming.corbaname());
    ApplicationOrb::start();
}

void TestPushButtonImpl::cleanupTestCase()
{
    QThreadPool::globalInstance()->waitForDone();
    delete GlobalImpl::existingInstance();
    ORB_base::destroyProcessOrb();
    Orvanth::DDS_BaseObj::shutdownDds();
    m_naming.stop();
}

void TestPushButtonImpl::cleanup()
{
    qApp->setProperty("currentLanguage", QVariant());
    if (GlobalImpl* registry = GlobalImpl::existingInstance())
        registry->releaseEntryMechanism(registry->entryMechanism());
}

void TestPushButtonImpl::retranslateFollowsTheLanguage_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<bool>("chinese");
    QTest::newRow("zh_cn") << QStringLiteral("zh_cn") << true;
    QTest::newRow("zh_tw") << QStringLiteral("zh_tw") << true;
    QTest::newRow("en") << QStringLiteral("en") << false;
}

void TestPushButtonImpl::retranslateFollowsTheLanguage()
{
    QFETCH(QString, language);
    QFETCH(bool, chinese);
    qApp->setProperty("currentLanguage", language);
    PushButtonImpl button;
    const QString standard = button.styleSheet();
    button.retranslate();
    const QString chineseRule =
        QStringLiteral("QPushButton { padding-top: 6px; font-size: 16px; } QLabel { font-size: 12px; }");
    QCOMPARE(button.styleSheet().endsWith(chineseRule), chinese);
    QVERIFY(button.styleSheet().startsWith(standard));
}

void TestPushButtonImpl::sizesShareOneLookAndCriticalLookReplacesIt()
{
    PushButtonImpl button;
    QCOMPARE(button.objectName(), QStringLiteral("PushButton"));
    QCOMPARE(button.minimumSize(), QSize(100, 60));
    QCOMPARE(button.sizeHint(), QSize(100, 60));
    button.changeSize(QStringLiteral("Small"));
    const QString small = button.styleSheet();
    button.changeSize(QStringLiteral("Max"));
    QCOMPARE(button.styleSheet(), small);
    QVERIFY(small.contains(QStringLiteral("stop:0 #01437A, stop:0.8 #038BD9, stop:1 #06B7FC")));

    button.setCriticalStyle();
    QVERIFY(button.styleSheet() != small);
    QVERIFY(button.styleSheet().startsWith(QStringLiteral("QPushButton { background-color: black;")));
    button.changeSize(QStringLiteral("Small"));
    QVERIFY(button.styleSheet().contains(QStringLiteral("rgb(255,142,63)")));
}

void TestPushButtonImpl::lockedButtonShowsTheBadge()
{
    ButtonWindow host;
    host.button->setWidgetLocked(true);
    QCOMPARE(host.button->lockBadge()->text(), QStringLiteral("Locked  "));
    QCOMPARE(host.button->lockBadge()->objectName(), QStringLiteral("Locked"));
    QVERIFY(host.button->lockOverlay()->isVisible());
    // The badge, not the padlock, shows the lock.
    QVERIFY(!host.button->lockOverlay()->styleSheet().contains(QStringLiteral("lock.png")));

    host.button->setWidgetLocked(false);
    QVERIFY(host.button->lockBadge()->text().isEmpty());
    QVERIFY(host.button->lockBadge()->objectName().isEmpty());
    QVERIFY(!host.button->lockOverlay()->isVisible());
}

void TestPushButtonImpl::pressSendsSetWithOurLockerId_data()
{
    QTest::addColumn<QString>("holder");
    QTest::addColumn<bool>("performed");
    QTest::newRow("free") << QString() << true;
    QTest::newRow("held by this user interface") << QStringLiteral("us") << true;
    QTest::newRow("held by another locker") << QStringLiteral("other") << false;
}

void TestPushButtonImpl::pressSendsSetWithOurLockerId()
{
    QFETCH(QString, holder);
    QFETCH(bool, performed);
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming));
    ButtonWindow host;
    QVERIFY(bind(host.button, action));

    // Held by us, only a Set that carries our locker id gets through.
    Orvanth::EngineAttribBase_var attribute = engine.attribute(action);
    std::unique_ptr<Orvanth::Locker> other;
    Orvanth::Lock_Authority authority;
    if (holder == QLatin1String("us")) {
        authority = GlobalImpl::getInstance()->getLockAuthority();
    } else if (holder == QLatin1String("other")) {
        other = std::make_unique<Orvanth::Locker>();
        Orvanth::Lock_Authority_var held = other->LockAuthority();
        authority = held.in();
    }
    const CORBA::Long handle = holder.isEmpty() ? 0 : attribute->Lock(authority);

    QSignalSpy clicked(host.button, &PushButtonImpl::clicked);
    QSignalSpy pressed(host.button, &PushButtonImpl::buttonPressed);
    QSignalSpy posted(host.button, &WidgetBaseImpl::exceptionMessage);
    LogCapture log;
    press(host.button);
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(pressed.count(), 1);
    QCOMPARE(pressed.first().at(0).toString(), QStringLiteral("RunButton"));

    if (performed) {
        QVERIFY(engine.waitForLine(actionDone));
        QTRY_VERIFY(log.contains(QStringLiteral("UserInterface - PushButton Set returned.")));
        QVERIFY(posted.isEmpty());
    } else {
        QTRY_VERIFY_WITH_TIMEOUT(!posted.isEmpty(), 5000);
        QCOMPARE(posted.first().at(0).toString(),
                 QStringLiteral("RUNACTION1 threw an exception while sending notify event"));
        QVERIFY(log.contains(setFailed));
        QCOMPARE(engine.count(actionDone), 0);
        QVERIFY(host.button->isBound());
    }
    QVERIFY(log.contains(QStringLiteral("UserInterface - PushButton: \"RUNACTION1\" - Sending VOID.")));
    if (holder == QLatin1String("us"))
        attribute->Unlock(GlobalImpl::getInstance()->getLockerID(), handle);
    else if (other)
        attribute->Unlock(other->MyLockerID(), handle);
}

void TestPushButtonImpl::pressWhileAnotherWidgetHoldsTheEntrySlot_data()
{
    QTest::addColumn<bool>("bound");
    QTest::newRow("bound button ignores the press") << true;
    QTest::newRow("unbound button announces it") << false;
}

void TestPushButtonImpl::pressWhileAnotherWidgetHoldsTheEntrySlot()
{
    QFETCH(bool, bound);
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming));
    ButtonWindow host;
    if (bound)
        QVERIFY(bind(host.button, action));
    QWidget editor;
    GlobalImpl::getInstance()->setEntryMechanism(&editor);
    QSignalSpy clicked(host.button, &PushButtonImpl::clicked);
    QSignalSpy pressed(host.button, &PushButtonImpl::buttonPressed);
    LogCapture log;

    press(host.button);
    QCOMPARE(clicked.count(), bound ? 0 : 1);
    QCOMPARE(pressed.count(), bound ? 0 : 1);
    QVERIFY(log.linesContaining(QStringLiteral("Sending VOID")).isEmpty());
    QCOMPARE(GlobalImpl::getInstance()->entryMechanism(), &editor);
}

void TestPushButtonImpl::pressNeverWaitsForTheEngine_data()
{
    QTest::addColumn<bool>("killed");
    QTest::newRow("hung engine") << false;
    QTest::newRow("killed engine") << true;
}

void TestPushButtonImpl::pressNeverWaitsForTheEngine()
{
    QFETCH(bool, killed);
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming));
    ButtonWindow host;
    QVERIFY(bind(host.button, action));
    QSignalSpy clicked(host.button, &PushButtonImpl::clicked);
    QSignalSpy posted(host.button, &WidgetBaseImpl::exceptionMessage);
    LogCapture log;

    if (killed)
        engine.kill();
    else
        engine.suspend();
    QElapsedTimer clock;
    clock.start();
    press(host.button);
    QCOMPARE(clicked.count(), 1);
    QVERIFY2(clock.elapsed() < 200, qPrintable(QString::number(clock.elapsed())));

    QTRY_VERIFY_WITH_TIMEOUT(!posted.isEmpty(), 10000);
    if (killed) {
        // The connection is refused (TRANSIENT) or breaks (COMM_FAILURE): unbound.
        QVERIFY2(posted.first().at(0).toString().endsWith(
                     QStringLiteral(" RUNACTION1, disconnecting from engine: Sweep")),
                 qPrintable(posted.first().at(0).toString()));
        QVERIFY(log.contains(QStringLiteral("UserInterface - Lumaro::gui::PushButtonImpl \"CORBA::")));
        QVERIFY(!host.button->hasReading());
    } else {
        // Timed out: an engine error, the binding stays.
        QVERIFY(log.contains(setFailed));
        QVERIFY(log.contains(QStringLiteral("TIMEOUT")));
        QVERIFY(host.button->hasReading());
    }

    // Still a button: the next press is announced at once.
    press(host.button);
    QCOMPARE(clicked.count(), 2);
}

void TestPushButtonImpl::attributeOfAnotherTypeIsLoggedAndIgnored()
{
    SimulatorSession engine;
    QVERIFY(engine.start(m_naming));
    ButtonWindow host;
    LogCapture log;
    QVERIFY(bind(host.button, QStringLiteral("DISPLAYMODE1")));
    QTRY_VERIFY(log.contains(QStringLiteral(">>>>>Expected Void type but received: EngineAttribEnum (DISPLAYMODE1)")));

    QSignalSpy clicked(host.button, &PushButtonImpl::clicked);
    press(host.button);
    QCOMPARE(clicked.count(), 1);
    // The set call finds no action to send to and returns quietly.
    QThreadPool::globalInstance()->waitForDone();
    QVERIFY(log.linesContaining(QStringLiteral("Sending VOID")).isEmpty());
}

QTEST_MAIN(TestPushButtonImpl)
#include "tst_pushbuttonimpl.moc"
