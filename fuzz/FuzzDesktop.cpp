#include "FuzzDesktop.h"

#include "ContainerImpl.h"
#include "DesktopImpl.h"
#include "DesktopManagerImpl.h"
#include "FSContainer.h"
#include "GUIManagerImpl.h"
#include "GUIManagerReceiver.h"
#include "GlobalImpl.h"
#include "QTZMessageOutputControl.h"
#include "ScreenStateManager.h"
#include "SystemModule.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <cstdio>
#include <cstdlib>

namespace {

void dropMessage(QtMsgType, const QMessageLogContext&, const QString&) {}

void printMessage(QtMsgType, const QMessageLogContext&, const QString& message)
{
    std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
}

QRect startGeometry(int index)
{
    return QRect(40 + 320 * index, 120, 300, 200);
}

} // namespace

void initializeFuzzApplication()
{
    if (QCoreApplication::instance())
        return;
    // Offscreen, and no DDS participant: a fuzz run sends nothing anywhere.
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("ORVANTH_DDS_DISABLE", "1", 1);
    static int argc = 1;
    static char name[] = "tz-fuzz";
    static char* argv[] = {name, nullptr};
    new QApplication(argc, argv);
    qInstallMessageHandler(std::getenv("TZ_FUZZ_LOG") ? &printMessage : &dropMessage);
}

FuzzDesktop& FuzzDesktop::instance()
{
    static FuzzDesktop* desktop = new FuzzDesktop;
    return *desktop;
}

FuzzDesktop::FuzzDesktop()
{
    initializeFuzzApplication();
    m_window = std::make_unique<QWidget>();
    GlobalImpl* registry = GlobalImpl::getInstance();
    QTZMessageOutputControl::m_output = std::getenv("TZ_FUZZ_LOG") != nullptr;

    m_window->resize(1280, 800);
    m_desktop = new DesktopImpl(m_window.get());
    registry->setDesktop(m_desktop);
    registry->systemModule()->setSystemScreen(QStringLiteral("MainWindow"), m_window.get());
    m_desktopManager = std::make_unique<DesktopManagerImpl>();
    registry->setDesktopManager(m_desktopManager.get());

    ContainerImpl* scope = addContainer(QStringLiteral("Scope"), 0);
    auto* drawerLayout = new QVBoxLayout;
    drawerLayout->addWidget(new QLabel(QStringLiteral("Trigger")));
    scope->setDrawerLayout(drawerLayout);
    scope->enableState(QStringLiteral("Thumb"));
    addContainer(QStringLiteral("Power Meter"), 1);

    m_fullScreen = new FSContainer(m_desktop);
    m_fullScreen->setWindowTitle(QStringLiteral("Overview"));
    m_fullScreen->hide();
    registry->addScreen(QStringLiteral("Overview"), m_fullScreen);

    // A launcher: its click opens a module that registers under the launcher's name.
    auto* launcher = new QPushButton(QStringLiteral("Launcher"), m_desktop);
    launcher->hide();
    registry->addScreen(QStringLiteral("Launcher"), launcher);
    QObject::connect(launcher, &QPushButton::clicked, launcher, [this, launcher] {
        GlobalImpl* registry = GlobalImpl::getInstance();
        if (registry->findScreen(QStringLiteral("Launcher")) == launcher) {
            ContainerImpl* opened = addContainer(QStringLiteral("Launcher"), 2);
            // The next input meets the launcher again.
            QObject::connect(opened, &QObject::destroyed, launcher, [launcher] {
                GlobalImpl::getInstance()->addScreen(QStringLiteral("Launcher"), launcher);
            });
            opened->deleteLater();
        }
    });

    m_screenStates = new ScreenStateManager(m_window.get());
    registry->systemModule()->setModule(QStringLiteral("ScreenStateManager"), m_screenStates.data());

    m_servant = std::make_unique<Lumaro::gui::GUIManagerImpl>();
    m_receiver = new GUIManagerReceiver(m_desktop);
    m_receiver->connectTo(m_servant.get());
    m_window->show();
    settle();
}

ContainerImpl* FuzzDesktop::addContainer(const QString& name, int place)
{
    auto* container = new ContainerImpl(m_desktop);
    container->setWindowTitle(name);
    auto* layout = new QVBoxLayout;
    layout->addWidget(new QLabel(name));
    container->setLayout(layout);
    container->init();
    GlobalImpl::getInstance()->addScreen(name, container);
    m_desktopManager->registerModule(container);
    container->setGeometry(startGeometry(place));
    return container;
}

void FuzzDesktop::setPainting(bool painting)
{
    m_window->setUpdatesEnabled(painting);
}

void FuzzDesktop::settle()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    GlobalImpl* registry = GlobalImpl::getInstance();
    int index = 0;
    for (const QString& name : {QStringLiteral("Scope"), QStringLiteral("Power Meter")}) {
        if (auto* container = qobject_cast<ContainerImpl*>(registry->findScreen(name))) {
            if (container->state() != QLatin1String("Min"))
                container->setState(QStringLiteral("Min"));
            // Where a user's drag would have left it: placed, and "Min" returns there.
            container->move(startGeometry(index).topLeft());
            container->saveLocation();
            container->show();
        }
        ++index;
    }
    if (m_fullScreen)
        m_fullScreen->hide();
}
