// The touch scroll bars: the look of each style and size, a touch that jumps to its
// point, and the page step that follows the track length.

#include "ScrollBarImpl.h"

#include <QApplication>
#include <QFile>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QtTest>

#include <memory>

using Lumaro::gui::HorizontalScrollBarImpl;
using Lumaro::gui::ScrollBarImpl;
using Lumaro::gui::VerticalScrollBarImpl;

namespace {

std::unique_ptr<ScrollBarImpl> makeBar(Qt::Orientation orientation)
{
    if (orientation == Qt::Vertical)
        return std::make_unique<VerticalScrollBarImpl>();
    return std::make_unique<HorizontalScrollBarImpl>();
}

// A bar of the given track length in a shown window, so that its style sheet lays out
// its parts (as a child: a window of its own would take the sheet's size limits).
struct ShownBar
{
    ShownBar(Qt::Orientation orientation, int length)
    {
        if (orientation == Qt::Vertical)
            bar = new VerticalScrollBarImpl(&window);
        else
            bar = new HorizontalScrollBarImpl(&window);
        setLength(orientation, length);
        window.resize(500, 500);
        window.show();
    }

    void setLength(Qt::Orientation orientation, int length)
    {
        bar->setGeometry(orientation == Qt::Vertical ? QRect(0, 0, 30, length) : QRect(0, 0, length, 30));
    }

    QWidget window;
    ScrollBarImpl* bar = nullptr;
};

QPoint along(Qt::Orientation orientation, int position)
{
    return orientation == Qt::Vertical ? QPoint(15, position) : QPoint(position, 15);
}

} // namespace

class TestScrollBarImpl : public QObject
{
    Q_OBJECT

private slots:
    void startsAsATouchBar_data();
    void startsAsATouchBar();
    void sheetFollowsStyleAndSize_data();
    void sheetFollowsStyleAndSize();
    void touchJumpsToThePoint_data();
    void touchJumpsToThePoint();
    void arrowStyleScrollsAsAnOrdinaryBar_data();
    void arrowStyleScrollsAsAnOrdinaryBar();
    void pageStepFollowsLengthOnAStepChange_data();
    void pageStepFollowsLengthOnAStepChange();
};

void TestScrollBarImpl::startsAsATouchBar_data()
{
    QTest::addColumn<Qt::Orientation>("orientation");
    QTest::addColumn<QSize>("hint");
    QTest::newRow("vertical") << Qt::Vertical << QSize(30, 75);
    QTest::newRow("horizontal") << Qt::Horizontal << QSize(75, 30);
}

void TestScrollBarImpl::startsAsATouchBar()
{
    QFETCH(Qt::Orientation, orientation);
    QFETCH(QSize, hint);
    auto bar = makeBar(orientation);

    QCOMPARE(bar->orientation(), orientation);
    QCOMPARE(bar->objectName(), QStringLiteral("ScrollBarImpl"));
    QCOMPARE(bar->getStyle(), ScrollBarImpl::BRIVANE_DEFAULT);
    QCOMPARE(bar->property("Style").toInt(), int(ScrollBarImpl::BRIVANE_DEFAULT));
    QCOMPARE(bar->minimum(), 0);
    QCOMPARE(bar->maximum(), 100);
    QCOMPARE(bar->value(), 0);
    QCOMPARE(bar->pageStep(), 10);
    QVERIFY(bar->invertedControls());
    QVERIFY(!bar->invertedAppearance());
    QCOMPARE(bar->focusPolicy(), Qt::NoFocus);
    QCOMPARE(bar->minimumSizeHint(), hint);
    QCOMPARE(bar->sizeHint(), hint);
    QCOMPARE(bar->minimumSize(), hint);
    QCOMPARE(bar->sizePolicy(), QSizePolicy(QSizePolicy::Minimum, QSizePolicy::Minimum));
    QVERIFY(bar->styleSheet().contains(QLatin1String(":/images/svg/scrollButton.svg")));
}

