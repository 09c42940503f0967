// The slide-out drawer beside a container: where its tab sits, how it slides open and
// shut, where it goes without room or with its container maximized, and its caption.

#include "ContainerImpl.h"
#include "GlobalImpl.h"
#include "LogCapture.h"
#include "RotatableLabel.h"
#include "WindowDrawer.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <QtTest>

namespace {

constexpr int handle = 40;
constexpr int contents = 380;
constexpr int slideTimeout = 2000;

QColor renderedAt(QWidget& widget, const QPoint& point)
{
    // Layouts rebuilt for another side settle first.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    QImage image(widget.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image.pixelColor(point);
}

} // namespace

class TestWindowDrawer : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void captionStaysInsideLowTab();
    void slidesOpenAndShut_data();
    void slidesOpenAndShut();
    void opensOverContainerWithoutRoomBesideIt_data();
    void opensOverContainerWithoutRoomBesideIt();
    void goesToScreenEdgeOutsideMin_data();
    void goesToScreenEdgeOutsideMin();
    void takesWidthFromContainerFrame();
    void followContainerMoveResizeAndVisibility();
    void followContainerIntoMaxAndBack();
    void containerTakesOneDrawerASide();
    void windowLookupReadsCaption();
    void badInputLoggedWithoutCrash();

private:
    QWidget* m_desktop = nullptr;
    ContainerImpl* m_container = nullptr;
};

void TestWindowDrawer::init()
{
    m_desktop = new QWidget;
    m_desktop->resize(1600, 900);
    m_desktop->show();
    m_container = new ContainerImpl(m_desktop);
    m_container->setGeometry(500, 100, 480, 400);
}

void TestWindowDrawer::cleanup()
{
    delete m_desktop;
}

void TestWindowDrawer::captionStaysInsideLowTab()
{
    m_container->resize(220, 130);
    WindowDrawer drawer(m_desktop, m_container, WindowDrawer::Right, QStringLiteral("Configuration"));
    drawer.show();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    auto* tab = drawer.findChild<QLabel*>(QStringLiteral("handle_type"));
    auto* caption = drawer.findChild<RotatableLabel*>();
    const QRect captionInTab(caption->mapTo(tab, QPoint(0, 0)), caption->size());
    QVERIFY2(tab->rect().contains(captionInTab), qPrintable(QStringLiteral("%1 in %2").arg(captionInTab.bottom()).arg(tab->height())));
    // Long enough for the whole title, rotated.
    QFont painted = caption->font();
    painted.setPixelSize(caption->fontSize());
    QVERIFY(caption->height() >= QFontMetrics(painted).horizontalAdvance(caption->text()));
}

void TestWindowDrawer::slidesOpenAndShut_data()
{
    QTest::addColumn<WindowDrawer::DockPosition_t>("position");
    QTest::addColumn<QRect>("closed");
    QTest::addColumn<QRect>("opened");
    QTest::addColumn<int>("degrees");
    QTest::newRow("right") << WindowDrawer::Right << QRect(980, 100, handle, 400) << QRect(980, 100, handle + contents, 400)
                           << 90;
    QTest::newRow("left") << WindowDrawer::Left << QRect(500 - handle, 100, handle, 400)
                          << QRect(500 - handle - contents, 100, handle + contents, 400) << 270;
}

