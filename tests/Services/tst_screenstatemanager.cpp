// The screen layout store on a desktop of real containers: what a stored layout holds
// for each kind of screen, and what recalling one hides, opens, places, sizes and stacks,
// also when recalled from a thread other than the GUI thread.

#include "ContainerDialog.h"
#include "ContainerTestDesktop.h"
#include "FSContainer.h"
#include "GlobalImpl.h"
#include "LogCapture.h"
#include "ScreenStateManager.h"
#include "SystemModule.h"

#include <QDomDocument>
#include <QPushButton>
#include <QtTest>

#include <atomic>
#include <thread>

namespace {

// The attributes of each stored screen, by name.
QHash<QString, QDomElement> storedScreens(const QString& layout)
{
    QDomDocument document;
    document.setContent(layout);
    QHash<QString, QDomElement> screens;
    for (QDomElement screen = document.documentElement().firstChildElement(QStringLiteral("screen"));
         !screen.isNull(); screen = screen.nextSiblingElement(QStringLiteral("screen")))
        screens.insert(screen.attribute(QStringLiteral("name")), screen);
    return screens;
}

QString element(const QString& name, const QString& pos, const QString& state, int z,
                const QString& minGeometry = QStringLiteral("0,0,0,0"))
{
    return QStringLiteral("<screen name=\"%1\" pos=\"%2\" state=\"%3\" min_geometry=\"%4\" visible=\"1\" z_index=\"%5\"/>")
        .arg(name, pos, state, minGeometry)
        .arg(z);
}

QString layout(const QStringList& elements)
{
    return QStringLiteral("<ui_screen_states>") + elements.join(QString()) + QStringLiteral("</ui_screen_states>");
}

} // namespace

class TestScreenStateManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void storesEachVisibleScreenWithItsPlaceStateAndStacking();
    void storesOtherKindsAndHonoursOptOut();
    void recallHidesOpenContainersButDialogs();
    void recallPlacesSizesAndStacks();
    void maximizedContainerKeepsItsPlace();
    void launcherOpensItsScreenOnRecall();
    void recallFromAnotherThreadChangesWidgetsInGuiThread();

private:
    ContainerImpl* addScreen(const QString& name);

    std::unique_ptr<ContainerTestDesktop> m_desktop;
    ScreenStateManager* m_store = nullptr;
    QStringList m_names;
};

void TestScreenStateManager::initTestCase()
{
    QVERIFY(GlobalImpl::getInstance());
}

void TestScreenStateManager::init()
{
    m_desktop = std::make_unique<ContainerTestDesktop>("benchtop", QVariant(), false);
    GlobalImpl::getInstance()->systemModule()->setSystemScreen(QStringLiteral("MainWindow"), &m_desktop->window);
    m_store = new ScreenStateManager(m_desktop->desktop);
}

void TestScreenStateManager::cleanup()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    for (const QString& name : qAsConst(m_names))
        registry->removeScreen(name);
    m_names.clear();
    m_desktop.reset();
}

ContainerImpl* TestScreenStateManager::addScreen(const QString& name)
{
    ContainerImpl* container = m_desktop->addContainer(QSize(200, 120));
    container->setWindowTitle(name);
    GlobalImpl::getInstance()->addScreen(name, container);
    m_names << name;
    return container;
}

void TestScreenStateManager::storesEachVisibleScreenWithItsPlaceStateAndStacking()
{
    ContainerImpl* scope = addScreen(QStringLiteral("Scope"));
    ContainerImpl* meter = addScreen(QStringLiteral("Meter"));
    ContainerImpl* hidden = addScreen(QStringLiteral("Hidden"));
    scope->move(10, 20);
    scope->setMinGeometry(QRect(0, 0, 300, 200));
    hidden->hide();
    meter->raise();

    const QString text = m_store->store();
    QVERIFY2(text.startsWith(QStringLiteral("<ui_screen_states>\n <screen ")), qPrintable(text));
    const QHash<QString, QDomElement> screens = storedScreens(text);
    QCOMPARE(screens.keys().size(), 2);
    const QDomElement stored = screens.value(QStringLiteral("Scope"));
    QCOMPARE(stored.attribute("pos"), QStringLiteral("10,20"));
    QCOMPARE(stored.attribute("state"), QStringLiteral("Min"));
    QCOMPARE(stored.attribute("min_geometry"), QStringLiteral("0,0,300,200"));
    QCOMPARE(stored.attribute("visible"), QStringLiteral("1"));
    const QList<ContainerBase*> stack = m_desktop->window.findChildren<ContainerBase*>();
    QCOMPARE(stored.attribute("z_index").toInt(), stack.indexOf(scope));
    QVERIFY(screens.value("Meter").attribute("z_index").toInt() > stored.attribute("z_index").toInt());
}

