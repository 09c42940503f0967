// The remote GUI service between processes: a test desktop (tz-test-guihost) serves it
// under Lumaro/local/GUIManager in a real omniNames, and this process calls it through
// the ORB as an engine does, or through tz-gui-client. The desktop prints its log lines
// and answers queries on its standard output, and clicks dialog buttons on request.

#include "NamingServiceProcess.h"
#include "ProcessSockets.h"

#include "ORB_wrapper_base.h"
#include "OrvanthNames.h"

#include <GUIManager.hh>

#include <QProcess>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <chrono>
#include <functional>
#include <future>
#include <memory>

namespace {

using Manager = Lumaro::gui::GUIManager_ptr;
// A remote call; returns its answer code and may report a text answer in \a text.
using Call = std::function<long(Manager manager, QString* text)>;

constexpr int hostTimeoutMs = 15000;

QString fromCorba(const char* text)
{
    return QString::fromUtf8(text);
}

// The test desktop as a child process, driven through its standard input.
class GuiHost
{
public:
    ~GuiHost() { stop(); }

    bool start(const NamingServiceProcess& naming)
    {
        return start(naming.orbArguments(), QStringLiteral("GUIManagerServer - bound"));
    }

    // Starts it with the ORB options \a orbArguments and waits for \a readyText.
    bool start(const QStringList& orbArguments, const QString& readyText)
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QStringLiteral(TZ_TEST_GUIHOST),
                        orbArguments + QStringList{"-res", "800x480", "-systype", "benchtop"});
        return m_process.waitForStarted(hostTimeoutMs) && !waitFor(readyText).isEmpty();
    }

    // Waits for a line containing \a text after the last one found; returns that line.
    QString waitFor(const QString& text, int timeoutMs = hostTimeoutMs)
    {
        QDeadlineTimer deadline(timeoutMs);
        for (;;) {
            const int found = m_output.indexOf(text, m_cursor);
            if (found >= 0) {
                const int start = m_output.lastIndexOf(QLatin1Char('\n'), found) + 1;
                int end = m_output.indexOf(QLatin1Char('\n'), found);
                if (end >= 0) {
                    m_cursor = end + 1;
                    return m_output.mid(start, end - start);
                }
            }
            if (deadline.hasExpired() || m_process.state() != QProcess::Running) {
                qWarning().noquote() << "the desktop printed no line with" << text << "- since the last one found:\n"
                                     << m_output.mid(m_cursor);
                return QString();
            }
            m_process.waitForReadyRead(50);
            m_output += QString::fromUtf8(m_process.readAllStandardOutput());
        }
    }

    // Sends \a command and returns the line of its answer, which begins with \a answer.
    QString ask(const QString& command, const QString& answer)
    {
        send(command);
        return waitFor(answer);
    }

    void send(const QString& command)
    {
        m_process.write((command + QLatin1Char('\n')).toUtf8());
        m_process.waitForBytesWritten(hostTimeoutMs);
    }

    // Everything it printed since \a from; the test's cursor is left alone.
    QString outputSince(int from)
    {
        m_process.waitForReadyRead(0);
        m_output += QString::fromUtf8(m_process.readAllStandardOutput());
        return m_output.mid(from);
    }
    int cursor() const { return m_cursor; }

    // Closes the desktop; the exit code, or -1 when it had to be killed.
    int quit(int timeoutMs = hostTimeoutMs)
    {
        send(QStringLiteral("quit"));
        if (!m_process.waitForFinished(timeoutMs))
            return stop();
        m_output += QString::fromUtf8(m_process.readAllStandardOutput());
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }

    qint64 pid() const { return m_process.processId(); }

    int stop()
    {
        if (m_process.state() == QProcess::NotRunning)
            return m_process.exitCode();
        m_process.kill();
        m_process.waitForFinished(5000);
        return -1;
    }

private:
    QProcess m_process;
    QString m_output;
    int m_cursor = 0;
};

