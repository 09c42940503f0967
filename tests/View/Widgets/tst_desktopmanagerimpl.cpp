// Placement of containers on the desktop and the occupancy map behind it, checked against
// the containers' real geometry.

#include "ContainerBase.h"
#include "DesktopImpl.h"
#include "DesktopManagerImpl.h"
#include "GlobalImpl.h"
#include "LogCapture.h"

#include <QRandomGenerator>
#include <QtTest>

#include <algorithm>

namespace {

// A registered desktop of the given size on the given system type, for one test.
class TestDesktop
{
public:
    TestDesktop(QSize size, const QVariant& systemType)
    {
        qApp->setProperty("-systype", systemType);
        window.resize(size);
        desktop = new DesktopImpl(&window);
        GlobalImpl::getInstance()->setDesktop(desktop);
        window.show();
    }
    ~TestDesktop()
    {
        GlobalImpl::getInstance()->setDesktop(nullptr);
        qApp->setProperty("-systype", QVariant());
    }

    ContainerBase* container(QSize size, DesktopManagerImpl& manager, const QString& title = QString())
    {
        auto* container = new ContainerBase(desktop);
        container->resize(size);
        container->setWindowTitle(title);
        manager.registerModule(container);
        return container;
    }

    int columns() const { return desktop->width() / 10; }
    int rows() const { return desktop->height() / 10; }

    QWidget window;
    DesktopImpl* desktop;
};

// The cells an open container at \a geometry should cover: those fully inside the
// desktop's usable area from its clamped top-left corner.
QRect expectedCells(const QRect& geometry, int columns, int rows)
{
    const int x0 = std::max(geometry.x(), 0);
    const int y0 = std::max(geometry.y(), 0);
    const int x1 = std::min(x0 + geometry.width(), columns * 10);
    const int y1 = std::min(y0 + geometry.height(), rows * 10);
    const QRect cells(QPoint(x0 / 10, y0 / 10), QPoint(x1 / 10 - 1, y1 / 10 - 1));
    return cells.isEmpty() ? QRect() : cells;
}

// Empty when the map agrees with the containers: no container twice in a cell, nobody
// listed who is hidden or gone, and every open container on a benchtop exactly over the
// cells of its geometry.
QString mapFault(const DesktopManagerImpl& manager, const TestDesktop& desktop, const QList<ContainerBase*>& live,
                 bool reserves)
{
    const int columns = desktop.columns();
    const int rows = desktop.rows();
    QHash<ContainerBase*, QVector<QPoint>> listed;
    for (int column = 0; column < columns; ++column) {
        for (int row = 0; row < rows; ++row) {
            const QList<ContainerBase*> cell = manager.containersAt(column, row);
            for (ContainerBase* container : cell) {
                if (cell.count(container) > 1)
                    return QStringLiteral("cell %1,%2 lists a container twice").arg(column).arg(row);
                if (!live.contains(container))
                    return QStringLiteral("cell %1,%2 lists a destroyed container").arg(column).arg(row);
                if (container->isHidden())
                    return QStringLiteral("cell %1,%2 lists hidden %3").arg(column).arg(row).arg(container->getWindowTitle());
                listed[container].append(QPoint(column, row));
            }
        }
    }
    for (ContainerBase* container : live) {
        const QRect expected = (reserves && !container->isHidden())
                                   ? expectedCells(container->geometry(), columns, rows)
                                   : QRect();
        const QVector<QPoint> cells = listed.value(container);
        QRect bounds;
        for (const QPoint& cell : cells)
            bounds |= QRect(cell, QSize(1, 1));
        const int area = expected.isEmpty() ? 0 : expected.width() * expected.height();
        if (bounds != expected || cells.size() != area || manager.reservedCells(container) != expected) {
            QString text;
            QDebug(&text) << container->getWindowTitle() << "at" << container->geometry() << "covers" << bounds
                          << cells.size() << "cells, reserved" << manager.reservedCells(container) << "expected"
                          << expected;
            return text;
        }
    }
    return QString();
}

// Fails the test with the map's first fault; the arguments are the live containers.
#define VERIFY_MAP(reserves, ...)                                                                     \
    do {                                                                                              \
        const QString fault = mapFault(manager, desktop, QList<ContainerBase*>{__VA_ARGS__}, reserves); \
        QVERIFY2(fault.isEmpty(), qPrintable(fault));                                                 \
    } while (false)

// A container that tells how many connections its signals have.
class ProbeContainer : public ContainerBase
{
public:
    using ContainerBase::ContainerBase;
    int openedReceivers() const { return receivers(SIGNAL(WindowOpened())); }
    int closedReceivers() const { return receivers(SIGNAL(WindowClosed())); }
    int positionReceivers() const { return receivers(SIGNAL(updatePosition(QWidget*,QPoint))); }
};

} // namespace

