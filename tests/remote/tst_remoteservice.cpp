// The remote GUI service and the screen layout store. This process builds a desktop with
// the screens "Scope", "Meter" and "Спектр" (containers) and "Notes" (a plain frame),
// serves the service under Lumaro/local/GUIManager in a real omniNames, and calls it
// through the ORB from other threads as an engine does, or through tz-gui-client, while
// its GUI thread plays the desktop's user. tz-test-guihost is a second desktop.

#include "ChildProcess.h"
#include "LanguageScope.h"
#include "LogCapture.h"
#include "NamingServiceProcess.h"

#include "ContainerDialog.h"
#include "ContainerImpl.h"
#include "DesktopImpl.h"
#include "DesktopManagerImpl.h"
#include "FSContainer.h"
#include "GUIManagerImpl.h"
#include "GUIManagerReceiver.h"
#include "GUIManagerServer.h"
#include "GlobalImpl.h"
#include "MenuBar.h"
#include "ORB_wrapper_base.h"
#include "OrvanthNames.h"
#include "PushButtonImpl.h"
#include "ScreenStateManager.h"
#include "SystemModule.h"

#include <GUIManager.hh>

#include <QDomDocument>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTranslator>
#include <QVBoxLayout>
#include <QtTest>

#include <future>

namespace {

using Manager = Lumaro::gui::GUIManager_ptr;
// A remote call; returns its answer code and may report a text answer in \a text.
using Call = std::function<long(Manager manager, QString* text)>;
// What the user does with the newest dialog; true once done.
using Action = std::function<bool(ContainerDialog*)>;
constexpr int timeoutMs = 15000;

// Clicks the button answering \a code, after doing \a first.
Action press(const QString& code, const std::function<void(ContainerDialog*)>& first = {})
{
    return [code, first](ContainerDialog* dialog) {
        if (first)
            first(dialog);
        for (auto* button : dialog->findChildren<Lumaro::gui::PushButtonImpl*>()) {
            if (button->button()->objectName() == code) {
                QTest::mouseClick(button->button(), Qt::LeftButton);
                return true;
            }
        }
        return false;
    };
}

QString labelText(QWidget* dialog, const char* name)
{
    auto* label = dialog->findChild<QLabel*>(QLatin1String(name));
    return label && !label->isHidden() ? label->text() : QString();
}

QString buttonText(ContainerDialog* dialog, const QString& code)
{
    for (auto* button : dialog->findChildren<Lumaro::gui::PushButtonImpl*>()) {
        if (button->button()->objectName() == code)
            return button->button()->text();
    }
    return QString();
}

// A host's catalog that has the words engines use too, in the contexts in which a
// container's title and a kit button's text are translated.
class HostCatalog : public QTranslator
{
public:
    QString translate(const char* context, const char* sourceText, const char*, int) const override
    {
        const bool kitContext = qstrcmp(context, "QObject") == 0 || qstrcmp(context, "Lumaro::gui::PushButtonImpl") == 0;
        const QString source = QString::fromUtf8(sourceText);
        const bool known = source == QLatin1String("Alert") || source == QLatin1String("OK") || source == QLatin1String("Cancel");
        return kitContext && known ? QStringLiteral("HOST ") + source : QString();
    }
};

// The attributes of each stored screen, by name.
QHash<QString, QDomElement> storedScreens(const QString& layout)
{
    QDomDocument document;
    document.setContent(layout);
    QHash<QString, QDomElement> screens;
    for (QDomElement screen = document.documentElement().firstChildElement(); !screen.isNull();
         screen = screen.nextSiblingElement())
        screens.insert(screen.attribute(QStringLiteral("name")), screen);
    return screens;
}

// A layout of "name|x,y|state|z_index[|min_geometry]" entries.
QString layout(const QStringList& screens)
{
    QString text;
    for (const QString& screen : screens) {
        const QStringList part = screen.split(QLatin1Char('|'));
        text += QStringLiteral("<screen name=\"%1\" pos=\"%2\" state=\"%3\" z_index=\"%4\" min_geometry=\"%5\"/>")
                    .arg(part[0], part[1], part[2], part[3], part.value(4, QStringLiteral("0,0,0,0")));
    }
    return QStringLiteral("<ui_screen_states>") + text + QStringLiteral("</ui_screen_states>");
}

} // namespace

Q_DECLARE_METATYPE(Call)
Q_DECLARE_METATYPE(Action)

