#ifndef SCREENKEY_H
#define SCREENKEY_H

#include "tzuicomponents_export.h"

#include <QHashFunctions>
#include <QString>

/**
 * Names one entry of the navigation bar: its menu, its sub-menu, the label it shows and a
 * number. The host hides and shows single entries by these keys.
 */
class TZUICOMPONENTS_EXPORT ScreenKey
{
public:
    /// Three empty (not null) names and the number 0.
    ScreenKey();
    ScreenKey(const QString& menu, const QString& subMenu, const QString& label, int number);

    bool operator==(const ScreenKey& other) const;
    bool operator!=(const ScreenKey& other) const { return !(*this == other); }

    QString menu;
    QString subMenu;
    QString label;
    int number;
};

TZUICOMPONENTS_EXPORT uint qHash(const ScreenKey& key, uint seed = 0);

#endif