void TestScrollBarImpl::sheetFollowsStyleAndSize_data()
{
    QTest::addColumn<Qt::Orientation>("orientation");
    QTest::addColumn<int>("style");
    QTest::addColumn<QString>("size");
    // Images and colours the expected sheet names, and one it must not name.
    QTest::addColumn<QStringList>("shown");
    QTest::addColumn<QString>("absent");

    QTest::newRow("vertical default max") << Qt::Vertical << 0 << "Max"
        << QStringList{":/images/svg/scrollButton.svg"} << ":/images/svg/downButton.svg";
    QTest::newRow("vertical arrows max") << Qt::Vertical << 1 << "Max"
        << QStringList{":/images/svg/scrollButton.svg", ":/images/svg/upButton.svg",
                       ":/images/svg/downButton.svg", ":/images/svg/upButton_pressed.svg",
                       ":/images/svg/downButton_pressed.svg"}
        << "arrow_off.png";
    QTest::newRow("vertical min") << Qt::Vertical << 1 << "Min"
        << QStringList{":/images/uarrow_off.png", ":/images/darrow_off.png",
                       ":/images/uarrow_on.png", ":/images/darrow_on.png", "#7c9cbb"}
        << "scrollButton.svg";
    QTest::newRow("horizontal default max") << Qt::Horizontal << 0 << "Max"
        << QStringList{":/images/svg/scrollButton.svg"} << ":/images/svg/rightButton.svg";
    QTest::newRow("horizontal arrows max") << Qt::Horizontal << 1 << "Max"
        << QStringList{":/images/svg/leftButton.svg", ":/images/svg/rightButton.svg",
                       ":/images/svg/leftButton_pressed.svg", ":/images/svg/rightButton_pressed.svg"}
        << "upButton";
    QTest::newRow("horizontal min") << Qt::Horizontal << 0 << "Min"
        << QStringList{":/images/larrow_off.png", ":/images/rarrow_off.png",
                       ":/images/larrow_on.png", ":/images/rarrow_on.png"}
        << "uarrow";
}

void TestScrollBarImpl::sheetFollowsStyleAndSize()
{
    QFETCH(Qt::Orientation, orientation);
    QFETCH(int, style);
    QFETCH(QString, size);
    QFETCH(QStringList, shown);
    QFETCH(QString, absent);
    auto bar = makeBar(orientation);

    bar->setStyle(ScrollBarImpl::Style(style));
    bar->changeSize(size);
    const QString sheet = bar->styleSheet();
    for (const QString& image : shown)
        QVERIFY2(sheet.contains(image), qPrintable(image));
    QVERIFY(!sheet.contains(absent));
    // Every image the sheet names is in the bundle.
    QRegularExpression url(QStringLiteral("url\\((:[^)]+)\\)"));
    for (auto match = url.globalMatch(sheet); match.hasNext();) {
        const QString path = match.next().captured(1);
        QVERIFY2(QFile::exists(path), qPrintable(path));
    }

    // Size names other than "Max" and "Min" keep the look.
    bar->changeSize(QStringLiteral("Thumb"));
    QCOMPARE(bar->styleSheet(), sheet);
    // Setting a style shows its full look, whatever the size was.
    bar->setStyle(ScrollBarImpl::Style(style));
    bar->changeSize(QStringLiteral("Max"));
    const QString full = bar->styleSheet();
    bar->changeSize(QStringLiteral("Min"));
    bar->setStyle(ScrollBarImpl::Style(style));
    QCOMPARE(bar->styleSheet(), full);
}

void TestScrollBarImpl::touchJumpsToThePoint_data()
{
    QTest::addColumn<Qt::Orientation>("orientation");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("expected");
    // 420 pixels of track map the 380 between the handle's half lengths onto 0 to 100.
    for (Qt::Orientation orientation : {Qt::Vertical, Qt::Horizontal}) {
        const char* name = orientation == Qt::Vertical ? "vertical" : "horizontal";
        QTest::addRow("%s at the start", name) << orientation << 0 << 0;
        QTest::addRow("%s 20 in", name) << orientation << 20 << 0;
        QTest::addRow("%s in the middle", name) << orientation << 210 << 50;
        QTest::addRow("%s truncated", name) << orientation << 100 << 21;
        QTest::addRow("%s 20 before the end", name) << orientation << 400 << 100;
        QTest::addRow("%s at the end", name) << orientation << 419 << 100;
    }
}