class TestRemoteService : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

    void alertsShareOneBoxAndOneAnswer();
    void ownTextsFollowTheLanguageAndEngineTextsDoNot();
    void storesVisibleScreensOfEachKind();
    void recallOpensPlacesAndStacksNamedScreensOnly();
    void recallFromAnotherThreadChangesWidgetsInGuiThread();
    void refusesHostileLayoutAndKeepsDesktop_data();
    void refusesHostileLayoutAndKeepsDesktop();
    void appliesWhatItCanOfOddLayout();
    void showsHidesMovesResizesAndStacksScreensWithoutGuiThread();
    void savesAndRestoresScreenArrangement();
    void answersEachDialogKindWithPressedButton_data();
    void answersEachDialogKindWithPressedButton();
    void dialogThatDoesNotWaitReturnsPreviousAnswer();
    void reportsOpenAndClosedDialogs();
    void logsBadInputAndStaysUp_data();
    void logsBadInputAndStaysUp();
    void servesEightClientsAtOnceAndOutlivesOneThatDies();
    void secondDesktopTakesNameOverAndCancelsCallsAsItLeaves();
    void logsUnreachableNamingServiceAndCarriesOn();

private:
    // Makes \a call on a thread of its own, as an engine's call arrives, while the GUI
    // thread runs and the user does \a action on the newest dialog until it is done. The
    // action runs from a timer, so also while a blocking dialog runs its own event loop.
    template <class Function>
    auto remote(Function call, const Action& action = {})
    {
        Manager manager = m_manager.in();
        auto result = std::async(std::launch::async, [call, manager] { return call(manager); });
        bool acted = !action;
        QTimer user;
        connect(&user, &QTimer::timeout, [&] { acted = acted || (!m_receiver->dialogs().isEmpty() && action(m_receiver->dialogs().last())); });
        user.start(20);
        QDeadlineTimer deadline(timeoutMs);
        while ((result.wait_for(std::chrono::milliseconds(0)) != std::future_status::ready || !acted) && !deadline.hasExpired())
            QTest::qWait(5);
        return result.get();
    }
    bool stillServes()
    {
        return remote([](Manager m) { return Lumaro::gui::StringSeq_var(m->GetScreenList())->length(); }) == 4;
    }
    template <class Screen>
    Screen* addScreen(const QString& name, Screen* screen)
    {
        GlobalImpl::getInstance()->addScreen(name, screen);
        m_added[name] = screen;
        screen->show();
        return screen;
    }
    ContainerImpl* addContainer(const QString& name);
    int stackIndex(QWidget* screen) { return m_desktop->children().indexOf(screen); }

    NamingServiceProcess m_naming;
    std::unique_ptr<ORB_wrapper_base> m_orb;
    Lumaro::gui::GUIManager_var m_manager;
    QTemporaryDir m_files;
    QWidget m_window;
    DesktopImpl* m_desktop = nullptr;
    // Owned by the host, as the registry only points to it.
    std::unique_ptr<DesktopManagerImpl> m_desktopManager;
    GUIManagerReceiver* m_receiver = nullptr;
    ScreenStateManager* m_store = nullptr;
    MenuBar* m_menuBar = nullptr;
    QWidget* m_dcs = nullptr;
    ContainerImpl *m_scope = nullptr, *m_meter = nullptr, *m_spectrum = nullptr;
    QHash<QString, QPointer<QWidget>> m_added;
};

ContainerImpl* TestRemoteService::addContainer(const QString& name)
{
    auto* container = new ContainerImpl(m_desktop);
    container->setObjectName(name);
    container->setWindowTitle(name);
    auto* form = new QFrame;
    form->setObjectName(QStringLiteral("ContainerFrame"));
    form->setMinimumSize(200, 120);
    auto* layout = new QVBoxLayout;
    layout->addWidget(form);
    container->setLayout(layout);
    container->init();
    GlobalImpl::getInstance()->desktopManager()->registerModule(container);
    return addScreen(name, container);
}

