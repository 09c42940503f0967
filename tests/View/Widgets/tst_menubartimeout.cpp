// The navigation bar's auto-hide as the engines set it: the attribute MenuBarTimeout1 of
// the engine simulator, found through module discovery, closes the open bar or keeps it.

#include "ChildProcess.h"
#include "NamingServiceProcess.h"

#include "ApplicationOrb.h"
#include "DDS_BaseObj.h"
#include "GlobalImpl.h"
#include "MenuBar.h"
#include "NamingServiceImpl.h"
#include "ORB_base.h"

#include <QtTest>

class TestMenuBarTimeout : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void followsTheEnginesTimeout_data();
    void followsTheEnginesTimeout();

private:
    NamingServiceProcess m_naming;
};

void TestMenuBarTimeout::initTestCase()
{
    QVERIFY(m_naming.start());
    qApp->setProperty("-ORBInitRef", QStringLiteral("NameService=") + m_naming.corbaname());
    ApplicationOrb::start();
}

void TestMenuBarTimeout::cleanupTestCase()
{
    delete GlobalImpl::existingInstance();
    ORB_base::destroyProcessOrb();
    Orvanth::DDS_BaseObj::shutdownDds();
    m_naming.stop();
}

void TestMenuBarTimeout::followsTheEnginesTimeout_data()
{
    QTest::addColumn<QString>("seconds");
    QTest::addColumn<bool>("staysOpen");
    QTest::addColumn<int>("hidesWithin");
    QTest::newRow("0 closes at once") << QString("0") << false << -1;
    QTest::newRow("8 closes later") << QString("8") << true << 8000;
    QTest::newRow("60 keeps it open") << QString("60") << true << -1;
}

void TestMenuBarTimeout::followsTheEnginesTimeout()
{
    QFETCH(QString, seconds);
    QFETCH(bool, staysOpen);
    QFETCH(int, hidesWithin);
    ChildProcess simulator;
    QVERIFY(simulator.start(QStringLiteral(TZ_ENGINE_SIMULATOR),
                            {"--modules", "1", "--events-per-second", "0", "--menubar-timeout", seconds},
                            m_naming.childEnvironment()));
    NamingServiceImpl discovery;
    discovery.initialize();
    QCOMPARE(discovery.guiAbleLoaded(), 1);
    GlobalImpl::getInstance()->setNamingService(&discovery);

    QWidget desktop;
    desktop.resize(1280, 800);
    MenuBar bar(&desktop, Qt::AlignTop);
    bar.showMenuBar(true);
    // A running timer first, which a reading of 60 stops.
    bar.setTimeoutSource([] { return std::optional<int>(30); });
    bar.startTimer();
    QTRY_VERIFY(bar.remainingHideTime() > 20000);

    bar.setTimeoutSource({});
    bar.startTimer();
    if (!staysOpen) {
        QTRY_VERIFY_WITH_TIMEOUT(!bar.isOpen, 10000);
    } else if (hidesWithin < 0) {
        QTRY_COMPARE_WITH_TIMEOUT(bar.remainingHideTime(), -1, 10000);
    } else {
        // A coarse timer may run up to 5 % long.
        QTRY_VERIFY_WITH_TIMEOUT(bar.remainingHideTime() <= hidesWithin * 21 / 20, 10000);
        QVERIFY(bar.remainingHideTime() > hidesWithin - 1000);
    }
    QCOMPARE(bar.isOpen, staysOpen);
}

QTEST_MAIN(TestMenuBarTimeout)
#include "tst_menubartimeout.moc"