void TestScreenStateManager::storesOtherKindsAndHonoursOptOut()
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    auto* full = new FSContainer(m_desktop->desktop);
    full->show();
    registry->addScreen(QStringLiteral("Overview"), full);
    auto* dialog = new ContainerDialog(m_desktop->desktop);
    dialog->show();
    registry->addScreen(QStringLiteral("Question"), dialog);
    auto* plain = new QFrame(m_desktop->desktop);
    plain->show();
    registry->addScreen(QStringLiteral("Plain"), plain);
    m_names << "Overview" << "Question" << "Plain";
    addScreen(QStringLiteral("Private"))->setProperty("screen_manager_save", false);
    addScreen(QStringLiteral("Public"))->setProperty("screen_manager_save", true);

    const QHash<QString, QDomElement> screens = storedScreens(m_store->store());
    QCOMPARE(screens.value("Overview").attribute("state"), QStringLiteral("FullScreen"));
    QCOMPARE(screens.value("Overview").attribute("min_geometry"), QStringLiteral("0,0,0,0"));
    QCOMPARE(screens.value("Question").attribute("state"), QStringLiteral("UnregisteredClass: ContainerDialog"));
    QVERIFY(screens.contains("Public"));
    QVERIFY(!screens.contains("Private"));
    QVERIFY(!screens.contains("Plain"));
}

void TestScreenStateManager::recallHidesOpenContainersButDialogs()
{
    ContainerImpl* scope = addScreen(QStringLiteral("Scope"));
    ContainerImpl* meter = addScreen(QStringLiteral("Meter"));
    ContainerImpl* update = addScreen(QStringLiteral("SystemUpdate Tool"));
    auto* dialog = new ContainerDialog(m_desktop->desktop);
    dialog->show();
    update->hide();

    LogCapture log;
    m_store->recall(layout({element("Scope", "40,60", "Min", 1), element("SystemUpdate Tool", "0,0", "Min", 2),
                            element("Gone", "0,0", "Min", 3)}));
    QVERIFY(scope->isVisible());
    QVERIFY(!meter->isVisible());
    QVERIFY(dialog->isVisible());
    QVERIFY(!update->isVisible());
    QVERIFY(log.contains(QStringLiteral("UserInterface - Screen not available! \"Gone\"")));
}

void TestScreenStateManager::recallPlacesSizesAndStacks()
{
    ContainerImpl* scope = addScreen(QStringLiteral("Scope"));
    ContainerImpl* meter = addScreen(QStringLiteral("Meter"));
    meter->raise();
    // Listed top first: the stacking comes from z_index, not from the order.
    m_store->recall(layout({element("Scope", "40,60", "Min", 2, "40,60,200,120"),
                            element("Meter", "500,300", "Min", 1, "500,300,200,120")}));
    QCOMPARE(scope->pos(), QPoint(40, 60));
    QCOMPARE(meter->pos(), QPoint(500, 300));
    QCOMPARE(scope->minGeometry().topLeft(), QPoint(40, 60));
    const QList<ContainerBase*> stack = m_desktop->window.findChildren<ContainerBase*>();
    QVERIFY(stack.indexOf(scope) > stack.indexOf(meter));
    // The place is where "Min" returns to after "Max".
    m_store->recall(layout({element("Scope", "40,60", "Max", 1, "40,60,200,120")}));
    QCOMPARE(scope->state(), QStringLiteral("Max"));
    scope->setState(QStringLiteral("Min"));
    QCOMPARE(scope->pos(), QPoint(40, 60));
}

void TestScreenStateManager::maximizedContainerKeepsItsPlace()
{
    ContainerImpl* scope = addScreen(QStringLiteral("Scope"));
    scope->setState(QStringLiteral("Max"));
    const QRect maximized = scope->geometry();
    m_store->recall(layout({element("Scope", "300,200", "Max", 1, "300,200,200,120")}));
    QCOMPARE(scope->state(), QStringLiteral("Max"));
    QCOMPARE(scope->geometry(), maximized);
}

void TestScreenStateManager::launcherOpensItsScreenOnRecall()
{
    auto* launcher = new QPushButton(QStringLiteral("Tool"), m_desktop->desktop);
    GlobalImpl::getInstance()->addScreen(QStringLiteral("Tool"), launcher);
    m_names << "Tool";
    QPointer<ContainerImpl> opened;
    connect(launcher, &QPushButton::clicked, this, [&] { opened = addScreen(QStringLiteral("Tool")); });

    m_store->recall(layout({element("Tool", "120,90", "Min", 1)}));
    QVERIFY(opened);
    QVERIFY(opened->isVisible());
    QCOMPARE(opened->pos(), QPoint(120, 90));
}

void TestScreenStateManager::recallFromAnotherThreadChangesWidgetsInGuiThread()
{
    ContainerImpl* scope = addScreen(QStringLiteral("Scope"));
    ContainerImpl* meter = addScreen(QStringLiteral("Meter"));
    QThread* const guiThread = QThread::currentThread();
    std::atomic<bool> showsInGuiThread{true};
    connect(scope, &ContainerBase::WindowOpened, this, [&] { showsInGuiThread = QThread::currentThread() == guiThread; });

    std::atomic<bool> done{false};
    QString stored;
    std::thread caller([&] {
        m_store->recall(layout({element("Scope", "60,70", "Min", 1)}));
        stored = m_store->store();
        done = true;
    });
    QTRY_VERIFY_WITH_TIMEOUT(done, 10000);
    caller.join();
    QVERIFY(showsInGuiThread);
    QTRY_COMPARE(scope->pos(), QPoint(60, 70));
    QVERIFY(!meter->isVisible());
    QCOMPARE(storedScreens(stored).keys(), QStringList{"Scope"});
}

QTEST_MAIN(TestScreenStateManager)

#include "tst_screenstatemanager.moc"