void TestRemoteService::initTestCase()
{
    QVERIFY(m_naming.start());
    m_orb = std::make_unique<ORB_wrapper_base>(m_naming.orbOptions());
    for (const auto& option : std::initializer_list<std::pair<const char*, const char*>>{{"-res", "800x480"}, {"-systype", "benchtop"}, {"-animation", "false"}})
        qApp->setProperty(option.first, QString::fromLatin1(option.second));
    GlobalImpl* registry = GlobalImpl::getInstance();
    m_window.resize(800, 480);
    m_desktop = new DesktopImpl(&m_window);
    registry->setDesktop(m_desktop);
    registry->systemModule()->setSystemScreen(QStringLiteral("MainWindow"), &m_window);
    m_desktopManager = std::make_unique<DesktopManagerImpl>();
    registry->setDesktopManager(m_desktopManager.get());
    m_store = new ScreenStateManager(m_desktop);
    registry->systemModule()->setModule(QStringLiteral("ScreenStateManager"), m_store);
    m_dcs = new QFrame(m_desktop);
    registry->systemModule()->setSystemScreen(QStringLiteral("DCS"), m_dcs);
    m_menuBar = new MenuBar(m_desktop, Qt::AlignTop);
    registry->setTopNavMenu(m_menuBar);
    m_window.show();
    m_scope = addContainer(QStringLiteral("Scope"));
    m_meter = addContainer(QStringLiteral("Meter"));
    m_spectrum = addContainer(QStringLiteral("Спектр"));
    addScreen(QStringLiteral("Notes"), new QFrame(m_desktop));
    m_added.clear();

    m_receiver = qobject_cast<GUIManagerReceiver*>(GUIManagerReceiver::serve(m_desktop)->responseSource());
    QTRY_VERIFY_WITH_TIMEOUT(!CORBA::is_nil(CORBA::Object_var(m_orb->ResolveName(Orvanth::Names::GuiManagerPath))), timeoutMs);
    m_manager = Lumaro::gui::GUIManager::_narrow(CORBA::Object_var(m_orb->ResolveName(Orvanth::Names::GuiManagerPath)));
    // Calls wait for the desktop's user, but a broken test must not hang.
    ORB_base::setCallTimeout(m_manager, std::chrono::milliseconds(timeoutMs));
}

void TestRemoteService::cleanup()
{
    m_receiver->closeDialog(QString());
    for (auto added = m_added.cbegin(); added != m_added.cend(); ++added) {
        GlobalImpl::getInstance()->removeScreen(added.key());
        delete added.value().data();
    }
    m_added.clear();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    for (ContainerImpl* screen : {m_scope, m_meter, m_spectrum}) {
        screen->show();
        screen->setState(QStringLiteral("Min"));
    }
}

void TestRemoteService::cleanupTestCase()
{
    m_manager = Lumaro::gui::GUIManager::_nil();
    delete GlobalImpl::existingInstance();
    m_desktopManager.reset();
    m_orb.reset();
    ORB_base::destroyProcessOrb();
    m_naming.stop();
}

void TestRemoteService::alertsShareOneBoxAndOneAnswer()
{
    QSignalSpy answers(m_receiver, QOverload<const long&>::of(&GUIManagerReceiver::retResponse));
    m_receiver->showAlert(QStringLiteral("Alert 1"), false);
    const int objectsWithOneAlert = m_window.findChildren<QObject*>().size();
    for (int i = 2; i <= 3000; ++i)
        m_receiver->showAlert(QStringLiteral("Alert %1").arg(i), false);
    // An engine's alert joins the box and waits for its one answer.
    std::future<CORBA::Long> engine = std::async(std::launch::async, [this] { return m_manager->DisplayAlert("Door open"); });
    QTRY_COMPARE(m_receiver->alertCount(), 3001);
    ContainerDialog* box = m_receiver->alertBox();
    QCOMPARE(m_receiver->dialogs(), QList<ContainerDialog*>{box});
    QCOMPARE(labelText(box, "dialogMessage"), QStringLiteral("Door open"));
    QVERIFY(labelText(box, "alertCount").contains(QLatin1String("3001")));
    QCOMPARE(m_window.findChildren<QObject*>().size(), objectsWithOneAlert);
    QCOMPARE(engine.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);

    QVERIFY(press("1")(box));
    QCOMPARE(engine.wait_for(std::chrono::seconds(5)), std::future_status::ready);
    QCOMPARE(engine.get(), CORBA::Long(1));
    QCOMPARE(answers.size(), 1);
    // The next alert opens a box of its own; closing every dialog cancels it.
    m_receiver->showAlert(QStringLiteral("Later"), false);
    QVERIFY(m_receiver->alertBox() && m_receiver->alertBox() != box);
    QCOMPARE(m_receiver->alertCount(), 1);
    m_receiver->closeDialog(QString());
    QCOMPARE(answers.size(), 2);
    QCOMPARE(answers.last().first().value<long>(), long(ContainerDialog::CancelCode));
    QVERIFY(m_receiver->dialogs().isEmpty());
}

