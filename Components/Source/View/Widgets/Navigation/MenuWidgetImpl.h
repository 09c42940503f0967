#ifndef MENUWIDGETIMPL_H
#define MENUWIDGETIMPL_H

#include "tzuicomponents_export.h"

#include <QLabel>
#include <QPixmap>
#include <QString>

class QEvent;
class QPaintEvent;
class QResizeEvent;

/**
 * The tile inside every button of the navigation bar: the entry's text fitted to the
 * tile, the icon of the entry's category, a frame that lights up while the entry's
 * screen is active, and a corner arrow on buttons that open a sub-menu.
 */
class TZUICOMPONENTS_EXPORT MenuWidgetImpl : public QLabel
{
    Q_OBJECT

public:
    /// \a system is the menu name, which picks the icon; \a state one of "Unloaded",
    /// "Loaded" and "Active".
    MenuWidgetImpl(QString system, QString state, bool submenu, QWidget* parent);

    /// "Unloaded", "Loaded", "Active", or "Error" for a state out of range.
    QString getState() const;
    /// Accepts "Unloaded", "Loaded" and "Active"; ignores anything else.
    void setState(const QString& name);
    bool getSubmenu() const { return submenu; }
    void setSubmenu(bool opensSubmenu);
    QString getIconPath() const { return iconPath; }
    /// The text as given to setText(), before it was fitted.
    QString getText() const { return text; }

    /// Shows \a system as the text and picks its icon.
    void setSystem(const QString& system);
    /// Shows \a label, at the largest font size that fits the tile.
    void setText(const QString& label);
    void renderIcon();
    void retranslate();

public slots:
    /// Connected to the entry screen's contentsActive(bool).
    void active(bool contentsActive);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString iconPath;
    QString activeStyle;
    QString normalStyle;
    int state = 0;
    bool submenu = false;
    QString shownText;
    QString text;
    QPixmap icon;
    // Set by a resize: the icon is drawn again at the next paint, so that tiles sized
    // while the bar is closed (all of them, as a host starts) draw no SVG until shown.
    bool iconStale = false;
    int margin = 4;
    // The look in force (normalStyle or activeStyle), before the font-size rule.
    QString appliedStyle;
};

#endif
