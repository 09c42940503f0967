#ifndef SCROLLBUTTON_H
#define SCROLLBUTTON_H

#include "tzuicomponents_export.h"

#include <QWidget>

class QMouseEvent;
class QPaintEvent;

/**
 * A round arrow button that pages the navigation bar's row of buttons. It reports a
 * press and a release inside it, and draws itself in the palette's gradient.
 */
class TZUICOMPONENTS_EXPORT ScrollButton : public QWidget
{
    Q_OBJECT

public:
    /// A square button sized from \a parent: 0.18 of its width for up and down
    /// arrows, 0.22 of its height for left and right ones.
    ScrollButton(Qt::ArrowType direction, QWidget* parent);

    Qt::ArrowType getDirection() const { return direction; }
    void setDirection(Qt::ArrowType arrow) { direction = arrow; }

signals:
    void mouseDown();
    /// A release inside the button.
    void mouseUp();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    // Swallowed, so that sliding a finger over an arrow does not drag what lies below.
    void mouseMoveEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool pressed = false;
    Qt::ArrowType direction;
};

#endif
