// The naming service the host names in "-ORBInitRef" is the one the library reaches,
// whichever part of it starts the process ORB first; taking the running ORB again is
// silent, and what the ORB layer has to say goes through the Qt log.

#include "ChildProcess.h"
#include "LogCapture.h"
#include "NamingServiceProcess.h"
#include "StreamCapture.h"

#include "ApplicationOrb.h"
#include "GlobalImpl.h"
#include "Locker.h"
#include "ORB_base.h"

#include <QtTest>

class TestApplicationOrb : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void optionsCarryTheHostsInitialReference();
    void registryRetriesLockerSilentlyUntilHostsLockManagerAnswers();
    void ignoredInitialReferenceIsLoggedOnceThroughQt();

private:
    static void setInitRef(const QString& value)
    {
        QCoreApplication::instance()->setProperty("-ORBInitRef", value);
    }

    NamingServiceProcess m_naming;
    ChildProcess m_engine;
};

void TestApplicationOrb::initTestCase()
{
    // Nothing but the application option tells this process where the naming service is.
    QVERIFY(qgetenv("ORBInitRef").isEmpty());
    QVERIFY(m_naming.start());
}

void TestApplicationOrb::cleanupTestCase()
{
    delete GlobalImpl::getInstance();
    m_engine.stop();
    ORB_base::destroyProcessOrb();
    m_naming.stop();
}

void TestApplicationOrb::optionsCarryTheHostsInitialReference()
{
    QCOMPARE(ApplicationOrb::options(), std::vector<std::string>{});
    setInitRef(QStringLiteral("NameService=corbaname::127.0.0.1:1"));
    QCOMPARE(ApplicationOrb::options(),
             (std::vector<std::string>{"-ORBInitRef", "NameService=corbaname::127.0.0.1:1"}));
}

void TestApplicationOrb::registryRetriesLockerSilentlyUntilHostsLockManagerAnswers()
{
    setInitRef(QStringLiteral("NameService=") + m_naming.corbaname());
    GlobalImpl* registry = GlobalImpl::getInstance();
    {
        // No lock manager yet: every call tries to build the locker again.
        StreamCapture standardError(std::cerr);
        LogCapture log;
        for (int attempt = 0; attempt < 3; ++attempt)
            QVERIFY(!registry->getLocker());
        QCOMPARE(standardError.text(), QString());
        QCOMPARE(log.linesContaining(QStringLiteral("Orvanth ORB")), QStringList());
    }

    QVERIFY(m_engine.start(QStringLiteral(TZ_TEST_ENGINE), {"--locker"}, m_naming.childEnvironment()));
    QVERIFY(registry->getLocker());
    QVERIFY(registry->getLockerID().owner != 0);
}

void TestApplicationOrb::ignoredInitialReferenceIsLoggedOnceThroughQt()
{
    QVERIFY(ORB_base::isRunning());
    setInitRef(QStringLiteral("NameService=corbaname::127.0.0.1:1"));
    StreamCapture standardError(std::cerr);
    LogCapture log;
    ApplicationOrb::start();
    ApplicationOrb::start();
    QCOMPARE(log.linesContaining(QStringLiteral("Orvanth ORB")),
             QStringList{QStringLiteral("Orvanth ORB - the process ORB is already running; ignoring the options "
                                        "\"-ORBInitRef NameService=corbaname::127.0.0.1:1\"")});
    QCOMPARE(standardError.text(), QString());

    // The locker still reaches the lock manager of the naming service the ORB started with.
    Orvanth::Locker locker;
    QVERIFY(locker.MyLockerID().owner != 0);
}

QTEST_GUILESS_MAIN(TestApplicationOrb)
#include "tst_applicationorb.moc"
