// The paging arrows: their size from the bar, when they report a tap, and how they draw.

#include "LogCapture.h"
#include "ScrollButton.h"

#include <QtTest>

Q_DECLARE_METATYPE(Qt::ArrowType)

namespace {

// The widget as it draws itself over a black background, so that what it leaves
// unpainted cannot pass for one of its colours.
QImage drawn(ScrollButton& button)
{
    QImage image(button.size(), QImage::Format_ARGB32);
    image.fill(Qt::black);
    button.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

bool isWhite(QRgb pixel)
{
    return qRed(pixel) > 235 && qGreen(pixel) > 235 && qBlue(pixel) > 235;
}

bool isBlack(QRgb pixel)
{
    return qRed(pixel) < 20 && qGreen(pixel) < 20 && qBlue(pixel) < 20;
}

bool isGrey(QRgb pixel)
{
    return qAbs(qRed(pixel) - qGreen(pixel)) < 4 && qAbs(qGreen(pixel) - qBlue(pixel)) < 4;
}

} // namespace

class TestScrollButton : public QObject
{
    Q_OBJECT

private slots:
    void takesItsSizeFromTheParent_data();
    void takesItsSizeFromTheParent();
    void reportsOnlyAReleaseInside();
    void drawsTheArrowPointingItsWay_data();
    void drawsTheArrowPointingItsWay();
    void fillFollowsPressAndEnabledState();
};

void TestScrollButton::takesItsSizeFromTheParent_data()
{
    QTest::addColumn<Qt::ArrowType>("direction");
    QTest::addColumn<int>("side");
    QTest::addColumn<bool>("invalid");
    // The parent is 280 by 225.
    QTest::newRow("up") << Qt::UpArrow << 50 << false;
    QTest::newRow("down") << Qt::DownArrow << 50 << false;
    QTest::newRow("left") << Qt::LeftArrow << 49 << false;
    QTest::newRow("right") << Qt::RightArrow << 49 << false;
    QTest::newRow("none") << Qt::NoArrow << 0 << true;
}

void TestScrollButton::takesItsSizeFromTheParent()
{
    QFETCH(Qt::ArrowType, direction);
    QFETCH(int, side);
    QFETCH(bool, invalid);
    LogCapture log;
    QWidget bar;
    bar.resize(280, 225);

    ScrollButton button(direction, &bar);
    QCOMPARE(button.size(), QSize(side, side));
    QCOMPARE(button.objectName(), QStringLiteral("ScrollButton"));
    QCOMPARE(log.contains(QStringLiteral("ScrollButton: Invalid arrow type given.")), invalid);
    // An invalid button still paints, unrotated.
    button.resize(40, 40);
    QVERIFY(!drawn(button).isNull());
}

void TestScrollButton::reportsOnlyAReleaseInside()
{
    QWidget bar;
    bar.resize(280, 225);
    ScrollButton button(Qt::RightArrow, &bar);
    QSignalSpy down(&button, &ScrollButton::mouseDown);
    QSignalSpy up(&button, &ScrollButton::mouseUp);

    QTest::mouseClick(&button, Qt::LeftButton, Qt::NoModifier, QPoint(20, 20));
    QCOMPARE(down.size(), 1);
    QCOMPARE(up.size(), 1);

    QTest::mousePress(&button, Qt::LeftButton, Qt::NoModifier, QPoint(20, 20));
    QTest::mouseRelease(&button, Qt::LeftButton, Qt::NoModifier, QPoint(button.width() + 5, 20));
    QCOMPARE(down.size(), 2);
    QCOMPARE(up.size(), 1);
}

void TestScrollButton::drawsTheArrowPointingItsWay_data()
{
    QTest::addColumn<Qt::ArrowType>("direction");
    QTest::addColumn<QPoint>("towardsTip");
    QTest::newRow("up") << Qt::UpArrow << QPoint(0, -1);
    QTest::newRow("down") << Qt::DownArrow << QPoint(0, 1);
    QTest::newRow("left") << Qt::LeftArrow << QPoint(-1, 0);
    QTest::newRow("right") << Qt::RightArrow << QPoint(1, 0);
}

void TestScrollButton::drawsTheArrowPointingItsWay()
{
    QFETCH(Qt::ArrowType, direction);
    QFETCH(QPoint, towardsTip);
    QWidget bar;
    bar.resize(280, 225);
    ScrollButton button(direction, &bar);
    button.resize(88, 88);

    // The triangle reaches 22 pixels from the centre towards its tip, 11 towards its base.
    const QImage image = drawn(button);
    const QPoint centre(44, 44);
    QVERIFY(isWhite(image.pixel(centre + 13 * towardsTip)));
    const QRgb behindBase = image.pixel(centre - 17 * towardsTip);
    QVERIFY(!isWhite(behindBase));
    QVERIFY(qBlue(behindBase) > 100);
}

void TestScrollButton::fillFollowsPressAndEnabledState()
{
    QWidget bar;
    bar.resize(280, 400);
    ScrollButton button(Qt::LeftArrow, &bar);
    QCOMPARE(button.size(), QSize(88, 88));
    const QPoint nearTop(44, 10);
    const QPoint nearBottom(44, 78);
    const QPoint onArrow(31, 44);
    // Beyond the circle's 3-pixel white rim.
    const QPoint outside(1, 1);

    QImage image = drawn(button);
    QVERIFY(isBlack(image.pixel(outside)));
    // Light blue at the top, darker towards the bottom.
    QVERIFY(qBlue(image.pixel(nearTop)) > 200 && qRed(image.pixel(nearTop)) < 40);
    QVERIFY(qGreen(image.pixel(nearTop)) > qGreen(image.pixel(nearBottom)) + 60);
    QVERIFY(isWhite(image.pixel(onArrow)));
    QVERIFY(isWhite(image.pixel(44, 3)));

    QTest::mousePress(&button, Qt::LeftButton, Qt::NoModifier, QPoint(20, 20));
    image = drawn(button);
    QVERIFY(isWhite(image.pixel(nearTop)));
    QVERIFY(isBlack(image.pixel(onArrow)));
    QTest::mouseRelease(&button, Qt::LeftButton, Qt::NoModifier, QPoint(20, 20));

    button.setEnabled(false);
    image = drawn(button);
    QVERIFY(isGrey(image.pixel(nearTop)) && qRed(image.pixel(nearTop)) > 120);
    QVERIFY(isGrey(image.pixel(nearBottom)) && qRed(image.pixel(nearBottom)) < qRed(image.pixel(nearTop)) - 60);
    QVERIFY(isWhite(image.pixel(onArrow)));
}

QTEST_MAIN(TestScrollButton)
#include "tst_scrollbutton.moc"
