// The engine simulator as a real process: its naming-service bindings, attributes and
// locks over CORBA, and its DDS topics read through the typed subscriber.

#include "ChildProcess.h"
#include "NamingServiceProcess.h"
#include "SampleCollector.h"

#include "DDS_Subscriber.h"
#include "Locker.h"
#include "ORB_wrapper_base.h"
#include "OrvanthNames.h"

#include <Orvanth.hh>

#include <QDateTime>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <csignal>
#include <memory>
#include <vector>

using namespace Orvanth;
using eprosima::fastdds::dds::VOLATILE_DURABILITY_QOS;

class TestEngineSimulator : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void rejectsBadArguments_data();
    void rejectsBadArguments();
    void bindsModulesWithAttributes();
    void attributesFollowLocks();
    void publishesEventsOfEachClass();
    void batteryDrainsThenCharges();
    void modulesComeAndGo();
    void stopsCleanlyOnSignal_data();
    void stopsCleanlyOnSignal();

private:
    bool startSimulator(ChildProcess& simulator, const QStringList& arguments);
    std::vector<std::string> moduleNames();
    GUI_Able_ptr module(const std::string& index);

    NamingServiceProcess m_naming;
    std::unique_ptr<ORB_wrapper_base> m_orb;
};

void TestEngineSimulator::initTestCase()
{
    QVERIFY(m_naming.start());
    m_orb = std::make_unique<ORB_wrapper_base>(m_naming.orbOptions());
}

void TestEngineSimulator::cleanupTestCase()
{
    m_orb.reset();
    ORB_base::destroyProcessOrb();
    DDS_BaseObj::shutdownDds();
    m_naming.stop();
}

bool TestEngineSimulator::startSimulator(ChildProcess& simulator, const QStringList& arguments)
{
    return simulator.start(QStringLiteral(TZ_ENGINE_SIMULATOR), arguments, m_naming.childEnvironment());
}

std::vector<std::string> TestEngineSimulator::moduleNames()
{
    std::vector<std::string> names = m_orb->FindChildContext(Names::GuiAbleContext);
    std::sort(names.begin(), names.end());
    return names;
}

GUI_Able_ptr TestEngineSimulator::module(const std::string& index)
{
    CORBA::Object_var object = m_orb->ResolveName(std::string(Names::GuiAbleContext) + "/" + index);
    return GUI_Able::_narrow(object);
}

void TestEngineSimulator::rejectsBadArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("scenario");
    QTest::addColumn<QString>("message");

    QTest::newRow("unknown option") << QStringList{"--bogus"} << QString() << "unknown option \"--bogus\"";
    QTest::newRow("bad rate") << QStringList{"--events-per-second", "fast"} << QString()
                              << "bad value \"fast\" for events-per-second";
    QTest::newRow("scenario line") << QStringList{"--scenario"} << QStringLiteral("# calm\nmodules 3\nmodules many\n")
                                   << ".txt:3: bad value \"many\" for modules";
    QTest::newRow("missing scenario") << QStringList{"--scenario", "/nonexistent/scenario.txt"} << QString()
                                      << "cannot read the scenario file \"/nonexistent/scenario.txt\"";
}

void TestEngineSimulator::rejectsBadArguments()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, scenario);
    QFETCH(QString, message);

    QTemporaryDir directory;
    if (!scenario.isEmpty()) {
        QFile file(directory.filePath("scenario.txt"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(scenario.toUtf8());
        arguments << file.fileName();
    }
    QProcess process;
    process.setProcessEnvironment(m_naming.childEnvironment());
    process.start(QStringLiteral(TZ_ENGINE_SIMULATOR), arguments);
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitCode(), 2);
    const QString errors = QString::fromUtf8(process.readAllStandardError());
    QVERIFY2(errors.contains(message), qPrintable(errors));
    QVERIFY(!process.readAllStandardOutput().contains("READY"));
}

