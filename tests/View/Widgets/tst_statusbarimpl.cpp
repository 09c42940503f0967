// The older status bar against a real omniNames and the engine simulator: the reference
// oscillator switch follows the engine's REFOSCILLATOR1 and sets it; the portrait battery
// indicator follows the simulator's battery and mains power; alerts are never held back.

#include "ChildProcess.h"
#include "LogCapture.h"
#include "NamingServiceProcess.h"

#include "ApplicationOrb.h"
#include "DDS_BaseObj.h"
#include "GlobalImpl.h"
#include "LowBatteryAlert.h"
#include "NamingServiceImpl.h"
#include "ORB_base.h"
#include "StatusBarImpl.h"
#include "SystemModule.h"

#include <QPushButton>
#include <QtTest>

class TestStatusBarImpl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

    void followsAndSwitchesReferenceOscillator();
    void switchDoesNothingWithoutOscillator();
    void followsSimulatedBatteryOnPortrait();
    void sendsAlertsAtOnceWhileInitializing();

private:
    NamingServiceProcess m_naming;
    QWidget m_desktop;
};

void TestStatusBarImpl::initTestCase()
{
    QVERIFY(m_naming.start());
    qApp->setProperty("-ORBInitRef", QStringLiteral("NameService=") + m_naming.corbaname());
    ApplicationOrb::start();
    m_desktop.resize(1000, 600);
    GlobalImpl::getInstance()->systemModule()->setSystemScreen(QStringLiteral("MainWindow"), &m_desktop);
}

void TestStatusBarImpl::cleanup()
{
    qApp->setProperty("-res", QVariant());
    qApp->setProperty("state", QVariant());
    GlobalImpl::getInstance()->setNamingService(nullptr);
}

void TestStatusBarImpl::cleanupTestCase()
{
    delete GlobalImpl::existingInstance();
    ORB_base::destroyProcessOrb();
    Orvanth::DDS_BaseObj::shutdownDds();
    m_naming.stop();
}

void TestStatusBarImpl::followsAndSwitchesReferenceOscillator()
{
    ChildProcess simulator;
    QVERIFY(simulator.start(QStringLiteral(TZ_ENGINE_SIMULATOR),
                            {"--modules", "2", "--events-per-second", "0", "--ref-oscillator", "2",
                             "--value-period-ms", "100"},
                            m_naming.childEnvironment()));
    NamingServiceImpl discovery;
    discovery.initialize();
    QCOMPARE(discovery.guiAbleLoaded(), 2);
    GlobalImpl::getInstance()->setNamingService(&discovery);

    StatusBarImpl bar(&m_desktop);
    QSignalSpy searched(&bar, &StatusBarImpl::referenceOscillatorSearched);
    bar.initialize();
    QVERIFY(searched.wait(10000));
    QCOMPARE(searched.first().at(0).toBool(), true);
    QTRY_VERIFY_WITH_TIMEOUT(bar.isExternalReference(), 10000);
    // Showing what the engine reports neither posts a message nor sets the engine again.
    QCOMPARE(bar.messageCount(), 0);

    bar.findChild<QPushButton*>(QStringLiteral("RefOscIcon"))->click();
    QCOMPARE(bar.lastText(), QStringLiteral("Reference Oscillator is set to 'Internal'"));
    QTRY_VERIFY_WITH_TIMEOUT(simulator.output().contains(QStringLiteral("SET REFOSCILLATOR1 1")), 10000);
    QVERIFY(!simulator.output().contains(QStringLiteral("SET REFOSCILLATOR1 2")));
    // Once the engine reports the new value, the switch stays where the user put it.
    QSignalSpy reports(&bar, &StatusBarImpl::updateRefOscillatorStatus);
    QTRY_VERIFY_WITH_TIMEOUT(!reports.isEmpty() && !reports.last().at(0).toBool(), 10000);
    QVERIFY(!bar.isExternalReference());
    QCOMPARE(bar.messageCount(), 1);
    QCOMPARE(simulator.stop(), 0);
}

