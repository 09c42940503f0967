// The navigation bar: where it sits open and closed for each screen, sliding by its tab,
// paging and dragging its row of buttons, and hiding itself after the engines' time-out.

#include "LogCapture.h"
#include "MenuBar.h"
#include "ScrollButton.h"
#include "ScrollableMenuBarFrame.h"

#include <QApplication>
#include <QLayout>
#include <QPushButton>
#include <QScrollArea>
#include <QSemaphore>
#include <QThreadPool>
#include <QtTest>

#include <atomic>
#include <memory>
#include <stdexcept>

Q_DECLARE_METATYPE(Qt::AlignmentFlag)
Q_DECLARE_METATYPE(MenuBar::TimeoutSource)
Q_DECLARE_METATYPE(QMargins)

namespace {

const char* const optionNames[] = {"-res", "-size", "-systype", "-animation"};

void clearOptions()
{
    for (const char* name : optionNames)
        qApp->setProperty(name, QVariant());
}

// A desktop of the given size with a bar on it, shown.
struct Desktop
{
    Desktop(const QSize& size, Qt::AlignmentFlag location, int buttons = 0)
    {
        parent.resize(size);
        bar = new MenuBar(&parent, location);
        fill(buttons);
        parent.show();
    }

    void fill(int buttons)
    {
        for (int i = 0; i < buttons; ++i) {
            auto* button = new QPushButton(QString::number(i), frame());
            bar->applyItemSize(button);
            frame()->layout()->addWidget(button);
            button->show();
        }
        frame()->resize(frame()->sizeHint());
    }

    ScrollableMenuBarFrame* frame() const { return bar->findChild<ScrollableMenuBarFrame*>(); }
    QScrollArea* area() const { return bar->findChild<QScrollArea*>(); }
    QPushButton* tab() const { return bar->findChild<QPushButton*>(QString(), Qt::FindDirectChildrenOnly); }
    ScrollButton* negArrow() const { return bar->findChildren<ScrollButton*>().value(0); }
    ScrollButton* posArrow() const { return bar->findChildren<ScrollButton*>().value(1); }

    QWidget parent;
    MenuBar* bar;
};

// Lets every time-out read finish and its answer reach the bar; a read that supersedes
// another starts only when the first is in, hence the rounds.
void settleTimeoutReads()
{
    for (int round = 0; round < 3; ++round) {
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
    }
}

MenuBar::TimeoutSource fixedTimeout(std::optional<int> seconds)
{
    return [seconds] { return seconds; };
}

} // namespace

class TestMenuBar : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { clearOptions(); }

    void slidesBetweenClosedAndOpenByItsTab_data();
    void slidesBetweenClosedAndOpenByItsTab();
    void tabLeavesRoomBySystemType_data();
    void tabLeavesRoomBySystemType();
    void slidesAnimatedOnlyWhenSwitchedOn();
    void showAndTimeUpActOnlyOnAChange();

    void topRowPagesByViewportsThenToTheEnd();
    void leftRowPagesToEitherEndInOneStep();
    void rowThatFitsStaysPut();
    void frameMovesClampedToItsRow();
    void fingerDragsTheRow();

    void hidesAfterTheEnginesTimeout_data();
    void hidesAfterTheEnginesTimeout();
    void newerStartSupersedesPendingRead();
    void destroyedWhileReadingIsSafe();
};

