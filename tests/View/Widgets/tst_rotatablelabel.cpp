// The rotated caption label: its properties and where its text lands when painted.

#include "RotatableLabel.h"

#include <QImage>
#include <QtTest>

class TestRotatableLabel : public QObject
{
    Q_OBJECT

private slots:
    void keepsWholeDegrees_data();
    void keepsWholeDegrees();
    void drawsTextAlongRotatedAxis_data();
    void drawsTextAlongRotatedAxis();
    void showsTranslatedText();
};

namespace {

class GermanTranslator : public QTranslator
{
public:
    QString translate(const char*, const char* sourceText, const char*, int) const override
    {
        return QLatin1String(sourceText) == QLatin1String("Power") ? QStringLiteral("Leistung") : QString();
    }
};

// Pixels that are not the black background, along the label's horizontal and vertical
// centre lines, leaving out a square around the centre that both lines share.
QPair<int, int> inkAlongCentreLines(const QImage& image)
{
    int horizontal = 0;
    int vertical = 0;
    const int cx = image.width() / 2;
    const int cy = image.height() / 2;
    for (int i = 0; i < image.width(); ++i) {
        if (qAbs(i - cx) > 15 && qGray(image.pixel(i, cy)) > 100)
            ++horizontal;
    }
    for (int i = 0; i < image.height(); ++i) {
        if (qAbs(i - cy) > 15 && qGray(image.pixel(cx, i)) > 100)
            ++vertical;
    }
    return {horizontal, vertical};
}

} // namespace

void TestRotatableLabel::keepsWholeDegrees_data()
{
    QTest::addColumn<double>("given");
    QTest::addColumn<double>("kept");
    QTest::newRow("45.7") << 45.7 << 45.0;
    QTest::newRow("-90.9") << -90.9 << -90.0;
    QTest::newRow("0.4") << 0.4 << 0.0;
}

void TestRotatableLabel::keepsWholeDegrees()
{
    QFETCH(double, given);
    QFETCH(double, kept);
    RotatableLabel label;
    QCOMPARE(label.property("Degrees").toDouble(), -90.0);
    QVERIFY(label.setProperty("Degrees", given));
    QCOMPARE(label.property("Degrees").toDouble(), kept);
}

void TestRotatableLabel::drawsTextAlongRotatedAxis_data()
{
    QTest::addColumn<double>("degrees");
    QTest::addColumn<bool>("horizontal");
    QTest::newRow("0") << 0.0 << true;
    QTest::newRow("-90") << -90.0 << false;
    QTest::newRow("180") << 180.0 << true;
}

void TestRotatableLabel::drawsTextAlongRotatedAxis()
{
    QFETCH(double, degrees);
    QFETCH(bool, horizontal);
    RotatableLabel label;
    label.resize(240, 240);
    label.setProperty("FontColor", QStringLiteral("#ffffff"));
    label.setProperty("FontSize", 24);
    label.setProperty("Degrees", degrees);
    label.setText(QStringLiteral("\u2588\u2588\u2588\u2588\u2588\u2588\u2588\u2588\u2588\u2588\u2588\u2588"));

    QImage image(label.size(), QImage::Format_RGB32);
    image.fill(Qt::black);
    label.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());

    const QPair<int, int> ink = inkAlongCentreLines(image);
    const int along = horizontal ? ink.first : ink.second;
    const int across = horizontal ? ink.second : ink.first;
    QVERIFY2(along > 60, qPrintable(QString::number(along)));
    QCOMPARE(across, 0);
}

void TestRotatableLabel::showsTranslatedText()
{
    GermanTranslator translator;
    QCoreApplication::installTranslator(&translator);
    RotatableLabel label;
    label.setText(QStringLiteral("Power"));
    QCoreApplication::removeTranslator(&translator);

    QCOMPARE(label.property("LabelText").toString(), QStringLiteral("Power"));
    QCOMPARE(label.text(), QStringLiteral("Leistung"));
}

QTEST_MAIN(TestRotatableLabel)
#include "tst_rotatablelabel.moc"
