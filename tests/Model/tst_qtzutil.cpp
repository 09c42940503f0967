// Ohm texts as rich text and as measured widths, and the "AxB" option format.

#include "QTZUtil.h"

#include <QFont>
#include <QtTest>

namespace {
const QString ohmSign = QString(QChar(0x2126));
const QString richOhm = QStringLiteral("<font face='Times'>") + ohmSign + QStringLiteral("</font>");
}

class TestQTZUtil : public QObject
{
    Q_OBJECT

private slots:
    void rewritesOhmForms_data();
    void rewritesOhmForms();
    void processesOnlyTextsNamingTheUnit_data();
    void processesOnlyTextsNamingTheUnit();
    void measuresOhmAsCapitalO_data();
    void measuresOhmAsCapitalO();
    void parsesDimensions_data();
    void parsesDimensions();
};

void TestQTZUtil::rewritesOhmForms_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("rewritten");

    QTest::newRow("Ohms") << QStringLiteral("10 Ohms") << QStringLiteral("10 ") + richOhm;
    QTest::newRow("OHM") << QStringLiteral("10 OHM") << QStringLiteral("10 ") + richOhm;
    QTest::newRow("mixed case, twice") << QStringLiteral("oHm/ohM") << richOhm + QStringLiteral("/") + richOhm;
    // Once "ohms" occurs, a lone "ohm" elsewhere stays as written.
    QTest::newRow("ohms wins over ohm") << QStringLiteral("1 ohm or 2 ohms")
                                        << QStringLiteral("1 ohm or 2 ") + richOhm;
    QTest::newRow("sign") << QStringLiteral("50 ") + ohmSign << QStringLiteral("50 ") + richOhm;
    QTest::newRow("written form wins over sign")
        << QStringLiteral("ohm ") + ohmSign << richOhm + QStringLiteral(" ") + ohmSign;
    QTest::newRow("non-ASCII around") << QStringLiteral("Pr\u00fcfwiderstand 10 kOhm \u6e2c\u8a66")
                                      << QStringLiteral("Pr\u00fcfwiderstand 10 k") + richOhm
                                             + QStringLiteral(" \u6e2c\u8a66");
    // Greek capital omega looks the same but is another character.
    QTest::newRow("greek omega untouched") << QStringLiteral("10 \u03a9") << QStringLiteral("10 \u03a9");
    QTest::newRow("no unit") << QStringLiteral("Frequency 10 MHz") << QStringLiteral("Frequency 10 MHz");
    QTest::newRow("empty") << QString() << QString();
}

void TestQTZUtil::rewritesOhmForms()
{
    QFETCH(QString, text);
    QFETCH(QString, rewritten);
    QTZUtil::addOhmSymbol(text);
    QCOMPARE(text, rewritten);
}

void TestQTZUtil::processesOnlyTextsNamingTheUnit_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("processed");

    QTest::newRow("ohms") << QStringLiteral("5 ohms") << QStringLiteral("5 ") + richOhm;
    QTest::newRow("sign") << ohmSign << richOhm;
    QTest::newRow("upper case") << QStringLiteral("OHMS") << richOhm;
    QTest::newRow("plain") << QStringLiteral("Level \u00b1 3 dB") << QStringLiteral("Level \u00b1 3 dB");
    QTest::newRow("near miss") << QStringLiteral("oh m") << QStringLiteral("oh m");
    QTest::newRow("empty") << QStringLiteral("") << QStringLiteral("");
}

void TestQTZUtil::processesOnlyTextsNamingTheUnit()
{
    QFETCH(QString, text);
    QFETCH(QString, processed);
    QTZUtil::processString(text);
    QCOMPARE(text, processed);
}

void TestQTZUtil::measuresOhmAsCapitalO_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("measuredAs");

    QTest::newRow("ohms") << QStringLiteral("5 ohms") << QStringLiteral("5 O");
    QTest::newRow("Ohm") << QStringLiteral("5 Ohm") << QStringLiteral("5 O");
    QTest::newRow("sign") << QStringLiteral("5 ") + ohmSign << QStringLiteral("5 O");
    QTest::newRow("plain") << QStringLiteral("5 V") << QStringLiteral("5 V");
    QTest::newRow("non-ASCII") << QStringLiteral("\u6e2c\u8a66 ohm") << QStringLiteral("\u6e2c\u8a66 O");
    QTest::newRow("empty") << QString() << QString();
}

void TestQTZUtil::measuresOhmAsCapitalO()
{
    QFETCH(QString, text);
    QFETCH(QString, measuredAs);
    QFont font;
    font.setPixelSize(17);
    const QFontMetrics metrics(font);
    const QString before = text;
    QCOMPARE(QTZUtil::calculateStringWidth(metrics, text), metrics.horizontalAdvance(measuredAs));
    QCOMPARE(text, before);
}

void TestQTZUtil::parsesDimensions_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");

    QTest::newRow("resolution") << QStringLiteral("800x480") << true << 800 << 480;
    QTest::newRow("grid") << QStringLiteral("2x4") << true << 2 << 4;
    QTest::newRow("empty") << QString() << false << -1 << -1;
    QTest::newRow("no separator") << QStringLiteral("800") << false << -1 << -1;
    QTest::newRow("capital X") << QStringLiteral("800X480") << false << -1 << -1;
    QTest::newRow("three parts") << QStringLiteral("1x2x3") << false << -1 << -1;
    QTest::newRow("missing second") << QStringLiteral("800x") << false << -1 << -1;
    QTest::newRow("zero") << QStringLiteral("0x480") << false << -1 << -1;
    QTest::newRow("negative") << QStringLiteral("800x-480") << false << -1 << -1;
    QTest::newRow("words") << QStringLiteral("wide x tall") << false << -1 << -1;
    QTest::newRow("multiplication sign") << QStringLiteral("800\u00d7480") << false << -1 << -1;
}

void TestQTZUtil::parsesDimensions()
{
    QFETCH(QString, text);
    QFETCH(bool, valid);
    QFETCH(int, first);
    QFETCH(int, second);

    int a = -1;
    int b = -1;
    QCOMPARE(QTZUtil::parseDimensions(text, &a, &b), valid);
    QCOMPARE(a, first);
    QCOMPARE(b, second);
}

QTEST_MAIN(TestQTZUtil)
#include "tst_qtzutil.moc"