void TestMenuBar::slidesBetweenClosedAndOpenByItsTab_data()
{
    QTest::addColumn<Qt::AlignmentFlag>("location");
    QTest::addColumn<QSize>("desktop");
    QTest::addColumn<QString>("resolution");
    QTest::addColumn<QString>("screenSize");
    QTest::addColumn<QRect>("closed");
    QTest::addColumn<QRect>("open");
    QTest::addColumn<QRect>("negArrow");
    QTest::addColumn<QRect>("posArrow");
    QTest::addColumn<bool>("arrowsShown");
    QTest::addColumn<int>("areaExtent");
    QTest::addColumn<int>("itemExtent");

    QTest::newRow("top, wide") << Qt::AlignTop << QSize(1280, 800) << QString("1280x800") << QString()
                               << QRect(0, -180, 1280, 225) << QRect(0, -55, 1280, 225) << QRect(5, 99, 49, 49)
                               << QRect(1226, 99, 49, 49) << true << 123 << 184;
    QTest::newRow("top, portrait") << Qt::AlignTop << QSize(480, 800) << QString("480x800") << QString()
                                   << QRect(0, -120, 480, 165) << QRect(0, -35, 480, 165) << QRect(5, 60, 46, 46)
                                   << QRect(429, 60, 46, 46) << true << 90 << 128;
    QTest::newRow("top, landscape") << Qt::AlignTop << QSize(800, 480) << QString() << QString("landscape")
                                    << QRect(375, -89, 50, 129) << QRect(0, -23, 800, 129) << QRect(5, 45, 28, 28)
                                    << QRect(767, 45, 28, 28) << false << 70 << 124;
    QTest::newRow("top, small portrait") << Qt::AlignTop << QSize(600, 1024) << QString() << QString("small_portrait")
                                         << QRect(0, -247, 600, 292) << QRect(0, -77, 600, 292)
                                         << QRect(5, 135, 64, 64) << QRect(531, 135, 64, 64) << true << 160 << 240;
    QTest::newRow("left") << Qt::AlignLeft << QSize(800, 480) << QString() << QString() << QRect(-225, 0, 280, 480)
                          << QRect(-60, 0, 280, 480) << QRect(121, 5, 50, 50) << QRect(121, 425, 50, 50) << true
                          << 172 << 86;
    QTest::newRow("left, wide") << Qt::AlignLeft << QSize(1280, 800) << QString("480x800") << QString("landscape")
                                << QRect(-393, 0, 448, 800) << QRect(-108, 0, 448, 800) << QRect(214, 5, 80, 80)
                                << QRect(214, 715, 80, 80) << true << 275 << 137;
}

void TestMenuBar::slidesBetweenClosedAndOpenByItsTab()
{
    QFETCH(Qt::AlignmentFlag, location);
    QFETCH(QSize, desktop);
    QFETCH(QString, resolution);
    QFETCH(QString, screenSize);
    QFETCH(QRect, closed);
    QFETCH(QRect, open);
    QFETCH(QRect, negArrow);
    QFETCH(QRect, posArrow);
    QFETCH(bool, arrowsShown);
    QFETCH(int, areaExtent);
    QFETCH(int, itemExtent);
    if (!resolution.isEmpty())
        qApp->setProperty("-res", resolution);
    if (!screenSize.isEmpty())
        qApp->setProperty("-size", screenSize);

    Desktop d(desktop, location);
    QSignalSpy toggled(d.bar, &MenuBar::toggled);
    QCOMPARE(d.bar->geometry(), closed);
    QVERIFY(!d.bar->isOpen);
    QCOMPARE(d.negArrow()->geometry(), negArrow);
    QCOMPARE(d.posArrow()->geometry(), posArrow);
    QCOMPARE(d.negArrow()->isVisible(), arrowsShown);
    QVERIFY(!d.negArrow()->isEnabled());
    QVERIFY(!d.posArrow()->isEnabled());
    QCOMPARE(d.frame()->objectName(), QStringLiteral("innerBar"));

    const bool top = location == Qt::AlignTop;
    QCOMPARE(top ? d.area()->height() : d.area()->width(), areaExtent);
    QPushButton item;
    d.bar->applyItemSize(&item);
    QCOMPARE(top ? item.minimumWidth() : item.minimumHeight(), itemExtent);
    QCOMPARE(top ? item.maximumWidth() : item.maximumHeight(), itemExtent);
    QCOMPARE(item.sizePolicy(), d.bar->itemSizePolicy());
    QCOMPARE(item.sizePolicy().horizontalPolicy(), top ? QSizePolicy::Fixed : QSizePolicy::Minimum);

    // The closed landscape bar is narrower than its side margins: its tab has no width
    // there, and only the bar's slots open it.
    if (d.tab()->width() > 0)
        QTest::mouseClick(d.tab(), Qt::LeftButton);
    else
        d.bar->toggle();
    QVERIFY(d.bar->isOpen);
    QCOMPARE(d.bar->geometry(), open);
    QTest::mouseClick(d.tab(), Qt::LeftButton);
    QVERIFY(!d.bar->isOpen);
    QCOMPARE(d.bar->geometry(), closed);
    QCOMPARE(toggled.size(), 2);
    QCOMPARE(toggled.at(0).at(0).toBool(), true);
    QCOMPARE(toggled.at(1).at(0).toBool(), false);
}

