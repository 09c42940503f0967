// The naming service the host names in "-ORBInitRef" is the one the library reaches,
// whichever part of it starts the process ORB first.

#include "ChildProcess.h"
#include "NamingServiceProcess.h"

#include "ApplicationOrb.h"
#include "GlobalImpl.h"
#include "Locker.h"
#include "ORB_base.h"

#include <QtTest>

class TestApplicationOrb : public QObject
{
    Q_OBJECT

private slots:
    void argumentsCarryTheHostsInitialReference();
    void registryReachesLockManagerOfTheHostsNamingService();
};

void TestApplicationOrb::argumentsCarryTheHostsInitialReference()
{
    QCOMPARE(ApplicationOrb::arguments(), std::vector<std::string>{"PlaceHolder"});
    QCoreApplication::instance()->setProperty("-ORBInitRef", QStringLiteral("NameService=corbaname::127.0.0.1:1"));
    QCOMPARE(ApplicationOrb::arguments(),
             (std::vector<std::string>{"PlaceHolder", "-ORBInitRef", "NameService=corbaname::127.0.0.1:1"}));
}

void TestApplicationOrb::registryReachesLockManagerOfTheHostsNamingService()
{
    QVERIFY(qgetenv("ORBInitRef").isEmpty());
    NamingServiceProcess naming;
    QVERIFY(naming.start());
    ChildProcess engine;
    QVERIFY(engine.start(QStringLiteral(TZ_TEST_ENGINE), {"--locker"}, naming.childEnvironment()));

    // Nothing but the application option tells this process where the naming service is.
    QCoreApplication::instance()->setProperty("-ORBInitRef", QStringLiteral("NameService=") + naming.corbaname());
    GlobalImpl* registry = GlobalImpl::getInstance();
    QVERIFY(registry->getLocker());
    QVERIFY(registry->getLockerID().owner != 0);

    delete registry;
    QCOMPARE(engine.stop(), 0);
    ORB_base::destroyProcessOrb();
}

QTEST_GUILESS_MAIN(TestApplicationOrb)
#include "tst_applicationorb.moc"