void TestRemoteService::ownTextsFollowTheLanguageAndEngineTextsDoNot()
{
    HostCatalog hostCatalog;
    QCoreApplication::installTranslator(&hostCatalog);
    // Opened in Chinese.
    LanguageScope language("zh_tw");
    m_receiver->showAlert(QStringLiteral("Door open"), false);
    m_receiver->showAlert(QStringLiteral("Door shut"), false);
    ContainerDialog* box = m_receiver->alertBox();
    // An engine's dialog in words the alert box uses as well.
    m_receiver->showSimpleDialog(QStringLiteral("Alert"), QStringLiteral("OK"), QStringLiteral("OK,1|Cancel,0"), false, false);
    ContainerDialog* fromEngine = m_receiver->dialogs().last();
    QVERIFY(box && fromEngine != box);

    for (const char* shown : {"", "zh_tw", "en", "zh_tw"}) {
        language.switchTo(shown);
        const bool chinese = qstrcmp(shown, "zh_tw") == 0;
        QCOMPARE(box->windowTitle(), chinese ? QStringLiteral("警示") : QStringLiteral("Alert"));
        QCOMPARE(buttonText(box, "1"), chinese ? QStringLiteral("確定") : QStringLiteral("OK"));
        QCOMPARE(labelText(box, "alertCount"),
                 chinese ? QStringLiteral("共 2 則警示，最新一則：") : QStringLiteral("2 alerts, the latest:"));
        QCOMPARE(labelText(box, "dialogMessage"), QStringLiteral("Door shut"));
        QCOMPARE(fromEngine->windowTitle(), QStringLiteral("Alert"));
        QCOMPARE(labelText(fromEngine, "dialogMessage"), QStringLiteral("OK"));
        QCOMPARE(buttonText(fromEngine, "1") + '|' + buttonText(fromEngine, "0"), QStringLiteral("OK|Cancel"));
    }
    // Engines name the alert box "Alert" in every language.
    m_receiver->closeDialog(QStringLiteral("Alert"));
    QVERIFY(m_receiver->dialogs().isEmpty());
    QCoreApplication::removeTranslator(&hostCatalog);
}

void TestRemoteService::storesVisibleScreensOfEachKind()
{
    addContainer(QStringLiteral("Hidden"))->hide();
    addContainer(QStringLiteral("Private"))->setProperty("screen_manager_save", false);
    addContainer(QStringLiteral("Public"))->setProperty("screen_manager_save", true);
    addScreen(QStringLiteral("Overview"), new FSContainer(m_desktop));
    addScreen(QStringLiteral("Question"), new ContainerDialog(m_desktop));
    m_scope->move(10, 20);
    m_scope->setMinGeometry(QRect(0, 0, 300, 200));
    m_meter->raise();

    const QHash<QString, QDomElement> screens = storedScreens(m_store->store());
    QCOMPARE(QSet<QString>(screens.keyBegin(), screens.keyEnd()), (QSet<QString>{"Meter", "Overview", "Public", "Question", "Scope", "Спектр"}));
    const QDomElement scope = screens.value(QStringLiteral("Scope"));
    QCOMPARE(scope.attribute("pos"), QStringLiteral("10,20"));
    QCOMPARE(scope.attribute("state"), QStringLiteral("Min"));
    QCOMPARE(scope.attribute("min_geometry"), QStringLiteral("0,0,300,200"));
    QVERIFY(screens.value("Meter").attribute("z_index").toInt() > scope.attribute("z_index").toInt());
    QCOMPARE(screens.value("Overview").attribute("state"), QStringLiteral("FullScreen"));
    QCOMPARE(screens.value("Question").attribute("state"), QStringLiteral("UnregisteredClass: ContainerDialog"));
}

void TestRemoteService::recallOpensPlacesAndStacksNamedScreensOnly()
{
    ContainerImpl* update = addContainer(QStringLiteral("SystemUpdate Tool"));
    update->hide();
    auto* dialog = addScreen(QStringLiteral("Question"), new ContainerDialog(m_desktop));
    // A launcher opens its module, whose container then takes the name.
    auto* launcher = addScreen(QStringLiteral("Tool"), new QPushButton(QStringLiteral("Tool"), m_desktop));
    QPointer<ContainerImpl> tool;
    connect(launcher, &QPushButton::clicked, this, [&] { tool = addContainer(QStringLiteral("Tool")), launcher->deleteLater(); });

    LogCapture log;
    m_store->recall(layout({"Scope|40,60|Min|3", "Tool|120,90|Min|1", "SystemUpdate Tool|0,0|Min|2", "Gone|0,0|Min|4"}));
    QVERIFY(m_scope->isVisible() && !m_meter->isVisible() && !m_spectrum->isVisible() && dialog->isVisible() && !update->isVisible());
    QCOMPARE(m_scope->pos(), QPoint(40, 60));
    QVERIFY(tool && tool->isVisible());
    QCOMPARE(tool->pos(), QPoint(120, 90));
    QVERIFY(stackIndex(m_scope) > stackIndex(tool));
    QVERIFY(log.contains(QStringLiteral("UserInterface - Screen not available! \"Gone\"")));

    // A maximized container stays where it is, and "Min" returns it to its place before.
    m_scope->setState(QStringLiteral("Max"));
    const QRect maximized = m_scope->geometry();
    m_store->recall(layout({"Scope|300,200|Max|1|40,60,200,120"}));
    QCOMPARE(m_scope->state(), QStringLiteral("Max"));
    QCOMPARE(m_scope->geometry(), maximized);
    m_scope->setState(QStringLiteral("Min"));
    QCOMPARE(m_scope->pos(), QPoint(40, 60));
}

