// The ORB layer against a real omniNames and real engine processes: one process ORB,
// the naming-service client, and serving objects from this process.

#include "ChildProcess.h"
#include "NamingServiceProcess.h"

#include "CorbaText.h"
#include "HostAddress.h"
#include "GuiAbleServant.h"
#include "Locker.h"
#include "ORB_wrapper_base.h"
#include "OrvanthNames.h"

#include <Orvanth.hh>

#include <QtTest>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

Q_DECLARE_METATYPE(std::vector<std::string>)

namespace {

using Orvanth::Names::GuiAbleContext;

std::string modulePath(const char* index)
{
    return std::string(GuiAbleContext) + "/" + index;
}

// A GUI module whose pings wait (up to half a second) until two of them are inside at once,
// and which counts how many were inside at most: one when its POA hands it one call at
// a time.
class OverlapServant : public Orvanth::GuiAbleServant
{
public:
    char* Ping(const char* text) override
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        ++m_inside;
        m_most = std::max(m_most, m_inside);
        m_changed.notify_all();
        m_changed.wait_for(lock, std::chrono::milliseconds(500), [this] { return m_most >= 2; });
        --m_inside;
        return CORBA::string_dup(text);
    }

    int most()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_most;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_inside = 0;
    int m_most = 0;
};

} // namespace

class TestOrbWrapper : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void sanitizesOptions_data();
    void sanitizesOptions();
    void sanitizesOptionsOffLoopback_data();
    void sanitizesOptionsOffLoopback();
    void reportsIgnoredOptionsOfLaterStartOnce();

    void listsNumericBindingsOfContext();
    void listsNothingForMissingContext();
    void resolvesNarrowsAndCallsModule();
    void carriesNonAsciiTextBothWays();
    void lockerHandsOutStableIdAndAuthority();
    void deadServerGivesTransientOrCommFailure();
    void servesAndWithdrawsObjects();
    void singleThreadPoaTakesOneCallAtATime_data();
    void singleThreadPoaTakesOneCallAtATime();

private:
    Orvanth::GUI_Able_ptr resolveModule(const std::string& path);
    QStringList takeReports();

    NamingServiceProcess m_naming;
    ChildProcess m_engine;
    std::vector<std::string> m_startOptions;
    std::unique_ptr<ORB_wrapper_base> m_orb;
    std::mutex m_reportMutex;
    QStringList m_reports;
};

void TestOrbWrapper::initTestCase()
{
    ORB_base::setDiagnosticSink([this](const std::string& line) {
        std::lock_guard<std::mutex> lock(m_reportMutex);
        m_reports.append(QString::fromStdString(line));
    });
    QVERIFY(m_naming.start());
    // A TAO-only option must not keep the ORB from starting.
    m_startOptions = m_naming.orbOptions();
    m_startOptions.insert(m_startOptions.end(), {"-ORBSvcConf", "tcp.conf"});
    m_orb = std::make_unique<ORB_wrapper_base>(m_startOptions);
    QVERIFY(!CORBA::is_nil(m_orb->orb()));
    QCOMPARE(takeReports(), QStringList{QStringLiteral(
        "Orvanth ORB - dropped option \"-ORBSvcConf tcp.conf\": not an omniORB option or not a loopback endpoint")});

    QVERIFY(m_engine.start(QStringLiteral(TZ_TEST_ENGINE),
                           {"--bind", QString::fromStdString(modulePath("2")), "--bind",
                            QString::fromStdString(modulePath("10")), "--bind",
                            QString::fromStdString(modulePath("1")), "--locker"},
                           m_naming.childEnvironment()));
}

void TestOrbWrapper::cleanupTestCase()
{
    m_engine.stop();
    m_orb.reset();
    ORB_base::destroyProcessOrb();
    ORB_base::setDiagnosticSink({});
    m_naming.stop();
}

