#include "SubSubMenuItem.h"

#include "MenuEntryWiring.h"
#include "SubMenu.h"
#include "SubSubMenu.h"

#include <QEvent>
#include <QFrame>

SubSubMenuItem::SubSubMenuItem(SubSubMenu* menu, SubMenu* subMenu, const QString& label, QFrame* screen,
                               int position, QObject* receiver, const QString& slot, int instNum)
    : QPushButton(tr(label.toUtf8().constData()), menu)
    , label(label)
    , position(position)
    , receiver(receiver)
    , slot(slot)
    , instNum(instNum)
    , screen(screen)
{
    setObjectName(QStringLiteral("SubSubMenuItem"));
    setFocusPolicy(Qt::NoFocus);
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

void SubSubMenuItem::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QPushButton::changeEvent(event);
}