class TestDesktopManagerImpl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void placesBesideOpenContainersThenOnNextRow();
    void reusesFreedPlaceAndKeepsReshownContainerWhereItWas();
    void placesEveryContainerAtStartWithoutBenchtop_data();
    void placesEveryContainerAtStartWithoutBenchtop();
    void centresContainersThatFindNoPlace_data();
    void centresContainersThatFindNoPlace();
    void registeringTwiceConnectsOnce();
    void destroyedContainerFreesItsCellsAndIsForgotten();
    void dragMovesReservation();
    void refusesRequestsWithoutContainer();
    void randomSequenceKeepsMapConsistent();
};

void TestDesktopManagerImpl::initTestCase()
{
    // The registry installs its own message handler; captures are built after it.
    GlobalImpl::getInstance();
}

void TestDesktopManagerImpl::placesBesideOpenContainersThenOnNextRow()
{
    TestDesktop desktop(QSize(800, 600), "benchtop");
    LogCapture log;
    DesktopManagerImpl manager;
    QCOMPARE(log.lines(), QStringList{QStringLiteral("DesktopManager::DesktopManager")});

    QList<ContainerBase*> containers;
    const QList<QPoint> expected{{30, 150}, {260, 150}, {490, 150}, {30, 330}};
    for (int i = 0; i < expected.size(); ++i) {
        containers << desktop.container(QSize(200, 150), manager, QStringLiteral("C%1").arg(i));
        containers.last()->show();
        QCOMPARE(containers.last()->geometry(), QRect(expected[i], QSize(200, 150)));
        VERIFY_MAP(true, containers);
    }
    QCOMPARE(manager.containersAt(3, 15), QList<ContainerBase*>{containers[0]});
    QCOMPARE(manager.reservedCells(containers[3]), QRect(3, 33, 20, 15));

    // The place found is the saved location the container returns to when hidden.
    containers[1]->move(0, 0);
    containers[1]->hide();
    QCOMPARE(containers[1]->pos(), QPoint(260, 150));
}

void TestDesktopManagerImpl::reusesFreedPlaceAndKeepsReshownContainerWhereItWas()
{
    TestDesktop desktop(QSize(800, 600), "benchtop");
    DesktopManagerImpl manager;
    QList<ContainerBase*> containers;
    for (int i = 0; i < 6; ++i) {
        containers << desktop.container(QSize(200, 150), manager, QStringLiteral("C%1").arg(i));
        containers.last()->show();
    }
    QCOMPARE(containers[5]->pos(), QPoint(490, 330));

    containers[1]->hide();
    QVERIFY(manager.reservedCells(containers[1]).isEmpty());
    containers << desktop.container(QSize(200, 150), manager, QStringLiteral("New"));
    containers.last()->show();
    QCOMPARE(containers.last()->pos(), QPoint(260, 150));

    // Shown again, the first owner keeps its place and overlaps the newcomer.
    containers[1]->show();
    QCOMPARE(containers[1]->pos(), QPoint(260, 150));
    QCOMPARE(manager.containersAt(26, 15), (QList<ContainerBase*>{containers.last(), containers[1]}));
    VERIFY_MAP(true, containers);

    LogCapture log;
    containers << desktop.container(QSize(200, 150), manager, QStringLiteral("Late"));
    containers.last()->show();
    QCOMPARE(containers.last()->pos(), QPoint(300, 225));
    QVERIFY(log.contains(QStringLiteral("no free place for \"Late\"")));
    VERIFY_MAP(true, containers);
}

void TestDesktopManagerImpl::placesEveryContainerAtStartWithoutBenchtop_data()
{
    QTest::addColumn<QVariant>("systemType");
    QTest::addColumn<QSize>("desktopSize");
    QTest::addColumn<QPoint>("start");
    QTest::newRow("handheld") << QVariant("handheld") << QSize(480, 800) << QPoint(45, 35);
    QTest::newRow("unspecified") << QVariant() << QSize(800, 600) << QPoint(30, 150);
    QTest::newRow("upper case") << QVariant("BENCHTOP") << QSize(800, 600) << QPoint(30, 150);
}