void TestMenuBar::tabLeavesRoomBySystemType_data()
{
    QTest::addColumn<QString>("systemType");
    QTest::addColumn<QMargins>("room");
    QTest::newRow("handheld") << QString("handheld") << QMargins(0, 0, 20, 0);
    QTest::newRow("benchtop") << QString("benchtop") << QMargins(0, 0, 0, 20);
}

void TestMenuBar::tabLeavesRoomBySystemType()
{
    QFETCH(QString, systemType);
    QFETCH(QMargins, room);
    if (!systemType.isEmpty())
        qApp->setProperty("-systype", systemType);
    Desktop d(QSize(1280, 800), Qt::AlignTop);
    d.bar->toggle();
    QCoreApplication::processEvents();

    const QWidget* tab = d.tab()->findChild<QFrame*>(QStringLiteral("top"));
    QVERIFY(tab);
    QCOMPARE(tab->geometry(), d.tab()->rect().marginsRemoved(room));
}

void TestMenuBar::slidesAnimatedOnlyWhenSwitchedOn()
{
    qApp->setProperty("-animation", "true");
    Desktop d(QSize(1280, 800), Qt::AlignTop);
    const QRect closed = d.bar->geometry();
    QSignalSpy toggled(d.bar, &MenuBar::toggled);

    d.bar->toggle();
    // The flag and the signal go with the start of the slide, not its end.
    QVERIFY(d.bar->isOpen);
    QCOMPARE(toggled.size(), 1);
    QCOMPARE(d.bar->geometry(), closed);
    QTRY_COMPARE(d.bar->geometry(), QRect(0, -55, 1280, 225));
    d.bar->toggle();
    QVERIFY(!d.bar->isOpen);
    QTRY_COMPARE(d.bar->geometry(), closed);
}

void TestMenuBar::showAndTimeUpActOnlyOnAChange()
{
    Desktop d(QSize(1280, 800), Qt::AlignTop);
    QSignalSpy toggled(d.bar, &MenuBar::toggled);

    QMetaObject::invokeMethod(d.bar, "timeIsUp");
    d.bar->showMenuBar(false);
    QVERIFY(!d.bar->isOpen);
    QCOMPARE(toggled.size(), 0);

    d.bar->showMenuBar(true);
    d.bar->showMenuBar(true);
    QVERIFY(d.bar->isOpen);
    QCOMPARE(toggled.size(), 1);
    QCOMPARE(d.bar->geometry(), QRect(0, -55, 1280, 225));

    QMetaObject::invokeMethod(d.bar, "timeIsUp");
    QVERIFY(!d.bar->isOpen);
    QCOMPARE(toggled.size(), 2);
}

void TestMenuBar::topRowPagesByViewportsThenToTheEnd()
{
    Desktop d(QSize(1280, 800), Qt::AlignTop);
    const int viewport = d.area()->width();
    // Three and a half viewports of buttons.
    d.fill(viewport * 7 / 2 / d.bar->itemExtent() + 1);
    // A move brings the arrows up to date with the longer row.
    d.frame()->move(0, 0);
    const int end = viewport - d.frame()->width();
    QVERIFY(end < -2 * viewport && end > -3 * viewport);
    d.bar->setTimeoutSource(fixedTimeout(8));
    QSignalSpy jumped(d.bar, &MenuBar::jumped);
    QVERIFY(!d.negArrow()->isEnabled());
    QVERIFY(d.posArrow()->isEnabled());

    QTest::mouseClick(d.posArrow(), Qt::LeftButton);
    QCOMPARE(jumped.size(), 1);
    QTRY_COMPARE(d.frame()->pos(), QPoint(-viewport, 0));
    QTRY_VERIFY(d.negArrow()->isEnabled());
    QVERIFY(d.posArrow()->isEnabled());
    // Every arrow release restarts the auto-hide.
    QTRY_VERIFY(d.bar->remainingHideTime() > 7000);

    QTest::mouseClick(d.posArrow(), Qt::LeftButton);
    QTRY_COMPARE(d.frame()->pos(), QPoint(-2 * viewport, 0));
    QTest::mouseClick(d.posArrow(), Qt::LeftButton);
    QTRY_COMPARE(d.frame()->pos(), QPoint(end, 0));
    QTRY_VERIFY(!d.posArrow()->isEnabled());
    QVERIFY(d.negArrow()->isEnabled());

    QTest::mouseClick(d.negArrow(), Qt::LeftButton);
    QTRY_COMPARE(d.frame()->pos(), QPoint(end + viewport, 0));
    d.frame()->move(-viewport + 1, 0);
    QTest::mouseClick(d.negArrow(), Qt::LeftButton);
    QTRY_COMPARE(d.frame()->pos(), QPoint(0, 0));
    QTRY_VERIFY(!d.negArrow()->isEnabled());
    QCOMPARE(jumped.size(), 5);
}

