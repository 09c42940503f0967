#ifndef CONTAINERCONTROLIMPL_H
#define CONTAINERCONTROLIMPL_H

#include "tzuicomponents_export.h"

#include <QFrame>
#include <QString>

class ContainerImpl;
class QHBoxLayout;
class QPushButton;

/**
 * The title-bar buttons of a standard container. Grow and shrink drive the container's
 * size states (the container listens to them itself); close hides the container; the
 * halt, send-to-back and maximize/restore buttons stay hidden until a module shows them.
 */
class TZUICOMPONENTS_EXPORT ContainerControlImpl : public QFrame
{
    Q_OBJECT

public:
    /// Acts on \a container; \a parent is the widget that holds the title row. Made
    /// under it, the cluster's sheet is not read again by a move into the row.
    explicit ContainerControlImpl(QWidget* container, QWidget* parent = nullptr);

public slots:
    /// Maximizes the container (closing an open navigation bar) or restores it.
    void toggleMaxRestore(bool isMax);
    /// Unchecks maximize/restore, which restores the container if it was maximized.
    void resetMaxRestore();
    /// Follows the container's size state; the buttons need nothing from it.
    void windowState(QString state);

private:
    QPushButton* closeButton;
    QPushButton* toBackButton;
    QPushButton* haltButton;
    QPushButton* maxRestoreButton;
    QPushButton* growButton;
    QPushButton* shrinkButton;
    QHBoxLayout* buttonRow;
    ContainerImpl* container;
};

#endif
