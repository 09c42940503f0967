#include "ContainerHandleImpl.h"

#include "ContainerImpl.h"

#include <QMouseEvent>

#include <algorithm>

namespace {

// Drag steps closer together than this are dropped: moving a whole container with its
// contents costs more than the pointer's event rate allows.
constexpr qint64 minimumStepMs = 56;

} // namespace

ContainerHandleImpl::ContainerHandleImpl(QWidget* parent)
    : QPushButton(parent)
{
    setObjectName(QStringLiteral("ContainerHandle"));
    setFlat(true);
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Minimum);
}

void ContainerHandleImpl::mousePressEvent(QMouseEvent* event)
{
    QPushButton::mousePressEvent(event);
    QWidget* container = parentWidget();
    // Other buttons are not taken by the button, so their moves and release go elsewhere.
    if (!container || event->button() != Qt::LeftButton)
        return;
    auto* standard = qobject_cast<ContainerImpl*>(container);
    if (standard && standard->dragLocked())
        return;

    dragOffsetX = event->globalPos().x() - container->x();
    dragOffsetY = event->globalPos().y() - container->y();
    if (auto* base = qobject_cast<ContainerBase*>(container))
        base->raise();
    else
        container->raise();
    startPosition = container->pos();
    moveTimer.start();
    dragging = true;
}

void ContainerHandleImpl::mouseMoveEvent(QMouseEvent* event)
{
    if (!dragging || moveTimer.elapsed() < minimumStepMs)
        return;
    moveContainer(followingPosition(event->globalPos()));
    moveTimer.restart();
}

void ContainerHandleImpl::mouseReleaseEvent(QMouseEvent* event)
{
    QPushButton::mouseReleaseEvent(event);
    if (!dragging)
        return;
    dragging = false;
    QWidget* container = parentWidget();
    if (!container)
        return;

    QPoint position = followingPosition(event->globalPos());
    // While dragging the container may hang over the right and bottom edges; where it is
    // let go it must lie on the desktop, on a grid point if it snaps to them.
    if (auto* standard = qobject_cast<ContainerImpl*>(container))
        position = standard->dropPosition(position);
    moveContainer(position);
    emit updatePosition(container, startPosition);
}

QPoint ContainerHandleImpl::followingPosition(const QPoint& globalPos) const
{
    return QPoint(std::max(globalPos.x() - dragOffsetX, 0), std::max(globalPos.y() - dragOffsetY, 0));
}

void ContainerHandleImpl::moveContainer(const QPoint& position)
{
    QWidget* container = parentWidget();
    if (auto* standard = qobject_cast<ContainerImpl*>(container))
        standard->move(position.x(), position.y());
    else if (container)
        container->move(position);
}