void TestDesktopManagerImpl::placesEveryContainerAtStartWithoutBenchtop()
{
    QFETCH(QVariant, systemType);
    QFETCH(QSize, desktopSize);
    QFETCH(QPoint, start);
    TestDesktop desktop(desktopSize, systemType);
    DesktopManagerImpl manager;
    QList<ContainerBase*> containers;
    for (int i = 0; i < 3; ++i) {
        containers << desktop.container(QSize(200, 150), manager);
        containers.last()->show();
        QCOMPARE(containers.last()->pos(), start);
    }
    VERIFY_MAP(false, containers);
}

void TestDesktopManagerImpl::centresContainersThatFindNoPlace_data()
{
    QTest::addColumn<QSize>("desktopSize");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<QPoint>("nextPosition");
    // A second container of 200 x 150 goes below a wide one, or to the centre of a full desktop.
    QTest::newRow("too wide for a row") << QSize(800, 600) << QSize(790, 100) << QPoint(5, 250) << QPoint(30, 380);
    QTest::newRow("larger than desktop") << QSize(800, 600) << QSize(900, 700) << QPoint(0, 0) << QPoint(300, 225);
    QTest::newRow("ragged desktop") << QSize(805, 603) << QSize(805, 603) << QPoint(0, 0) << QPoint(300, 225);
}

void TestDesktopManagerImpl::centresContainersThatFindNoPlace()
{
    QFETCH(QSize, desktopSize);
    QFETCH(QSize, size);
    QFETCH(QPoint, position);
    QFETCH(QPoint, nextPosition);
    TestDesktop desktop(desktopSize, "benchtop");
    DesktopManagerImpl manager;
    QList<ContainerBase*> containers{desktop.container(size, manager), desktop.container(QSize(200, 150), manager)};

    containers[0]->show();
    QCOMPARE(containers[0]->pos(), position);
    containers[1]->show();
    QCOMPARE(containers[1]->pos(), nextPosition);
    VERIFY_MAP(true, containers);
    QVERIFY(manager.containersAt(desktop.columns(), 0).isEmpty());
}

void TestDesktopManagerImpl::registeringTwiceConnectsOnce()
{
    TestDesktop desktop(QSize(800, 600), "benchtop");
    DesktopManagerImpl manager;
    auto* container = new ProbeContainer(desktop.desktop);
    container->resize(200, 150);
    // The container follows its own WindowClosed() to return to its saved location.
    QCOMPARE(container->closedReceivers(), 1);

    manager.registerModule(container);
    manager.registerModule(container);
    QCOMPARE(container->openedReceivers(), 1);
    QCOMPARE(container->closedReceivers(), 2);
    QCOMPARE(container->positionReceivers(), 1);

    container->show();
    QCOMPARE(container->pos(), QPoint(30, 150));
    QCOMPARE(manager.reservedCells(container), QRect(3, 15, 20, 15));

    LogCapture log;
    manager.registerModule(nullptr);
    QVERIFY(log.contains(QStringLiteral("cannot register a null container")));
}

void TestDesktopManagerImpl::destroyedContainerFreesItsCellsAndIsForgotten()
{
    TestDesktop desktop(QSize(800, 600), "benchtop");
    DesktopManagerImpl manager;
    ContainerBase* first = desktop.container(QSize(200, 150), manager);
    first->show();
    QCOMPARE(first->pos(), QPoint(30, 150));

    delete first;
    VERIFY_MAP(true);

    // Often built at the address of the one just deleted; it is still new to the manager.
    ContainerBase* second = desktop.container(QSize(100, 100), manager);
    second->show();
    QCOMPARE(second->pos(), QPoint(30, 150));
    VERIFY_MAP(true, second);
}

