// The programs around the library as real processes on loopback, with a naming service:
// the demo host builds its desktop from options and ends cleanly; the engine simulator's
// bindings, attributes and locks over CORBA, and its DDS topics read through the typed
// subscriber. The demo as a whole, driven by the remote client, is tst_demo's.

#include "ChildProcess.h"
#include "NamingServiceProcess.h"
#include "SampleCollector.h"

#include "DDS_Subscriber.h"
#include "Locker.h"
#include "ORB_wrapper_base.h"
#include "OrvanthNames.h"

#include <Orvanth.hh>

#include <QtTest>

#include <csignal>

using namespace Orvanth;

namespace {

// A subscriber of \a topic whose callback adds each value to \a log.
template <class T, class Value>
std::unique_ptr<DDS_Subscriber<T>> subscribe(const std::string& topic, SampleCollector<Value>& log)
{
    auto subscriber = std::make_unique<DDS_Subscriber<T>>(
        topic, [&log](const char* name, auto... value) { log.add(Value(std::get<sizeof...(value)>(std::tie(name, value...)))); },
        0, 0, eprosima::fastdds::dds::VOLATILE_DURABILITY_QOS);
    subscriber->waitForInitDone();
    return subscriber;
}

} // namespace

class TestLocalProcesses : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_naming.start());
        m_orb = std::make_unique<ORB_wrapper_base>(m_naming.orbOptions());
    }

    void cleanupTestCase()
    {
        m_orb.reset();
        ORB_base::destroyProcessOrb();
        DDS_BaseObj::shutdownDds();
    }

    void demoHostBuildsDesktopAndQuitsOnClose_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("expected");
        QTest::newRow("landscape") << QStringList{"-res", "800x480", "-grid", "2x4", "-debug"} << "QSize(800, 480) snap points 8";
        QTest::newRow("portrait handheld") << QStringList{"-res", "480x800", "-grid", "3x2", "-systype", "handheld", "-debug"}
                                           << "QSize(480, 800) snap points 6";
        QTest::newRow("malformed as absent") << QStringList{"-res", "800by480", "-grid", "2x4", "-debug"} << "QSize(800, 480) snap points 0";
        // Without -debug, option problems are reported before the output switch takes over;
        // nothing after.
        QTest::newRow("diagnostics off") << QStringList{"-res", "800x480", "-grid", "zero"} << "malformed option \"-grid\" \"zero\"";
    }

    void demoHostBuildsDesktopAndQuitsOnClose()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, expected);
        QString output;
        QCOMPARE(run(QStringLiteral(TZ_DEMO_HOST), arguments + QStringList{"-quit-after", "50"}, &output), 0);
        QVERIFY2(output.contains(expected), qPrintable(output));
        // Closing takes the one registry away; nothing builds a second one on the way out.
        const bool debug = arguments.contains(QStringLiteral("-debug"));
        QCOMPARE(output.split(QLatin1Char('\n')).count(QStringLiteral("UserInterface - Global::Global")), debug ? 1 : 0);
        QCOMPARE(output.contains(QStringLiteral("UserInterface - Demo host - exit 0\n")), debug);
    }

    void simulatorRejectsBadScenario()
    {
        QTemporaryDir directory;
        QString output;
        QCOMPARE(run(QStringLiteral(TZ_ENGINE_SIMULATOR), {"--scenario", scenarioFile(directory, "# calm\nmodules 3\nmodules many\n")},
                     &output), 2);
        QVERIFY2(output.contains(".txt:3: bad value \"many\" for modules"), qPrintable(output));
    }

    void simulatorBindsModulesWithAttributes()
    {
        // The naming service given as an ORB option instead of through the environment.
        QTemporaryDir directory;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("ORBInitRef"));
        ChildProcess simulator;
        QVERIFY(simulator.start(QStringLiteral(TZ_ENGINE_SIMULATOR),
                                QStringList{"--events-per-second", "0", "--scenario",
                                            scenarioFile(directory, "# menu bar stays open\nmodules = 3\nmenubar-timeout 60\n")}
                                    + m_naming.orbArguments(), environment));
        QCOMPARE(moduleNames(), (std::vector<std::string>{"1", "2", "3"}));
        for (const char* index : {"1", "2", "3"}) {
            const GUI_Able_var gui = module(index);
            for (const char* name : {"RUNACTION1", "DISPLAYMODE1", "REFOSCILLATOR1", "MenuBarTimeout1"}) {
                EngineAttribBase_var attribute = EngineAttribBase::_narrow(EngineReadingBase_var(gui->FindAttribute(name)));
                QVERIFY2(!CORBA::is_nil(attribute), name);
            }
            QVERIFY(CORBA::is_nil(EngineReadingBase_var(gui->FindAttribute("NOSUCHATTRIBUTE"))));
        }
        QCOMPARE(EngineAttribLong::_narrow(EngineReadingBase_var(attribute("MenuBarTimeout1")))->Get(), CORBA::Long(60));
    }

    void simulatorAttributesFollowLocks()
    {
        ChildProcess simulator;
        QVERIFY(startSimulator(simulator, {"--ref-oscillator", "1", "--value-period-ms", "100"}));
        EngineAttribEnum_var oscillator = EngineAttribEnum::_narrow(EngineReadingBase_var(attribute("REFOSCILLATOR1")));
        QVERIFY(!CORBA::is_nil(oscillator));
        // The lock reader is announced before the value reader, in order; once a repeated
        // value arrives, the engine knows both readers and no lock notice is lost.
        SampleCollector<std::string> lockNotices;
        SampleCollector<int> values;
        const auto lockSubscriber = subscribe<DDS_VoidMessage>(CORBA::String_var(oscillator->LockTopic()).in(), lockNotices);
        const auto valueSubscriber = subscribe<int>(CORBA::String_var(oscillator->DataTopic()).in(), values);
        QTRY_VERIFY_WITH_TIMEOUT(values.contains(1), 15000);

        Locker locker;
        const LockerID me = locker.MyLockerID();
        LockerID stranger = me;
        stranger.owner += 1000;
        QVERIFY(oscillator->MayAccess(me) && oscillator->MayAccess(stranger));
        const CORBA::Long handle = oscillator->Lock(Lock_Authority_var(locker.LockAuthority()).in());
        QTRY_COMPARE_WITH_TIMEOUT(lockNotices.values(), std::vector<std::string>{CORBA::String_var(oscillator->LockTopic()).in()}, 10000);
        QVERIFY(oscillator->MayAccess(me) && !oscillator->MayAccess(stranger));
        QVERIFY_EXCEPTION_THROWN(oscillator->Set(stranger, 2), Runtime_errors::Generic);
        QCOMPARE(oscillator->Get(), CORBA::Long(1));
        oscillator->Set(me, 2);
        QTRY_VERIFY_WITH_TIMEOUT(values.contains(2), 10000);
        QCOMPARE(oscillator->Get(), CORBA::Long(2));
        QVERIFY(!values.anyOnTestThread());
        oscillator->Unlock(me, handle);
        QTRY_COMPARE_WITH_TIMEOUT(lockNotices.size(), 2, 10000);
        QVERIFY(oscillator->MayAccess(stranger));
        EngineAttribVoid_var(EngineAttribVoid::_narrow(EngineReadingBase_var(attribute("RUNACTION1"))))->Set(me);
        QTRY_VERIFY(simulator.output().contains("ACTION RUNACTION1"));
    }

    void simulatorPublishesEventsAndBattery()
    {
        // Each battery reading with the power state reported just before it.
        SampleCollector<Event::Message> messages;
        SampleCollector<bool> mains;
        SampleCollector<QPair<double, bool>> levels;
        const auto events = subscribe<Event::Message>(Names::EventTopic, messages);
        const auto power = subscribe<bool>(Names::ExternalVoltageTopic, mains);
        DDS_Subscriber<MeterReading::Reading> battery(
            Names::BatteryTopic,
            [&](const char*, MeterReading::Reading reading) {
                // One reading of the right name, or a level no check accepts.
                const bool wellFormed = reading.readings().size() == 1 && reading.readings().front().name() == "BATTERYSTATUS1";
                if (mains.size())
                    levels.add({wellFormed ? reading.readings().front().value() : -1.0, mains.values().back()});
            },
            0, 0, eprosima::fastdds::dds::VOLATILE_DURABILITY_QOS);
        // 20 % a second between 80 % and 100 %: a full cycle takes two seconds.
        ChildProcess simulator;
        QVERIFY(startSimulator(simulator, {"--events-per-second", "40", "--event-classes", "0,1,2,3,4,5", "--battery-period-ms",
                                           "50", "--battery-start", "100", "--battery-drain", "1200", "--battery-floor", "80"}));
        // The level falls on battery, and rises once mains power has come.
        const auto moved = [&](bool onMains) {
            const auto all = levels.values();
            for (std::size_t i = 1; i < all.size(); ++i)
                if (all[i].second == onMains && all[i - 1].second == onMains && (all[i].first > all[i - 1].first) == onMains)
                    return true;
            return false;
        };
        QTRY_VERIFY_WITH_TIMEOUT(moved(false) && moved(true), 20000);
        for (const auto& level : levels.values())
            QVERIFY2(level.first >= 79.0 && level.first <= 100.0, qPrintable(QString::number(level.first)));
        QSet<quint32> seen;
        for (const Event::Message& message : messages.values()) {
            seen.insert(quint32(message.classification()));
            QVERIFY(!message.text().empty() && qAbs(message.timestamp() - QDateTime::currentSecsSinceEpoch()) < 60);
        }
        QCOMPARE(seen, (QSet<quint32>{0, 1, 2, 3, 4, 5}));
    }



