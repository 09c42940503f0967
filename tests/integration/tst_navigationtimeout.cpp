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

class TestNavigationTimeout : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(naming.start());
        qApp->setProperty("-ORBInitRef", QStringLiteral("NameService=") + naming.corbaname());
        ApplicationOrb::start();
    }
    void cleanupTestCase()
    {
        delete GlobalImpl::existingInstance();
        ORB_base::destroyProcessOrb();
        Orvanth::DDS_BaseObj::shutdownDds();
        naming.stop();
    }

    // 0 closes at once, 8 closes later, 60 keeps the bar open.
    void followsTheEnginesTimeout()
    {
        for (const int seconds : {0, 8, 60}) {
            ChildProcess simulator;
            QVERIFY(simulator.start(QStringLiteral(TZ_ENGINE_SIMULATOR),
                {"--modules", "1", "--events-per-second", "0", "--menubar-timeout", QString::number(seconds)},
                naming.childEnvironment()));
            NamingServiceImpl discovery;
            discovery.initialize();
            QCOMPARE(discovery.guiAbleLoaded(), 1);
            GlobalImpl::getInstance()->setNamingService(&discovery);
            QWidget desktop;
            desktop.resize(1280, 800);
            MenuBar bar(&desktop, Qt::AlignTop);
            bar.showMenuBar(true);
            bar.startTimer();
            // The reading arrives: the bar closes, or its timer runs (a coarse one up to 5 % long).
            QTRY_VERIFY_WITH_TIMEOUT(
                bar.isOpen == (seconds != 0) && (seconds == 8) == (bar.remainingHideTime() > 0), 10000);
            QVERIFY(seconds != 8 || (bar.remainingHideTime() > 7000 && bar.remainingHideTime() <= 8400));
            QCOMPARE(bar.isOpen, seconds != 0);
        }
    }

private:
    NamingServiceProcess naming;
};

QTEST_MAIN(TestNavigationTimeout)
#include "tst_navigationtimeout.moc"
