#ifndef DESKTOPMANAGERIMPL_H
#define DESKTOPMANAGERIMPL_H

#include "tzuicomponents_export.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPair>
#include <QPoint>
#include <QRect>
#include <QVector>

class ContainerBase;
class QWidget;

/**
 * Puts each registered container on the desktop when it is first shown, beside rather
 * than on top of those already open, and follows it as it is hidden, dragged and
 * destroyed. A coarse map of 10-pixel cells records which open containers cover which
 * part of the desktop.
 */
class TZUICOMPONENTS_EXPORT DesktopManagerImpl : public QObject
{
    Q_OBJECT

public:
    /// Sizes the map to the desktop registered in GlobalImpl, which must exist already.
    DesktopManagerImpl();

    /// Where \a container goes: the first free candidate from (x, y) rightwards, row by
    /// row, or the centre of the desktop when there is none. \a nextRowY is the top of
    /// the next row when known, otherwise negative.
    QPoint findSpotForContainer(int x, int y, int nextRowY, ContainerBase* container);
    /// Whether \a container at its current size fits at \a pos; if not, who is in the way
    /// (the container itself when the desktop's edge is).
    QPair<bool, ContainerBase*> containerWillFit(QPoint pos, ContainerBase* container);
    void updateMap();

    /// The containers covering the cell (\a column, \a row), earliest first; empty
    /// outside the map.
    QList<ContainerBase*> containersAt(int column, int row) const;
    /// The cells \a container covers now, in cell units (x = column, y = row); empty
    /// when it covers none.
    QRect reservedCells(const ContainerBase* container) const;

public slots:
    /// A null \a container means the sender.
    void allocate(ContainerBase* container);
    void allocate();
    /// A null \a container means the sender; (-1, -1) means its current position.
    void deallocate(ContainerBase* container, QPoint pos);
    void deallocate(ContainerBase* container);
    void deallocate();
    /// Lets \a tile's own signals drive its placement; registering again adds nothing.
    void registerModule(ContainerBase* tile);
    /// \a container was dragged from \a pos to where it stands now.
    void updatePosition(QWidget* container, QPoint pos);

private slots:
    void forgetContainer(QObject* object);

private:
    // What is known of one container. Keyed by QObject so that a container can still be
    // found from QObject::destroyed, when it is no longer a ContainerBase.
    struct Tracked
    {
        ContainerBase* container = nullptr;
        bool open = false;
        QRect cells;
    };

    Tracked& track(ContainerBase* container);
    ContainerBase* containerOrSender(ContainerBase* container, const char* operation);
    bool inGuiThread(const char* operation) const;
    void reserve(Tracked& tracked);
    void release(Tracked& tracked);

    QList<ContainerBase*> placed;
    QVector<QVector<QList<ContainerBase*>>> map;
    int startX = 30;
    int startY = 150;
    int spacing = 30;
    int columns = 0;
    int rows = 0;
    int attempts = 0;

    QHash<const QObject*, Tracked> tracked;
};

#endif
