#include "DemoNavigation.h"

#include "DesktopImpl.h"
#include "GlobalImpl.h"
#include "MenuBar.h"
#include "NamingServiceImpl.h"

#include <QDebug>
#include <QThreadPool>
#include <QtConcurrent>

DemoNavigation::DemoNavigation(DesktopImpl* desktop)
    : m_menuBar(new MenuBar(desktop, Qt::AlignTop))
    , m_discovery(std::make_unique<NamingServiceImpl>())
{
    m_menuBar->setStyleSheet(m_menuBar->styleSheet()
                             + QStringLiteral("QPushButton#ScreenButton, QPushButton#ModuleButton { color: white; "
                                              "background-color: rgb(40,40,40); border: 1px solid gray; }"));
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
    QThreadPool::globalInstance()->waitForDone();
}

QPushButton* DemoNavigation::addButton(const QString& text, const QString& objectName)
{
    auto* button = new QPushButton(text);
    button->setObjectName(objectName);
    button->setFocusPolicy(Qt::NoFocus);
    m_menuBar->addItem(button);
    connect(button, &QPushButton::clicked, m_menuBar.data(), &MenuBar::startTimer);
    return button;
}

void DemoNavigation::addScreenButton(const QString& name)
{
    QPushButton* button = addButton(name, QStringLiteral("ScreenButton"));
    connect(button, &QPushButton::clicked, this, [this, name] {
        if (QWidget* screen = GlobalImpl::getInstance()->getScreen(name)) {
            screen->show();
            screen->raise();
        }
        if (m_menuBar->isOpen)
            m_menuBar->toggle();
    });
}

void DemoNavigation::addModuleButton(const QString& index)
{
    if (m_moduleButtons.value(index))
        return;
    m_moduleButtons.insert(index, addButton(tr("Module %1").arg(index), QStringLiteral("ModuleButton")));
    qDebug() << "UserInterface - Demo host - engine module in the navigation bar:" << index;
}

void DemoNavigation::removeModuleButton(const QString& index)
{
    const QPointer<QPushButton> button = m_moduleButtons.take(index);
    if (!button)
        return;
    delete button.data();
    qDebug() << "UserInterface - Demo host - engine module left the navigation bar:" << index;
}
