#include "DemoNavigation.h"

#include "ContainerImpl.h"
#include "DemoLanguage.h"
#include "DesktopImpl.h"
#include "DesktopManagerImpl.h"
#include "GlobalImpl.h"
#include "HandheldScreens.h"
#include "MenuBar.h"
#include "NamingServiceImpl.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFrame>
#include <QLabel>
#include <QThreadPool>
#include <QVBoxLayout>
#include <QtConcurrent>

namespace {

// Where each of the demo's screens goes in the bar: menu, sub-menu and the menu's
// priority (higher menus first).
struct Category
{
    const char* menu;
    const char* subMenu;
    int priority;
};

Category categoryOf(const QString& screen)
{
    if (screen == QLatin1String("Power Meter"))
        return {"Meters", "", 5};
    if (screen.startsWith(QLatin1String("Spectrum")))
        return {"Analyzers", "Spectrum", 9};
    if (screen == QLatin1String("System Overview"))
        return {"System", "", 1};
    return {"Applications", "Tools", 3};
}

const char* const moduleMenu = "Applications";
const char* const moduleSubMenu = "Engine modules";

// The entries' texts as the bar shows them, in the contexts of the buttons that show
// them: a menu's only entry on the bar, entries in a sub-menu.
[[maybe_unused]] const char* const entryTexts[] = {
    QT_TRANSLATE_NOOP("MenuBar", "Power Meter"),      QT_TRANSLATE_NOOP("MenuBar", "System Overview"),
    QT_TRANSLATE_NOOP("SubMenuItem", "Spectrum"),      QT_TRANSLATE_NOOP("SubMenuItem", "Notes"),
    QT_TRANSLATE_NOOP("SubMenuItem", "Engine Controls"), QT_TRANSLATE_NOOP("SubMenuItem", "Tools"),
    QT_TRANSLATE_NOOP("SubMenuItem", "Engine modules"),
};

// The name under which remote callers know a module's screen, the same in every language.
QString moduleTitle(const QString& index)
{
    return QStringLiteral("Module %1").arg(index);
}

} // namespace

DemoNavigation::DemoNavigation(DesktopImpl* desktop)
    : m_desktop(desktop)
    , m_menuBar(new MenuBar(desktop, Qt::AlignTop))
    , m_discovery(std::make_unique<NamingServiceImpl>())
{
    GlobalImpl* registry = GlobalImpl::getInstance();
    registry->setTopNavMenu(m_menuBar.data());
    registry->setNamingService(m_discovery.get());
    m_menuBar->show();

    // Announcements come from DDS and pool threads: queued into the GUI thread.
    connect(m_discovery.get(), &NamingServiceImpl::NewGUIAble, this, &DemoNavigation::addModuleButton,
            Qt::QueuedConnection);
    connect(m_discovery.get(), &NamingServiceImpl::destroy, this, &DemoNavigation::removeModuleButton,
            Qt::QueuedConnection);

    // The start-up search asks the naming service and pings every engine: not on the
    // GUI thread. The modules it finds are announced when it is done.
    NamingServiceImpl* discovery = m_discovery.get();
    connect(&m_startUp, &QFutureWatcher<void>::finished, this, [this] {
        for (const QString& index : m_discovery->getModuleList())
            addModuleButton(index);
    });
    m_startUp.setFuture(QtConcurrent::run([discovery] {
        discovery->initialize();
        discovery->postInit();
    }));
}

DemoNavigation::~DemoNavigation()
{
    // Engine reads of the bar and discovery's own work run on the pool and use discovery.
    m_startUp.waitForFinished();
    delete m_menuBar;
    for (const QPointer<ContainerBase>& module : qAsConst(m_modules))
        delete module.data();
    QThreadPool::globalInstance()->waitForDone();
}

void DemoNavigation::addScreenButton(const QString& name)
{
    // An unregistered name gives no screen: the bar refuses the entry and says so.
    auto* screen = qobject_cast<QFrame*>(GlobalImpl::getInstance()->getScreen(name));
    const Category category = categoryOf(name);
    m_menuBar->addMenuItem(QLatin1String(category.menu), QLatin1String(category.subMenu), name, screen, 0,
                           category.priority, nullptr, QString(), 0);
}

void DemoNavigation::addModuleButton(const QString& index)
{
    if (m_modules.value(index))
        return;
    const QString title = moduleTitle(index);
    auto* screen = new ContainerImpl(m_desktop);
    screen->setWindowTitle(title);
    // The module's form: a frame named "ContainerFrame", whose minimum is the screen's.
    auto* form = new QFrame;
    form->setObjectName(QStringLiteral("ContainerFrame"));
    form->setMinimumSize(220, 100);
    auto* text = new QLabel(form);
    DemoLanguage::follow(text, [text, index] {
        text->setText(DemoNavigation::tr("Engine GUI module %1, announced by module discovery.").arg(index));
    });
    text->setStyleSheet(QStringLiteral("color: white;"));
    text->setWordWrap(true);
    (new QVBoxLayout(form))->addWidget(text);
    auto* layout = new QVBoxLayout;
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(form);
    screen->setLayout(layout);
    screen->init();
    GlobalImpl* registry = GlobalImpl::getInstance();
    registry->addScreen(title, screen);
    if (DesktopManagerImpl* manager = registry->desktopManager())
        manager->registerModule(screen);
    HandheldScreens::follow(screen);
    screen->hide();
    m_modules.insert(index, screen);

    m_menuBar->addMenuItem(QLatin1String(moduleMenu), QLatin1String(moduleSubMenu), title, screen,
                           0, 3, nullptr, QString(), 0);
    qDebug() << "UserInterface - Demo host - engine module in the navigation bar:" << index;
}

void DemoNavigation::removeModuleButton(const QString& index)
{
    const QPointer<ContainerBase> screen = m_modules.take(index);
    if (!screen)
        return;
    // The module's entry goes with its screen; the bar regroups what is left.
    GlobalImpl::getInstance()->removeScreen(moduleTitle(index));
    delete screen.data();
    qDebug() << "UserInterface - Demo host - engine module left the navigation bar:" << index;
}