void TestRemoteService::recallFromAnotherThreadChangesWidgetsInGuiThread()
{
    QThread* const guiThread = QThread::currentThread();
    QAtomicInt showsInGuiThread(1);
    m_scope->hide();
    connect(m_scope, &ContainerBase::WindowOpened, this, [&] { showsInGuiThread = QThread::currentThread() == guiThread; });
    std::future<QString> caller = std::async(std::launch::async, [this] {
        m_store->recall(layout({"Scope|60,70|Min|1"}));
        return m_store->store();
    });
    QTRY_VERIFY_WITH_TIMEOUT(caller.wait_for(std::chrono::milliseconds(0)) == std::future_status::ready, 10000);
    const QString stored = caller.get();
    disconnect(m_scope, &ContainerBase::WindowOpened, this, nullptr);
    QVERIFY(showsInGuiThread);
    QTRY_COMPARE(m_scope->pos(), QPoint(60, 70));
    QVERIFY(m_scope->isVisible() && !m_meter->isVisible());
    QCOMPARE(storedScreens(stored).keys(), QStringList{"Scope"});
}

void TestRemoteService::refusesHostileLayoutAndKeepsDesktop_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("problem");
    QTest::newRow("not XML") << "this is no layout <" << "line 1";
    QTest::newRow("wrong root") << "<layout><screen name=\"Scope\" pos=\"1,1\"/></layout>" << "the root element is \"layout\"";
    QTest::newRow("nested 100000 deep") << "<ui_screen_states>" + QString("<a>").repeated(100000) << "elements nested deeper than";
    QTest::newRow("entity expansion")
        << "<?xml version=\"1.0\"?><!DOCTYPE l [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;\">]>"
           "<ui_screen_states><screen name=\"&b;\"/></ui_screen_states>"
        << "a document type declaration";
    QTest::newRow("longer than a layout") << "<ui_screen_states>" + QString(1100000, ' ') + "</ui_screen_states>"
                                          << "characters, more than";
}

void TestRemoteService::refusesHostileLayoutAndKeepsDesktop()
{
    QFETCH(QString, text);
    QFETCH(QString, problem);
    m_scope->move(120, 140);
    LogCapture log;
    m_store->recall(text);
    QVERIFY(log.contains(QStringLiteral("UserInterface - Error processing Recall data:")));
    QVERIFY2(log.contains(problem), qPrintable(log.lines().join('\n').left(2000)));
    QVERIFY(m_scope->isVisible() && m_meter->isVisible());
    QCOMPARE(m_scope->pos(), QPoint(120, 140));
}

void TestRemoteService::appliesWhatItCanOfOddLayout()
{
    LogCapture log;
    m_store->recall("<ui_screen_states><screen name=\"" + QString(300000, 'n') + "\" pos=\"1,1\" visible=\"1\"/>"
                    "<screen name=\"Scope\" pos=\"99999999999,-7\" state=\"Huge\" visible=\"1\" min_geometry=\""
                    + QString(100000, '9') + "\" z_index=\"x\"/></ui_screen_states>");
    QVERIFY(log.contains(QStringLiteral("UserInterface - Screen not available! \"nnnnnnnn")));
    QVERIFY(log.contains(QStringLiteral("unknown state \"Huge\" for \"Scope\"")));
    // Numbers that are none read as 0, and a place off the desktop is brought back on it.
    QVERIFY(log.contains(QStringLiteral("position 0 -7 outside the desktop")));
    QVERIFY(m_scope->isVisible() && !m_meter->isVisible());
    QVERIFY(m_desktop->rect().contains(m_scope->geometry()));
}

