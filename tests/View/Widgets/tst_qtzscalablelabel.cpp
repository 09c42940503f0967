// The container title label: how its font shrinks to fit the label's width.

#include "QTZScalableLabel.h"

#include <QFontMetrics>
#include <QtTest>

class TestQTZScalableLabel : public QObject
{
    Q_OBJECT

private slots:
    void keepsFontSizeWhenTextFits();
    void shrinksToLargestSizeThatFits();
    void neverShrinksBelowOnePixel();
    void refitsFromFullSizeOnResize();
    void leavesPointSizedFontAlone();
};

namespace {

// The label inside a parent whose sheet gives it a 20-pixel font, as a container does.
struct Fixture
{
    QWidget parent;
    QTZScalableLabel* label;

    explicit Fixture(int width, const QString& sheet = QStringLiteral("QLabel { font: 20px; }"))
    {
        parent.setStyleSheet(sheet);
        label = new QTZScalableLabel(&parent);
        label->setFixedSize(width, 40);
        parent.show();
        label->ensurePolished();
    }
};

int textWidth(const QFont& base, int pixelSize, const QString& text)
{
    QFont font = base;
    font.setPixelSize(pixelSize);
    return QFontMetrics(font).boundingRect(QRect(0, 0, 1000000, 40), Qt::AlignCenter, text).width();
}

} // namespace

void TestQTZScalableLabel::keepsFontSizeWhenTextFits()
{
    Fixture fixture(400);
    fixture.label->setText(QStringLiteral("Scope"));
    QCOMPARE(fixture.label->text(), QStringLiteral("Scope"));
    QCOMPARE(fixture.label->font().pixelSize(), 20);
}

void TestQTZScalableLabel::shrinksToLargestSizeThatFits()
{
    const QString text = QStringLiteral("Spectrum Analyzer Settings");
    Fixture fixture(100);
    const QFont base = fixture.label->font();
    QCOMPARE(base.pixelSize(), 20);
    QVERIFY(textWidth(base, 20, text) > 2 * 100);

    fixture.label->setText(text);
    const int size = fixture.label->font().pixelSize();
    QVERIFY(size < 20);
    QVERIFY(size >= 1);
    QVERIFY(textWidth(base, size, text) <= 100);
    QVERIFY(textWidth(base, size + 1, text) > 100);
}

void TestQTZScalableLabel::neverShrinksBelowOnePixel()
{
    Fixture fixture(4);
    fixture.label->setText(QStringLiteral("A title far too long for four pixels"));
    QCOMPARE(fixture.label->font().pixelSize(), 1);
}

void TestQTZScalableLabel::refitsFromFullSizeOnResize()
{
    Fixture fixture(60);
    fixture.label->setText(QStringLiteral("Spectrum Analyzer"));
    QVERIFY(fixture.label->font().pixelSize() < 20);

    fixture.label->setFixedSize(600, 40);
    QCOMPARE(fixture.label->font().pixelSize(), 20);
    QCOMPARE(fixture.label->text(), QStringLiteral("Spectrum Analyzer"));
}

void TestQTZScalableLabel::leavesPointSizedFontAlone()
{
    Fixture fixture(10, QStringLiteral("QLabel { font: 20pt; }"));
    fixture.label->setText(QStringLiteral("Spectrum Analyzer"));
    QCOMPARE(fixture.label->font().pointSize(), 20);
}

QTEST_MAIN(TestQTZScalableLabel)
#include "tst_qtzscalablelabel.moc"