// The port on 127.0.0.1 where process \a pid listens for TCP connections (its ORB's
// endpoint); 0 when there is none.
quint16 listeningPort(qint64 pid)
{
    for (const ProcessSockets::Socket& socket : ProcessSockets::of(pid)) {
        if (socket.table == QLatin1String("tcp") && socket.address == QLatin1String("127.0.0.1"))
            return socket.port;
    }
    return 0;
}

// A GIOP 1.2 message header, little-endian, claiming a body of \a size bytes.
QByteArray giopHeader(quint32 size)
{
    QByteArray header("GIOP\x01\x02\x01\x00", 8);
    for (int shift = 0; shift < 32; shift += 8)
        header.append(char((size >> shift) & 0xff));
    return header;
}

} // namespace

Q_DECLARE_METATYPE(Call)

class TestGuiManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

    void listsScreensInUtf8();
    void showsHidesMovesResizesAndStacksScreens();
    void opensDcsAndTogglesMenuBar();
    void savesAndRestoresScreenArrangement();
    void refusesBadLayoutAndKeepsDesktop_data();
    void refusesBadLayoutAndKeepsDesktop();
    void appliesWhatItCanOfLayoutWithUnknownScreens();
    void answersEachDialogKindWithPressedButton_data();
    void answersEachDialogKindWithPressedButton();
    void dialogThatDoesNotWaitReturnsPreviousAnswer();
    void closesNamedAndAllDialogs();
    void logsBadInputAndStaysUp_data();
    void logsBadInputAndStaysUp();
    void survivesMalformedGiop_data();
    void survivesMalformedGiop();
    void servesEightClientsAtOnce();
    void survivesClientThatDiesWhileItsDialogIsOpen();
    void secondDesktopTakesTheNameOver();
    void logsUnreachableNamingServiceAndCarriesOn();
    void shutsDownWithCallInFlight();

private:
    // Runs \a call on a thread of its own, as a blocking remote call does.
    std::future<long> callAsync(const Call& call, QString* text = nullptr);
    bool clientsExitWith(QList<QProcess*> clients, int status);
    // Asks the desktop about \a screen until its answer contains \a fragment (a size
    // state settles a moment after the request).
    bool screenShows(const QString& screen, const QString& fragment);
    // The place of \a screen among the desktop's children: a larger one is higher.
    int stackIndex(const QString& screen);

    NamingServiceProcess m_naming;
    GuiHost m_host;
    QTemporaryDir m_files;
    std::unique_ptr<ORB_wrapper_base> m_orb;
    Lumaro::gui::GUIManager_var m_manager;
};

void TestGuiManager::initTestCase()
{
    QVERIFY(m_naming.start());
    QVERIFY(m_host.start(m_naming));
    m_orb = std::make_unique<ORB_wrapper_base>(m_naming.orbOptions());
    CORBA::Object_var object = m_orb->ResolveName(Orvanth::Names::GuiManagerPath);
    m_manager = Lumaro::gui::GUIManager::_narrow(object);
    QVERIFY(!CORBA::is_nil(m_manager));
    // Calls wait for the desktop's user, but a broken test must not hang.
    ORB_base::setCallTimeout(m_manager, std::chrono::milliseconds(hostTimeoutMs));
}

void TestGuiManager::cleanup()
{
    try {
        if (!CORBA::is_nil(m_manager))
            m_manager->CloseAllDialogs();
    } catch (const CORBA::Exception& e) {
        qWarning() << "closing the dialogs failed:" << e._name();
    }
}

bool TestGuiManager::screenShows(const QString& screen, const QString& fragment)
{
    QDeadlineTimer deadline(hostTimeoutMs);
    QString line;
    while (!deadline.hasExpired()) {
        line = m_host.ask(QStringLiteral("screen ") + screen, QStringLiteral("SCREEN ") + screen);
        if (line.contains(fragment))
            return true;
        QTest::qWait(20);
    }
    QStringList log = m_host.outputSince(0).split(QLatin1Char('\n')).filter(QRegularExpression(QStringLiteral("^(?!SCREEN)")));
    qWarning().noquote() << "the desktop's last word:" << line << "- its log ends:\n" << log.mid(log.size() - 40).join('\n');
    return false;
}

