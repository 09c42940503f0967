// tz-test-guihost: a small desktop for the remote GUI service's tests. It builds the
// registry, a desktop with the screens "Scope", "Meter" and "Спектр" (containers) and
// "Notes" (a plain frame), the navigation bar, a "DCS" system screen and the layout
// store, and serves the GUI manager through the demo host's receiver. Arguments are
// application options ("-ORBInitRef NameService=...", "-res 800x480", ...).
//
// Every log line goes to standard output. Commands come on standard input, one a line:
//   press CODE     clicks the button named CODE in the newest open dialog
//   type TEXT      replaces the text of the newest dialog's entry field
//   choose NAME    selects NAME in the newest dialog's file list
//   screen NAME    prints "SCREEN NAME visible=V x=X y=Y state=S z=Z" (a registered or
//                  system screen; z is its place among the desktop's children)
//   menubar        prints "MENUBAR open=0|1"
//   quit           closes the desktop as a user does; the program then ends

#include "ApplicationOptions.h"
#include "ContainerDialog.h"
#include "ContainerImpl.h"
#include "GUIManagerReceiver.h"
#include "DesktopImpl.h"
#include "DesktopManagerImpl.h"
#include "GUIManagerServer.h"
#include "GlobalImpl.h"
#include "MenuBar.h"
#include "PushButtonImpl.h"
#include "QTZMessageOutputControl.h"
#include "ScreenStateManager.h"
#include "SystemModule.h"

#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QMutex>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <thread>

namespace {

QMutex outputMutex;

void printLine(const QString& line)
{
    QMutexLocker lock(&outputMutex);
    const QByteArray text = line.toUtf8();
    std::fprintf(stdout, "%s\n", text.constData());
    std::fflush(stdout);
}

void logToStandardOutput(QtMsgType, const QMessageLogContext&, const QString& message)
{
    printLine(message);
}

} // namespace

class TestGuiHost : public QObject
{
    Q_OBJECT

public:
    TestGuiHost();

public slots:
    void command(const QString& line);

private:
    ContainerImpl* addContainer(const QString& name);
    ContainerDialog* newestDialog() const;
    void printScreen(const QString& name) const;

    QWidget m_window;
    QPointer<DesktopImpl> m_desktop;
    std::unique_ptr<DesktopManagerImpl> m_desktopManager;
    QPointer<MenuBar> m_menuBar;
    QPointer<GUIManagerServer> m_server;
};

TestGuiHost::TestGuiHost()
{
    m_window.setObjectName(QStringLiteral("MainWindow"));
    m_window.setFixedSize(ApplicationOptions::resolutionOr(QSize(800, 480)));
    GlobalImpl* registry = GlobalImpl::getInstance();
    m_desktop = new DesktopImpl(&m_window);
    registry->setDesktop(m_desktop.data());
    registry->systemModule()->setSystemScreen(QStringLiteral("MainWindow"), &m_window);
    m_desktopManager = std::make_unique<DesktopManagerImpl>();
    registry->setDesktopManager(m_desktopManager.get());

    addContainer(QStringLiteral("Scope"));
    addContainer(QStringLiteral("Meter"));
    addContainer(QStringLiteral("Спектр"));
    auto* notes = new QFrame(m_desktop);
    notes->setObjectName(QStringLiteral("Notes"));
    notes->setGeometry(10, 300, 120, 80);
    registry->addScreen(QStringLiteral("Notes"), notes);

    auto* dcs = new QFrame(m_desktop);
    dcs->setObjectName(QStringLiteral("DCS"));
    dcs->hide();
    registry->systemModule()->setSystemScreen(QStringLiteral("DCS"), dcs);
    registry->systemModule()->setModule(QStringLiteral("ScreenStateManager"), new ScreenStateManager(this));

    m_menuBar = new MenuBar(m_desktop, Qt::AlignTop);
    registry->setTopNavMenu(m_menuBar.data());
    m_menuBar->show();

    m_window.show();
    m_server = GUIManagerReceiver::serve(m_desktop);
}

ContainerImpl* TestGuiHost::addContainer(const QString& name)
{
    auto* container = new ContainerImpl(m_desktop);
    container->setObjectName(name);
    container->setWindowTitle(name, 0);
    auto* form = new QFrame;
    form->setObjectName(QStringLiteral("ContainerFrame"));
    form->setMinimumSize(220, 130);
    auto* layout = new QVBoxLayout;
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(form);
    container->setLayout(layout);
    container->init();
    GlobalImpl::getInstance()->addScreen(name, container);
    m_desktopManager->registerModule(container);
    container->show();
    return container;
}

