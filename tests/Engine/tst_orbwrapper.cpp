// The ORB layer against a real omniNames and real engine processes.

#include "ChildProcess.h"
#include "NamingServiceProcess.h"

#include "CorbaText.h"
#include "Locker.h"
#include "ORB_wrapper_base.h"

#include <Orvanth.hh>

#include <QElapsedTimer>
#include <QtTest>

#include <algorithm>
#include <memory>

Q_DECLARE_METATYPE(std::vector<std::string>)

class TestOrbWrapper : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void sanitizesOptions_data();
    void sanitizesOptions();

    void listsNumericBindingsOfContext();
    void listsNothingForMissingContext();
    void resolvesNarrowsAndCallsModule();
    void carriesNonAsciiTextBothWays();
    void lockerHandsOutStableIdAndAuthority();
    void hungServerGivesTimeout();
    void deadServerGivesTransientOrCommFailure();

private:
    Orvanth::GUI_Able_ptr resolveModule(const std::string& path);

    NamingServiceProcess m_naming;
    ChildProcess m_engine;
    std::unique_ptr<ORB_wrapper_base> m_orb;
};

void TestOrbWrapper::initTestCase()
{
    QVERIFY(m_naming.start());
    // A TAO-only option must not keep the ORB from starting.
    std::vector<std::string> options = m_naming.orbOptions();
    options.insert(options.end(), {"-ORBSvcConf", "tcp.conf"});
    m_orb = std::make_unique<ORB_wrapper_base>(options);
    QVERIFY(!CORBA::is_nil(m_orb->orb()));

    QVERIFY(m_engine.start(QStringLiteral(TZ_TEST_ENGINE),
                           {"--bind", "Lumaro/local/GUI_ABLE/2", "--bind", "Lumaro/local/GUI_ABLE/10",
                            "--bind", "Lumaro/local/GUI_ABLE/1", "--locker"},
                           m_naming.childEnvironment()));
}

void TestOrbWrapper::cleanupTestCase()
{
    m_engine.stop();
    m_orb.reset();
    ORB_base::destroyProcessOrb();
    m_naming.stop();
}

void TestOrbWrapper::sanitizesOptions_data()
{
    QTest::addColumn<std::vector<std::string>>("given");
    QTest::addColumn<std::vector<std::string>>("passed");
    QTest::addColumn<int>("dropped");

    const std::vector<std::string> defaults{"-ORBendPoint", "giop:tcp:127.0.0.1:",
                                            "-ORBclientCallTimeOutPeriod", "3000"};
    auto with = [&](std::vector<std::string> head) {
        head.insert(head.end(), defaults.begin(), defaults.end());
        return head;
    };
    QTest::newRow("nothing") << std::vector<std::string>{} << defaults << 0;
    QTest::newRow("init ref kept")
        << std::vector<std::string>{"-ORBInitRef", "NameService=corbaname::127.0.0.1:2809"}
        << with({"-ORBInitRef", "NameService=corbaname::127.0.0.1:2809"}) << 0;
    QTest::newRow("TAO service configuration dropped with its value")
        << std::vector<std::string>{"-ORBSvcConf", "tcp.conf", "-ORBInitRef", "X=corbaloc::127.0.0.1:1/X"}
        << with({"-ORBInitRef", "X=corbaloc::127.0.0.1:1/X"}) << 1;
    QTest::newRow("TAO flag without value dropped alone")
        << std::vector<std::string>{"-ORBDottedDecimalAddresses", "-ORBtraceLevel", "0"}
        << with({"-ORBtraceLevel", "0"}) << 1;
    QTest::newRow("endpoint on another interface replaced")
        << std::vector<std::string>{"-ORBendPoint", "giop:tcp:instrument.local:4000"} << defaults << 1;
    QTest::newRow("loopback endpoint kept")
        << std::vector<std::string>{"-ORBendPoint", "giop:tcp:127.0.0.1:4000"}
        << std::vector<std::string>{"-ORBendPoint", "giop:tcp:127.0.0.1:4000", "-ORBclientCallTimeOutPeriod", "3000"}
        << 0;
    QTest::newRow("caller's time-out kept")
        << std::vector<std::string>{"-ORBclientCallTimeOutPeriod", "100"}
        << std::vector<std::string>{"-ORBclientCallTimeOutPeriod", "100", "-ORBendPoint", "giop:tcp:127.0.0.1:"}
        << 0;
}

void TestOrbWrapper::sanitizesOptions()
{
    QFETCH(std::vector<std::string>, given);
    QFETCH(std::vector<std::string>, passed);
    QFETCH(int, dropped);

    std::vector<std::string> droppedOptions;
    QCOMPARE(ORB_base::sanitizedOptions(given, &droppedOptions), passed);
    QCOMPARE(int(droppedOptions.size()), dropped);
}

void TestOrbWrapper::listsNumericBindingsOfContext()
{
    std::vector<std::string> names = m_orb->FindChildContext("Lumaro/local/GUI_ABLE");
    std::sort(names.begin(), names.end());
    QCOMPARE(names, (std::vector<std::string>{"1", "10", "2"}));

    const std::vector<std::string> local = m_orb->FindChildContext("Lumaro/local");
    QVERIFY(std::find(local.begin(), local.end(), "GUI_ABLE") != local.end());
    QVERIFY(std::find(local.begin(), local.end(), "Locker") != local.end());
}

