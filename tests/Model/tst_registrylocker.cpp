// The registry's gateway to the engine locker, against a real omniNames and a real
// lock manager process: lazy creation, retry after a failure, and a manager that dies.

#include "ChildProcess.h"
#include "LogCapture.h"
#include "NamingServiceProcess.h"

#include "EngineServer.h"
#include "GlobalImpl.h"
#include "LockManagerServant.h"
#include "Locker.h"
#include "ORB_wrapper_base.h"

#include <QtTest>

#include <memory>

class TestRegistryLocker : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void withoutLockManagerLogsAndRetriesOnNextCall();
    void replacedLockerAnswersFromThenOn();
    void stoppedLockManagerGivesZeroIdAndEmptyAuthority();
    void withdrawnLockManagerLogsExceptionAndPassesItOn();

private:
    static bool isZero(const Orvanth::LockerID& id) { return id.owner == 0 && id.session == 0 && id.serial == 0; }

    NamingServiceProcess m_naming;
    ChildProcess m_engine;
    std::unique_ptr<ORB_wrapper_base> m_orb;
    std::unique_ptr<Orvanth::EngineServer> m_server;
};

void TestRegistryLocker::initTestCase()
{
    QVERIFY(m_naming.start());
    // The first ORB of the process decides its options: the naming service of this test.
    m_orb = std::make_unique<ORB_wrapper_base>(m_naming.orbOptions());
}

void TestRegistryLocker::cleanupTestCase()
{
    delete GlobalImpl::getInstance();
    m_engine.stop();
    m_server.reset();
    m_orb.reset();
    ORB_base::destroyProcessOrb();
    m_naming.stop();
}

void TestRegistryLocker::withoutLockManagerLogsAndRetriesOnNextCall()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    {
        LogCapture log;
        QVERIFY(!registry->getLocker());
        QVERIFY(isZero(registry->getLockerID()));
        QCOMPARE(registry->getLockAuthority().length(), CORBA::ULong(0));
        // Every call tries again, and says so.
        QCOMPARE(log.linesContaining(QStringLiteral("Failed to instantiate UI Locker")),
                 QStringList(QStringList() << QStringLiteral("Failed to instantiate UI Locker")
                                           << QStringLiteral("Failed to instantiate UI Locker")
                                           << QStringLiteral("Failed to instantiate UI Locker")));
    }

    QVERIFY(m_engine.start(QStringLiteral(TZ_TEST_ENGINE), {"--locker"}, m_naming.childEnvironment()));
    LogCapture log;
    Orvanth::Locker* locker = registry->getLocker();
    QVERIFY(locker);
    QCOMPARE(registry->getLocker(), locker);

    const Orvanth::LockerID id = registry->getLockerID();
    QVERIFY(!isZero(id));
    const Orvanth::LockerID again = registry->getLockerID();
    QCOMPARE(again.owner, id.owner);
    QCOMPARE(again.session, id.session);

    const Orvanth::Lock_Authority authority = registry->getLockAuthority();
    QCOMPARE(authority.length(), CORBA::ULong(1));
    QCOMPARE(authority[0].owner, id.owner);
    QVERIFY(log.lines().isEmpty());
}

void TestRegistryLocker::replacedLockerAnswersFromThenOn()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    std::unique_ptr<Orvanth::Locker> previous(registry->getLocker());
    QVERIFY(previous);
    auto* replacement = new Orvanth::Locker;
    registry->setLocker(replacement);

    QCOMPARE(registry->getLocker(), replacement);
    QCOMPARE(registry->getLockerID().owner, replacement->MyLockerID().owner);
    QVERIFY(registry->getLockerID().owner != previous->MyLockerID().owner);
    // The previous locker was left to us: it still answers, and we delete it.
}

void TestRegistryLocker::stoppedLockManagerGivesZeroIdAndEmptyAuthority()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    QVERIFY(registry->getLocker());
    QCOMPARE(m_engine.stop(), 0);

    LogCapture log;
    QVERIFY(isZero(registry->getLockerID()));
    const QStringList lines = log.lines();
    // A refused connection is TRANSIENT; a connection that broke is COMM_FAILURE.
    const bool transient = lines == QStringList{QStringLiteral(
        "UserInterface - Failed to acquire lock id, CORBA::TRANSIENT when requesting Orvanth::Locker::MyLockerID")};
    const bool otherFailure = lines.size() == 2
        && lines.at(0) == QStringLiteral("UserInterface - Components/Source/Model/GlobalImpl:285")
        && lines.at(1).startsWith(QStringLiteral("               COMM_FAILURE"));
    QVERIFY2(transient || otherFailure, qPrintable(lines.join(QLatin1Char('\n'))));

    log.clear();
    try {
        QCOMPARE(registry->getLockAuthority().length(), CORBA::ULong(0));
        QCOMPARE(log.lines(), QStringList{QStringLiteral("UserInterface - Failed to get locking authority")});
    } catch (const CORBA::COMM_FAILURE&) {
        // Only a transient failure is absorbed; the widgets handle a broken connection.
        QVERIFY(log.lines().isEmpty());
    }
}

void TestRegistryLocker::withdrawnLockManagerLogsExceptionAndPassesItOn()
{
    // A lock manager served by this process, withdrawn while the registry's locker
    // still refers to it: calls fail with OBJECT_NOT_EXIST, neither transient nor a
    // broken connection.
    delete GlobalImpl::getInstance();
    m_server = std::make_unique<Orvanth::EngineServer>();
    auto* manager = new Orvanth::LockManagerServant;
    CORBA::Object_var bound = m_server->serve(Orvanth::Locker::ManagerPath, manager);
    GlobalImpl* registry = GlobalImpl::getInstance();
    QVERIFY(!isZero(registry->getLockerID()));
    m_server->deactivate(manager);
    manager->_remove_ref();

    LogCapture log;
    QVERIFY(isZero(registry->getLockerID()));
    const QStringList lines = log.lines();
    QCOMPARE(lines.size(), 2);
    QCOMPARE(lines.at(0), QStringLiteral("UserInterface - Components/Source/Model/GlobalImpl:285"));
    QVERIFY2(lines.at(1).startsWith(QStringLiteral("               OBJECT_NOT_EXIST ")), qPrintable(lines.at(1)));
    QVERIFY(!lines.at(1).startsWith(QStringLiteral("                ")));

    log.clear();
    QVERIFY_EXCEPTION_THROWN(registry->getLockAuthority(), CORBA::OBJECT_NOT_EXIST);
    QVERIFY(log.lines().isEmpty());
}

QTEST_MAIN(TestRegistryLocker)
#include "tst_registrylocker.moc"