void TestWindowDrawer::slidesOpenAndShut()
{
    QFETCH(WindowDrawer::DockPosition_t, position);
    QFETCH(QRect, closed);
    QFETCH(QRect, opened);
    QFETCH(int, degrees);
    WindowDrawer drawer(m_desktop, m_container, position, QStringLiteral("Configuration"));
    QVERIFY(!drawer.isVisible());
    drawer.show();
    // Closed, only the tab shows, at the container's edge, its caption reading towards it.
    QCOMPARE(drawer.objectName(), QStringLiteral("TopContainerObject"));
    QCOMPARE(drawer.parentWindow(), m_container);
    QCOMPARE(drawer.geometry(), closed);
    auto* tab = drawer.findChild<QPushButton*>(QStringLiteral("handle_type"));
    QTRY_COMPARE(tab->mapTo(&drawer, QPoint(0, 0)).x(), 0);
    QCOMPARE(tab->width(), handle);
    auto* caption = drawer.findChild<RotatableLabel*>();
    QCOMPARE(caption->text(), QStringLiteral("Configuration"));
    QCOMPARE(caption->degrees(), double(degrees));
    QCOMPARE(caption->fontSize(), 12);
    QSignalSpy closedSpy(&drawer, &WindowDrawer::WindowClosed);

    drawer.setDrawerOpened(true);
    QVERIFY(drawer.isOpen());
    // A slide, not a jump.
    QCOMPARE(drawer.geometry(), closed);
    QTRY_COMPARE_WITH_TIMEOUT(drawer.geometry(), opened, slideTimeout);
    // The panel shows in full beside the container, the tab at the outer edge.
    auto* panel = drawer.findChild<QFrame*>(QStringLiteral("container_type"));
    const int panelX = panel->mapTo(m_desktop, QPoint(0, 0)).x();
    QCOMPARE(panelX, position == WindowDrawer::Right ? 980 : 500 - contents);
    QCOMPARE(panel->width(), contents);
    QCOMPARE(closedSpy.count(), 0);

    drawer.setDrawerOpened(false);
    QCOMPARE(closedSpy.count(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(drawer.geometry(), closed, slideTimeout);
    QTRY_COMPARE(tab->mapTo(m_desktop, QPoint(0, 0)).x(), closed.x());
}

void TestWindowDrawer::opensOverContainerWithoutRoomBesideIt_data()
{
    QTest::addColumn<WindowDrawer::DockPosition_t>("position");
    QTest::addColumn<int>("containerX");
    QTest::addColumn<int>("openedX");
    QTest::addColumn<int>("homeX");
    // Near the right screen edge: out to the left from the container's right edge.
    QTest::newRow("right") << WindowDrawer::Right << 1100 << 1100 + 480 - 2 - handle - contents << 1580;
    // Near the left edge: out to the right from the container's left edge.
    QTest::newRow("left") << WindowDrawer::Left << 100 << 102 << 100 - handle;
}

void TestWindowDrawer::opensOverContainerWithoutRoomBesideIt()
{
    QFETCH(WindowDrawer::DockPosition_t, position);
    QFETCH(int, containerX);
    QFETCH(int, openedX);
    QFETCH(int, homeX);
    m_container->move(containerX, 100);
    WindowDrawer drawer(m_desktop, m_container, position, QStringLiteral("Configuration"));
    drawer.show();
    QCOMPARE(drawer.x(), homeX);

    drawer.setDrawerOpened(true);
    QVERIFY(drawer.position() != position);
    QTRY_COMPARE_WITH_TIMEOUT(drawer.geometry(), QRect(openedX, 100, handle + contents, 400), slideTimeout);
    QVERIFY(drawer.geometry().right() < m_desktop->width());
    QVERIFY(drawer.x() >= 0);

    drawer.setDrawerOpened(false);
    QTRY_COMPARE_WITH_TIMEOUT(drawer.position(), position, slideTimeout);
    QCOMPARE(drawer.geometry(), QRect(homeX, 100, handle, 400));
}

void TestWindowDrawer::goesToScreenEdgeOutsideMin_data()
{
    QTest::addColumn<WindowDrawer::DockPosition_t>("position");
    QTest::addColumn<QString>("size");
    QTest::addColumn<int>("edgeX");
    QTest::addColumn<int>("homeX");
    QTest::newRow("right, Max") << WindowDrawer::Right << QStringLiteral("Max") << 1600 - handle << 980;
    QTest::newRow("left, Thumb") << WindowDrawer::Left << QStringLiteral("Thumb") << 0 << 500 - handle;
}

void TestWindowDrawer::goesToScreenEdgeOutsideMin()
{
    QFETCH(WindowDrawer::DockPosition_t, position);
    QFETCH(QString, size);
    QFETCH(int, edgeX);
    QFETCH(int, homeX);
    WindowDrawer drawer(m_desktop, m_container, position, QStringLiteral("Configuration"));
    drawer.show();
    auto* caption = drawer.findChild<RotatableLabel*>();
    // The tab, above the caption.
    const QPoint tabPoint(position == WindowDrawer::Right ? 14 : handle - 14, 20);
    const QColor beside = renderedAt(drawer, tabPoint);
    QVERIFY2(beside.blue() > 100, qPrintable(beside.name()));

    drawer.changeSize(size);
    // The tab faces the middle of the screen.
    QVERIFY(drawer.position() != position);
    QCOMPARE(drawer.geometry(), QRect(edgeX, 22, handle, 400 - 96));
    QCOMPARE(caption->fontSize(), 18);
    const QPoint edgeTabPoint(handle - 1 - tabPoint.x(), tabPoint.y());
    const QColor dark = renderedAt(drawer, edgeTabPoint);
    QVERIFY2(dark.blue() < 40 && dark.alpha() > 200, qPrintable(dark.name(QColor::HexArgb)));

    drawer.changeSize(QStringLiteral("Min"));
    QCOMPARE(drawer.position(), position);
    QCOMPARE(drawer.geometry(), QRect(homeX, 100, handle, 400));
    QCOMPARE(caption->fontSize(), 12);
    QCOMPARE(renderedAt(drawer, tabPoint), beside);
}

void TestWindowDrawer::takesWidthFromContainerFrame()
{
    WindowDrawer drawer(m_desktop, m_container, WindowDrawer::Right, QStringLiteral("Configuration"));
    auto* form = new QFrame;
    form->setObjectName(QStringLiteral("ContainerFrame"));
    form->setMinimumSize(300, 150);
    auto* layout = new QVBoxLayout;
    layout->addWidget(form);
    drawer.setDrawerLayout(layout);
    QCOMPARE(drawer.getContainerFrame(), form);
    QCOMPARE(form->minimumSize(), QSize(0, 0));
    QCOMPARE(drawer.width(), handle);
    drawer.show();
    drawer.setDrawerOpened(true);
    QTRY_COMPARE_WITH_TIMEOUT(drawer.width(), 300, slideTimeout);

    WindowDrawer plain(m_desktop, m_container, WindowDrawer::Left, QStringLiteral("Plain"));
    LogCapture log;
    plain.setDrawerLayout(new QVBoxLayout);
    QVERIFY(log.lines().contains(QStringLiteral("WindowDrawer - Failed to find ContainerFrame")));
    QCOMPARE(plain.getContainerFrame(), plain.findChild<QFrame*>(QStringLiteral("container_type")));
    plain.setDrawerOpened(true);
    QTRY_COMPARE_WITH_TIMEOUT(plain.width(), handle + contents, slideTimeout);
}

void TestWindowDrawer::followContainerMoveResizeAndVisibility()
{
    m_container->show();
    WindowDrawer* right = m_container->addDrawer(WindowDrawer::Right, QStringLiteral("Configuration"));
    WindowDrawer* left = m_container->addDrawer(WindowDrawer::Left, QStringLiteral("Markers"));
    QVERIFY(right->isVisible() && left->isVisible());
    QCOMPARE(right->geometry(), QRect(980, 100, handle, 400));
    QCOMPARE(left->geometry(), QRect(500 - handle, 100, handle, 400));

    m_container->move(600, 150);
    QCOMPARE(right->geometry(), QRect(1080, 150, handle, 400));
    QCOMPARE(left->geometry(), QRect(600 - handle, 150, handle, 400));
    m_container->resize(500, 300);
    QCOMPARE(right->geometry(), QRect(1100, 150, handle, 300));
    QCOMPARE(left->geometry(), QRect(600 - handle, 150, handle, 300));

    // An open drawer moves along open; a move by geometry alone is followed too.
    left->setDrawerOpened(true);
    QTRY_COMPARE_WITH_TIMEOUT(left->width(), handle + contents, slideTimeout);
    m_container->setGeometry(550, 120, 500, 300);
    QCOMPARE(left->geometry(), QRect(550 - handle - contents, 120, handle + contents, 300));
    QCOMPARE(right->geometry(), QRect(1050, 120, handle, 300));

    // Both above the container once it is raised.
    m_container->raise();
    const QObjectList stack = m_desktop->children();
    QVERIFY(stack.indexOf(right) > stack.indexOf(m_container));
    QVERIFY(stack.indexOf(left) > stack.indexOf(m_container));

    QSignalSpy closed(right, &WindowDrawer::WindowClosed);
    m_container->hide();
    QVERIFY(!right->isVisible() && !left->isVisible());
    QCOMPARE(closed.count(), 1);
    m_container->show();
    QVERIFY(right->isVisible() && left->isVisible());
}

void TestWindowDrawer::followContainerIntoMaxAndBack()
{
    m_container->init();
    m_container->show();
    m_container->move(500, 100);
    WindowDrawer* right = m_container->addDrawer(WindowDrawer::Right, QStringLiteral("Configuration"));
    WindowDrawer* left = m_container->addDrawer(WindowDrawer::Left, QStringLiteral("Markers"));

    m_container->setState(QStringLiteral("Max"));
    QTRY_COMPARE(m_container->geometry(), m_desktop->rect());
    const int edgeHeight = m_desktop->height() - 96;
    QCOMPARE(right->geometry(), QRect(m_desktop->width() - handle, 22, handle, edgeHeight));
    QCOMPARE(left->geometry(), QRect(0, 22, handle, edgeHeight));
    right->setDrawerOpened(true);
    QTRY_COMPARE_WITH_TIMEOUT(right->geometry(),
                              QRect(m_desktop->width() - handle - contents, 22, handle + contents, edgeHeight),
                              slideTimeout);

    m_container->setState(QStringLiteral("Min"));
    QTRY_COMPARE(m_container->geometry(), QRect(500, 100, 480, 400));
    QCOMPARE(right->position(), WindowDrawer::Right);
    QCOMPARE(right->geometry(), QRect(980, 100, handle + contents, 400));
    QCOMPARE(left->geometry(), QRect(500 - handle, 100, handle, 400));
}

void TestWindowDrawer::containerTakesOneDrawerASide()
{
    m_container->setWindowTitle(QStringLiteral("Scope"));
    auto* form = new QFrame;
    form->setObjectName(QStringLiteral("ContainerFrame"));
    form->setMinimumWidth(300);
    auto* layout = new QVBoxLayout;
    layout->addWidget(form);
    m_container->setDrawerLayout(layout);
    WindowDrawer* configuration = m_container->getDrawer(WindowDrawer::Right);
    QVERIFY(configuration);
    QCOMPARE(configuration->findChild<RotatableLabel*>()->text(), QStringLiteral("Configuration"));
    QCOMPARE(configuration->getContainerFrame(), form);
    QCOMPARE(configuration->parentWidget(), m_desktop);
    // Any side but the left one means the right-hand drawer.
    QCOMPARE(m_container->getDrawer(WindowDrawer::DockPosition_t(2)), configuration);
    QCOMPARE(m_container->getDrawer(WindowDrawer::Left), nullptr);

    LogCapture log;
    QCOMPARE(m_container->addDrawer(WindowDrawer::Right, QStringLiteral("Another")), configuration);
    QVERIFY(log.contains(QStringLiteral("UserInterface - Drawer already present, not adding: \"Another\"")));
    QCOMPARE(m_container->addDrawer(WindowDrawer::DockPosition_t(3), QStringLiteral("Third")), nullptr);
    QVERIFY(log.contains(QStringLiteral("UserInterface - Undefined drawer position: 3")));
    m_container->setDrawerOpened(WindowDrawer::DockPosition_t(3), true);
    QVERIFY(log.lines().contains(
        QStringLiteral("UserInterface - Undefined drawer requested to be opened on window: \"Scope\"")));
    QVERIFY(!configuration->isOpen());
    m_container->setDrawerOpened(WindowDrawer::Right, true);
    QVERIFY(configuration->isOpen());

    // The drawers go with their container.
    QPointer<WindowDrawer> watched(configuration);
    delete m_container;
    QVERIFY(!watched);
}

void TestWindowDrawer::windowLookupReadsCaption()
{
    m_container->setWindowTitle(QStringLiteral("Scope"));
    WindowDrawer drawer(m_desktop, m_container, WindowDrawer::Right, QStringLiteral("Configuration"));
    auto* control = new QWidget(drawer.getContainerFrame());

    QCOMPARE(GlobalImpl::getParentWindow(control), &drawer);
    QCOMPARE(GlobalImpl::getParentWindowName(control), QStringLiteral("Configuration"));
}

void TestWindowDrawer::badInputLoggedWithoutCrash()
{
    LogCapture log;
    WindowDrawer orphan(m_desktop, nullptr, WindowDrawer::Right, QStringLiteral("Orphan"));
    QVERIFY(log.contains(QStringLiteral("UserInterface - Drawer created without a container:")));
    orphan.show();
    orphan.changeSize(QStringLiteral("Max"));
    orphan.moveDrawer();
    orphan.setDrawerOpened(true);
    orphan.setDrawerOpened(false);
    QCOMPARE(orphan.parentWindow(), nullptr);

    WindowDrawer odd(m_desktop, m_container, WindowDrawer::DockPosition_t(5), QStringLiteral("Odd"));
    QVERIFY(log.contains(QStringLiteral("UserInterface - Unknown drawer dock position: 5")));
    QCOMPARE(odd.position(), WindowDrawer::Right);
    odd.updateGeometry(WindowDrawer::Right, WindowDrawer::UpdateMode_t(7));
    QVERIFY(log.contains(QStringLiteral("UserInterface - Unknown drawer layout:")));
    odd.changeSize(QStringLiteral("Huge"));
    QVERIFY(log.contains(QStringLiteral("UserInterface - Unknown size for drawer: \"Huge\"")));
    QCOMPARE(odd.geometry(), QRect(980, 100, handle, 400));
}

QTEST_MAIN(TestWindowDrawer)
#include "tst_windowdrawer.moc"