void TestEngineSimulator::bindsModulesWithAttributes()
{
    QTemporaryDir directory;
    QFile scenario(directory.filePath("calm.scenario"));
    QVERIFY(scenario.open(QIODevice::WriteOnly));
    scenario.write("# three modules, menu bar stays open\nmodules = 3\nmenubar-timeout 60\n");
    scenario.close();

    // The naming service given as an ORB option instead of through the environment.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("ORBInitRef"));
    ChildProcess simulator;
    QVERIFY(simulator.start(QStringLiteral(TZ_ENGINE_SIMULATOR),
                            QStringList{"--scenario", scenario.fileName(), "--events-per-second", "0"}
                                + m_naming.orbArguments(),
                            environment));
    QCOMPARE(moduleNames(), (std::vector<std::string>{"1", "2", "3"}));

    struct Expected
    {
        const char* name;
        const char* typeName;
    };
    const Expected attributes[] = {{"RUNACTION1", "EngineAttribVoid"},
                                   {"DISPLAYMODE1", "EngineAttribEnum"},
                                   {"REFOSCILLATOR1", "EngineAttribEnum"},
                                   {"MenuBarTimeout1", "EngineAttribLong"}};
    for (const std::string index : {"1", "2", "3"}) {
        GUI_Able_var gui = module(index);
        QVERIFY(!CORBA::is_nil(gui));
        CORBA::String_var pong = gui->Ping("PingTest");
        QVERIFY(QByteArray(pong.in()).contains("PingTest"));
        for (const Expected& expected : attributes) {
            EngineReadingBase_var reading = gui->FindAttribute(expected.name);
            QVERIFY2(!CORBA::is_nil(reading), expected.name);
            TypeInfo_var info = reading->GetTypeInfo();
            QCOMPARE(QByteArray(info->name.in()), QByteArray(expected.typeName));
            CORBA::String_var dataTopic = reading->DataTopic();
            QCOMPARE(QByteArray(dataTopic.in()), QByteArray("Lumaro/local/ATTR/") + expected.name);
            EngineAttribBase_var attribute = EngineAttribBase::_narrow(reading);
            QVERIFY(!CORBA::is_nil(attribute));
            CORBA::String_var lockTopic = attribute->LockTopic();
            QCOMPARE(QByteArray(lockTopic.in()), QByteArray("Lumaro/local/LOCK/") + expected.name);
        }
        EngineReadingBase_var missing = gui->FindAttribute("NOSUCHATTRIBUTE");
        QVERIFY(CORBA::is_nil(missing));
    }
    GUI_Able_var first = module("1");
    EngineReadingBase_var timeout = first->FindAttribute("MenuBarTimeout1");
    EngineAttribLong_var timeoutValue = EngineAttribLong::_narrow(timeout);
    QCOMPARE(timeoutValue->Get(), CORBA::Long(60));
    QCOMPARE(simulator.stop(), 0);
}

void TestEngineSimulator::attributesFollowLocks()
{
    ChildProcess simulator;
    QVERIFY(startSimulator(simulator,
                           {"--events-per-second", "0", "--ref-oscillator", "1", "--value-period-ms", "100"}));

    GUI_Able_var gui = module("1");
    EngineReadingBase_var reading = gui->FindAttribute("REFOSCILLATOR1");
    EngineAttribEnum_var oscillator = EngineAttribEnum::_narrow(reading);
    QVERIFY(!CORBA::is_nil(oscillator));
    CORBA::String_var dataTopic = oscillator->DataTopic();
    CORBA::String_var lockTopic = oscillator->LockTopic();

    // The lock reader is announced before the value reader, in order; once a repeated
    // value arrives, the engine knows both readers and no lock notice is lost.
    SampleCollector<QString> lockNotices;
    DDS_Subscriber<DDS_VoidMessage> lockSubscriber(
        lockTopic.in(), [&](const char* topic) { lockNotices.add(QString::fromUtf8(topic)); }, 0, 0,
        VOLATILE_DURABILITY_QOS);
    lockSubscriber.waitForInitDone();
    SampleCollector<int> values;
    DDS_Subscriber<int> valueSubscriber(
        dataTopic.in(), [&](const char*, CORBA::Long value) { values.add(value); }, 0, 0, VOLATILE_DURABILITY_QOS);
    QTRY_VERIFY_WITH_TIMEOUT(values.contains(1), 15000);

    Locker locker;
    const LockerID me = locker.MyLockerID();
    LockerID stranger = me;
    stranger.owner += 1000;
    Lock_Authority_var authority = locker.LockAuthority();

    QVERIFY(oscillator->MayAccess(me));
    QVERIFY(oscillator->MayAccess(stranger));
    const CORBA::Long handle = oscillator->Lock(authority.in());
    QTRY_COMPARE_WITH_TIMEOUT(lockNotices.size(), 1, 10000);
    QCOMPARE(lockNotices.values().front(), QString::fromUtf8(lockTopic.in()));
    QTRY_VERIFY(simulator.output().contains("LOCK REFOSCILLATOR1 held"));
    QVERIFY(oscillator->MayAccess(me));
    QVERIFY(!oscillator->MayAccess(stranger));
    QVERIFY_EXCEPTION_THROWN(oscillator->Set(stranger, 2), Runtime_errors::Generic);
    QCOMPARE(oscillator->Get(), CORBA::Long(1));

    oscillator->Set(me, 2);
    QTRY_VERIFY_WITH_TIMEOUT(values.contains(2), 10000);
    QCOMPARE(oscillator->Get(), CORBA::Long(2));
    QTRY_VERIFY(simulator.output().contains("SET REFOSCILLATOR1 2"));
    QVERIFY(!values.anyOnTestThread());

    oscillator->Unlock(me, handle);
    QTRY_COMPARE_WITH_TIMEOUT(lockNotices.size(), 2, 10000);
    QTRY_VERIFY(simulator.output().contains("LOCK REFOSCILLATOR1 free"));
    QVERIFY(oscillator->MayAccess(stranger));

    EngineReadingBase_var actionReading = gui->FindAttribute("RUNACTION1");
    EngineAttribVoid_var action = EngineAttribVoid::_narrow(actionReading);
    action->Set(me);
    QTRY_VERIFY(simulator.output().contains("ACTION RUNACTION1"));
    QCOMPARE(simulator.stop(), 0);
}