void TestGuiManager::cleanupTestCase()
{
    m_manager = Lumaro::gui::GUIManager::_nil();
    m_orb.reset();
    ORB_base::destroyProcessOrb();
    m_host.stop();
    m_naming.stop();
}

std::future<long> TestGuiManager::callAsync(const Call& call, QString* text)
{
    Manager manager = m_manager.in();
    return std::async(std::launch::async, [call, manager, text] { return call(manager, text); });
}

void TestGuiManager::listsScreensInUtf8()
{
    // An engine built against CORBA's standard type takes the answer as that type.
    CORBA::StringSeq_var screens = m_manager->GetScreenList();
    QStringList names;
    for (CORBA::ULong i = 0; i < screens->length(); ++i)
        names.append(fromCorba(screens[i]));
    names.sort();
    QCOMPARE(names, (QStringList{"Meter", "Notes", "Scope", "Спектр"}));
}

void TestGuiManager::showsHidesMovesResizesAndStacksScreens()
{
    m_manager->HideScreen("Scope");
    QVERIFY(screenShows("Scope", "visible=0"));
    m_manager->ShowScreen("Scope");
    QVERIFY(screenShows("Scope", "visible=1"));

    m_manager->MoveScreen("Scope", 300, 200);
    QVERIFY(screenShows("Scope", "x=300 y=200"));
    m_manager->MoveScreen("Спектр", 20, 30);
    QVERIFY(screenShows("Спектр", "x=20 y=30"));

    m_manager->ChangeSize("Scope", "Max");
    QVERIFY(screenShows("Scope", "state=Max"));
    m_manager->ChangeSize("Scope", "Min");
    QVERIFY(screenShows("Scope", "state=Min"));

    // "name,extra": shown behind the others, or sent behind them instead of hidden.
    auto z = [this](const char* name) { return stackIndex(QString::fromUtf8(name)); };
    m_manager->ShowScreen("Meter");
    m_manager->ShowScreen("Scope,back");
    QVERIFY(z("Scope") < z("Meter"));
    m_manager->ShowScreen("Scope,front");
    QVERIFY(z("Scope") > z("Meter"));
    m_manager->HideScreen("Scope,back");
    QVERIFY(z("Scope") < z("Meter"));
    QVERIFY(screenShows("Scope", "visible=1"));
}

void TestGuiManager::opensDcsAndTogglesMenuBar()
{
    QVERIFY(screenShows("DCS", "visible=0"));
    m_manager->OpenDCS();
    QVERIFY(screenShows("DCS", "visible=1"));

    m_manager->SetMenuBarVisible(true);
    QCOMPARE(m_host.ask("menubar", "MENUBAR"), QStringLiteral("MENUBAR open=1"));
    m_manager->SetMenuBarVisible(false);
    QCOMPARE(m_host.ask("menubar", "MENUBAR"), QStringLiteral("MENUBAR open=0"));
}

int TestGuiManager::stackIndex(const QString& screen)
{
    const QString line = m_host.ask(QStringLiteral("screen ") + screen, QStringLiteral("SCREEN ") + screen);
    return line.section(QStringLiteral("z="), 1).toInt();
}

