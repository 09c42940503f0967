#include "SubSubMenuItem.h"

#include "ApplicationOptions.h"
#include "MenuEntryWiring.h"
#include "SubMenu.h"
#include "SubSubMenu.h"

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
    if (screen) {
        const bool fullScreen = MenuEntryWiring::opensFullScreen(screen);
        MenuEntryWiring::showOnClick(this, screen, !fullScreen);
        if (fullScreen)
            connect(this, &QPushButton::clicked, this, [] { MenuEntryWiring::closeNavigationBar(); });
        MenuEntryWiring::followScreenSize(this, screen);
        connect(screen, &QObject::destroyed, this, &QObject::deleteLater);
    } else if (ApplicationOptions::isHandheld()) {
        connect(this, &QPushButton::clicked, this, [] { MenuEntryWiring::closeNavigationBar(); });
    } else if (subMenu) {
        connect(this, &QPushButton::clicked, subMenu, &SubMenuBase::setClosed);
    }
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