ContainerDialog* TestGuiHost::newestDialog() const
{
    auto* receiver = m_server ? qobject_cast<GUIManagerReceiver*>(m_server->responseSource()) : nullptr;
    const QList<ContainerDialog*> dialogs = receiver ? receiver->dialogs() : QList<ContainerDialog*>();
    return dialogs.isEmpty() ? nullptr : dialogs.last();
}

void TestGuiHost::printScreen(const QString& name) const
{
    GlobalImpl* registry = GlobalImpl::existingInstance();
    QWidget* screen = registry ? registry->findScreen(name) : nullptr;
    if (!screen && registry)
        screen = registry->systemModule()->getSystemScreen(name);
    if (!screen) {
        printLine(QStringLiteral("SCREEN %1 missing").arg(name));
        return;
    }
    const auto* container = qobject_cast<ContainerImpl*>(screen);
    const int z = screen->parentWidget() ? screen->parentWidget()->children().indexOf(screen) : -1;
    printLine(QStringLiteral("SCREEN %1 visible=%2 x=%3 y=%4 state=%5 z=%6")
                  .arg(name)
                  .arg(screen->isVisible() ? 1 : 0)
                  .arg(screen->x())
                  .arg(screen->y())
                  .arg(container ? container->state() : QStringLiteral("-"))
                  .arg(z));
}

void TestGuiHost::command(const QString& line)
{
    const QString verb = line.section(QLatin1Char(' '), 0, 0);
    const QString argument = line.section(QLatin1Char(' '), 1);
    ContainerDialog* dialog = newestDialog();
    if (verb == QLatin1String("press")) {
        QPushButton* target = nullptr;
        for (auto* button : dialog ? dialog->findChildren<Lumaro::gui::PushButtonImpl*>() : QList<Lumaro::gui::PushButtonImpl*>()) {
            if (button->button()->objectName() == argument)
                target = button->button();
        }
        if (target)
            QTest::mouseClick(target, Qt::LeftButton);
        printLine(QStringLiteral("PRESS %1 %2").arg(argument, target ? QStringLiteral("done") : QStringLiteral("missing")));
    } else if (verb == QLatin1String("type")) {
        QLineEdit* entry = dialog ? dialog->findChild<QLineEdit*>(QStringLiteral("lineEdit")) : nullptr;
        if (entry)
            entry->setText(argument);
        printLine(QStringLiteral("TYPE %1").arg(entry ? QStringLiteral("done") : QStringLiteral("missing")));
    } else if (verb == QLatin1String("choose")) {
        QListWidget* files = dialog ? dialog->findChild<QListWidget*>(QStringLiteral("fileList")) : nullptr;
        const QList<QListWidgetItem*> found = files ? files->findItems(argument, Qt::MatchExactly) : QList<QListWidgetItem*>();
        if (!found.isEmpty())
            files->setCurrentItem(found.first());
        printLine(QStringLiteral("CHOOSE %1").arg(found.isEmpty() ? QStringLiteral("missing") : QStringLiteral("done")));
    } else if (verb == QLatin1String("screen")) {
        printScreen(argument);
    } else if (verb == QLatin1String("menubar")) {
        printLine(QStringLiteral("MENUBAR open=%1").arg(m_menuBar && m_menuBar->isOpen ? 1 : 0));
    } else if (verb == QLatin1String("quit")) {
        m_window.close();
        if (m_desktop)
            m_desktop->close();
        QCoreApplication::quit();
    } else {
        printLine(QStringLiteral("UNKNOWN %1").arg(line));
    }
}

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    ApplicationOptions::apply(ApplicationOptions::parse(app.arguments()), &app);
    GlobalImpl::getInstance();
    QTZMessageOutputControl::m_output = true;
    qInstallMessageHandler(&logToStandardOutput);

    TestGuiHost host;
    // Standard input is read on a thread of its own; each line is handled in the GUI thread.
    // Its end (the test is gone) closes the desktop.
    std::thread([&host] {
        std::string line;
        while (std::getline(std::cin, line)) {
            const QString text = QString::fromStdString(line);
            QMetaObject::invokeMethod(&host, [&host, text] { host.command(text); }, Qt::QueuedConnection);
        }
        QMetaObject::invokeMethod(&host, [&host] { host.command(QStringLiteral("quit")); }, Qt::QueuedConnection);
    }).detach();

    const int code = app.exec();
    printLine(QStringLiteral("EXIT %1").arg(code));
    return code;
}

#include "TestGuiHost.moc"
