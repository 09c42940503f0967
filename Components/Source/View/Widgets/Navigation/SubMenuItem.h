#ifndef SUBMENUITEM_H
#define SUBMENUITEM_H

#include "tzuicomponents_export.h"

#include <QFrame>
#include <QPoint>
#include <QPointer>
#include <QPushButton>
#include <QString>

class QEvent;
class QMouseEvent;
class QPaintEvent;
class QScrollArea;
class ScrollableMenuBarFrame;
class SubMenu;

/**
 * An entry of a sub-menu. With a screen it opens the screen; a holder entry (checkable,
 * without a screen) opens the second-level pop-up of its sub-menu name. A finger that
 * travels more than 40 pixels scrolls the list instead of tapping the entry.
 */
class TZUICOMPONENTS_EXPORT SubMenuItem : public QPushButton
{
    Q_OBJECT
    Q_PROPERTY(QString Slot READ getSlot WRITE setSlot)

public:
    /// \a receiver and \a slot are kept for the bar, not connected; \a instNum above 1
    /// is shown after the label.
    SubMenuItem(SubMenu* menu, const QString& label, QFrame* screen, int position, QObject* receiver,
                const QString& slot, int instNum);

    /// Hands this entry's registrations in the registry's screen table to \a other
    /// (to nobody when \a other is not a widget), announcing it first.
    void swap(QObject* other);

    QString getLabel() const { return label; }
    int getPosition() const { return position; }
    QObject* getReceiver() const { return receiver; }
    QString getSlot() const { return slot; }
    void setSlot(const QString& slotSignature) { slot = slotSignature; }
    /// Null for a holder entry, and once the screen is gone.
    QFrame* getScreen() const { return screen; }
    int getInstNum() const { return instNum; }

    virtual void retranslate();

public slots:
    void setClosed();
    /// Shows \a text (translated, with the instance number) from now on.
    virtual void setText(const QString& text);

signals:
    void swappingMenuItem(QObject* other);
    void movement(QPoint point);
    void moving();
    /// A holder was checked and scrolled into view.
    void opened();
    /// The list scrolled to bring this holder into view.
    void reposition();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private slots:
    void toggledOn(bool on);
    void closeTopNav();

private:
    QString label;
    int position;
    bool dragged = false;
    QPointer<QObject> receiver;
    QString slot;
    QPointer<QFrame> screen;
    QPointer<ScrollableMenuBarFrame> contentFrame;
    QPointer<QScrollArea> scrollArea;
    QPoint pressPoint;
    QPoint dragOffset;
    int instNum;
    bool styleChangeOwed = false;
};

#endif
