#ifndef MENUITEM_H
#define MENUITEM_H

#include "tzuicomponents_export.h"

#include <QFrame>
#include <QPoint>
#include <QPointer>
#include <QPushButton>
#include <QString>

class MenuWidgetImpl;
class QMouseEvent;
class ScrollableMenuBarFrame;

/**
 * One button of the navigation bar. With a screen it opens that screen on a tap; without
 * one it is a group button, checkable, that opens the sub-menu the bar attaches to it.
 * A finger on any button drags the whole row. Only the bar creates them.
 */
class TZUICOMPONENTS_EXPORT MenuItem : public QPushButton
{
    Q_OBJECT
    Q_PROPERTY(QString Slot READ getSlot WRITE setSlot)

public:
    /// \a bar is the bar's row, which the button drags; \a name the menu name that picks
    /// the tile's icon; \a receiver and \a slot are kept for the bar, not connected.
    MenuItem(ScrollableMenuBarFrame* bar, const QString& name, const QString& label, QFrame* screen, int position,
             int priority, QObject* receiver, const QString& slot);

    /// Hands this button's registrations in the registry's screen table to \a other
    /// (to nobody when \a other is not a widget), announcing it first.
    void swap(QObject* other);

    QString getName() const { return name; }
    QString getLabel() const { return label; }
    /// Null for a group button, and once the screen is gone.
    QFrame* getScreen() const { return screen; }
    int getPosition() const { return position; }
    int getPriority() const { return priority; }
    QObject* getReceiver() const { return receiver; }
    QString getSlot() const { return slot; }
    void setSlot(const QString& slotSignature) { slot = slotSignature; }
    MenuWidgetImpl* tile() const { return menuWidget; }

public slots:
    void setClosed();

signals:
    void movement(QPoint point);
    /// The bar's row moved: pop-ups attached to this button follow.
    void moving();
    void swappingMenuItem(QObject* other);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private slots:
    void closeTopNav();

private:
    QPoint pressPoint;
    QPoint dragOffset;
    QPointer<ScrollableMenuBarFrame> bar;
    QString name;
    QString label;
    QPointer<QFrame> screen;
    int position;
    int priority;
    QPointer<QObject> receiver;
    QString slot;
    MenuWidgetImpl* menuWidget = nullptr;
};

#endif