void TestStatusBarImpl::switchDoesNothingWithoutOscillator()
{
    LogCapture log;
    StatusBarImpl bar(&m_desktop);
    QSignalSpy searched(&bar, &StatusBarImpl::referenceOscillatorSearched);
    bar.initialize();
    QCOMPARE(searched.count(), 1);
    QCOMPARE(searched.first().at(0).toBool(), false);
    bar.findChild<QPushButton*>(QStringLiteral("RefOscIcon"))->click();
    QCOMPARE(bar.messageCount(), 0);
    QVERIFY(log.contains(QStringLiteral("UserInterface - StatusBar - no REFOSCILLATOR1 to switch")));
}

void TestStatusBarImpl::followsSimulatedBatteryOnPortrait()
{
    {
        StatusBarImpl landscape(&m_desktop);
        QVERIFY(!landscape.findChild<QFrame*>(QStringLiteral("BatteryFrame")));
    }
    qApp->setProperty("-res", QStringLiteral("480x800"));
    StatusBarImpl bar(&m_desktop);
    QVERIFY(bar.findChild<QFrame*>(QStringLiteral("BatteryFrame")));
    QCOMPARE(bar.batteryState(), QStringLiteral("OnBatteryPower"));
    QCOMPARE(bar.batteryText(), QStringLiteral("100%"));
    QStringList states;
    const auto record = [&] {
        if (states.isEmpty() || states.last() != bar.batteryState())
            states << bar.batteryState();
    };
    connect(&bar, &StatusBarImpl::updateBatteryStatus, this, record);
    connect(&bar, &StatusBarImpl::updateACPowerStatus, this, record);
    QSignalSpy shows(&bar, &StatusBarImpl::showBatteryAlert);
    QSignalSpy hides(&bar, &StatusBarImpl::hideBatteryAlert);

    // 1 % a reading, down to 2 % on battery, back up to 100 % on mains power, then on
    // battery again.
    ChildProcess simulator;
    QVERIFY(simulator.start(QStringLiteral(TZ_ENGINE_SIMULATOR),
                            {"--modules", "0", "--events-per-second", "0", "--battery-period-ms", "20",
                             "--battery-start", "20", "--battery-drain", "3000", "--battery-floor", "2"},
                            m_naming.childEnvironment()));
    const QStringList cycle{"OnBatteryPower", "LowBattery", "Charging", "FullyCharged", "OnBatteryPower"};
    const auto passedCycle = [&] {
        int next = 0;
        for (const QString& state : states) {
            if (next < cycle.size() && state == cycle.at(next))
                ++next;
        }
        return next == cycle.size();
    };
    QTRY_VERIFY2_WITH_TIMEOUT(passedCycle(), qPrintable(states.join(' ')), 20000);
    QCOMPARE(simulator.stop(), 0);

    QVERIFY(!shows.isEmpty());
    for (const QList<QVariant>& shown : shows)
        QVERIFY(shown.at(0).toDouble() <= 15.0);
    QVERIFY(bar.lowBatteryAlert()->isVisibleTo(&m_desktop));

    // Recovering on battery: the first reading back above 15 % restyles, the next ones
    // take the alert down.
    QVERIFY(hides.isEmpty());
    for (double reading : {10.0, 9.0, 40.0, 41.0})
        emit bar.updateBatteryStatus(reading);
    QCOMPARE(bar.batteryState(), QStringLiteral("OnBatteryPower"));
    QCOMPARE(bar.batteryText(), QStringLiteral("41%"));
    QCOMPARE(hides.count(), 1);
    QVERIFY(!bar.lowBatteryAlert()->isVisibleTo(&m_desktop));
}

void TestStatusBarImpl::sendsAlertsAtOnceWhileInitializing()
{
    qApp->setProperty("state", QStringLiteral("initializing"));
    StatusBarImpl bar(&m_desktop);
    QSignalSpy alerts(&bar, &StatusBarImpl::sendAlert);
    bar.addMessage(QStringLiteral("Input level high"), QStringLiteral("t"), Orvanth::Event::EVENT_WARNING);
    QCOMPARE(alerts.count(), 1);
    QCOMPARE(alerts.first().at(0).toString(), QStringLiteral("t WARNING: Input level high"));
    QVERIFY(bar.isAlert());
    QCOMPARE(bar.messageLog()->lines(), QStringList{QStringLiteral("t WARNING: Input level high")});
}

QTEST_MAIN(TestStatusBarImpl)
#include "tst_statusbarimpl.moc"
