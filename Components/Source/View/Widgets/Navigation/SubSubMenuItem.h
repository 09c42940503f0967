#ifndef SUBSUBMENUITEM_H
#define SUBSUBMENUITEM_H

#include "tzuicomponents_export.h"

#include <QFrame>
#include <QPointer>
#include <QPushButton>
#include <QString>

class QEvent;
class SubMenu;
class SubSubMenu;

/**
 * An entry of a second-level pop-up of the navigation bar; a tap opens its screen.
 */
class TZUICOMPONENTS_EXPORT SubSubMenuItem : public QPushButton
{
    Q_OBJECT

public:
    /// \a subMenu is the sub-menu that holds \a menu's holder entry; \a receiver and
    /// \a slot are kept for the bar, not connected.
    SubSubMenuItem(SubSubMenu* menu, SubMenu* subMenu, const QString& label, QFrame* screen, int position,
                   QObject* receiver, const QString& slot, int instNum);

    QString getLabel() const { return label; }
    int getPosition() const { return position; }
    QObject* getReceiver() const { return receiver; }
    QString getSlot() const { return slot; }
    /// Null once the screen is gone.
    QFrame* getScreen() const { return screen; }
    int getInstNum() const { return instNum; }

    void retranslate();

public slots:
    /// Shows \a text (translated, with the instance number) from now on.
    virtual void setText(const QString& text);

protected:
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    QString label;
    int position;
    QPointer<QObject> receiver;
    QString slot;
    int instNum;
    QPointer<QFrame> screen;
    bool styleChangeOwed = false;
};

#endif
