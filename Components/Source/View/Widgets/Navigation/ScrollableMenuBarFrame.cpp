#include "ScrollableMenuBarFrame.h"

#include <QMouseEvent>

#include <algorithm>

ScrollableMenuBarFrame::ScrollableMenuBarFrame(QWidget* parent, Qt::AlignmentFlag alignment)
    : QFrame(parent)
    , alignment(alignment)
{
    setObjectName(QStringLiteral("innerBar"));
}

void ScrollableMenuBarFrame::move(int x, int y)
{
    const QWidget* viewport = parentWidget();
    QPoint target(0, 0);
    if (viewport && alignment == Qt::AlignTop && width() > viewport->width())
        target.setX(std::clamp(x, viewport->width() - width(), 0));
    else if (viewport && alignment == Qt::AlignLeft && height() > viewport->height())
        target.setY(std::clamp(y, viewport->height() - height(), 0));
    QFrame::move(target);
    emit moving();
}

void ScrollableMenuBarFrame::mousePressEvent(QMouseEvent* event)
{
    dragOffset = event->globalPos() - pos();
}

void ScrollableMenuBarFrame::mouseMoveEvent(QMouseEvent* event)
{
    move(event->globalPos() - dragOffset);
}