void TestRemoteService::showsHidesMovesResizesAndStacksScreensWithoutGuiThread()
{
    // Screen requests do not wait for the GUI thread, which may be inside a call to the
    // engine that asks.
    QWidget* plain = addScreen(QStringLiteral("Plain"), new QFrame(m_desktop));
    std::future<void> calls = std::async(std::launch::async, [this] {
        m_manager->HideScreen("Scope");
        m_manager->MoveScreen("Спектр", 20, 30);
        m_manager->ChangeSize("Meter", "Max");
        m_manager->ChangeSize("Plain", "Max");
    });
    QCOMPARE(calls.wait_for(std::chrono::seconds(5)), std::future_status::ready);
    QTRY_VERIFY(!m_scope->isVisible());
    QTRY_COMPARE(m_spectrum->pos(), QPoint(20, 30));
    QTRY_COMPARE(m_meter->state(), QStringLiteral("Max"));
    // A deleted screen is gone for remote callers at once.
    delete plain;
    QVERIFY(!GlobalImpl::getInstance()->guiManagerServer()->manager()->GetScreen(QStringLiteral("Plain")));
    remote([](Manager m) { m->ShowScreen("Scope"); });
    QTRY_VERIFY(m_scope->isVisible());

    // "name,extra": shown behind the others, or sent behind them instead of hidden.
    remote([](Manager m) { m->ShowScreen("Scope,back"); });
    QTRY_VERIFY(stackIndex(m_scope) < stackIndex(m_meter));
    remote([](Manager m) { m->ShowScreen("Scope,front"); });
    QTRY_VERIFY(stackIndex(m_scope) > stackIndex(m_meter));
    remote([](Manager m) { m->HideScreen("Scope,back"); });
    QTRY_VERIFY(stackIndex(m_scope) < stackIndex(m_meter) && m_scope->isVisible());

    m_dcs->hide();
    remote([](Manager m) { m->OpenDCS(); });
    QTRY_VERIFY(m_dcs->isVisible());
    remote([](Manager m) { m->SetMenuBarVisible(true); });
    QTRY_VERIFY(m_menuBar->isOpen);
    remote([](Manager m) { m->SetMenuBarVisible(false); });
    QTRY_VERIFY(!m_menuBar->isOpen);
}

void TestRemoteService::savesAndRestoresScreenArrangement()
{
    remote([](Manager m) {
        m->MoveScreen("Scope", 40, 50);
        m->MoveScreen("Meter", 300, 60);
        m->ChangeSize("Спектр", "Max");
        m->ShowScreen("Scope,front");
    });
    // Requests reach the desktop in the order they were made.
    CORBA::String_var saved = remote([](Manager m) { return m->SaveState(); });
    QVERIFY(QString::fromUtf8(saved).contains(QStringLiteral("name=\"Спектр\"")));
    remote([&saved](Manager m) {
        m->MoveScreen("Scope", 400, 200);
        m->HideScreen("Meter");
        m->ChangeSize("Спектр", "Min");
        m->ShowScreen("Meter,front");
        m->RestoreState(saved.in());
    });
    QTRY_COMPARE(m_scope->pos(), QPoint(40, 50));
    QTRY_COMPARE(m_meter->pos(), QPoint(300, 60));
    QTRY_COMPARE(m_spectrum->state(), QStringLiteral("Max"));
    QVERIFY(m_scope->isVisible() && m_meter->isVisible() && stackIndex(m_scope) > stackIndex(m_meter));
}

void TestRemoteService::answersEachDialogKindWithPressedButton_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<Action>("action");
    QTest::addColumn<long>("expectedCode");
    QTest::addColumn<QString>("expectedText");

    QTest::newRow("dialog") << Call([](Manager m, QString*) { return long(m->DisplayDialog("Confirm", "Start?", "Yes,3|No,4", true)); })
                            << press("3") << 3L << QString();
    QTest::newRow("dialog with parameters") << Call([](Manager m, QString*) {
        CORBA::StringSeq parameters(1, 1, CORBA::StringSeq::allocbuf(1), true);
        parameters[0] = "Span 3 GHz";
        return long(m->DisplayDialogWithParams("Settings", "Apply these?", parameters, "Apply,7|Keep,8", true));
    }) << press("8") << 8L << QString();
    QFile image(m_files.filePath(QStringLiteral("marker.svg")));
    QVERIFY(image.open(QIODevice::WriteOnly) && image.write("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"40\" height=\"20\"/>") > 0);
    image.close();
    QTest::newRow("image") << Call([path = image.fileName().toStdString()](Manager m, QString*) {
        return long(m->DisplayImage("Marker", "The marker", path.c_str(), "OK,1", true));
    }) << press("1") << 1L << QString();
    QTest::newRow("data entry in UTF-8") << Call([](Manager m, QString* text) {
        CORBA::String_var data;
        const long code = m->DisplayDataEntry("Название", "Имя файла?", "OK,1|Cancel,0", true, data.out());
        *text = QString::fromUtf8(data);
        return code;
    }) << press("1", [](ContainerDialog* d) { d->findChild<QLineEdit*>("lineEdit")->setText(QStringLiteral("Grüße 你好")); })
                                         << 1L << QStringLiteral("Grüße 你好");

    QVERIFY(QDir(m_files.path()).mkpath(QStringLiteral("traces")));
    const QString folder = m_files.filePath(QStringLiteral("traces"));
    for (const char* name : {"/a.csv", "/b.csv"})
        QVERIFY(QFile(folder + QLatin1String(name)).open(QIODevice::WriteOnly));
    QTest::newRow("file selection") << Call([folder](Manager m, QString* text) {
        CORBA::String_var path, filename;
        const long code = m->DisplayFileSelectDialog("Load trace", folder.toUtf8().constData(), path.out(), filename.out());
        *text = QString::fromUtf8(path) + QLatin1Char('/') + QString::fromUtf8(filename);
        return code;
    }) << press("1", [](ContainerDialog* d) {
        auto* files = d->findChild<QListWidget*>("fileList");
        files->setCurrentItem(files->findItems("b.csv", Qt::MatchExactly).value(0));
    }) << 1L << folder + QStringLiteral("/b.csv");
}

