// The speech bubble: its outline per pointer edge and alignment, seen in painted pixels;
// text wrapping; fading in and out; taps inside and outside the outline.

#include "LogCapture.h"

#include "SpeechBubbleImpl.h"

#include <QFontMetricsF>
#include <QtMath>
#include <QPainterPath>
#include <QSignalSpy>
#include <QtTest>

class TestSpeechBubbleImpl : public QObject
{
    Q_OBJECT

private slots:
    void drawsPointerWhereAligned_data();
    void drawsPointerWhereAligned();
    void wrapsLongTextAt250Pixels();
    void paintsNothingAtStartOfFade();
    void tapInsideFadesOutAndHides();
    void logsUnsupportedShapes_data();
    void logsUnsupportedShapes();
};

namespace {

// What the bubble paints, over nothing.
QImage painted(QWidget& widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

bool paintedAt(const QImage& image, const QPoint& point)
{
    return qAlpha(image.pixel(point)) > 128;
}

} // namespace

void TestSpeechBubbleImpl::drawsPointerWhereAligned_data()
{
    QTest::addColumn<int>("direction");
    QTest::addColumn<int>("alignment");
    QTest::newRow("bottom edge, left") << int(SpeechBubbleImpl::pdBottom) << int(SpeechBubbleImpl::paTopOrLeft);
    QTest::newRow("bottom edge, right") << int(SpeechBubbleImpl::pdBottom) << int(SpeechBubbleImpl::paBottomOrRight);
    QTest::newRow("top edge, left") << int(SpeechBubbleImpl::pdTop) << int(SpeechBubbleImpl::paTopOrLeft);
    QTest::newRow("top edge, right") << int(SpeechBubbleImpl::pdTop) << int(SpeechBubbleImpl::paBottomOrRight);
}

void TestSpeechBubbleImpl::drawsPointerWhereAligned()
{
    QFETCH(int, direction);
    QFETCH(int, alignment);
    QWidget parent;
    parent.resize(600, 400);
    SpeechBubbleImpl bubble(&parent);
    bubble.setPointDirection(SpeechBubbleImpl::PointDirection_t(direction));
    bubble.setPointAlignment(SpeechBubbleImpl::PointAlignment_t(alignment));
    bubble.setColorScheme(SpeechBubbleImpl::csGreen);
    bubble.setText(QStringLiteral("Sweep complete"));
    bubble.setOpacity(255);

    // The pointer sticks out beyond the box: below it at the bottom, above it at the top,
    // near the left or the right end.
    const QRect box = bubble.shape().boundingRect().toRect();
    const bool bottom = direction == SpeechBubbleImpl::pdBottom;
    const int y = bottom ? box.bottom() - 12 : 15;
    const QPoint left(bottom ? 20 : box.left() + 13, y);
    const QPoint right(bottom ? box.right() - 18 : box.right() - 16, y);
    const bool atLeft = alignment == SpeechBubbleImpl::paTopOrLeft;

    const QImage image = painted(bubble);
    QCOMPARE(paintedAt(image, atLeft ? left : right), true);
    QCOMPARE(paintedAt(image, atLeft ? right : left), false);
    // The box itself, in the scheme's fill.
    QCOMPARE(QColor(image.pixel(box.left() + 8, box.center().y())).green(), 161);
    QCOMPARE(bubble.size(), QSize(2 * box.x() + box.width(), 2 * box.y() + box.height()));
}

void TestSpeechBubbleImpl::wrapsLongTextAt250Pixels()
{
    SpeechBubbleImpl bubble;
    bubble.setText(QStringLiteral("Fan"));
    const QRectF oneWord = bubble.shape().boundingRect();
    const QString shortText = QStringLiteral("Synthesizer unlocked");
    bubble.setText(shortText);
    const QRectF oneLine = bubble.shape().boundingRect();
    QFont font = bubble.font();
    font.setPointSize(10);
    // The bottom-pointer box runs 15 pixels either side of the text, on one line.
    QCOMPARE(int(oneLine.width()) - 30, qCeil(QFontMetricsF(font).horizontalAdvance(shortText)));
    QCOMPARE(oneLine.height(), oneWord.height());

    bubble.setText(QStringLiteral("Input overload: RF attenuator set to 30 dB while the sweep was running on "
                                  "all four channels of the second module"));
    const QRectF wrapped = bubble.shape().boundingRect();
    QVERIFY(wrapped.width() - 30 <= SpeechBubbleImpl::MaxLineWidth);
    QVERIFY(wrapped.width() - 30 > SpeechBubbleImpl::MaxLineWidth - 60);
    QVERIFY(wrapped.height() > oneLine.height() + QFontMetrics(font).height());
}

void TestSpeechBubbleImpl::paintsNothingAtStartOfFade()
{
    QWidget parent;
    parent.resize(600, 400);
    parent.show();
    SpeechBubbleImpl bubble(&parent);
    bubble.setText(QStringLiteral("Synthesizer unlocked"));
    bubble.show(QPoint(50, 300));
    QVERIFY(bubble.isAnimating());
    QCOMPARE(bubble.opacity(), 0);
    const QImage image = painted(bubble);
    QCOMPARE(paintedAt(image, bubble.shape().boundingRect().center().toPoint()), false);
}

void TestSpeechBubbleImpl::tapInsideFadesOutAndHides()
{
    QWidget parent;
    parent.resize(600, 400);
    parent.show();
    SpeechBubbleImpl bubble(&parent);
    QSignalSpy finished(&bubble, &SpeechBubbleImpl::finished);
    bubble.setText(QStringLiteral("GPS locked"));
    bubble.show(QPoint(50, 300));
    QCOMPARE(bubble.geometry().bottomLeft(), QPoint(50, 299));
    QTRY_VERIFY_WITH_TIMEOUT(!bubble.isAnimating(), SpeechBubbleImpl::FadeTimeMs + 2000);
    QCOMPARE(bubble.opacity(), 255);
    QVERIFY(bubble.remainingShowTime() > SpeechBubbleImpl::ShowTimeMs - 3000);

    // The widget's transparent corner is no part of the bubble.
    QTest::mouseClick(&bubble, Qt::LeftButton, Qt::NoModifier, QPoint(1, 1));
    QVERIFY(!bubble.isAnimating());
    QVERIFY(bubble.isVisible());

    QTest::mouseClick(&bubble, Qt::LeftButton, Qt::NoModifier, bubble.shape().boundingRect().center().toPoint());
    QVERIFY(bubble.isAnimating());
    QCOMPARE(bubble.remainingShowTime(), -1);
    QVERIFY(finished.wait(SpeechBubbleImpl::FadeTimeMs + 2000));
    QVERIFY(!bubble.isVisible());
    QCOMPARE(bubble.opacity(), 0);
}

void TestSpeechBubbleImpl::logsUnsupportedShapes_data()
{
    QTest::addColumn<int>("direction");
    QTest::addColumn<int>("alignment");
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("hasOutline");
    QTest::newRow("middle of the top edge") << int(SpeechBubbleImpl::pdTop) << int(SpeechBubbleImpl::paMiddle)
                                            << "UserInterface - SpeechBubble paMiddle is not Implemented yet! " << false;
    QTest::newRow("middle of the bottom edge")
        << int(SpeechBubbleImpl::pdBottom) << int(SpeechBubbleImpl::paMiddle)
        << "UserInterface - SpeechBubble paMiddle is not implemented yet!" << true;
    QTest::newRow("side edge") << 1 << int(SpeechBubbleImpl::paTopOrLeft)
                               << "UserInterface - SpeechBubble invalid point direction!" << false;
}

void TestSpeechBubbleImpl::logsUnsupportedShapes()
{
    QFETCH(int, direction);
    QFETCH(int, alignment);
    QFETCH(QString, line);
    QFETCH(bool, hasOutline);
    LogCapture log;
    SpeechBubbleImpl bubble;
    bubble.setText(QStringLiteral("Trace saved"));
    bubble.setPointAlignment(SpeechBubbleImpl::PointAlignment_t(alignment));
    bubble.setPointDirection(SpeechBubbleImpl::PointDirection_t(direction));
    QVERIFY2(log.contains(line), qPrintable(log.lines().join('\n')));
    // Without its bottom edge the outline still encloses the text.
    QCOMPARE(bubble.shape().boundingRect().height() > 20, hasOutline);
}

QTEST_MAIN(TestSpeechBubbleImpl)
#include "tst_speechbubbleimpl.moc"