void TestEngineSimulator::publishesEventsOfEachClass()
{
    SampleCollector<Event::Message> messages;
    DDS_Subscriber<Event::Message> subscriber(
        Names::EventTopic, [&](const char*, Event::Message message) { messages.add(message); }, 0, 0,
        VOLATILE_DURABILITY_QOS);

    ChildProcess simulator;
    QVERIFY(startSimulator(simulator, {"--events-per-second", "40", "--event-classes", "0,1,2,3,4,5"}));
    QTRY_VERIFY_WITH_TIMEOUT(messages.size() >= 12, 15000);
    QVERIFY(simulator.stop() == 0);

    QSet<quint32> seen;
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    for (const Event::Message& message : messages.values()) {
        seen.insert(quint32(message.classification()));
        QVERIFY(!message.text().empty());
        QVERIFY(qAbs(message.timestamp() - now) < 60);
    }
    QCOMPARE(seen, (QSet<quint32>{0, 1, 2, 3, 4, 5}));
    QVERIFY(!messages.anyOnTestThread());
}

void TestEngineSimulator::batteryDrainsThenCharges()
{
    // Each reading with the power state reported just before it.
    struct Reading
    {
        double level;
        bool external;
        bool operator==(const Reading& other) const { return level == other.level && external == other.external; }
    };
    QAtomicInt external(-1);
    SampleCollector<Reading> readings;
    SampleCollector<QString> malformed;
    DDS_Subscriber<MeterReading::Reading> battery(
        Names::BatteryTopic,
        [&](const char*, MeterReading::Reading reading) {
            if (reading.readings().size() != 1 || reading.readings().front().name() != "BATTERYSTATUS1")
                malformed.add(QString::number(reading.readings().size()));
            else if (external.loadAcquire() >= 0)
                readings.add({reading.readings().front().value(), external.loadAcquire() == 1});
        },
        0, 0, VOLATILE_DURABILITY_QOS);
    DDS_Subscriber<bool> mains(
        Names::ExternalVoltageTopic,
        [&](const char*, CORBA::Boolean present) { external.storeRelease(present ? 1 : 0); }, 0, 0,
        VOLATILE_DURABILITY_QOS);

    // 20 % a second between 80 % and 100 %: a full cycle takes two seconds.
    ChildProcess simulator;
    QVERIFY(startSimulator(simulator, {"--events-per-second", "0", "--battery-period-ms", "50", "--battery-start",
                                       "100", "--battery-drain", "1200", "--battery-floor", "80"}));
    // Wherever the readers come in, within a cycle and a half the level falls on battery,
    // mains power comes, the level rises, and mains power goes again.
    const auto phases = [&] {
        const std::vector<Reading> all = readings.values();
        int phase = 0;
        for (std::size_t i = 1; i < all.size(); ++i) {
            const bool falling = all[i].level < all[i - 1].level && !all[i].external;
            const bool rising = all[i].level > all[i - 1].level && all[i].external;
            if ((phase == 0 && falling) || (phase == 1 && rising) || (phase == 2 && falling))
                ++phase;
        }
        return phase;
    };
    QTRY_COMPARE_WITH_TIMEOUT(phases(), 3, 20000);
    QCOMPARE(simulator.stop(), 0);

    QCOMPARE(malformed.size(), 0);
    for (const Reading& reading : readings.values())
        QVERIFY2(reading.level >= 79.0 && reading.level <= 100.0, qPrintable(QString::number(reading.level)));
}