void TestMenuBar::leftRowPagesToEitherEndInOneStep()
{
    Desktop d(QSize(800, 480), Qt::AlignLeft, 12);
    const QSize area = d.area()->size();
    const QSize frame = d.frame()->size();
    QVERIFY(frame.height() > 2 * area.height());

    QMetaObject::invokeMethod(d.bar, "movePos");
    QTRY_COMPARE(d.frame()->pos(), QPoint(area.width() - frame.width(), area.height() - frame.height()));
    QTRY_VERIFY(!d.posArrow()->isEnabled());
    QVERIFY(d.negArrow()->isEnabled());
    QMetaObject::invokeMethod(d.bar, "moveNeg");
    QTRY_COMPARE(d.frame()->pos(), QPoint(0, 0));
    QTRY_VERIFY(d.posArrow()->isEnabled());
}

void TestMenuBar::frameMovesClampedToItsRow()
{
    Desktop top(QSize(1280, 800), Qt::AlignTop, 12);
    ScrollableMenuBarFrame* frame = top.frame();
    const int end = top.area()->width() - frame->width();
    QSignalSpy moving(frame, &ScrollableMenuBarFrame::moving);

    frame->move(-100, 7);
    QCOMPARE(frame->pos(), QPoint(-100, 0));
    QVERIFY(top.negArrow()->isEnabled());
    QVERIFY(top.posArrow()->isEnabled());
    frame->move(40, 7);
    QCOMPARE(frame->pos(), QPoint(0, 0));
    frame->move(QPoint(-5000, 7));
    QCOMPARE(frame->pos(), QPoint(end, 0));
    QVERIFY(!top.posArrow()->isEnabled());
    QCOMPARE(moving.size(), 3);

    Desktop left(QSize(800, 480), Qt::AlignLeft, 12);
    left.frame()->move(30, -60);
    QCOMPARE(left.frame()->pos(), QPoint(0, -60));
}

void TestMenuBar::rowThatFitsStaysPut()
{
    Desktop d(QSize(1280, 800), Qt::AlignTop, 2);
    QSignalSpy moving(d.frame(), &ScrollableMenuBarFrame::moving);
    QSignalSpy jumped(d.bar, &MenuBar::jumped);

    d.frame()->move(-100, 7);
    QCOMPARE(d.frame()->pos(), QPoint(0, 0));
    QCOMPARE(moving.size(), 1);
    QMetaObject::invokeMethod(d.bar, "movePos");
    QMetaObject::invokeMethod(d.bar, "moveNeg");
    QCOMPARE(jumped.size(), 2);
    QTest::qWait(100);
    QCOMPARE(d.frame()->pos(), QPoint(0, 0));
    QVERIFY(!d.negArrow()->isEnabled());
    QVERIFY(!d.posArrow()->isEnabled());
}

