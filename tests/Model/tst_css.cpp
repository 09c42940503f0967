// The palette's texts are colours a style sheet accepts, and the painting colour
// matches its style-sheet twin.

#include "CSS.h"

#include <QRegularExpression>
#include <QtTest>

class TestCSS : public QObject
{
    Q_OBJECT

private slots:
    void hexColoursAreValid_data();
    void hexColoursAreValid();
    void rgbaTextsMatchTheirColours_data();
    void rgbaTextsMatchTheirColours();

private:
    static QColor fromRgbaText(const QString& text);
};

void TestCSS::hexColoursAreValid_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("border") << CSS::border();
    QTest::newRow("highlight") << CSS::highlight();
    QTest::newRow("gradient light") << CSS::gradientLight();
    QTest::newRow("gradient middle") << CSS::gradientMiddle();
    QTest::newRow("gradient dark") << CSS::gradientDark();
}

void TestCSS::hexColoursAreValid()
{
    QFETCH(QString, text);
    QVERIFY(text.startsWith(QLatin1Char('#')));
    QVERIFY2(QColor::isValidColor(text), qPrintable(text));
}

QColor TestCSS::fromRgbaText(const QString& text)
{
    static const QRegularExpression rgba(QStringLiteral("^rgba\\((\\d+),(\\d+),(\\d+),(\\d+)\\)$"));
    const QRegularExpressionMatch match = rgba.match(text);
    if (!match.hasMatch())
        return QColor();
    return QColor(match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt(),
                  match.captured(4).toInt());
}

void TestCSS::rgbaTextsMatchTheirColours_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QColor>("colour");
    QTest::newRow("accent") << CSS::accentRGBA() << CSS::accentQColor();
    QTest::newRow("invisible area") << CSS::invisArea() << QColor(255, 255, 255, 0);
}

void TestCSS::rgbaTextsMatchTheirColours()
{
    QFETCH(QString, text);
    QFETCH(QColor, colour);
    QCOMPARE(fromRgbaText(text), colour);
}

QTEST_MAIN(TestCSS)
#include "tst_css.moc"
