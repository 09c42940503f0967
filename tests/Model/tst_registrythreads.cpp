// The registry and its engine locker under racing threads: a first use from several
// threads at once, a desktop closed under a thread that keeps asking for the lock id,
// and subscriber threads whose last callbacks still need the locker. Built also with the
// thread and address sanitizers, which see what these races would break.

#include "LogCapture.h"
#include "NamingServiceProcess.h"

#include "CorbaFailure.h"
#include "DesktopImpl.h"
#include "EngineServer.h"
#include "GlobalImpl.h"
#include "LockManagerServant.h"
#include "Locker.h"
#include "LockerGateway.h"

#include <QThreadPool>
#include <QtTest>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

class TestRegistryThreads : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void firstUseFromSeveralThreadsBuildsOneLocker();
    void lockIdCallsRacingDesktopCloseEndCleanly();
    void subscriberThreadsStopBeforeLockerGoes();

private:
    static bool isZero(const Orvanth::LockerID& id) { return id.owner == 0 && id.session == 0 && id.serial == 0; }

    NamingServiceProcess m_naming;
    // A lock manager in this process: calls on it are quick, so a call is nearly always
    // under way when the registry goes.
    std::unique_ptr<Orvanth::EngineServer> m_server;
    Orvanth::LockManagerServant* m_manager = nullptr;
};

void TestRegistryThreads::initTestCase()
{
    QVERIFY(m_naming.start());
    m_server = std::make_unique<Orvanth::EngineServer>(m_naming.orbOptions());
    m_manager = new Orvanth::LockManagerServant;
    try {
        CORBA::Object_var bound = m_server->serve(Orvanth::Locker::ManagerPath, m_manager);
    } catch (const CORBA::Exception& exception) {
        QFAIL(qPrintable(QStringLiteral("cannot serve the lock manager: ") + CorbaFailure::describe(exception)));
    }
}

void TestRegistryThreads::cleanupTestCase()
{
    delete GlobalImpl::existingInstance();
    if (m_server) {
        m_server->deactivate(m_manager);
        m_manager->_remove_ref();
        m_server.reset();
    }
    ORB_base::destroyProcessOrb();
    m_naming.stop();
}

void TestRegistryThreads::firstUseFromSeveralThreadsBuildsOneLocker()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    const std::size_t lockers = m_manager->lockerCount();
    std::atomic<bool> go{false};
    Orvanth::LockerID ids[4] = {};
    std::vector<std::thread> threads;
    for (Orvanth::LockerID& id : ids) {
        threads.emplace_back([&go, &id, registry] {
            while (!go)
                std::this_thread::yield();
            id = registry->getLockerID();
        });
    }
    go = true;
    for (std::thread& thread : threads)
        thread.join();

    QCOMPARE(m_manager->lockerCount(), lockers + 1);
    for (const Orvanth::LockerID& id : ids) {
        QVERIFY(!isZero(id));
        QCOMPARE(id.owner, ids[0].owner);
    }
}

void TestRegistryThreads::lockIdCallsRacingDesktopCloseEndCleanly()
{
    // A few rounds, so that a call is under way in the middle of the close in some.
    for (int round = 0; round < 5; ++round) {
        QPointer<GlobalImpl> registry = GlobalImpl::getInstance();
        QVERIFY(!isZero(registry->getLockerID()));
        QWidget parent;
        auto* desktop = new DesktopImpl(&parent);
        registry->setDesktop(desktop);
        const std::size_t lockers = m_manager->lockerCount();

        // Two play DDS threads: they ask for the registry and, through the gateway they
        // hold for the call, for the lock id, until well after the close.
        std::atomic<bool> closed{false};
        std::atomic<int> idsBeforeClose{0};
        std::atomic<int> registriesAfterClose{0};
        const auto playDds = [&] {
            for (int roundsAfterClose = 0; roundsAfterClose < 100;) {
                const bool afterClose = closed;
                GlobalImpl* found = GlobalImpl::getInstance();
                if (!found)
                    found = GlobalImpl::existingInstance();
                Orvanth::LockerID id{};
                if (const std::shared_ptr<LockerGateway> gateway = GlobalImpl::currentLockerGateway())
                    id = gateway->getLockerID();
                if (!afterClose) {
                    idsBeforeClose += isZero(id) ? 0 : 1;
                } else {
                    registriesAfterClose += found ? 1 : 0;
                    ++roundsAfterClose;
                }
            }
        };
        std::thread first(playDds);
        std::thread second(playDds);

        QTRY_VERIFY_WITH_TIMEOUT(idsBeforeClose >= 20, 10000);
        QVERIFY(desktop->close());
        closed = true;
        first.join();
        second.join();

        QVERIFY(registry.isNull());
        QCOMPARE(registriesAfterClose.load(), 0);
        QVERIFY(qApp->findChildren<GlobalImpl*>().isEmpty());
        // Nothing built a locker after the registry's, before the close or after it.
        QCOMPARE(m_manager->lockerCount(), lockers);
    }

    // Nor does a desktop closed after the registry went build another one (and delete
    // it at once): a registry being built sets the global pool to 8 threads.
    QWidget parent;
    QThreadPool::globalInstance()->setMaxThreadCount(3);
    QVERIFY(DesktopImpl(&parent).close());
    QCOMPARE(QThreadPool::globalInstance()->maxThreadCount(), 3);
}

void TestRegistryThreads::subscriberThreadsStopBeforeLockerGoes()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    QVERIFY(!isZero(registry->getLockerID()));
    const std::shared_ptr<LockerGateway> gateway = GlobalImpl::currentLockerGateway();
    QVERIFY(gateway);
    const std::size_t lockers = m_manager->lockerCount();

    // The subscriber's last act, on its own thread as it ends, needs the lock id.
    QThread subscriber;
    Orvanth::LockerID lastId{};
    connect(&subscriber, &QThread::finished, [&lastId, registry] { lastId = registry->getLockerID(); });
    subscriber.start();
    registry->storeSubscriberThread(&subscriber);

    delete registry;
    QVERIFY(subscriber.isFinished());
    QVERIFY(!isZero(lastId));

    // A gateway still held after the registry went answers without building a locker.
    LogCapture log;
    QVERIFY(gateway->isClosed());
    QVERIFY(!gateway->getLocker());
    QVERIFY(isZero(gateway->getLockerID()));
    QCOMPARE(gateway->getLockAuthority().length(), CORBA::ULong(0));
    QCOMPARE(m_manager->lockerCount(), lockers);
    QCOMPARE(log.linesContaining(QStringLiteral("UserInterface - Locker released at shutdown")).size(), 2);
}

QTEST_MAIN(TestRegistryThreads)
#include "tst_registrythreads.moc"
