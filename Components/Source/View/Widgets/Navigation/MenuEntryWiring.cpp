#include "MenuEntryWiring.h"

#include "ApplicationOptions.h"
#include "ContainerBase.h"
#include "GlobalImpl.h"
#include "MenuBar.h"
#include "SubMenuBase.h"

#include <QCoreApplication>
#include <QDebug>
#include <QPointer>
#include <QPushButton>

namespace MenuEntryWiring {

bool opensFullScreen(const QObject* screen)
{
    if (ApplicationOptions::isHandheld())
        return true;
    return screen && screen->inherits("FSContainer") && ApplicationOptions::isPortraitResolution();
}

namespace {

// Called by name on purpose: containers redeclare show() and raise() as slots of their
// own (a full-screen container announces its size before it shows), which only the
// meta-object call reaches through a plain widget pointer. Looked up when tapped, not
// when wired: a menu of thousands wires thousands of entries.
void openScreen(QWidget* screen, bool raise)
{
    QMetaObject::invokeMethod(screen, "show");
    if (raise)
        QMetaObject::invokeMethod(screen, "raise");
}

} // namespace

void showOnClick(QPushButton* entry, QWidget* screen, bool raise)
{
    if (!entry || !screen)
        return;
    QObject::connect(entry, &QPushButton::clicked, screen, [screen, raise] { openScreen(screen, raise); });
}

void followScreenSize(QPushButton* entry, QWidget* screen)
{
    auto* container = qobject_cast<ContainerBase*>(screen);
    if (!entry || !container)
        return;
    QObject::connect(container, &ContainerBase::changeSize, entry,
                     [entry](const QString& size) { entry->setProperty("screenSize", size); });
}

void wirePopUpEntry(QPushButton* entry, QWidget* screen, SubMenuBase* subMenu, bool screenClosesSubMenu)
{
    if (!entry)
        return;
    if (!screen) {
        if (ApplicationOptions::isHandheld())
            QObject::connect(entry, &QPushButton::clicked, entry, [] { closeNavigationBar(); });
        else if (subMenu)
            QObject::connect(entry, &QPushButton::clicked, subMenu, &SubMenuBase::setClosed);
        return;
    }
    // One connection, whose slot asks how the screen opens when the entry is tapped: a
    // menu of thousands wires thousands of entries, and each would look the options up.
    QObject::connect(entry, &QPushButton::clicked, screen,
                     [screen, subMenu = QPointer<SubMenuBase>(subMenu), screenClosesSubMenu] {
                         const bool fullScreen = opensFullScreen(screen);
                         openScreen(screen, !fullScreen);
                         if (fullScreen)
                             closeNavigationBar();
                         else if (screenClosesSubMenu && subMenu)
                             subMenu->setClosed();
                     });
    followScreenSize(entry, screen);
    QObject::connect(screen, &QObject::destroyed, entry, &QObject::deleteLater);
}

void connectReceiver(QPushButton* entry, QObject* receiver, const QString& slot)
{
    if (!entry || !receiver || slot.isEmpty())
        return;
    const QByteArray method = slot.toLatin1();
    if (!QObject::connect(entry, SIGNAL(clicked()), receiver, method.constData()))
        qDebug() << "UserInterface - Menu entry slot not connected:" << entry->text() << slot;
}

void closeNavigationBar()
{
    GlobalImpl* registry = GlobalImpl::existingInstance();
    MenuBar* menuBar = registry ? registry->topNavMenu() : nullptr;
    if (menuBar && menuBar->isOpen)
        menuBar->toggle();
}

QString entryText(const char* context, const QString& label, int instNum)
{
    const bool latin1 = QString::fromLatin1(label.toLatin1()) == label;
    QString text = latin1 ? QCoreApplication::translate(context, label.toUtf8().constData()) : label;
    if (instNum > 1)
        text += QLatin1Char(' ') + QString::number(instNum);
    return text;
}

} // namespace MenuEntryWiring