void TestOrbWrapper::listsNothingForMissingContext()
{
    QVERIFY(m_orb->FindChildContext("Lumaro/remote/GUI_ABLE").empty());
    // A name bound to an object, not a context, lists nothing either.
    QVERIFY(m_orb->FindChildContext("Lumaro/local/GUI_ABLE/1").empty());
    QVERIFY(CORBA::is_nil(CORBA::Object_var(m_orb->ResolveName("Lumaro/local/GUI_ABLE/99"))));
}

Orvanth::GUI_Able_ptr TestOrbWrapper::resolveModule(const std::string& path)
{
    CORBA::Object_var object = m_orb->ResolveName(path);
    if (CORBA::is_nil(object))
        return Orvanth::GUI_Able::_nil();
    return Orvanth::GUI_Able::_narrow(object);
}

void TestOrbWrapper::resolvesNarrowsAndCallsModule()
{
    Orvanth::GUI_Able_var module = resolveModule("Lumaro/local/GUI_ABLE/10");
    QVERIFY(!CORBA::is_nil(module));
    CORBA::String_var answer = module->Ping("PingTest");
    QCOMPARE(QString(answer.in()), QStringLiteral("Pong PingTest"));
    Orvanth::EngineReadingBase_var attribute = module->FindAttribute("NoSuchAttribute");
    QVERIFY(CORBA::is_nil(attribute));

    // The lock manager is not a GUI module: narrowing it gives nil.
    CORBA::Object_var locker = m_orb->ResolveName("Lumaro/local/Locker");
    QVERIFY(CORBA::is_nil(Orvanth::GUI_Able_var(Orvanth::GUI_Able::_narrow(locker))));
}

void TestOrbWrapper::carriesNonAsciiTextBothWays()
{
    Orvanth::GUI_Able_var module = resolveModule("Lumaro/local/GUI_ABLE/1");
    QVERIFY(!CORBA::is_nil(module));
    const QString text = QStringLiteral("10 \u2126 Pr\u00fcfung \u6e2c\u8a66");
    CORBA::String_var sent = CorbaText::toCorba(text);
    CORBA::String_var answer = module->Ping(sent.in());
    QCOMPARE(CorbaText::fromCorba(answer.in()), QStringLiteral("Pong ") + text);
}

void TestOrbWrapper::lockerHandsOutStableIdAndAuthority()
{
    Orvanth::Locker locker;
    const Orvanth::LockerID first = locker.MyLockerID();
    const Orvanth::LockerID second = locker.MyLockerID();
    QCOMPARE(first.owner, second.owner);
    QCOMPARE(first.session, second.session);

    Orvanth::Lock_Authority_var authority = locker.LockAuthority();
    QCOMPARE(authority->length(), CORBA::ULong(1));
    QCOMPARE(authority[CORBA::ULong(0)].owner, first.owner);

    // A second locker in the same process is another locker to the engine.
    Orvanth::Locker other;
    QVERIFY(other.MyLockerID().owner != first.owner);
}

void TestOrbWrapper::hungServerGivesTimeout()
{
    ChildProcess hung;
    QVERIFY(hung.start(QStringLiteral(TZ_TEST_ENGINE), {"--bind", "Test/Hung", "--ping-delay-ms", "20000"},
                       m_naming.childEnvironment()));
    Orvanth::GUI_Able_var module = resolveModule("Test/Hung");
    QVERIFY(!CORBA::is_nil(module));

    QElapsedTimer timer;
    timer.start();
    bool timedOut = false;
    try {
        CORBA::String_var answer = module->Ping("PingTest");
    } catch (const CORBA::TIMEOUT&) {
        timedOut = true;
    }
    QVERIFY(timedOut);
    // The tests run with a 3 s call time-out; allow for a loaded machine.
    QVERIFY2(timer.elapsed() < 8000, qPrintable(QString::number(timer.elapsed())));
}

void TestOrbWrapper::deadServerGivesTransientOrCommFailure()
{
    auto dead = std::make_unique<ChildProcess>();
    QVERIFY(dead->start(QStringLiteral(TZ_TEST_ENGINE), {"--bind", "Test/Dead"}, m_naming.childEnvironment()));
    Orvanth::GUI_Able_var module = resolveModule("Test/Dead");
    QVERIFY(!CORBA::is_nil(module));
    CORBA::String_var alive = module->Ping("PingTest");
    QCOMPARE(dead->stop(), 0);

    bool failed = false;
    try {
        CORBA::String_var answer = module->Ping("PingTest");
    } catch (const CORBA::TRANSIENT&) {
        failed = true;
    } catch (const CORBA::COMM_FAILURE&) {
        failed = true;
    }
    QVERIFY(failed);
}

QTEST_GUILESS_MAIN(TestOrbWrapper)
#include "tst_orbwrapper.moc"
