#ifndef FSCONTAINER_H
#define FSCONTAINER_H

#include "ContainerBase.h"

/**
 * A container that always covers the whole screen area: a black frame with the module's
 * contents, a title and a close button, without size states or dragging. It announces
 * itself as maximized whenever it is shown.
 */
class TZUICOMPONENTS_EXPORT FSContainer : public ContainerBase
{
    Q_OBJECT

public:
    explicit FSContainer(QWidget* parent = nullptr);

    /// Covers the screen given by "-res" from (0, 0) and makes that the saved location.
    void setContainerSize();

public slots:
    /// Raises the container and emits changeSize("Max") before it becomes visible.
    virtual void show();
};

#endif
