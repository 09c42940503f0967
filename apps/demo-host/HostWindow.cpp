#include "HostWindow.h"

#include "ApplicationOptions.h"
#include "CSS.h"
#include "DemoLanguage.h"
#include "DemoNavigation.h"
#include "DemoScreens.h"
#include "DemoStatus.h"
#include "DemoWidgets.h"
#include "DesktopImpl.h"
#include "DesktopManagerImpl.h"
#include "FSContainer.h"
#include "GUIManagerReceiver.h"
#include "GlobalImpl.h"
#include "HostAddress.h"
#include "ScreenStateManager.h"
#include "SystemModule.h"

#include <QCloseEvent>
#include <QDebug>
#include <QFrame>
#include <QHBoxLayout>
#include <QPushButton>

HostWindow::HostWindow(const QSize& screenSize)
{
    setObjectName(QStringLiteral("MainWindow"));
    setWindowTitle(QStringLiteral("Orvanth Touch Interface System"));
    setFixedSize(screenSize);
}

HostWindow::~HostWindow()
{
    // The bar and discovery first, once their remote work is done; then the desktop and
    // its containers; the manager they report to after them.
    m_navigation.reset();
    delete m_desktop;
}

DesktopImpl* HostWindow::buildDesktop()
{
    m_desktop = new DesktopImpl(this);
    GlobalImpl* registry = GlobalImpl::getInstance();
    registry->setDesktop(m_desktop.data());
    registry->systemModule()->setSystemScreen(QStringLiteral("MainWindow"), this);
    m_desktopManager = std::make_unique<DesktopManagerImpl>();
    registry->setDesktopManager(m_desktopManager.get());
    m_screens = std::make_unique<DemoScreens>(m_desktop);
    DemoWidgets::addTo(m_desktop);
    m_navigation = std::make_unique<DemoNavigation>(m_desktop);
    QStringList screens = registry->getScreenList();
    screens.sort();
    for (const QString& name : screens)
        m_navigation->addScreenButton(name);
    m_status = new DemoStatus(m_desktop);
    buildExitMenu();
    // Engines store and recall the arrangement through the remote service, the user
    // through the buttons on the desktop.
    m_screenStates = new ScreenStateManager(this);
    registry->systemModule()->setModule(QStringLiteral("ScreenStateManager"), m_screenStates.data());
    buildDesktopButtons();
    new DemoLanguage(m_desktop);
    serveRemote();
    return m_desktop;
}

void HostWindow::serveRemote()
{
    // ORVANTH_INSTRUMENT_HOST names the instrument's naming service by itself.
    if (ApplicationOptions::orbInitRef().isEmpty() && qEnvironmentVariableIsEmpty("ORBInitRef")
        && !HostAddress::process().isRemote()) {
        qDebug() << "UserInterface - Demo host - no naming service, no remote GUI service";
        return;
    }
    GUIManagerReceiver::serve(m_desktop);
}

void HostWindow::buildExitMenu()
{
    // The exit button lies 80 pixels off the left edge until the handle beside it
    // slides the menu in.
    auto* menu = new QFrame(m_desktop);
    menu->setObjectName(QStringLiteral("ExitMenu"));
    menu->setStyleSheet(QStringLiteral("QFrame#ExitMenu { background-color: %1; border: 1px solid %2; }"
                                       "QPushButton { color: white; background-color: transparent; border: none; }")
                            .arg(CSS::accentRGBA(), CSS::border()));
    auto* layout = new QHBoxLayout(menu);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    auto* exitButton = new QPushButton(menu);
    exitButton->setObjectName(QStringLiteral("ExitButton"));
    DemoLanguage::follow(exitButton, [exitButton] { exitButton->setText(tr("Exit")); });
    exitButton->setFixedSize(80, 40);
    auto* handle = new QPushButton(QStringLiteral(">"), menu);
    handle->setObjectName(QStringLiteral("ExitMenuHandle"));
    handle->setFixedSize(30, 40);
    layout->addWidget(exitButton);
    layout->addWidget(handle);

    connect(handle, &QPushButton::clicked, m_desktop.data(), &DesktopImpl::toggleExitMenu);
    connect(exitButton, &QPushButton::clicked, m_desktop.data(), &DesktopImpl::shutdownSlot);
    menu->setGeometry(-80, height() - 60, 110, 40);
    menu->show();
}

void HostWindow::copyMessagesTo(const QString& fileName)
{
    if (!m_status || !m_status->statusBar())
        return;
    m_status->statusBar()->setOutputFile(fileName);
    m_status->statusBar()->logToFile(true);
}

void HostWindow::buildDesktopButtons()
{
    const QString look = QStringLiteral("QPushButton { color: white; background-color: rgb(60,60,60); "
                                        "border: 1px solid white; border-radius: 6px; padding: 6px; }"
                                        "QPushButton:disabled { color: gray; border-color: gray; }");
    auto* save = new QPushButton(m_desktop);
    save->setObjectName(QStringLiteral("SaveLayoutButton"));
    auto* restore = new QPushButton(m_desktop);
    restore->setObjectName(QStringLiteral("RestoreLayoutButton"));
    restore->setEnabled(false);
    auto* fullScreen = new QPushButton(m_desktop);
    fullScreen->setObjectName(QStringLiteral("FullScreenButton"));

    // A row at the bottom right, the full-screen button last; above the status bar where
    // the screen is too narrow for both. Laid out again for the widths of each language.
    const QList<QPushButton*> row{fullScreen, restore, save};
    for (QPushButton* button : row)
        button->setStyleSheet(look);
    DemoLanguage::follow(save, [this, row, save, restore, fullScreen] {
        save->setText(tr("Save layout"));
        restore->setText(tr("Restore layout"));
        fullScreen->setText(tr("Full screen"));
        QRect rowArea;
        int right = m_desktop->width() - 10;
        for (QPushButton* button : row) {
            button->adjustSize();
            button->move(right - button->width(), m_desktop->height() - button->height() - 20);
            right -= button->width() + 8;
            rowArea |= button->geometry();
        }
        const QWidget* statusBar = m_status ? m_status->statusBar() : nullptr;
        const int lift =
            statusBar && statusBar->geometry().intersects(rowArea) ? rowArea.bottom() + 10 - statusBar->y() : 0;
        for (QPushButton* button : row)
            button->move(button->x(), button->y() - lift);
    });
    for (QPushButton* button : row)
        button->show();

    connect(save, &QPushButton::clicked, this, [this, restore] {
        if (!m_screenStates)
            return;
        m_savedLayout = m_screenStates->store();
        restore->setEnabled(true);
        qDebug().noquote() << "UserInterface - Demo host - layout saved:" << m_savedLayout.count(QStringLiteral("<screen "))
                           << "screens";
    });
    connect(restore, &QPushButton::clicked, this, [this] {
        if (m_screenStates && !m_savedLayout.isEmpty())
            m_screenStates->recall(m_savedLayout);
    });
    if (FSContainer* module = m_screens->fullScreen())
        connect(fullScreen, &QPushButton::clicked, module, &FSContainer::show);
}

void HostWindow::closeEvent(QCloseEvent* event)
{
    if (m_desktop)
        m_desktop->close();
    event->accept();
}
