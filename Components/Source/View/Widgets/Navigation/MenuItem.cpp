#include "MenuItem.h"

#include "ApplicationOptions.h"
#include "ContainerBase.h"
#include "GlobalImpl.h"
#include "MenuEntryWiring.h"
#include "MenuWidgetImpl.h"
#include "ScrollableMenuBarFrame.h"

#include <QFrame>
#include <QMouseEvent>
#include <QVBoxLayout>

MenuItem::MenuItem(ScrollableMenuBarFrame* bar, const QString& name, const QString& label, QFrame* screen,
                   int position, int priority, QObject* receiver, const QString& slot)
    : QPushButton(label, bar)
    , bar(bar)
    , name(name)
    , label(label)
    , screen(screen)
    , position(position)
    , priority(priority)
    , receiver(receiver)
    , slot(slot)
{
    // Made in the bar's row, where its layout puts it: adopted there afterwards, the
    // button, its tile and their sheets would all be styled a second time.
    setObjectName(QStringLiteral("MenuItem"));
    setFocusPolicy(Qt::NoFocus);
    if (ApplicationOptions::isHandheld())
        setStyleSheet(QStringLiteral("QPushButton#MenuItem {    background-color: #000;    border: none;}"
                                     "QPushButton#MenuItem::pressed {    background-color: #444;    color: #444;    "
                                     "border: none;}"));
    else
        setStyleSheet(QStringLiteral("QPushButton#MenuItem {    background-color: transparent;    border: none;}"));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    menuWidget = new MenuWidgetImpl(name, QStringLiteral("Loaded"), false, this);
    menuWidget->setText(label);
    layout->addWidget(menuWidget);

    if (!screen) {
        setCheckable(true);
        menuWidget->setSubmenu(true);
    } else {
        if (MenuEntryWiring::opensFullScreen(screen)) {
            MenuEntryWiring::showOnClick(this, screen, false);
            connect(this, &QPushButton::clicked, this, &MenuItem::closeTopNav);
        } else {
            MenuEntryWiring::showOnClick(this, screen, true);
            if (auto* container = qobject_cast<ContainerBase*>(screen))
                connect(container, &ContainerBase::contentsActive, menuWidget, &MenuWidgetImpl::active);
        }
        if (auto* container = qobject_cast<ContainerBase*>(screen))
            connect(container, &ContainerBase::WindowClosed, this, &MenuItem::setClosed);
        MenuEntryWiring::followScreenSize(this, screen);
        // A button never outlives its screen.
        connect(screen, &QObject::destroyed, this, &QObject::deleteLater);
    }
    if (bar)
        connect(bar, &ScrollableMenuBarFrame::moving, this, &MenuItem::moving);
}

void MenuItem::swap(QObject* other)
{
    emit swappingMenuItem(other);
    if (GlobalImpl* registry = GlobalImpl::existingInstance())
        registry->swapMenuItems(this, qobject_cast<QWidget*>(other));
}

void MenuItem::setClosed()
{
    setChecked(false);
}

void MenuItem::closeTopNav()
{
    MenuEntryWiring::closeNavigationBar();
}

void MenuItem::mousePressEvent(QMouseEvent* event)
{
    QPushButton::mousePressEvent(event);
    pressPoint = event->globalPos();
    if (bar)
        dragOffset = event->globalPos() - bar->pos();
}

void MenuItem::mouseMoveEvent(QMouseEvent* event)
{
    if (bar)
        bar->move(event->globalPos() - dragOffset);
}

void MenuItem::mouseReleaseEvent(QMouseEvent* event)
{
    if ((pressPoint - event->globalPos()).manhattanLength() <= 100) {
        QPushButton::mouseReleaseEvent(event);
        return;
    }
    // A drag is no tap: the release must neither click nor turn a group button.
    const bool wasChecked = isChecked();
    const QSignalBlocker blocker(this);
    QPushButton::mouseReleaseEvent(event);
    setChecked(wasChecked);
}
