// The registry's gateway to the engine locker, against a real omniNames and a real
// lock manager: lazy creation, retry after a failure, and managers that go away.

#include "ChildProcess.h"
#include "LogCapture.h"
#include "NamingServiceProcess.h"

#include "EngineServer.h"
#include "GlobalImpl.h"
#include "LockManagerServant.h"
#include "Locker.h"

#include <QtTest>

#include <memory>

class TestRegistryLocker : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void withoutLockManagerLogsAndRetriesOnNextCall();
    void stoppedLockManagerGivesZeroIdAndEmptyAuthority();
    void withdrawnLockManagerLogsExceptionAndPassesItOn();

private:
    static bool isZero(const Orvanth::LockerID& id) { return id.owner == 0 && id.session == 0 && id.serial == 0; }

    NamingServiceProcess m_naming;
    ChildProcess m_engine;
    // The first ORB of the process decides its options: the naming service of this test.
    std::unique_ptr<Orvanth::EngineServer> m_server;
};

void TestRegistryLocker::initTestCase()
{
    QVERIFY(m_naming.start());
    m_server = std::make_unique<Orvanth::EngineServer>(m_naming.orbOptions());
}

void TestRegistryLocker::cleanupTestCase()
{
    delete GlobalImpl::getInstance();
    m_engine.stop();
    m_server.reset();
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
        const QString failure = QStringLiteral("Failed to instantiate UI Locker");
        QCOMPARE(log.lines(), (QStringList{failure, failure, failure}));
    }

    QVERIFY(m_engine.start(QStringLiteral(TZ_TEST_ENGINE), {"--locker"}, m_naming.childEnvironment()));
    LogCapture log;
    Orvanth::Locker* locker = registry->getLocker();
    QVERIFY(locker);
    const Orvanth::LockerID id = registry->getLockerID();
    QVERIFY(!isZero(id));
    const Orvanth::Lock_Authority authority = registry->getLockAuthority();
    QCOMPARE(authority.length(), CORBA::ULong(1));
    QCOMPARE(authority[0].owner, id.owner);
    QVERIFY(log.lines().isEmpty());

    // A replaced locker answers from then on; the previous one stays ours to delete.
    std::unique_ptr<Orvanth::Locker> previous(locker);
    registry->setLocker(new Orvanth::Locker);
    QVERIFY(registry->getLockerID().owner != previous->MyLockerID().owner);
}

void TestRegistryLocker::stoppedLockManagerGivesZeroIdAndEmptyAuthority()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    QCOMPARE(m_engine.stop(), 0);

    LogCapture log;
    QVERIFY(isZero(registry->getLockerID()));
    const QStringList lines = log.lines();
    // A refused connection is TRANSIENT; a connection that broke is COMM_FAILURE.
    const bool transient = lines == QStringList{QStringLiteral(
        "UserInterface - Failed to acquire lock id, CORBA::TRANSIENT when requesting Orvanth::Locker::MyLockerID")};
    const bool broken = lines.size() == 2 && lines.at(1).startsWith(QStringLiteral("               COMM_FAILURE"));
    QVERIFY2(transient || broken, qPrintable(lines.join(QLatin1Char('\n'))));

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
    // A lock manager in this process, withdrawn while the registry's locker still
    // refers to it: calls fail with OBJECT_NOT_EXIST, neither transient nor broken.
    delete GlobalImpl::getInstance();
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

    log.clear();
    QVERIFY_EXCEPTION_THROWN(registry->getLockAuthority(), CORBA::OBJECT_NOT_EXIST);
    QVERIFY(log.lines().isEmpty());
}

QTEST_MAIN(TestRegistryLocker)
#include "tst_registrylocker.moc"