void TestRemoteService::answersEachDialogKindWithPressedButton()
{
    QFETCH(Call, call);
    QFETCH(Action, action);
    QFETCH(long, expectedCode);
    QFETCH(QString, expectedText);
    QString text;
    QCOMPARE(remote([&](Manager m) { return call(m, &text); }, action), expectedCode);
    QCOMPARE(text, expectedText);
}

void TestRemoteService::dialogThatDoesNotWaitReturnsPreviousAnswer()
{
    QCOMPARE(remote([](Manager m) { return long(m->DisplayDialog("First", "?", "A,5", true)); }, press("5")), 5L);
    QCOMPARE(remote([](Manager m) { return long(m->DisplayDialog("Later", "?", "B,6", false)); }), 5L);
    // Its answer arrives whenever the user gives it.
    LogCapture log;
    QTRY_COMPARE(m_receiver->dialogs().size(), 1);
    QVERIFY(press("6")(m_receiver->dialogs().last()));
    QVERIFY(log.contains(QStringLiteral("remote dialog answered: \"Later\" 6")));

    const auto entry = [](bool wait) {
        return [wait](Manager m) {
            CORBA::String_var data;
            m->DisplayDataEntry("Entry", "?", "OK,1", wait, data.out());
            return QString::fromUtf8(data);
        };
    };
    QCOMPARE(remote(entry(true), press("1", [](ContainerDialog* d) { d->findChild<QLineEdit*>("lineEdit")->setText("Ω1"); })),
             QStringLiteral("Ω1"));
    // The entry field offers the previous entry, which comes back again while unanswered.
    QCOMPARE(remote(entry(false)), QStringLiteral("Ω1"));
}

void TestRemoteService::reportsOpenAndClosedDialogs()
{
    // Asked at once, before the desktop has shown them.
    const QList<bool> answers = remote([](Manager m) {
        m->DisplayDialog("One", "first", "OK,1", false);
        m->DisplayDialog("Two", "second", "OK,1", false);
        QList<bool> open{bool(m->IsDialogActive("One")), bool(m->IsDialogActive("Two")), bool(m->IsDialogActive("Three"))};
        m->CloseDialog("One");
        open << bool(m->IsDialogActive("One")) << bool(m->IsDialogActive("Two"));
        m->CloseAllDialogs();
        return open << bool(m->IsDialogActive("Two"));
    });
    QCOMPARE(answers, (QList<bool>{true, true, false, false, true, false}));
}

void TestRemoteService::logsBadInputAndStaysUp_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<long>("expectedCode");
    QTest::addColumn<QString>("expectedLog");
    // Requests without an answer code report -1 here.
    using Request = std::function<void(Manager)>;
    const auto none = [](Request request) { return Call([request](Manager m, QString*) { return request(m), -1L; }); };
    QTest::newRow("unknown screen") << none([](Manager m) { m->ShowScreen("Nowhere"); }) << -1L << "ShowScreen - no screen \"Nowhere\"";
    QTest::newRow("unknown size") << none([](Manager m) { m->ChangeSize("Scope", "Huge"); }) << -1L << "unknown size \"Huge\" for \"Scope\"";
    QTest::newRow("size of a plain screen") << none([](Manager m) { m->ChangeSize("Notes", "Max"); }) << -1L << "not a container \"Notes\"";
    QTest::newRow("negative position") << none([](Manager m) { m->MoveScreen("Scope", -5, 10); }) << -1L << "outside the desktop \"Scope\" -5 10";
    QTest::newRow("entry with an odd part") << Call([](Manager m, QString*) { return long(m->DisplayDialog("Odd", "?", "Yes,1,No", true)); }) << -999L << "\"Odd\" has no button";
    QTest::newRow("one malformed entry") << none([](Manager m) { m->DisplayDialog("Half", "?", "Yes,1|No", false); }) << -1L << "1 of 2 button entries are not";
    QTest::newRow("code that is no number") << none([](Manager m) { m->DisplayDialog("Words", "?", "Yes,yes", false); }) << -1L << "has no numeric code, it answers 0";
    QTest::newRow("megabyte message") << none([](Manager m) { m->DisplayDialog("Big", std::string(1 << 20, 'x').c_str(), "OK,1", false); }) << -1L << "cut to 16384";
}