void TestGuiManager::savesAndRestoresScreenArrangement()
{
    m_manager->ShowScreen("Scope");
    m_manager->ShowScreen("Meter");
    m_manager->ShowScreen("Спектр");
    m_manager->ChangeSize("Scope", "Min");
    m_manager->ChangeSize("Meter", "Min");
    m_manager->MoveScreen("Scope", 40, 50);
    m_manager->MoveScreen("Meter", 300, 60);
    m_manager->ChangeSize("Спектр", "Max");
    m_manager->ShowScreen("Scope,front");
    QVERIFY(screenShows("Спектр", "state=Max"));
    QVERIFY(screenShows("Scope", "x=40 y=50"));
    QVERIFY(stackIndex("Scope") > stackIndex("Meter"));

    CORBA::String_var saved = m_manager->SaveState();
    const QString layout = fromCorba(saved);
    QVERIFY2(layout.startsWith(QStringLiteral("<ui_screen_states>")), qPrintable(layout));
    QVERIFY(layout.contains(QStringLiteral("name=\"Спектр\"")));

    // Everything changed, then the stored arrangement comes back.
    m_manager->MoveScreen("Scope", 400, 200);
    m_manager->HideScreen("Meter");
    m_manager->ChangeSize("Спектр", "Min");
    m_manager->ShowScreen("Meter,front");
    QVERIFY(screenShows("Спектр", "state=Min"));
    QVERIFY(stackIndex("Meter") > stackIndex("Scope"));

    m_manager->RestoreState(saved.in());
    QVERIFY(screenShows("Scope", "visible=1 x=40 y=50 state=Min"));
    QVERIFY(screenShows("Meter", "visible=1 x=300 y=60 state=Min"));
    QVERIFY(screenShows("Спектр", "state=Max"));
    QVERIFY(stackIndex("Scope") > stackIndex("Meter"));
    m_manager->ChangeSize("Спектр", "Min");
    QVERIFY(screenShows("Спектр", "state=Min"));
}

void TestGuiManager::refusesBadLayoutAndKeepsDesktop_data()
{
    QTest::addColumn<QByteArray>("layout");
    QTest::addColumn<QString>("expectedLog");

    QTest::newRow("not XML") << QByteArray("this is no layout <") << "Error processing Recall data:";
    QTest::newRow("wrong root") << QByteArray("<layout><screen name=\"Scope\" pos=\"1,1\"/></layout>")
                                << "the root element is \"layout\"";
    QTest::newRow("nested 100000 deep") << "<ui_screen_states>" + QByteArray("<a>").repeated(100000)
                                        << "elements nested deeper than";
    QTest::newRow("entity expansion") << QByteArray("<?xml version=\"1.0\"?><!DOCTYPE l [<!ENTITY a \"aaaaaaaaaa\">"
                                                    "<!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\">"
                                                    "<!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\">]>"
                                                    "<ui_screen_states><screen name=\"&c;\"/></ui_screen_states>")
                                      << "a document type declaration";
    QTest::newRow("longer than a layout") << "<ui_screen_states>" + QByteArray(1100000, ' ') + "</ui_screen_states>"
                                          << "characters, more than";
}

void TestGuiManager::refusesBadLayoutAndKeepsDesktop()
{
    QFETCH(QByteArray, layout);
    QFETCH(QString, expectedLog);

    m_manager->ShowScreen("Scope");
    m_manager->MoveScreen("Scope", 120, 140);
    QVERIFY(screenShows("Scope", "visible=1 x=120 y=140"));
    m_manager->RestoreState(layout.constData());
    QVERIFY2(!m_host.waitFor(expectedLog).isEmpty(), qPrintable(expectedLog));
    QVERIFY(screenShows("Scope", "visible=1 x=120 y=140"));
}

void TestGuiManager::appliesWhatItCanOfLayoutWithUnknownScreens()
{
    m_manager->ShowScreen("Meter");
    const QByteArray layout = "<ui_screen_states>"
                              "<screen name=\"Nowhere\" pos=\"1,1\" state=\"Min\" visible=\"1\" z_index=\"1\"/>"
                              "<screen name=\"" + QByteArray(300000, 'n') + "\" pos=\"1,1\" visible=\"1\"/>"
                              "<screen name=\"Scope\" pos=\"99999999999,-7\" state=\"Huge\" visible=\"1\""
                              " min_geometry=\"" + QByteArray(100000, '9') + "\" z_index=\"x\"/>"
                              "</ui_screen_states>";
    m_manager->RestoreState(layout.constData());
    QVERIFY(!m_host.waitFor("Screen not available! \"Nowhere\"").isEmpty());
    QVERIFY(!m_host.waitFor("Screen not available! \"nnnnnnnn").isEmpty());
    QVERIFY(!m_host.waitFor("unknown state \"Huge\" for \"Scope\"").isEmpty());
    // Numbers that are none read as 0, and a place off the desktop is brought back on it.
    QVERIFY(!m_host.waitFor("position 0 -7 outside the desktop for \"Scope\"").isEmpty());
    const QString scope = m_host.ask("screen Scope", "SCREEN Scope");
    const int x = scope.section(QStringLiteral("x="), 1).section(QLatin1Char(' '), 0, 0).toInt();
    const int y = scope.section(QStringLiteral("y="), 1).section(QLatin1Char(' '), 0, 0).toInt();
    QVERIFY2(scope.contains("visible=1") && x >= 0 && x < 800 && y >= 0 && y < 480, qPrintable(scope));
    // The screens the layout does not name are closed.
    QVERIFY(screenShows("Meter", "visible=0"));
}

