// Call time-outs against a hung engine process: the process-wide default (300 ms in this
// test's environment) and a reference with a time-out of its own, longer or none.

#include "ChildProcess.h"
#include "NamingServiceProcess.h"

#include "ORB_wrapper_base.h"

#include <Orvanth.hh>

#include <QtTest>

#include <chrono>
#include <memory>

namespace {

using namespace std::chrono_literals;

// Longer than the default time-out, shorter than the longer one.
constexpr int HangMs = 800;
constexpr std::chrono::milliseconds LongerTimeout = 2000ms;

enum class Setup { Untouched, Longer, None, Cleared, OnAnotherReference };

} // namespace

Q_DECLARE_METATYPE(Setup)

class TestCallTimeout : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void hungPingAnswersOnlyWithinItsTimeout_data();
    void hungPingAnswersOnlyWithinItsTimeout();

private:
    Orvanth::GUI_Able_ptr resolveHung();

    NamingServiceProcess m_naming;
    ChildProcess m_engine;
    std::unique_ptr<ORB_wrapper_base> m_orb;
};

void TestCallTimeout::initTestCase()
{
    QVERIFY(m_naming.start());
    m_orb = std::make_unique<ORB_wrapper_base>(m_naming.orbOptions());
    QCOMPARE(ORB_base::defaultCallTimeout(), 300ms);
    QVERIFY(m_engine.start(QStringLiteral(TZ_TEST_ENGINE),
                           {"--bind", "Test/Hung", "--ping-delay-ms", QString::number(HangMs)},
                           m_naming.childEnvironment()));
}

void TestCallTimeout::cleanupTestCase()
{
    m_engine.stop();
    m_orb.reset();
    ORB_base::destroyProcessOrb();
    m_naming.stop();
}

Orvanth::GUI_Able_ptr TestCallTimeout::resolveHung()
{
    CORBA::Object_var object = m_orb->ResolveName("Test/Hung");
    return Orvanth::GUI_Able::_narrow(object);
}

void TestCallTimeout::hungPingAnswersOnlyWithinItsTimeout_data()
{
    QTest::addColumn<Setup>("setup");
    QTest::addColumn<bool>("answers");

    QTest::newRow("process default") << Setup::Untouched << false;
    QTest::newRow("longer than the hang") << Setup::Longer << true;
    QTest::newRow("none") << Setup::None << true;
    QTest::newRow("longer, then cleared") << Setup::Cleared << false;
    QTest::newRow("longer on another reference") << Setup::OnAnotherReference << false;
}

void TestCallTimeout::hungPingAnswersOnlyWithinItsTimeout()
{
    QFETCH(Setup, setup);
    QFETCH(bool, answers);

    Orvanth::GUI_Able_var module = resolveHung();
    QVERIFY(!CORBA::is_nil(module));
    switch (setup) {
    case Setup::Untouched:
        break;
    case Setup::Longer:
        ORB_base::setCallTimeout(module, LongerTimeout);
        break;
    case Setup::None:
        ORB_base::setCallTimeout(module, ORB_base::NoCallTimeout);
        break;
    case Setup::Cleared:
        ORB_base::setCallTimeout(module, LongerTimeout);
        ORB_base::clearCallTimeout(module);
        break;
    case Setup::OnAnotherReference: {
        Orvanth::GUI_Able_var other = resolveHung();
        ORB_base::setCallTimeout(other, LongerTimeout);
        break;
    }
    }

    bool timedOut = false;
    try {
        CORBA::String_var answer = module->Ping("PingTest");
        QCOMPARE(QString(answer.in()), QStringLiteral("Pong PingTest"));
    } catch (const CORBA::TIMEOUT&) {
        timedOut = true;
    }
    QCOMPARE(timedOut, !answers);
}

QTEST_GUILESS_MAIN(TestCallTimeout)
#include "tst_calltimeout.moc"