void TestMenuBar::fingerDragsTheRow()
{
    Desktop d(QSize(1280, 800), Qt::AlignTop, 12);
    QWidget* frame = d.frame();
    const QPoint start = frame->mapToGlobal(QPoint(20, 20));
    const auto send = [frame](QEvent::Type type, const QPoint& global, Qt::MouseButtons buttons) {
        QMouseEvent event(type, frame->mapFromGlobal(global), global, Qt::LeftButton, buttons, Qt::NoModifier);
        QApplication::sendEvent(frame, &event);
    };

    send(QEvent::MouseButtonPress, start, Qt::LeftButton);
    send(QEvent::MouseMove, start + QPoint(-150, 40), Qt::LeftButton);
    QCOMPARE(frame->pos(), QPoint(-150, 0));
    send(QEvent::MouseMove, start + QPoint(-120, 0), Qt::LeftButton);
    QCOMPARE(frame->pos(), QPoint(-120, 0));
    send(QEvent::MouseMove, start + QPoint(300, 0), Qt::LeftButton);
    QCOMPARE(frame->pos(), QPoint(0, 0));
}

void TestMenuBar::hidesAfterTheEnginesTimeout_data()
{
    QTest::addColumn<MenuBar::TimeoutSource>("source");
    QTest::addColumn<bool>("hides");
    QTest::addColumn<QString>("logged");
    QTest::newRow("zero seconds") << MenuBar::TimeoutSource(fixedTimeout(0)) << true << QString();
    QTest::newRow("no attribute") << MenuBar::TimeoutSource(fixedTimeout(std::nullopt)) << false << QString();
    QTest::newRow("negative") << MenuBar::TimeoutSource(fixedTimeout(-3)) << false
                              << QString("UserInterface - Menu bar time-out out of range, timer left as it is: -3");
    QTest::newRow("throwing") << MenuBar::TimeoutSource([]() -> std::optional<int> {
        throw std::runtime_error("unreachable engine");
    }) << false << QString("UserInterface - Reading the menu bar time-out failed: unreachable engine");
}

void TestMenuBar::hidesAfterTheEnginesTimeout()
{
    QFETCH(MenuBar::TimeoutSource, source);
    QFETCH(bool, hides);
    QFETCH(QString, logged);
    LogCapture log;
    Desktop d(QSize(1280, 800), Qt::AlignTop);
    d.bar->showMenuBar(true);

    d.bar->setTimeoutSource(source);
    d.bar->startTimer();
    settleTimeoutReads();
    if (hides)
        QTRY_VERIFY(!d.bar->isOpen);
    QCOMPARE(d.bar->isOpen, !hides);
    QCOMPARE(d.bar->remainingHideTime(), -1);
    if (!logged.isEmpty())
        QVERIFY2(log.contains(logged), qPrintable(log.lines().join('\n')));
}

void TestMenuBar::newerStartSupersedesPendingRead()
{
    Desktop d(QSize(1280, 800), Qt::AlignTop);
    d.bar->showMenuBar(true);
    auto entered = std::make_shared<QSemaphore>();
    auto release = std::make_shared<QSemaphore>();
    auto calls = std::make_shared<std::atomic<int>>(0);
    d.bar->setTimeoutSource([=]() -> std::optional<int> {
        if (++*calls == 1) {
            entered->release();
            release->acquire();
            return 0;
        }
        return 8;
    });

    d.bar->startTimer();
    QVERIFY(entered->tryAcquire(1, 5000));
    d.bar->startTimer();
    d.bar->startTimer();
    release->release();
    settleTimeoutReads();

    // The first answer, which would have closed the bar at once, is dropped.
    QTRY_VERIFY(d.bar->remainingHideTime() > 7000);
    QVERIFY(d.bar->isOpen);
    QCOMPARE(calls->load(), 2);
}

void TestMenuBar::destroyedWhileReadingIsSafe()
{
    auto entered = std::make_shared<QSemaphore>();
    auto release = std::make_shared<QSemaphore>();
    {
        Desktop d(QSize(1280, 800), Qt::AlignTop);
        d.bar->showMenuBar(true);
        d.bar->setTimeoutSource([=]() -> std::optional<int> {
            entered->release();
            release->acquire();
            return 0;
        });
        d.bar->startTimer();
        QVERIFY(entered->tryAcquire(1, 5000));
    }
    release->release();
    settleTimeoutReads();
}

QTEST_MAIN(TestMenuBar)
#include "tst_menubar.moc"
