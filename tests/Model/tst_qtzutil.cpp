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
    void rewritesAndMeasuresOhmForms_data();
    void rewritesAndMeasuresOhmForms();
    void parsesDimensions_data();
    void parsesDimensions();
};

void TestQTZUtil::rewritesAndMeasuresOhmForms_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("rewritten");
    QTest::addColumn<QString>("measuredAs");

    QTest::newRow("Ohms") << "10 Ohms" << "10 " + richOhm << "10 O";
    QTest::newRow("OHM, twice") << "OHM/oHm" << richOhm + "/" + richOhm << "O/O";
    // Once "ohms" occurs, a lone "ohm" elsewhere stays as written.
    QTest::newRow("ohms wins over ohm") << "1 ohm or 2 ohms" << "1 ohm or 2 " + richOhm << "1 ohm or 2 O";
    QTest::newRow("sign") << "50 " + ohmSign << "50 " + richOhm << "50 O";
    QTest::newRow("written form wins over sign") << "ohm " + ohmSign << richOhm + " " + ohmSign << "O " + ohmSign;
    QTest::newRow("non-ASCII around") << QStringLiteral("Pr\u00fcfung 10 kOhm \u6e2c\u8a66")
                                      << QStringLiteral("Pr\u00fcfung 10 k") + richOhm + QStringLiteral(" \u6e2c\u8a66")
                                      << QStringLiteral("Pr\u00fcfung 10 kO \u6e2c\u8a66");
    // Greek capital omega looks the same but is another character.
    QTest::newRow("greek omega") << QStringLiteral("10 \u03a9") << QStringLiteral("10 \u03a9")
                                 << QStringLiteral("10 \u03a9");
    QTest::newRow("no unit") << "oh m" << "oh m" << "oh m";
    QTest::newRow("empty") << QString() << QString() << QString();
}

void TestQTZUtil::rewritesAndMeasuresOhmForms()
{
    QFETCH(QString, text);
    QFETCH(QString, rewritten);
    QFETCH(QString, measuredAs);

    QFont font;
    font.setPixelSize(17);
    const QFontMetrics metrics(font);
    QCOMPARE(QTZUtil::calculateStringWidth(metrics, text), metrics.horizontalAdvance(measuredAs));

    QString added = text;
    QTZUtil::addOhmSymbol(added);
    QCOMPARE(added, rewritten);
    QString processed = text;
    QTZUtil::processString(processed);
    QCOMPARE(processed, rewritten);
}

void TestQTZUtil::parsesDimensions_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");

    QTest::newRow("resolution") << "800x480" << true << 800 << 480;
    QTest::newRow("empty") << QString() << false << -1 << -1;
    QTest::newRow("capital X") << "800X480" << false << -1 << -1;
    QTest::newRow("three parts") << "1x2x3" << false << -1 << -1;
    QTest::newRow("missing second") << "800x" << false << -1 << -1;
    QTest::newRow("zero") << "0x480" << false << -1 << -1;
    QTest::newRow("negative") << "800x-480" << false << -1 << -1;
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