void TestGuiManager::answersEachDialogKindWithPressedButton_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QStringList>("commands");
    QTest::addColumn<long>("expectedCode");
    QTest::addColumn<QString>("expectedText");

    QTest::newRow("alert") << Call([](Manager m, QString*) { return long(m->DisplayAlert("Battery low")); })
                           << "Alert" << QStringList{"press 1"} << 1L << QString();
    QTest::newRow("dialog") << Call([](Manager m, QString*) {
        return long(m->DisplayDialog("Confirm", "Start the sweep?", "Yes,3|No,4", true));
    }) << "Confirm" << QStringList{"press 3"} << 3L << QString();
    QTest::newRow("dialog with parameters") << Call([](Manager m, QString*) {
        CORBA::StringSeq parameters;
        parameters.length(2);
        parameters[0] = "Span 3 GHz";
        parameters[1] = "RBW 30 kHz";
        return long(m->DisplayDialogWithParams("Settings", "Apply these?", parameters, "Apply,7|Keep,8", true));
    }) << "Settings" << QStringList{"press 8"} << 8L << QString();

    const QString image = m_files.filePath(QStringLiteral("marker.svg"));
    QFile svg(image);
    QVERIFY(svg.open(QIODevice::WriteOnly));
    svg.write("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"40\" height=\"20\"><rect width=\"40\" height=\"20\" fill=\"red\"/></svg>");
    svg.close();
    QTest::newRow("image") << Call([image](Manager m, QString*) {
        return long(m->DisplayImage("Marker", "The marker", image.toUtf8().constData(), "OK,1", true));
    }) << "Marker" << QStringList{"press 1"} << 1L << QString();

    QTest::newRow("data entry in UTF-8") << Call([](Manager m, QString* text) {
        CORBA::String_var data;
        const long code = m->DisplayDataEntry("Название", "Имя файла?", "OK,1|Cancel,0", true, data.out());
        *text = fromCorba(data);
        return code;
    }) << "Название" << QStringList{"type Grüße 你好", "press 1"} << 1L << QStringLiteral("Grüße 你好");

    QVERIFY(QDir(m_files.path()).mkdir(QStringLiteral("traces")));
    const QString folder = m_files.filePath(QStringLiteral("traces"));
    for (const char* name : {"a.csv", "b.csv"}) {
        QFile file(folder + QLatin1Char('/') + QLatin1String(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QTest::newRow("file selection") << Call([folder](Manager m, QString* text) {
        CORBA::String_var path;
        CORBA::String_var filename;
        const long code = m->DisplayFileSelectDialog("Load trace", folder.toUtf8().constData(), path.out(),
                                                     filename.out());
        *text = fromCorba(path) + QLatin1Char('/') + fromCorba(filename);
        return code;
    }) << "Load trace" << QStringList{"choose b.csv", "press 1"} << 1L << folder + QStringLiteral("/b.csv");
}

void TestGuiManager::answersEachDialogKindWithPressedButton()
{
    QFETCH(Call, call);
    QFETCH(QString, title);
    QFETCH(QStringList, commands);
    QFETCH(long, expectedCode);
    QFETCH(QString, expectedText);

    QString text;
    std::future<long> answer = callAsync(call, &text);
    QVERIFY(!m_host.waitFor(QStringLiteral("remote dialog shown: \"%1\"").arg(title)).isEmpty());
    for (const QString& command : commands)
        QVERIFY(m_host.ask(command, command.section(QLatin1Char(' '), 0, 0).toUpper()).endsWith("done"));
    QCOMPARE(answer.wait_for(std::chrono::milliseconds(hostTimeoutMs)), std::future_status::ready);
    QCOMPARE(answer.get(), expectedCode);
    QCOMPARE(text, expectedText);
}

void TestGuiManager::dialogThatDoesNotWaitReturnsPreviousAnswer()
{
    std::future<long> first = callAsync([](Manager m, QString*) { return long(m->DisplayDialog("First", "?", "A,5", true)); });
    QVERIFY(!m_host.waitFor("remote dialog shown: \"First\"").isEmpty());
    m_host.send("press 5");
    QCOMPARE(first.get(), 5L);

    QCOMPARE(long(m_manager->DisplayDialog("Later", "?", "B,6", false)), 5L);
    QVERIFY(!m_host.waitFor("remote dialog shown: \"Later\"").isEmpty());
    // Its answer arrives whenever the user gives it.
    m_host.send("press 6");
    QVERIFY(!m_host.waitFor("remote dialog answered: \"Later\" 6").isEmpty());

    QString entered;
    std::future<long> entry = callAsync(
        [](Manager m, QString* text) {
            CORBA::String_var data;
            const long code = m->DisplayDataEntry("Entry", "?", "OK,1", true, data.out());
            *text = fromCorba(data);
            return code;
        },
        &entered);
    QVERIFY(!m_host.waitFor("remote dialog shown: \"Entry\"").isEmpty());
    m_host.send(QStringLiteral("type Ω1"));
    m_host.send("press 1");
    QCOMPARE(entry.get(), 1L);
    QCOMPARE(entered, QStringLiteral("Ω1"));
    // The entry field offers the previous entry, which comes back again while unanswered.
    CORBA::String_var data;
    m_manager->DisplayDataEntry("Again", "?", "OK,1", false, data.out());
    QCOMPARE(fromCorba(data), QStringLiteral("Ω1"));
}

void TestGuiManager::closesNamedAndAllDialogs()
{
    m_manager->DisplayDialog("One", "first", "OK,1", false);
    m_manager->DisplayDialog("Two", "second", "OK,1", false);
    QVERIFY(m_manager->IsDialogActive("One"));
    QVERIFY(m_manager->IsDialogActive("Two"));
    QVERIFY(!m_manager->IsDialogActive("Three"));

    m_manager->CloseDialog("One");
    QVERIFY(!m_manager->IsDialogActive("One"));
    QVERIFY(m_manager->IsDialogActive("Two"));
    m_manager->CloseAllDialogs();
    QVERIFY(!m_manager->IsDialogActive("Two"));
}

void TestGuiManager::logsBadInputAndStaysUp_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<long>("expectedCode");
    QTest::addColumn<QString>("expectedLog");

    const auto noCode = -1L;
    QTest::newRow("unknown screen") << Call([](Manager m, QString*) { m->ShowScreen("Nowhere"); return -1L; })
                                    << noCode << "ShowScreen - no screen \"Nowhere\"";
    QTest::newRow("unknown size") << Call([](Manager m, QString*) { m->ChangeSize("Scope", "Huge"); return -1L; })
                                  << noCode << "ChangeSize - unknown size \"Huge\" for \"Scope\"";
    QTest::newRow("size of a plain screen") << Call([](Manager m, QString*) { m->ChangeSize("Notes", "Max"); return -1L; })
                                            << noCode << "ChangeSize - not a container \"Notes\"";
    QTest::newRow("negative position") << Call([](Manager m, QString*) { m->MoveScreen("Scope", -5, 10); return -1L; })
                                       << noCode << "MoveScreen - position outside the desktop \"Scope\" -5 10";
    QTest::newRow("huge position") << Call([](Manager m, QString*) { m->MoveScreen("Scope", 2147483647, 0); return -1L; })
                                   << noCode << "MoveScreen - position outside the desktop \"Scope\" 2147483647 0";
    QTest::newRow("button entry with an odd part") << Call([](Manager m, QString*) {
        return long(m->DisplayDialog("Odd", "?", "Yes,1,No", true));
    }) << -999L << "remote dialog \"Odd\" has no button";
    QTest::newRow("empty button description") << Call([](Manager m, QString*) {
        return long(m->DisplayDialog("Bare", "?", "", true));
    }) << -999L << "remote dialog \"Bare\" has no button";
    QTest::newRow("one malformed entry") << Call([](Manager m, QString*) {
        m->DisplayDialog("Half", "?", "Yes,1|No", false);
        return -1L;
    }) << noCode << "remote dialog \"Half\" - 1 of 2 button entries are not \"label,code\"";
    QTest::newRow("code that is no number") << Call([](Manager m, QString*) {
        m->DisplayDialog("Words", "?", "Yes,yes", false);
        return -1L;
    }) << noCode << "button \"Yes\" has no numeric code, it answers 0";
    QTest::newRow("megabyte message") << Call([](Manager m, QString*) {
        m->DisplayDialog("Big", QByteArray(1 << 20, 'x').constData(), "OK,1", false);
        return -1L;
    }) << noCode << "DisplayDialog - text of 1048576 characters cut to 16384";
    QTest::newRow("megabyte screen name") << Call([](Manager m, QString*) {
        m->ShowScreen(QByteArray(1 << 20, 'y').constData());
        return -1L;
    }) << noCode << "ShowScreen - text of 1048576 characters cut to 16384";
}

void TestGuiManager::logsBadInputAndStaysUp()
{
    QFETCH(Call, call);
    QFETCH(long, expectedCode);
    QFETCH(QString, expectedLog);

    QString ignored;
    QCOMPARE(call(m_manager.in(), &ignored), expectedCode);
    QVERIFY2(!m_host.waitFor(expectedLog).isEmpty(), qPrintable(expectedLog));
    Lumaro::gui::StringSeq_var screens = m_manager->GetScreenList();
    QCOMPARE(screens->length(), CORBA::ULong(4));
}

void TestGuiManager::survivesMalformedGiop_data()
{
    QTest::addColumn<QByteArray>("message");

    QTest::newRow("size beyond any limit") << giopHeader(0x7ffffff0) + QByteArray(64, '\0');
    QTest::newRow("truncated") << giopHeader(200) + QByteArray(20, '\x01');
    // A request whose object key claims two gigabytes inside a body of twelve bytes.
    QTest::newRow("object key lies about its length")
        << giopHeader(16) + QByteArray("\x07\0\0\0\x03\0\0\0\0\0\0\0\xff\xff\xff\x7f", 16);
    QTest::newRow("not GIOP") << QByteArray("GET / HTTP/1.0\r\n\r\n");
}

void TestGuiManager::survivesMalformedGiop()
{
    QFETCH(QByteArray, message);

    const quint16 port = listeningPort(m_host.pid());
    QVERIFY(port != 0);
    QTcpSocket socket;
    socket.connectToHost(QStringLiteral("127.0.0.1"), port);
    QVERIFY(socket.waitForConnected(hostTimeoutMs));
    socket.write(message);
    QVERIFY(socket.waitForBytesWritten(hostTimeoutMs));
    // The ORB answers with a GIOP error or a system exception, or hangs up.
    QByteArray answer;
    QDeadlineTimer deadline(3000);
    while (socket.state() == QAbstractSocket::ConnectedState && answer.size() < 12 && !deadline.hasExpired()) {
        socket.waitForReadyRead(100);
        answer += socket.readAll();
    }
    if (!answer.isEmpty())
        QVERIFY2(answer.startsWith("GIOP"), answer.toHex().constData());
    socket.abort();

    Lumaro::gui::StringSeq_var screens = m_manager->GetScreenList();
    QCOMPARE(screens->length(), CORBA::ULong(4));
}

bool TestGuiManager::clientsExitWith(QList<QProcess*> clients, int status)
{
    bool all = true;
    for (QProcess* client : clients) {
        all = client->waitForFinished(hostTimeoutMs) && client->exitStatus() == QProcess::NormalExit
            && client->exitCode() == status && all;
    }
    return all;
}

void TestGuiManager::servesEightClientsAtOnce()
{
    std::vector<std::unique_ptr<QProcess>> clients;
    QList<QProcess*> started;
    for (int i = 0; i < 8; ++i) {
        clients.push_back(std::make_unique<QProcess>());
        QProcess* client = clients.back().get();
        client->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        const QStringList command = i % 2 ? QStringList{"--screens"} : QStringList{"--show", "Meter"};
        client->start(QStringLiteral(TZ_GUI_CLIENT), m_naming.orbArguments() + command);
        started.append(client);
    }
    QVERIFY(clientsExitWith(started, 0));
    for (int i = 1; i < 8; i += 2)
        QVERIFY(QString::fromUtf8(started[i]->readAllStandardOutput()).split('\n').contains(QStringLiteral("Спектр")));
}

void TestGuiManager::survivesClientThatDiesWhileItsDialogIsOpen()
{
    QProcess client;
    client.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    client.start(QStringLiteral(TZ_GUI_CLIENT), m_naming.orbArguments() + QStringList{"--dialog", "Orphan", "?", "OK,1"});
    QVERIFY(!m_host.waitFor("remote dialog shown: \"Orphan\"").isEmpty());
    client.kill();
    QVERIFY(client.waitForFinished(hostTimeoutMs));

    m_host.send("press 1");
    QVERIFY(!m_host.waitFor("remote dialog answered: \"Orphan\" 1").isEmpty());
    Lumaro::gui::StringSeq_var screens = m_manager->GetScreenList();
    QCOMPARE(screens->length(), CORBA::ULong(4));
}

void TestGuiManager::secondDesktopTakesTheNameOver()
{
    GuiHost second;
    const int mark = 0;
    QVERIFY(second.start(m_naming));
    const QString lines = second.outputSince(mark);
    QCOMPARE(lines.count(QStringLiteral("Naming context already bound")), 2);
    QVERIFY(lines.contains(QStringLiteral("Object already bound.  Will force a rebind")));

    QProcess client;
    client.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    client.start(QStringLiteral(TZ_GUI_CLIENT), m_naming.orbArguments() + QStringList{"--show", "Nowhere2"});
    QVERIFY(clientsExitWith({&client}, 0));
    QVERIFY(!second.waitFor("no screen \"Nowhere2\"").isEmpty());

    // Leaving, it takes its name along; the first desktop still serves its callers.
    QCOMPARE(second.quit(), 0);
    QVERIFY(CORBA::is_nil(CORBA::Object_var(m_orb->ResolveName(Orvanth::Names::GuiManagerPath))));
    Lumaro::gui::StringSeq_var screens = m_manager->GetScreenList();
    QCOMPARE(screens->length(), CORBA::ULong(4));
}

void TestGuiManager::logsUnreachableNamingServiceAndCarriesOn()
{
    GuiHost lonely;
    const QString initRef =
        QStringLiteral("NameService=corbaname::127.0.0.1:%1").arg(NamingServiceProcess::freeLoopbackPort());
    QVERIFY(lonely.start({"-ORBInitRef", initRef}, QStringLiteral("Can't get to the naming service")));
    QVERIFY(!lonely.outputSince(0).contains(QStringLiteral("GUIManagerServer - bound")));
    QCOMPARE(lonely.quit(), 0);
}

void TestGuiManager::shutsDownWithCallInFlight()
{
    std::future<long> pending =
        callAsync([](Manager m, QString*) { return long(m->DisplayDialog("Pending", "?", "OK,1", true)); });
    QVERIFY(!m_host.waitFor("remote dialog shown: \"Pending\"").isEmpty());
    QCOMPARE(m_host.quit(), 0);

    // The caller gets the cancel, or finds the desktop gone; it is not left waiting.
    QCOMPARE(pending.wait_for(std::chrono::milliseconds(hostTimeoutMs)), std::future_status::ready);
    try {
        QCOMPARE(pending.get(), -999L);
    } catch (const CORBA::COMM_FAILURE&) {
    } catch (const CORBA::TRANSIENT&) {
    }
    m_manager = Lumaro::gui::GUIManager::_nil();
}

QTEST_MAIN(TestGuiManager)

#include "tst_guimanager.moc"
