// The engine layer: the process ORB and its options, the naming-service client, serving
// and call time-outs against real omniNames and engine processes; the addresses the ORB
// and DDS are given. That the programs listen on nothing more is tst_demo's check.

#include "ChildProcess.h"
#include "NamingServiceProcess.h"

#include "CorbaText.h"
#include "DDS_BaseObj.h"
#include "GuiAbleServant.h"
#include "HostAddress.h"
#include "Locker.h"
#include "ORB_wrapper_base.h"
#include "OrvanthNames.h"

#include <Orvanth.hh>

#include <fastdds/rtps/transport/UDPv4TransportDescriptor.h>
#include <fastrtps/utils/IPLocator.h>

#include <QtTest>

#include <condition_variable>

using Strings = std::vector<std::string>;

namespace {

using namespace std::chrono_literals;
using Orvanth::Names::GuiAbleContext;

// Pings to the hung module answer after 800 ms; the time-out of this test's environment
// (300 ms) is shorter, the longer one (2 s) longer.

enum class Timeout { Untouched, Longer, None, Cleared, OnAnotherReference };

// Pings wait (up to half a second) until two of them are inside at once; most() is one
// when the POA hands the servant one call at a time.
class OverlapServant : public Orvanth::GuiAbleServant
{
public:
    char* Ping(const char* text) override
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_most = std::max(m_most, ++m_inside);
        m_changed.notify_all();
        m_changed.wait_for(lock, 500ms, [this] { return m_most >= 2; });
        --m_inside;
        return CORBA::string_dup(text);
    }
    int most() { return std::lock_guard<std::mutex>(m_mutex), m_most; }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_inside = 0;
    int m_most = 0;
};

} // namespace

Q_DECLARE_METATYPE(Timeout)

