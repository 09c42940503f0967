#ifndef LONGPRESSWATCH_H
#define LONGPRESSWATCH_H

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QTimer>

class QWidget;

/**
 * Tells a long press on a widget or anything inside it: a right click, or a press (a
 * touch reaches widgets as one) held for HoldMs without moving. The press and release
 * of a long press reach nothing else; a press held that long is given up outside the
 * widget that took it, so a button under the finger is not clicked.
 *
 * Watches the widgets inside through event filters, also those added later.
 */
class LongPressWatch : public QObject
{
    Q_OBJECT

public:
    static constexpr int HoldMs = 700;

    /// Watches \a widget, which owns the watch, and every widget it holds now or later.
    explicit LongPressWatch(QWidget* widget);

signals:
    /// A long press at \a globalPos.
    void longPressed(const QPoint& globalPos);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void watch(QWidget* widget);
    void held();

    QTimer m_hold;
    QPointer<QWidget> m_pressed;
    QPoint m_pressPosition;
    bool m_swallowRelease = false;
    bool m_givingUp = false;
};

#endif
