#include "DesktopManagerImpl.h"

#include "ApplicationOptions.h"
#include "ContainerBase.h"
#include "DesktopImpl.h"
#include "GlobalImpl.h"

#include <QDebug>
#include <QThread>

#include <algorithm>

namespace {

const int cellSize = 10;
// A placement gives up and centres the container after this many candidates.
const int maxAttempts = 201;

} // namespace

DesktopManagerImpl::DesktopManagerImpl()
    : QObject(nullptr)
{
    qDebug() << "DesktopManager::DesktopManager";

    if (ApplicationOptions::isHandheld()) {
        startX = 45;
        startY = 35;
        spacing = 30;
    }

    if (DesktopImpl* desktop = GlobalImpl::getInstance()->desktop()) {
        columns = desktop->width() / cellSize;
        rows = desktop->height() / cellSize;
    } else {
        qDebug() << "UserInterface - DesktopManager: no desktop registered, every container will be centred";
    }
    map = QVector<QVector<QList<ContainerBase*>>>(columns, QVector<QList<ContainerBase*>>(rows));
}

QPair<bool, ContainerBase*> DesktopManagerImpl::containerWillFit(QPoint pos, ContainerBase* container)
{
    if (!container) {
        qDebug() << "UserInterface - DesktopManager: containerWillFit without a container";
        return {false, nullptr};
    }
    const int w = container->width();
    const int h = container->height();
    if (pos.x() + w > columns * cellSize || pos.y() + h > rows * cellSize)
        return {false, container};
    if (w / cellSize == 0)
        return {true, nullptr};

    const int firstColumn = pos.x() / cellSize;
    const int firstRow = pos.y() / cellSize;
    for (int column = firstColumn; column < firstColumn + w / cellSize; ++column) {
        if (column < 0 || column >= columns)
            continue;
        for (int row = firstRow; row < firstRow + h / cellSize; ++row) {
            if (row < 0 || row >= rows)
                continue;
            const QList<ContainerBase*>& cell = map[column][row];
            if (!cell.isEmpty())
                return {false, cell.first()};
        }
    }
    return {true, nullptr};
}

QPoint DesktopManagerImpl::findSpotForContainer(int x, int y, int nextRowY, ContainerBase* container)
{
    if (!container) {
        qDebug() << "UserInterface - DesktopManager: findSpotForContainer without a container";
        return QPoint(startX, startY);
    }
    const int w = container->width();
    const int h = container->height();

    // Each candidate either skips past the container in the way or starts a new row
    // below the lowest of those met in this row.
    for (;;) {
        ++attempts;
        const QPair<bool, ContainerBase*> fit = containerWillFit(QPoint(x, y), container);
        if (fit.first)
            return QPoint(x, y);
        if (y + h > rows * cellSize || attempts >= maxAttempts)
            break;

        int next = nextRowY < 0 ? rows * cellSize + 1 : nextRowY;
        if (x + w > columns * cellSize) {
            x = startX;
            y = next;
            nextRowY = -1;
        } else {
            const ContainerBase* blocker = fit.second;
            next = std::min(next, blocker->y() + blocker->height() + spacing);
            x = blocker->x() + blocker->width() + spacing;
            nextRowY = next;
        }
    }

    const QPoint centre(std::max((columns * cellSize - w) / 2, 0), std::max((rows * cellSize - h) / 2, 0));
    qDebug() << "UserInterface - DesktopManager: no free place for" << container->getWindowTitle() << "after"
             << attempts << "tries, centred at" << centre;
    return centre;
}

void DesktopManagerImpl::updateMap()
{
}

QList<ContainerBase*> DesktopManagerImpl::containersAt(int column, int row) const
{
    if (column < 0 || column >= columns || row < 0 || row >= rows)
        return {};
    return map[column][row];
}

QRect DesktopManagerImpl::reservedCells(const ContainerBase* container) const
{
    return tracked.value(container).cells;
}

void DesktopManagerImpl::allocate(ContainerBase* container)
{
    if (!container) {
        container = qobject_cast<ContainerBase*>(sender());
        if (!container) {
            if (sender())
                qDebug() << "UserInterface - DesktopManager: allocate ignored, the sender is not a container:" << sender();
            else
                qDebug() << "UserInterface - failed to allocate, no container...Widget->show() called from outside GUI thread?";
            return;
        }
    }
    if (!inGuiThread("allocate"))
        return;

    track(container);
    if (!placed.contains(container)) {
        placed.append(container);
        attempts = 0;
        const QPoint spot = findSpotForContainer(startX, startY, -1, container);
        container->move(spot);
        container->saveLocation();
    }

    // Taken only now: moving runs the container's own code, which may reach this manager.
    Tracked& entry = track(container);
    // Shown again without being hidden: the earlier reservation goes first, so the map
    // never lists a container twice.
    release(entry);
    entry.open = true;
    if (ApplicationOptions::isBenchtop())
        reserve(entry);
}

