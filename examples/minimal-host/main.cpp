// tz-minimal-host: the least a host builds to put the touch desktop on a screen and let
// engines drive it. One window holding the desktop, one module container, the status
// bar and the navigation bar; with a naming service it serves the remote GUI service,
// so that an engine, or tz-gui-client from a shell, opens dialogs on it.
//   tz-minimal-host [-res 800x480] [-systype benchtop|handheld] [-debug]
//                   [-ORBInitRef NameService=corbaname::127.0.0.1:PORT] [-quit-after MS]

#include "ApplicationOptions.h"
#include "ContainerImpl.h"
#include "DesktopImpl.h"
#include "DesktopManagerImpl.h"
#include "GUIManagerReceiver.h"
#include "GlobalImpl.h"
#include "MenuBar.h"
#include "QTZMessageOutputControl.h"
#include "QTZStatusBar.h"
#include "ScreenStateManager.h"
#include "SystemModule.h"

#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

#include <cstdio>
#include <memory>
#include <optional>

namespace {

// A module's screen: the container shows the form in its frame; the form's minimum size
// is the container's normal size.
ContainerImpl* addModule(DesktopImpl* desktop, const QString& title, const QString& text)
{
    auto* form = new QFrame;
    form->setObjectName(QStringLiteral("ContainerFrame"));
    form->setMinimumSize(260, 120);
    auto* label = new QLabel(text, form);
    label->setStyleSheet(QStringLiteral("color: white;"));
    label->setWordWrap(true);
    auto* formLayout = new QVBoxLayout(form);
    formLayout->addWidget(label);

    auto* container = new ContainerImpl(desktop);
    container->setWindowTitle(title);
    auto* layout = new QVBoxLayout;
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(form);
    container->setLayout(layout);
    container->init();

    // Registered screens are what engines list, show, move and resize by name; the
    // desktop manager places the container when it is first shown.
    GlobalImpl* registry = GlobalImpl::getInstance();
    registry->addScreen(title, container);
    registry->desktopManager()->registerModule(container);
    container->show();
    return container;
}

int quitAfter(const QStringList& rest)
{
    const int at = rest.indexOf(QStringLiteral("-quit-after"));
    return at >= 0 && at + 1 < rest.size() ? rest.at(at + 1).toInt() : -1;
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);

    // The library reads its options from the application object's properties.
    const ApplicationOptions::Parsed options = ApplicationOptions::parse(app.arguments());
    ApplicationOptions::apply(options, &app);
    QTZMessageOutputControl::m_output = options.rest.contains(QStringLiteral("-debug"));

    // The registry first: every object below finds its peers through it.
    GlobalImpl* registry = GlobalImpl::getInstance();

    // The desktop manager outlives the window and the containers on it, which give back
    // their places on the desktop as they go.
    std::unique_ptr<DesktopManagerImpl> desktopManager;
    QWidget window;
    window.setObjectName(QStringLiteral("MainWindow"));
    window.setFixedSize(ApplicationOptions::resolutionOr(QSize(800, 480)));

    auto* desktop = new DesktopImpl(&window);
    registry->setDesktop(desktop);
    // After the desktop: the manager lays containers out in the desktop's area.
    desktopManager = std::make_unique<DesktopManagerImpl>();
    registry->setDesktopManager(desktopManager.get());
    registry->systemModule()->setSystemScreen(QStringLiteral("MainWindow"), &window);

    ContainerImpl* readings = addModule(desktop, QStringLiteral("Readings"),
                                        QStringLiteral("A module's screen in a container: drag it by its title, "
                                                       "grow or shrink it with the title-bar buttons."));

    auto* statusBar = new QTZStatusBar(desktop);
    registry->setStatusBar(statusBar);
    statusBar->show();

    auto* menuBar = new MenuBar(desktop, Qt::AlignTop);
    registry->setTopNavMenu(menuBar);
    // Without engines, the bar hides after a fixed time instead of asking them for it.
    menuBar->setTimeoutSource([] { return std::optional<int>(10); });
    menuBar->addMenuItem(QStringLiteral("Modules"), QString(), QStringLiteral("Readings"), readings, 0, 1, nullptr,
                         QString(), 0);
    menuBar->show();

    // Engines store and recall the arrangement of the screens through this module.
    registry->systemModule()->setModule(QStringLiteral("ScreenStateManager"), new ScreenStateManager(&window));

    // The remote GUI service needs a naming service to be found in.
    if (!ApplicationOptions::orbInitRef().isEmpty() || !qEnvironmentVariableIsEmpty("ORBInitRef"))
        GUIManagerReceiver::serve(desktop);
    else
        std::printf("tz-minimal-host: no naming service (-ORBInitRef), no remote GUI service\n");

    window.show();
    const int quitAfterMs = quitAfter(options.rest);
    if (quitAfterMs >= 0)
        QTimer::singleShot(quitAfterMs, &app, &QCoreApplication::quit);
    QTimer::singleShot(0, &app, [] {
        std::printf("tz-minimal-host: desktop shown\n");
        std::fflush(stdout);
    });

    const int code = app.exec();
    // Closing the desktop deletes the registry; the window then takes the desktop, its
    // containers and bars with it, and the desktop manager goes last.
    desktop->close();
    std::printf("tz-minimal-host: exit %d\n", code);
    return code;
}
