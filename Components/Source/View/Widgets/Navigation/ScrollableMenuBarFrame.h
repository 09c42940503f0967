#ifndef SCROLLABLEMENUBARFRAME_H
#define SCROLLABLEMENUBARFRAME_H

#include "tzuicomponents_export.h"

#include <QFrame>
#include <QPoint>

class QMouseEvent;

/**
 * The row of menu buttons inside a scroll area's viewport. A finger drags it along the
 * row's axis, never past either end; it sits still at the origin while the row fits.
 */
class TZUICOMPONENTS_EXPORT ScrollableMenuBarFrame : public QFrame
{
    Q_OBJECT

public:
    /// \a alignment says along which axis the frame scrolls: Qt::AlignTop for a
    /// horizontal row, Qt::AlignLeft for a vertical one; with any other it stays put.
    ScrollableMenuBarFrame(QWidget* parent, Qt::AlignmentFlag alignment);

    Qt::AlignmentFlag getAlignment() const { return alignment; }
    void setAlignment(Qt::AlignmentFlag flag) { alignment = flag; }

public slots:
    // These hide QWidget::move on purpose: whoever drags the row goes through the
    // clamping, while the "pos" property (the page animation) moves it freely.
    virtual void move(int x, int y);
    virtual void move(const QPoint& position) { move(position.x(), position.y()); }

signals:
    /// After every move(), clamped or not.
    void moving();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    Qt::AlignmentFlag alignment;
    QPoint dragOffset;
};

#endif