private:
    // Runs \a program to its end (bounded): its exit code (-1 when it crashed or hung), and
    // what it printed on both channels.
    static int run(const QString& program, const QStringList& arguments, QString* output = nullptr)
    {
        ChildProcess process;
        process.setOutputIncludesErrors(true);
        const int code = process.start(program, arguments, QProcessEnvironment::systemEnvironment(), {}) ? process.wait(20000) : -1;
        if (output)
            *output = process.output();
        return code;
    }

    bool startSimulator(ChildProcess& simulator, const QStringList& arguments)
    {
        return simulator.start(QStringLiteral(TZ_ENGINE_SIMULATOR), QStringList{"--events-per-second", "0"} + arguments,
                               m_naming.childEnvironment());
    }

    static QString scenarioFile(const QTemporaryDir& directory, const QString& text)
    {
        QFile file(directory.filePath(QStringLiteral("scenario.txt")));
        return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) > 0 ? file.fileName() : QString();
    }

    std::vector<std::string> moduleNames()
    {
        std::vector<std::string> names = m_orb->FindChildContext(Names::GuiAbleContext);
        std::sort(names.begin(), names.end());
        return names;
    }

    GUI_Able_ptr module(const std::string& index)
    {
        return GUI_Able::_narrow(CORBA::Object_var(m_orb->ResolveName(std::string(Names::GuiAbleContext) + "/" + index)));
    }

    EngineReadingBase_ptr attribute(const char* name) { return GUI_Able_var(module("1"))->FindAttribute(name); }

    NamingServiceProcess m_naming;
    std::unique_ptr<ORB_wrapper_base> m_orb;
};

QTEST_MAIN(TestLocalProcesses)
#include "tst_localprocesses.moc"