class TestEngine : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
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
        QCOMPARE(takeReports(), QStringList{"Orvanth ORB - dropped option \"-ORBSvcConf tcp.conf\": not an omniORB "
                                            "option or not a loopback endpoint"});
        QCOMPARE(ORB_base::defaultCallTimeout(), 300ms);
        const QString context = QLatin1String(GuiAbleContext) + QLatin1Char('/');
        QVERIFY(m_engine.start(QStringLiteral(TZ_TEST_ENGINE),
                               {"--bind", context + "2", "--bind", context + "10", "--bind", context + "1", "--locker"},
                               m_naming.childEnvironment()));
        QVERIFY(m_hungEngine.start(QStringLiteral(TZ_TEST_ENGINE), {"--bind", "Test/Hung", "--ping-delay-ms", "800"},
                                   m_naming.childEnvironment()));
    }

    void cleanupTestCase()
    {
        m_orb.reset();
        ORB_base::destroyProcessOrb();
        ORB_base::setDiagnosticSink({});
        Orvanth::DDS_BaseObj::shutdownDds();
    }

    void sanitizesOptions_data()
    {
        QTest::addColumn<bool>("remote");
        QTest::addColumn<QString>("given");
        QTest::addColumn<QString>("passed");
        QTest::addColumn<int>("dropped");
        const QString loopback = QStringLiteral(" -ORBendPoint giop:tcp:127.0.0.1: -ORBclientCallTimeOutPeriod 300");
        // Off loopback: the instrument at 127.0.0.9, this process at 127.0.0.5.
        const QString remote = QStringLiteral(" -ORBendPoint giop:tcp:127.0.0.5: -ORBclientCallTimeOutPeriod 300");
        const QString instrument = QStringLiteral(" -ORBInitRef NameService=corbaname::127.0.0.9:2809"
                                                  " -ORBclientConnectTimeOutPeriod 1000");
        const QString initRef = QStringLiteral("-ORBInitRef NameService=corbaname::127.0.0.1:2809");
        QTest::newRow("nothing") << false << "" << loopback << 0;
        QTest::newRow("TAO option dropped with its value") << false << "-ORBSvcConf tcp.conf " + initRef
                                                           << initRef + loopback << 1;
        QTest::newRow("TAO flag dropped alone") << false << "-ORBDottedDecimalAddresses -ORBtraceLevel 0"
                                                << "-ORBtraceLevel 0" + loopback << 1;
        QTest::newRow("endpoint elsewhere replaced") << false << "-ORBendPoint giop:tcp:instrument.local:4000"
                                                     << loopback << 1;
        const QString own = QStringLiteral("-ORBendPoint giop:tcp:127.0.0.1:4000 -ORBclientCallTimeOutPeriod 100");
        QTest::newRow("caller's endpoint and time-out kept") << false << own << own << 0;
        QTest::newRow("remote: own endpoint, instrument's naming service") << true << "-ORBInitRef X=corbaloc::127.0.0.9:1/X"
            << "-ORBInitRef X=corbaloc::127.0.0.9:1/X" + remote + instrument << 0;
        QTest::newRow("remote: loopback endpoint and published addresses dropped")
            << true << "-ORBendPoint giop:tcp:127.0.0.1:4000 -ORBendPointPublish all(addr)" << remote + instrument << 2;
        const QString callers = QStringLiteral("-ORBInitRef NameService=corbaname::127.0.0.9:3000 -ORBclientConnectTimeOutPeriod 200");
        QTest::newRow("remote: caller's naming service and connect time-out kept") << true << callers << callers + remote
                                                                                  << 0;
    }

    void sanitizesOptions()
    {
        QFETCH(bool, remote);
        QFETCH(QString, given);
        QFETCH(QString, passed);
        QFETCH(int, dropped);
        Strings options, droppedOptions;
        for (const QString& option : given.split(QLatin1Char(' '), Qt::SkipEmptyParts))
            options.push_back(option.toStdString());
        const HostAddress address = remote ? HostAddress::fromValues("127.0.0.9", "127.0.0.5", nullptr)
                                           : HostAddress::fromValues(nullptr, nullptr, nullptr);
        QStringList sanitized;
        for (const std::string& option : ORB_base::sanitizedOptions(options, address, &droppedOptions))
            sanitized << QString::fromStdString(option);
        QCOMPARE(sanitized.join(QLatin1Char(' ')), passed.trimmed());
        QCOMPARE(int(droppedOptions.size()), dropped);
    }

    void reportsIgnoredOptionsOfLaterStartOnce()
    {
        // Whatever takes the running ORB says nothing.
        QVERIFY(ORB_base::start(m_startOptions) == m_orb->orb() && ORB_base::start() == m_orb->orb());
        ORB_wrapper_base client;
        Orvanth::Locker locker;
        QVERIFY(takeReports().isEmpty());
        // Other options are ignored, and said so once.
        const Strings other{"-ORBInitRef", "NameService=corbaname::127.0.0.1:1"};
        QCOMPARE(ORB_base::start(other), m_orb->orb());
        ORB_wrapper_base otherClient(other);
        QCOMPARE(takeReports().size(), 1);
        // The naming service is still the first one.
        QVERIFY(!otherClient.FindChildContext(GuiAbleContext).empty());
    }

    void findsAndCallsEngineModules()
    {
        Strings names = m_orb->FindChildContext(GuiAbleContext);
        std::sort(names.begin(), names.end());
        QCOMPARE(names, (Strings{"1", "10", "2"}));
        const Strings local = m_orb->FindChildContext("Lumaro/local");
        QVERIFY(std::count(local.begin(), local.end(), "GUI_ABLE") && std::count(local.begin(), local.end(), "Locker"));
        // A missing context, or a name bound to an object, lists nothing.
        QVERIFY(m_orb->FindChildContext("Lumaro/remote/GUI_ABLE").empty());
        QVERIFY(m_orb->FindChildContext(std::string(GuiAbleContext) + "/1").empty());
        QVERIFY(CORBA::is_nil(CORBA::Object_var(m_orb->ResolveName(std::string(GuiAbleContext) + "/99"))));

        Orvanth::GUI_Able_var module = resolve(std::string(GuiAbleContext) + "/10");
        QVERIFY(!CORBA::is_nil(module));
        const QString text = QStringLiteral("10 \u2126 Pr\u00fcfung \u6e2c\u8a66");
        CORBA::String_var answer = module->Ping(CORBA::String_var(CorbaText::toCorba(text)).in());
        QCOMPARE(CorbaText::fromCorba(answer.in()), QStringLiteral("Pong ") + text);
        QVERIFY(CORBA::is_nil(Orvanth::EngineReadingBase_var(module->FindAttribute("NoSuchAttribute"))));
        // The lock manager is not a GUI module.
        QVERIFY(CORBA::is_nil(resolve(Orvanth::Names::LockerPath)));
    }

    void servesAndWithdrawsObjects_data()
    {
        QTest::addColumn<bool>("singleThread");
        QTest::addColumn<int>("inside");
        QTest::newRow("root POA: calls overlap") << false << 2;
        QTest::newRow("single-thread POA: one after the other") << true << 1;
    }

    void servesAndWithdrawsObjects()
    {
        QFETCH(bool, singleThread);
        QFETCH(int, inside);
        PortableServer::POA_var poa = singleThread ? m_orb->singleThreadPoa("OneAtATime") : PortableServer::POA::_nil();
        QVERIFY(!singleThread || PortableServer::POA_var(m_orb->singleThreadPoa("OneAtATime"))->_is_equivalent(poa));
        auto* servant = new OverlapServant;
        CORBA::Object_var served = m_orb->serve("Test/Served", servant, poa);
        Orvanth::GUI_Able_var module = resolve("Test/Served");
        QVERIFY(!CORBA::is_nil(module) && module->_is_equivalent(served));
        const auto ping = [&] { CORBA::String_var answer = module->Ping("PingTest"); };
        std::thread first(ping);
        ping();
        first.join();
        QCOMPARE(servant->most(), inside);
        QVERIFY(m_orb->withdraw("Test/Served", servant, poa));
        QVERIFY(CORBA::is_nil(CORBA::Object_var(m_orb->ResolveName("Test/Served"))));
        QVERIFY_EXCEPTION_THROWN(CORBA::String_var(module->Ping("PingTest")), CORBA::OBJECT_NOT_EXIST);
        QVERIFY(!m_orb->withdraw("Test/Served", servant, poa));
        servant->_remove_ref();
    }

    void hungPingAnswersOnlyWithinItsTimeout_data()
    {
        QTest::addColumn<Timeout>("timeout");
        QTest::addColumn<bool>("answers");
        QTest::newRow("process default") << Timeout::Untouched << false;
        QTest::newRow("longer than the hang") << Timeout::Longer << true;
        QTest::newRow("none") << Timeout::None << true;
        QTest::newRow("longer, then cleared") << Timeout::Cleared << false;
        QTest::newRow("longer on another reference") << Timeout::OnAnotherReference << false;
    }

    void hungPingAnswersOnlyWithinItsTimeout()
    {
        QFETCH(Timeout, timeout);
        QFETCH(bool, answers);
        Orvanth::GUI_Able_var module = resolve("Test/Hung");
        QVERIFY(!CORBA::is_nil(module));
        if (timeout == Timeout::Longer || timeout == Timeout::Cleared)
            ORB_base::setCallTimeout(module, 2000ms);
        if (timeout == Timeout::None)
            ORB_base::setCallTimeout(module, ORB_base::NoCallTimeout);
        if (timeout == Timeout::Cleared)
            ORB_base::clearCallTimeout(module);
        if (timeout == Timeout::OnAnotherReference)
            ORB_base::setCallTimeout(Orvanth::GUI_Able_var(resolve("Test/Hung")), 2000ms);
        try {
            CORBA::String_var answer = module->Ping("PingTest");
            QVERIFY2(answers, "answered after its time-out");
        } catch (const CORBA::TIMEOUT&) {
            QVERIFY2(!answers, "timed out");
        }
    }

    void choosesAddresses_data()
    {
        QTest::addColumn<QString>("instrumentHost");
        QTest::addColumn<QString>("hostAddress");
        QTest::addColumn<QString>("instrument");
        QTest::addColumn<QString>("own");
        QTest::addColumn<QString>("problem");
        const QString local = QStringLiteral("127.0.0.1");
        QTest::newRow("nothing set") << QString() << QString() << local << local << QString();
        QTest::newRow("empty values count as unset") << "" << "" << local << local << QString();
        // 127.0.0.0/8 is this host's: the route towards 127.0.0.9 leaves from 127.0.0.1.
        QTest::newRow("own address from the route") << "127.0.0.9" << QString() << "127.0.0.9" << local << QString();
        QTest::newRow("override taken") << "127.0.0.9" << "127.0.0.5" << "127.0.0.9" << "127.0.0.5" << QString();
        // 192.0.2.0/24 is a documentation range, never assigned: it cannot be bound.
        QTest::newRow("override not of this host") << "127.0.0.9" << "192.0.2.7" << "127.0.0.9" << local
            << "\"192.0.2.7\" is not an address of this host (Cannot assign requested address); using 127.0.0.1";
        QTest::newRow("override not an address") << "127.0.0.9" << "engine-pc" << "127.0.0.9" << local
            << "\"engine-pc\" is not an address of this host (not the IPv4 address of a host); using 127.0.0.1";
        QTest::newRow("override alone") << QString() << "127.0.0.5" << local << local
                                        << "\"127.0.0.5\" ignored without ORVANTH_INSTRUMENT_HOST";
        for (const char* bad : {"instrument.local", "10.251", "239.255.0.1", "0.0.0.0"})
            QTest::newRow(bad) << bad << QString() << local << local
                               << QStringLiteral("\"%1\" is not the IPv4 address of a host; staying on 127.0.0.1").arg(bad);
    }

    void choosesAddresses()
    {
        QFETCH(QString, instrumentHost);
        QFETCH(QString, hostAddress);
        QFETCH(QString, instrument);
        QFETCH(QString, own);
        QFETCH(QString, problem);
        const auto text = [](const QString& value) { return value.isNull() ? nullptr : qstrdup(qPrintable(value)); };
        Strings problems;
        const std::unique_ptr<char[]> instrumentText(text(instrumentHost)), hostText(text(hostAddress));
        const HostAddress address = HostAddress::fromValues(instrumentText.get(), hostText.get(), &problems);
        QCOMPARE(address.isRemote(), instrument != QLatin1String("127.0.0.1"));
        QCOMPARE(QString::fromStdString(address.instrument()), instrument);
        QCOMPARE(QString::fromStdString(address.own()), own);
        QCOMPARE(QString::fromStdString(address.namingService()), QStringLiteral("corbaname::%1:2809").arg(instrument));
        QCOMPARE(int(problems.size()), problem.isEmpty() ? 0 : 1);
        QVERIFY2(problem.isEmpty() || QString::fromStdString(problems.front()).contains(problem),
                 problems.empty() ? "" : problems.front().c_str());
    }

    void ddsParticipantListensOnOwnAddressOnly_data()
    {
        QTest::addColumn<bool>("remote");
        QTest::addColumn<QString>("locators");
        QTest::newRow("loopback") << false << "own 127.0.0.1; peers 127.0.0.1; unicast 127.0.0.1; data 127.0.0.1";
        QTest::newRow("off loopback: asks the instrument and itself")
            << true << "own 127.0.0.5; peers 127.0.0.9 127.0.0.5; unicast 127.0.0.5; data 127.0.0.5";
    }

    void ddsParticipantListensOnOwnAddressOnly()
    {
        QFETCH(bool, remote);
        QFETCH(QString, locators);
        const auto qos = remote ? Orvanth::DDS_BaseObj::participantQos(HostAddress::fromValues("127.0.0.9", "127.0.0.5", nullptr))
                                : Orvanth::DDS_BaseObj::loopbackParticipantQos();
        QVERIFY(!qos.transport().use_builtin_transports && qos.transport().user_transports.size() == 1);
        const auto udp = std::dynamic_pointer_cast<eprosima::fastdds::rtps::UDPv4TransportDescriptor>(
            qos.transport().user_transports.front());
        QVERIFY(udp && qos.wire_protocol().builtin.metatrafficMulticastLocatorList.empty());
        QString found = QStringLiteral("own");
        for (const std::string& address : udp->interfaceWhiteList)
            found += QLatin1Char(' ') + QString::fromStdString(address);
        for (const auto& list : {std::make_pair("; peers", qos.wire_protocol().builtin.initialPeersList),
                                 std::make_pair("; unicast", qos.wire_protocol().builtin.metatrafficUnicastLocatorList),
                                 std::make_pair("; data", qos.wire_protocol().default_unicast_locator_list)}) {
            found += QLatin1String(list.first);
            for (const auto& locator : list.second)
                found += QLatin1Char(' ') + QString::fromStdString(eprosima::fastrtps::rtps::IPLocator::ip_to_string(locator));
        }
        QCOMPARE(found, locators);
        // The process's participant is on the domain its environment names.
        QCOMPARE(int(Orvanth::DDS_BaseObj::DdsBase().domainId), qEnvironmentVariableIntValue("ORVANTH_DDS_DOMAIN"));
    }

    // DDS that cannot start (an impossible domain id) is a process's state, so the case
    // runs again in a child process.
    void ddsThatCannotStartGivesNullParticipant()
    {
        if (qEnvironmentVariableIntValue("ORVANTH_DDS_DOMAIN") != 999)
            QVERIFY(ChildProcess::rerunTest(QTest::currentTestFunction(), {"ORVANTH_DDS_DOMAIN=999"}));
        else // asked twice: the second time neither retries nor crashes
            QVERIFY(!Orvanth::DDS_BaseObj::DdsBase().participant && !Orvanth::DDS_BaseObj::DdsBase().participant);
    }

private:
    Orvanth::GUI_Able_ptr resolve(const std::string& path)
    {
        return Orvanth::GUI_Able::_narrow(CORBA::Object_var(m_orb->ResolveName(path)));
    }

    QStringList takeReports() { return std::lock_guard<std::mutex>(m_reportMutex), std::exchange(m_reports, {}); }

    NamingServiceProcess m_naming;
    ChildProcess m_engine;
    ChildProcess m_hungEngine;
    Strings m_startOptions;
    std::unique_ptr<ORB_wrapper_base> m_orb;
    std::mutex m_reportMutex;
    QStringList m_reports;
};

QTEST_MAIN(TestEngine)
#include "tst_engine.moc"