QStringList TestOrbWrapper::takeReports()
{
    std::lock_guard<std::mutex> lock(m_reportMutex);
    QStringList reports;
    reports.swap(m_reports);
    return reports;
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

void TestOrbWrapper::sanitizesOptionsOffLoopback_data()
{
    QTest::addColumn<std::vector<std::string>>("given");
    QTest::addColumn<std::vector<std::string>>("passed");
    QTest::addColumn<int>("dropped");

    // The instrument at 127.0.0.9, this process at 127.0.0.5: addresses of this host that
    // stand for two hosts.
    const std::vector<std::string> endpoint{"-ORBendPoint", "giop:tcp:127.0.0.5:"};
    const std::vector<std::string> callTimeout{"-ORBclientCallTimeOutPeriod", "3000"};
    const std::vector<std::string> naming{"-ORBInitRef", "NameService=corbaname::127.0.0.9:2809"};
    const std::vector<std::string> connectTimeout{"-ORBclientConnectTimeOutPeriod", "1000"};
    auto joined = [](std::initializer_list<std::vector<std::string>> parts) {
        std::vector<std::string> all;
        for (const auto& part : parts)
            all.insert(all.end(), part.begin(), part.end());
        return all;
    };
    QTest::newRow("nothing: own endpoint, instrument's naming service, connect time-out")
        << std::vector<std::string>{} << joined({endpoint, callTimeout, naming, connectTimeout}) << 0;
    QTest::newRow("loopback endpoint dropped")
        << std::vector<std::string>{"-ORBendPoint", "giop:tcp:127.0.0.1:4000"}
        << joined({endpoint, callTimeout, naming, connectTimeout}) << 1;
    QTest::newRow("published addresses dropped")
        << std::vector<std::string>{"-ORBendPointPublish", "all(addr)", "-ORBendPointPublishAllIFs", "1"}
        << joined({endpoint, callTimeout, naming, connectTimeout}) << 2;
    QTest::newRow("own endpoint with a port kept")
        << std::vector<std::string>{"-ORBendPoint", "giop:tcp:127.0.0.5:4000"}
        << joined({{"-ORBendPoint", "giop:tcp:127.0.0.5:4000"}, callTimeout, naming, connectTimeout}) << 0;
    QTest::newRow("caller's naming service and connect time-out kept")
        << joined({{"-ORBInitRef", "NameService=corbaname::127.0.0.9:3000"}, {"-ORBclientConnectTimeOutPeriod", "200"}})
        << joined({{"-ORBInitRef", "NameService=corbaname::127.0.0.9:3000"}, {"-ORBclientConnectTimeOutPeriod", "200"},
                   endpoint, callTimeout})
        << 0;
    QTest::newRow("another initial reference does not name the naming service")
        << std::vector<std::string>{"-ORBInitRef", "X=corbaloc::127.0.0.9:1/X"}
        << joined({{"-ORBInitRef", "X=corbaloc::127.0.0.9:1/X"}, endpoint, callTimeout, naming, connectTimeout}) << 0;
}

void TestOrbWrapper::sanitizesOptionsOffLoopback()
{
    QFETCH(std::vector<std::string>, given);
    QFETCH(std::vector<std::string>, passed);
    QFETCH(int, dropped);

    std::vector<std::string> problems;
    const HostAddress address = HostAddress::fromValues("127.0.0.9", "127.0.0.5", &problems);
    QVERIFY(problems.empty());
    std::vector<std::string> droppedOptions;
    QCOMPARE(ORB_base::sanitizedOptions(given, address, &droppedOptions), passed);
    QCOMPARE(int(droppedOptions.size()), dropped);
}

void TestOrbWrapper::reportsIgnoredOptionsOfLaterStartOnce()
{
    // Whatever takes the running ORB says nothing.
    QCOMPARE(ORB_base::start(m_startOptions), m_orb->orb());
    QCOMPARE(ORB_base::start(), m_orb->orb());
    ORB_wrapper_base client;
    Orvanth::Locker locker;
    QVERIFY(takeReports().isEmpty());

    // Other options are ignored, and said so once.
    const std::vector<std::string> other{"-ORBInitRef", "NameService=corbaname::127.0.0.1:1"};
    QCOMPARE(ORB_base::start(other), m_orb->orb());
    QCOMPARE(ORB_base::start(other), m_orb->orb());
    ORB_wrapper_base otherClient(other);
    QCOMPARE(takeReports(), QStringList{QStringLiteral("Orvanth ORB - the process ORB is already running; "
                                                       "ignoring the options \"-ORBInitRef "
                                                       "NameService=corbaname::127.0.0.1:1\"")});
    // The naming service is still the first one.
    QVERIFY(!otherClient.FindChildContext(GuiAbleContext).empty());
}

void TestOrbWrapper::listsNumericBindingsOfContext()
{
    std::vector<std::string> names = m_orb->FindChildContext(GuiAbleContext);
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
    QVERIFY(m_orb->FindChildContext(modulePath("1")).empty());
    QVERIFY(CORBA::is_nil(CORBA::Object_var(m_orb->ResolveName(modulePath("99")))));
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
    Orvanth::GUI_Able_var module = resolveModule(modulePath("10"));
    QVERIFY(!CORBA::is_nil(module));
    CORBA::String_var answer = module->Ping("PingTest");
    QCOMPARE(QString(answer.in()), QStringLiteral("Pong PingTest"));
    Orvanth::EngineReadingBase_var attribute = module->FindAttribute("NoSuchAttribute");
    QVERIFY(CORBA::is_nil(attribute));

    // The lock manager is not a GUI module: narrowing it gives nil.
    CORBA::Object_var locker = m_orb->ResolveName(Orvanth::Names::LockerPath);
    QVERIFY(CORBA::is_nil(Orvanth::GUI_Able_var(Orvanth::GUI_Able::_narrow(locker))));
}

void TestOrbWrapper::carriesNonAsciiTextBothWays()
{
    Orvanth::GUI_Able_var module = resolveModule(modulePath("1"));
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

void TestOrbWrapper::servesAndWithdrawsObjects()
{
    const std::string path = "Test/Served/Module";
    auto* servant = new Orvanth::GuiAbleServant;
    CORBA::Object_var served = m_orb->serve(path, servant);

    Orvanth::GUI_Able_var module = resolveModule(path);
    QVERIFY(!CORBA::is_nil(module));
    QVERIFY(module->_is_equivalent(served));
    CORBA::String_var answer = module->Ping("PingTest");
    QCOMPARE(QString(answer.in()), QStringLiteral("Pong PingTest"));

    QVERIFY(m_orb->withdraw(path, servant));
    QVERIFY(CORBA::is_nil(CORBA::Object_var(m_orb->ResolveName(path))));
    QVERIFY_EXCEPTION_THROWN(CORBA::String_var(module->Ping("PingTest")), CORBA::OBJECT_NOT_EXIST);
    QVERIFY(!m_orb->withdraw(path, servant));
    servant->_remove_ref();
}

void TestOrbWrapper::singleThreadPoaTakesOneCallAtATime_data()
{
    QTest::addColumn<bool>("singleThread");
    QTest::addColumn<int>("inside");
    QTest::newRow("root POA: calls overlap") << false << 2;
    QTest::newRow("single-thread POA: one after the other") << true << 1;
}

void TestOrbWrapper::singleThreadPoaTakesOneCallAtATime()
{
    QFETCH(bool, singleThread);
    QFETCH(int, inside);

    PortableServer::POA_var poa = singleThread ? m_orb->singleThreadPoa("OneAtATime")
                                               : PortableServer::POA::_duplicate(m_orb->rootPoa());
    if (singleThread) {
        PortableServer::POA_var again = m_orb->singleThreadPoa("OneAtATime");
        QVERIFY(again->_is_equivalent(poa));
    }
    auto* servant = new OverlapServant;
    CORBA::Object_var object = m_orb->activate(servant, poa);
    const std::string path = "Test/Overlap";
    m_orb->BindName(path, object);
    Orvanth::GUI_Able_var module = resolveModule(path);

    std::atomic<int> answered{0};
    auto ping = [&] {
        CORBA::String_var answer = module->Ping("PingTest");
        ++answered;
    };
    std::thread first(ping);
    std::thread second(ping);
    first.join();
    second.join();
    QCOMPARE(answered.load(), 2);
    QCOMPARE(servant->most(), inside);

    m_orb->withdraw(path, servant, poa);
    servant->_remove_ref();
}

QTEST_GUILESS_MAIN(TestOrbWrapper)
#include "tst_orbwrapper.moc"
