#include "SubSubMenuItem.h"

#include "MenuEntryWiring.h"
#include "SubMenu.h"
#include "SubSubMenu.h"

#include <QEvent>
#include <QFrame>

SubSubMenuItem::SubSubMenuItem(SubSubMenu* menu, SubMenu* subMenu, const QString& label, QFrame* screen,
                               int position, QObject* receiver, const QString& slot, int instNum)
    : QPushButton(tr(label.toUtf8().constData()))
    , label(label)
    , position(position)
    , receiver(receiver)
    , slot(slot)
    , instNum(instNum)
    , screen(screen)
{
    setObjectName(QStringLiteral("SubSubMenuItem"));
    setFocusPolicy(Qt::NoFocus);
    // Made without a parent, so that the pop-up's sheet styles the entry when it shows.
    if (menu)
        setParent(menu);
    // A screen opened from the second level leaves the pop-ups open.
    MenuEntryWiring::wirePopUpEntry(this, screen, subMenu, false);
}

void SubSubMenuItem::setText(const QString& text)
{
    label = text;
    retranslate();
}

void SubSubMenuItem::retranslate()
{
    QPushButton::setText(MenuEntryWiring::entryText(staticMetaObject.className(), label, instNum));
}

bool SubSubMenuItem::event(QEvent* event)
{
    return MenuEntryWiring::deliverEntryEvent(this, event, styleChangeOwed,
                                              [this](QEvent* delivered) { return QPushButton::event(delivered); });
}

void SubSubMenuItem::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QPushButton::changeEvent(event);
}
