#ifndef CONTAINERHANDLEIMPL_H
#define CONTAINERHANDLEIMPL_H

#include "tzuicomponents_export.h"

#include <QElapsedTimer>
#include <QPoint>
#include <QPushButton>

class QMouseEvent;

/**
 * A grip by which the user drags the container it belongs to (its parent) across the
 * desktop, for containers whose contents take the presses a drag would start with.
 */
class TZUICOMPONENTS_EXPORT ContainerHandleImpl : public QPushButton
{
    Q_OBJECT

public:
    explicit ContainerHandleImpl(QWidget* parent);

signals:
    /// The drag that began with the container at \a StartPoint has ended.
    void updatePosition(QWidget* container, QPoint StartPoint);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    // Where the container goes for the pointer at \a globalPos, never left of or above
    // its parent's origin.
    QPoint followingPosition(const QPoint& globalPos) const;
    void moveContainer(const QPoint& position);

    QPoint startPosition;
    int dragOffsetX = 0;
    int dragOffsetY = 0;
    QElapsedTimer moveTimer;
    bool dragging = false;
};

#endif