void TestEngineSimulator::modulesComeAndGo()
{
    SampleCollector<std::string> broadcasts;
    DDS_Subscriber<std::string> subscriber(
        Names::GuiAbleTopic, [&](const char*, std::string text) { broadcasts.add(text); }, 0, 0,
        VOLATILE_DURABILITY_QOS);
    subscriber.waitForInitDone();

    ChildProcess simulator;
    QVERIFY(startSimulator(simulator, {"--events-per-second", "0", "--modules", "2", "--module-churn", "1"}));
    GUI_Able_var second = module("2");
    QVERIFY(!CORBA::is_nil(second));
    CORBA::String_var pong = second->Ping("PingTest");

    const auto positionOf = [&](const std::string& text, std::size_t from) {
        const std::vector<std::string> all = broadcasts.values();
        for (std::size_t i = from; i < all.size(); ++i) {
            if (all[i] == text)
                return int(i);
        }
        return -1;
    };
    QTRY_VERIFY_WITH_TIMEOUT(positionOf("destroy,2", 0) >= 0, 10000);
    const int destroyed = positionOf("destroy,2", 0);
    QCOMPARE(moduleNames(), std::vector<std::string>{"1"});
    QVERIFY_EXCEPTION_THROWN(CORBA::String_var(second->Ping("PingTest")), CORBA::SystemException);

    QTRY_VERIFY_WITH_TIMEOUT(positionOf("create,2", std::size_t(destroyed)) >= 0, 10000);
    // The announcement follows the binding, so the module is there to be fetched.
    GUI_Able_var again = module("2");
    QVERIFY(!CORBA::is_nil(again));
    pong = again->Ping("PingTest");
    QCOMPARE(simulator.stop(), 0);
}

void TestEngineSimulator::stopsCleanlyOnSignal_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << int(SIGTERM);
    QTest::newRow("SIGINT") << int(SIGINT);
}

void TestEngineSimulator::stopsCleanlyOnSignal()
{
    QFETCH(int, signal);

    SampleCollector<std::string> broadcasts;
    DDS_Subscriber<std::string> subscriber(
        Names::GuiAbleTopic, [&](const char*, std::string text) { broadcasts.add(text); }, 0, 0,
        VOLATILE_DURABILITY_QOS);

    // Module 3 comes and goes; its first announcement that arrives shows that the engine's
    // writer knows this reader, so the announcements at the end cannot be missed.
    ChildProcess simulator;
    QVERIFY(startSimulator(simulator, {"--modules", "3", "--module-churn", "0.2", "--events-per-second", "50"}));
    QTRY_VERIFY_WITH_TIMEOUT(broadcasts.size() > 0, 15000);

    const std::size_t before = broadcasts.values().size();
    QCOMPARE(::kill(pid_t(simulator.pid()), signal), 0);
    QTRY_VERIFY_WITH_TIMEOUT(!simulator.isRunning(), 10000);
    QCOMPARE(simulator.stop(), 0);
    QVERIFY(moduleNames().empty());
    CORBA::Object_var manager = m_orb->ResolveName(Locker::ManagerPath);
    QVERIFY(CORBA::is_nil(manager));
    const auto lastOnes = [&] {
        const std::vector<std::string> all = broadcasts.values();
        return std::vector<std::string>(all.begin() + std::ptrdiff_t(std::min(before, all.size())), all.end());
    };
    const auto announced = [&](const std::string& text) {
        const std::vector<std::string> last = lastOnes();
        return std::find(last.begin(), last.end(), text) != last.end();
    };
    QTRY_VERIFY_WITH_TIMEOUT(announced("destroy,1") && announced("destroy,2"), 10000);
}

QTEST_GUILESS_MAIN(TestEngineSimulator)
#include "tst_enginesimulator.moc"