void TestRemoteService::logsBadInputAndStaysUp()
{
    QFETCH(Call, call);
    QFETCH(long, expectedCode);
    QFETCH(QString, expectedLog);
    LogCapture log;
    QCOMPARE(remote([call](Manager m) { return call(m, nullptr); }), expectedCode);
    QTRY_VERIFY2(log.contains(expectedLog), qPrintable(log.lines().join('\n')));
    QVERIFY(stillServes());
}

void TestRemoteService::servesEightClientsAtOnceAndOutlivesOneThatDies()
{
    // An engine built against CORBA's standard type takes the list as that type.
    CORBA::StringSeq_var screens = remote([](Manager m) { return m->GetScreenList(); });
    QStringList names;
    for (CORBA::ULong i = 0; i < screens->length(); ++i)
        names.append(QString::fromUtf8(screens[i]));
    names.sort();
    QCOMPARE(names, (QStringList{"Meter", "Notes", "Scope", "Спектр"}));
    const auto startClient = [this](QProcess& client, const QStringList& arguments) {
        client.start(QStringLiteral(TZ_GUI_CLIENT), m_naming.orbArguments() + arguments);
        return client.waitForStarted(timeoutMs);
    };
    QProcess clients[8];
    for (int i = 0; i < 8; ++i)
        QVERIFY(startClient(clients[i], i % 2 ? QStringList{"--screens"} : QStringList{"--show", "Meter"}));
    for (QProcess& client : clients) {
        QTRY_COMPARE_WITH_TIMEOUT(client.state(), QProcess::NotRunning, timeoutMs);
        QCOMPARE(client.exitCode(), 0);
    }
    for (int i = 1; i < 8; i += 2)
        QVERIFY(QString::fromUtf8(clients[i].readAllStandardOutput()).split('\n').contains(QStringLiteral("Спектр")));

    // A caller that dies while its dialog is open leaves the dialog to be answered.
    QProcess client;
    QVERIFY(startClient(client, {"--dialog", "Orphan", "?", "OK,1"}));
    LogCapture log;
    remote([](Manager) { return 0; }, press("1", [&client](ContainerDialog*) { client.kill(); }));
    QVERIFY(client.waitForFinished(timeoutMs));
    QTRY_VERIFY(log.contains(QStringLiteral("remote dialog answered: \"Orphan\" 1")));
    QVERIFY(stillServes());
}

void TestRemoteService::secondDesktopTakesNameOverAndCancelsCallsAsItLeaves()
{
    ChildProcess second;
    QVERIFY(second.start(QStringLiteral(TZ_TEST_GUIHOST), m_naming.orbArguments(), QProcessEnvironment::systemEnvironment(),
                         QStringLiteral("GUIManagerServer - bound")));
    Lumaro::gui::GUIManager_var other =
        Lumaro::gui::GUIManager::_narrow(CORBA::Object_var(m_orb->ResolveName(Orvanth::Names::GuiManagerPath)));
    std::future<long> pending = std::async(std::launch::async, [&other] { return long(other->DisplayDialog("Pending", "?", "OK,1", true)); });
    QTRY_VERIFY_WITH_TIMEOUT(second.output().contains(QStringLiteral("remote dialog shown: \"Pending\"")), timeoutMs);

    // Leaving, it cancels the call in flight (or its caller finds it gone) and takes its
    // name along; this desktop still serves its callers.
    QCOMPARE(second.stop(timeoutMs), 0);
    QCOMPARE(pending.wait_for(std::chrono::milliseconds(timeoutMs)), std::future_status::ready);
    try {
        QCOMPARE(pending.get(), -999L);
    } catch (const CORBA::COMM_FAILURE&) {
    } catch (const CORBA::TRANSIENT&) {
    }
    QVERIFY(CORBA::is_nil(CORBA::Object_var(m_orb->ResolveName(Orvanth::Names::GuiManagerPath))));
    QVERIFY(stillServes());
}

void TestRemoteService::logsUnreachableNamingServiceAndCarriesOn()
{
    ChildProcess lonely;
    const QString initRef = QStringLiteral("NameService=corbaname::127.0.0.1:%1").arg(NamingServiceProcess::freeLoopbackPort());
    QVERIFY(lonely.start(QStringLiteral(TZ_TEST_GUIHOST), {"-ORBInitRef", initRef}, QProcessEnvironment::systemEnvironment(),
                         QStringLiteral("Can't get to the naming service")));
    QVERIFY(!lonely.output().contains(QStringLiteral("GUIManagerServer - bound")));
    QCOMPARE(lonely.stop(timeoutMs), 0);
}

QTEST_MAIN(TestRemoteService)
#include "tst_remoteservice.moc"
