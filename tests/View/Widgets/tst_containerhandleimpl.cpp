// Dragging a standard container by its handle: the container follows the pointer at most
// every 56 ms, lands on the desktop (on a grid point when it snaps to them) and the
// desktop manager moves its reservation there.

#include "ContainerHandleImpl.h"
#include "ContainerImpl.h"
#include "ContainerTestDesktop.h"
#include "GlobalImpl.h"

#include <QtTest>

class TestContainerHandleImpl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void dragLandsAndMovesReservation_data();
    void dragLandsAndMovesReservation();
    void stepsCloserThan56MsAreDropped();
};

namespace {

ContainerHandleImpl* shownHandle(ContainerImpl* container)
{
    auto* handle = container->findChild<ContainerHandleImpl*>(QStringLiteral("ContainerHandle"));
    handle->setGeometry(0, 0, 20, container->height());
    handle->show();
    return handle;
}

} // namespace

void TestContainerHandleImpl::initTestCase()
{
    QVERIFY(GlobalImpl::getInstance());
}

void TestContainerHandleImpl::cleanup()
{
    GlobalImpl::getInstance()->gridPoints.clear();
    GlobalImpl::getInstance()->layoutLocked = false;
}

void TestContainerHandleImpl::dragLandsAndMovesReservation_data()
{
    QTest::addColumn<bool>("snaps");
    QTest::addColumn<bool>("maximized");
    QTest::addColumn<QPoint>("releasedAt");
    QTest::addColumn<QPoint>("landsAt");
    // The container stands at (30, 150), 300 x 200, on a 1280 x 800 desktop.
    QTest::newRow("snaps") << true << false << QPoint(630, 385) << QPoint(640, 400);
    QTest::newRow("free") << false << false << QPoint(630, 385) << QPoint(630, 385);
    QTest::newRow("let go beyond the edge") << true << false << QPoint(1500, 900) << QPoint(980, 600);
    QTest::newRow("maximized") << false << true << QPoint(630, 385) << QPoint(0, 0);
}

void TestContainerHandleImpl::dragLandsAndMovesReservation()
{
    QFETCH(bool, snaps);
    QFETCH(bool, maximized);
    QFETCH(QPoint, releasedAt);
    QFETCH(QPoint, landsAt);
    ContainerTestDesktop desk(QStringLiteral("benchtop"), QVariant(), false);
    GlobalImpl::getInstance()->gridPoints = {QPoint(320, 400), QPoint(640, 400)};
    ContainerImpl* container = desk.addContainer();
    container->setSnapsToGrid(snaps);
    if (maximized)
        container->setState(QStringLiteral("Max"));
    ContainerHandleImpl* handle = shownHandle(container);
    const QPoint start = container->pos();
    QSignalSpy moved(container, &ContainerBase::updatePosition);

    const QPoint grip = handle->mapToGlobal(QPoint(10, 10));
    sendMouse(handle, QEvent::MouseButtonPress, grip);
    sendMouse(handle, QEvent::MouseButtonRelease, grip + releasedAt - start);

    QCOMPARE(container->pos(), landsAt);
    if (maximized) {
        QCOMPARE(moved.count(), 0);
        return;
    }
    QCOMPARE(moved.count(), 1);
    QCOMPARE(moved.at(0).at(1).toPoint(), start);
    QCOMPARE(container->property("MinGeometry").toRect(), container->geometry());
    QCOMPARE(desk.manager->reservedCells(container), desk.cellsOf(container->geometry()));
}

void TestContainerHandleImpl::stepsCloserThan56MsAreDropped()
{
    ContainerTestDesktop desk(QStringLiteral("benchtop"), QVariant(), false);
    ContainerImpl* container = desk.addContainer();
    ContainerHandleImpl* handle = shownHandle(container);
    QSignalSpy positions(container, &ContainerImpl::newPos);
    const QPoint grip = handle->mapToGlobal(QPoint(10, 10));

    sendMouse(handle, QEvent::MouseButtonPress, grip);
    sendMouse(handle, QEvent::MouseMove, grip + QPoint(100, 50));
    QCOMPARE(container->pos(), QPoint(30, 150));
    QCOMPARE(positions.count(), 0);

    // While held it may hang over the right edge, never over the left or top one.
    QTRY_VERIFY_WITH_TIMEOUT((sendMouse(handle, QEvent::MouseMove, grip + QPoint(1200, -500)),
                              container->pos() == QPoint(1230, 0)),
                             1000);

    // A release always moves the container, back onto the desktop.
    sendMouse(handle, QEvent::MouseButtonRelease, grip + QPoint(1200, -500));
    QCOMPARE(container->pos(), QPoint(980, 0));
}

QTEST_MAIN(TestContainerHandleImpl)
#include "tst_containerhandleimpl.moc"