void TestScrollBarImpl::touchJumpsToThePoint()
{
    QFETCH(Qt::Orientation, orientation);
    QFETCH(int, position);
    QFETCH(int, expected);
    ShownBar shown(orientation, 420);
    ScrollBarImpl* bar = shown.bar;
    bar->setValue(37);

    QTest::mousePress(bar, Qt::LeftButton, Qt::NoModifier, along(orientation, position));
    QCOMPARE(bar->value(), expected);

    // Dragging follows the finger the same way.
    QMouseEvent move(QEvent::MouseMove, along(orientation, 210), Qt::LeftButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(bar, &move);
    QCOMPARE(bar->value(), 50);
    QTest::mouseRelease(bar, Qt::LeftButton, Qt::NoModifier, along(orientation, 210));
}

void TestScrollBarImpl::arrowStyleScrollsAsAnOrdinaryBar_data()
{
    QTest::addColumn<Qt::Orientation>("orientation");
    QTest::newRow("vertical") << Qt::Vertical;
    QTest::newRow("horizontal") << Qt::Horizontal;
}

void TestScrollBarImpl::arrowStyleScrollsAsAnOrdinaryBar()
{
    QFETCH(Qt::Orientation, orientation);
    ShownBar shown(orientation, 420);
    ScrollBarImpl* bar = shown.bar;
    // As a form sets it.
    QVERIFY(bar->setProperty("Style", ScrollBarImpl::WITH_SCROLL_ARROWS));
    QCOMPARE(bar->getStyle(), ScrollBarImpl::WITH_SCROLL_ARROWS);

    // The arrow button at the far end steps once instead of jumping there.
    QTest::mousePress(bar, Qt::LeftButton, Qt::NoModifier, along(orientation, 410));
    QTest::mouseRelease(bar, Qt::LeftButton, Qt::NoModifier, along(orientation, 410));
    QCOMPARE(bar->value(), bar->singleStep());

    // Back to the touch style, the same point jumps to the end.
    bar->setStyle(ScrollBarImpl::BRIVANE_DEFAULT);
    QTest::mousePress(bar, Qt::LeftButton, Qt::NoModifier, along(orientation, 410));
    QCOMPARE(bar->value(), 100);
}

void TestScrollBarImpl::pageStepFollowsLengthOnAStepChange_data()
{
    QTest::addColumn<Qt::Orientation>("orientation");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("expected");
    // 400 pixels are 20 pages of 20 pixels.
    QTest::newRow("vertical 0 to 100") << Qt::Vertical << 100 << 5;
    QTest::newRow("vertical 0 to 10 keeps 2") << Qt::Vertical << 10 << 2;
    QTest::newRow("horizontal 0 to 100") << Qt::Horizontal << 100 << 5;
    QTest::newRow("horizontal 0 to 10 keeps 1") << Qt::Horizontal << 10 << 1;
}

void TestScrollBarImpl::pageStepFollowsLengthOnAStepChange()
{
    QFETCH(Qt::Orientation, orientation);
    QFETCH(int, maximum);
    QFETCH(int, expected);
    ShownBar shown(orientation, 400);
    ScrollBarImpl* bar = shown.bar;
    bar->setRange(0, maximum);
    QCOMPARE(bar->pageStep(), 10);

    bar->setSingleStep(3);
    QCOMPARE(bar->pageStep(), expected);
    bar->setPageStep(40);
    QCOMPARE(bar->pageStep(), expected);

    // The range and the size alone leave it as it is.
    bar->setRange(0, maximum * 10);
    shown.setLength(orientation, 200);
    QCOMPARE(bar->pageStep(), expected);
}

QTEST_MAIN(TestScrollBarImpl)
#include "tst_scrollbarimpl.moc"
