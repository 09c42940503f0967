#include "ScreenKey.h"

ScreenKey::ScreenKey()
    : menu(QLatin1String(""))
    , subMenu(QLatin1String(""))
    , label(QLatin1String(""))
    , number(0)
{
}

ScreenKey::ScreenKey(const QString& menu, const QString& subMenu, const QString& label, int number)
    : menu(menu)
    , subMenu(subMenu)
    , label(label)
    , number(number)
{
}

bool ScreenKey::operator==(const ScreenKey& other) const
{
    return number == other.number && label == other.label && subMenu == other.subMenu && menu == other.menu;
}

uint qHash(const ScreenKey& key, uint seed)
{
    QtPrivate::QHashCombine combine;
    seed = combine(seed, key.menu);
    seed = combine(seed, key.subMenu);
    seed = combine(seed, key.label);
    return combine(seed, key.number);
}