void TestDesktopManagerImpl::dragMovesReservation()
{
    TestDesktop desktop(QSize(800, 600), "benchtop");
    DesktopManagerImpl manager;
    ContainerBase* dragged = desktop.container(QSize(200, 150), manager);
    dragged->show();

    dragged->move(400, 300);
    emit dragged->updatePosition(dragged, QPoint(30, 150));
    QCOMPARE(manager.reservedCells(dragged), QRect(40, 30, 20, 15));
    VERIFY_MAP(true, dragged);

    // The freed start is where the next container goes.
    ContainerBase* next = desktop.container(QSize(200, 150), manager);
    next->show();
    QCOMPARE(next->pos(), QPoint(30, 150));

    // Reports about widgets that are no open container change nothing.
    LogCapture log;
    next->hide();
    emit next->updatePosition(next, QPoint(30, 150));
    QWidget stranger;
    manager.updatePosition(&stranger, QPoint(0, 0));
    VERIFY_MAP(true, dragged, next);
    QCOMPARE(log.linesContaining(QStringLiteral("position update ignored")).size(), 2);
}

void TestDesktopManagerImpl::refusesRequestsWithoutContainer()
{
    TestDesktop desktop(QSize(800, 600), "benchtop");
    DesktopManagerImpl manager;
    ContainerBase* open = desktop.container(QSize(200, 150), manager);
    open->show();

    LogCapture log;
    manager.allocate();
    manager.deallocate();
    QObject notAContainer;
    connect(&notAContainer, &QObject::objectNameChanged, &manager, QOverload<>::of(&DesktopManagerImpl::allocate));
    notAContainer.setObjectName(QStringLiteral("x"));

    const QStringList expected{
        QStringLiteral("UserInterface - failed to allocate, no container...Widget->show() called from outside GUI thread?"),
        QStringLiteral("UserInterface - DesktopManager: failed to deallocate, no container"),
    };
    QCOMPARE(log.lines().mid(0, 2), expected);
    QVERIFY(log.lines().value(2).startsWith(
        QStringLiteral("UserInterface - DesktopManager: allocate ignored, the sender is not a container")));
    VERIFY_MAP(true, open);
}

void TestDesktopManagerImpl::randomSequenceKeepsMapConsistent()
{
    TestDesktop desktop(QSize(800, 600), "benchtop");
    DesktopManagerImpl manager;
    // Placement gives up loudly on a crowded desktop; those lines are not the point here.
    LogCapture quiet;
    QRandomGenerator random(20240611);
    QList<ContainerBase*> live;
    int created = 0;
    QMap<QString, int> done;

    auto pick = [&](bool shown) -> ContainerBase* {
        QList<ContainerBase*> candidates;
        for (ContainerBase* container : live)
            if (container->isHidden() != shown)
                candidates << container;
        return candidates.isEmpty() ? nullptr : candidates[random.bounded(candidates.size())];
    };

    for (int step = 0; step < 300; ++step) {
        QString action;
        const int roll = random.bounded(100);
        ContainerBase* target = nullptr;
        if (roll < 15 && (target = pick(true))) {
            action = QStringLiteral("destroy");
            live.removeOne(target);
            delete target;
        } else if (roll < 35 && (target = pick(true))) {
            action = QStringLiteral("hide");
            target->hide();
        } else if (roll < 55 && (target = pick(true))) {
            action = QStringLiteral("drag");
            const QPoint start = target->pos();
            target->move(random.bounded(-60, 800), random.bounded(-60, 600));
            emit target->updatePosition(target, start);
        } else if (roll < 60 && (target = pick(true))) {
            action = QStringLiteral("opened twice");
            emit target->WindowOpened();
        } else if (roll < 65 && (target = pick(false))) {
            action = QStringLiteral("closed twice");
            emit target->WindowClosed();
        } else if (roll < 70 && (target = pick(false))) {
            action = QStringLiteral("destroy hidden");
            live.removeOne(target);
            delete target;
        } else if (roll < 85 && (target = pick(false))) {
            action = QStringLiteral("show again");
            target->show();
        } else if (live.size() < 20) {
            action = QStringLiteral("create");
            const QSize size = random.bounded(20) == 0
                                   ? QSize(820, 640)
                                   : QSize(random.bounded(5, 300), random.bounded(5, 250));
            live << desktop.container(size, manager, QStringLiteral("R%1").arg(++created));
            live.last()->show();
        } else {
            continue;
        }
        ++done[action];
        const QString fault = mapFault(manager, desktop, live, true);
        QVERIFY2(fault.isEmpty(), qPrintable(QStringLiteral("step %1, %2: %3").arg(step).arg(action, fault)));
    }
    // Every kind of step, bad sequences included, came up.
    QCOMPARE(done.size(), 8);
}

QTEST_MAIN(TestDesktopManagerImpl)
#include "tst_desktopmanagerimpl.moc"