void DesktopManagerImpl::allocate()
{
    allocate(nullptr);
}

void DesktopManagerImpl::deallocate(ContainerBase* container, QPoint pos)
{
    if (!container) {
        container = qobject_cast<ContainerBase*>(sender());
        if (!container) {
            if (sender())
                qDebug() << "UserInterface - DesktopManager: deallocate ignored, the sender is not a container:" << sender();
            else
                qDebug() << "UserInterface - DesktopManager: failed to deallocate, no container";
            return;
        }
    }
    if (!inGuiThread("deallocate"))
        return;

    auto found = tracked.find(container);
    if (found == tracked.end())
        return;
    // What was reserved is released, wherever the container has gone since: a
    // container may change its size or position without telling the manager.
    const QRect reserved = found->cells;
    if (!reserved.isEmpty() && pos != QPoint(-1, -1)
        && QPoint(std::max(pos.x(), 0) / cellSize, std::max(pos.y(), 0) / cellSize) != reserved.topLeft()) {
        qDebug() << "UserInterface - DesktopManager: released" << container->getWindowTitle() << "at cell"
                 << reserved.topLeft() << "where it was reserved, not at" << pos;
    }
    release(*found);
    found->open = false;
}

void DesktopManagerImpl::deallocate(ContainerBase* container)
{
    deallocate(container, QPoint(-1, -1));
}

void DesktopManagerImpl::deallocate()
{
    deallocate(nullptr, QPoint(-1, -1));
}

void DesktopManagerImpl::registerModule(ContainerBase* tile)
{
    if (!tile) {
        qDebug() << "UserInterface - DesktopManager: cannot register a null container";
        return;
    }
    connect(tile, &ContainerBase::WindowOpened, this, QOverload<>::of(&DesktopManagerImpl::allocate),
            Qt::UniqueConnection);
    connect(tile, &ContainerBase::WindowClosed, this, QOverload<>::of(&DesktopManagerImpl::deallocate),
            Qt::UniqueConnection);
    connect(tile, &ContainerBase::updatePosition, this, &DesktopManagerImpl::updatePosition, Qt::UniqueConnection);
    track(tile);
}

void DesktopManagerImpl::updatePosition(QWidget* container, QPoint pos)
{
    auto* moved = qobject_cast<ContainerBase*>(container);
    if (!moved) {
        qDebug() << "UserInterface - DesktopManager: position update ignored, not a container:" << container;
        return;
    }
    if (!tracked.value(moved).open) {
        // Reserving now would cover cells with a container that is not on the desktop.
        qDebug() << "UserInterface - DesktopManager: position update ignored, the container is not open:"
                 << moved->getWindowTitle();
        return;
    }
    deallocate(moved, pos);
    allocate(moved);
}

void DesktopManagerImpl::forgetContainer(QObject* object)
{
    // Only the pointer values are used: the object is no longer a ContainerBase here.
    auto found = tracked.find(object);
    if (found == tracked.end())
        return;
    release(*found);
    placed.removeAll(found->container);
    tracked.erase(found);
}

DesktopManagerImpl::Tracked& DesktopManagerImpl::track(ContainerBase* container)
{
    auto found = tracked.find(container);
    if (found != tracked.end())
        return *found;
    // A later container built at the same address must be placed afresh.
    connect(container, &QObject::destroyed, this, &DesktopManagerImpl::forgetContainer, Qt::UniqueConnection);
    Tracked entry;
    entry.container = container;
    return *tracked.insert(container, entry);
}

bool DesktopManagerImpl::inGuiThread(const char* operation) const
{
    if (QThread::currentThread() == thread())
        return true;
    qDebug() << "UserInterface - DesktopManager:" << operation << "called outside the GUI thread, ignored";
    return false;
}

void DesktopManagerImpl::reserve(Tracked& entry)
{
    const QRect geometry = entry.container->geometry();
    const int x0 = std::max(geometry.x(), 0);
    const int y0 = std::max(geometry.y(), 0);
    const int x1 = std::min(x0 + geometry.width(), columns * cellSize);
    const int y1 = std::min(y0 + geometry.height(), rows * cellSize);
    // x1 and y1 never pass the map's edge, so a start beyond it leaves no cells.
    const QRect cells(QPoint(x0 / cellSize, y0 / cellSize), QPoint(x1 / cellSize - 1, y1 / cellSize - 1));
    if (cells.isEmpty())
        return;

    for (int column = cells.left(); column <= cells.right(); ++column)
        for (int row = cells.top(); row <= cells.bottom(); ++row)
            map[column][row].append(entry.container);
    entry.cells = cells;
}

void DesktopManagerImpl::release(Tracked& entry)
{
    for (int column = entry.cells.left(); column <= entry.cells.right(); ++column)
        for (int row = entry.cells.top(); row <= entry.cells.bottom(); ++row)
            map[column][row].removeOne(entry.container);
    entry.cells = QRect();
}
