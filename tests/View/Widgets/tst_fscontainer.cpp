// The full-screen container: its geometry and arrangement under the screen options, its
// close button, and the size it announces when shown.

#include "FSContainer.h"

#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QSvgRenderer>
#include <QtTest>

class TestFSContainer : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void coversScreenFromOptions_data();
    void coversScreenFromOptions();
    void closeButtonHidesAndReportsClosed();
    void announcesMaxBeforeBecomingVisible();
    void drawsItsImages();
};

void TestFSContainer::cleanup()
{
    for (const char* option : {"-res", "-size", "-systype"})
        qApp->setProperty(option, QVariant());
}

void TestFSContainer::coversScreenFromOptions_data()
{
    QTest::addColumn<QVariant>("res");
    QTest::addColumn<QVariant>("systype");
    QTest::addColumn<QVariant>("size");
    QTest::addColumn<QSize>("expected");
    QTest::addColumn<bool>("handleBeside");
    QTest::addColumn<int>("handleSide");
    QTest::addColumn<int>("closeSide");
    QTest::newRow("800x480 handheld") << QVariant("800x480") << QVariant("handheld") << QVariant("landscape")
                                      << QSize(800, 430) << true << 0 << 30;
    QTest::newRow("800x480 benchtop") << QVariant("800x480") << QVariant("benchtop") << QVariant()
                                      << QSize(800, 480) << false << 35 << 36;
    QTest::newRow("800x480, no system type") << QVariant("800x480") << QVariant() << QVariant("small_portrait")
                                             << QSize(800, 480) << false << 0 << 36;
    QTest::newRow("no -res, handheld") << QVariant() << QVariant("handheld") << QVariant()
                                       << QSize(1280, 800) << true << 35 << 30;
    QTest::newRow("no options") << QVariant() << QVariant() << QVariant() << QSize(1280, 800) << false << 35 << 36;
    QTest::newRow("480x800 benchtop") << QVariant("480x800") << QVariant("benchtop") << QVariant()
                                      << QSize(480, 800) << false << 35 << 36;
    QTest::newRow("malformed -res, handheld") << QVariant("wide") << QVariant("handheld") << QVariant()
                                              << QSize(1280, 800) << true << 35 << 30;
}

void TestFSContainer::coversScreenFromOptions()
{
    QFETCH(QVariant, res);
    QFETCH(QVariant, systype);
    QFETCH(QVariant, size);
    QFETCH(QSize, expected);
    QFETCH(bool, handleBeside);
    QFETCH(int, handleSide);
    QFETCH(int, closeSide);
    qApp->setProperty("-res", res);
    qApp->setProperty("-systype", systype);
    qApp->setProperty("-size", size);
    QWidget desktop;
    desktop.resize(1280, 800);
    desktop.show();
    FSContainer container(&desktop);
    QCOMPARE(container.objectName(), QStringLiteral("TopContainerObject"));
    QCOMPARE(container.geometry(), QRect(QPoint(0, 0), expected));

    container.show();
    QCOMPARE(container.geometry(), QRect(QPoint(0, 0), expected));
    auto* handle = container.findChild<QLabel*>(QStringLiteral("ContainerHandle"));
    auto* frame = container.findChild<QFrame*>(QStringLiteral("Container"));
    auto* close = container.findChild<QPushButton*>(QStringLiteral("ContainerClose"));
    QVERIFY(handle && frame && close);
    QCOMPARE(container.findChild<QFrame*>(QStringLiteral("BaseFrame"))->parentWidget(), frame);
    if (handleBeside) {
        QCOMPARE(handle->geometry().right() + 1, frame->x());
        QCOMPARE(frame->height(), expected.height());
    } else {
        QCOMPARE(handle->geometry().bottom() + 1, frame->y());
        QCOMPARE(frame->width(), expected.width());
    }
    if (handleSide > 0)
        QCOMPARE(handle->size(), QSize(handleSide, handleSide));
    // The button's image area, within a 6-pixel margin on each side.
    QCOMPARE(close->size(), QSize(closeSide + 12, closeSide + 12));

    // Wherever it is moved, closing brings it back over the screen.
    container.move(100, 100);
    container.close();
    QCOMPARE(container.geometry(), QRect(QPoint(0, 0), expected));
}

void TestFSContainer::closeButtonHidesAndReportsClosed()
{
    QWidget desktop;
    desktop.show();
    FSContainer container(&desktop);
    container.show();
    QSignalSpy closed(&container, &ContainerBase::WindowClosed);
    container.findChild<QPushButton*>(QStringLiteral("ContainerClose"))->click();
    QVERIFY(container.isHidden());
    QCOMPARE(closed.count(), 1);
}

void TestFSContainer::announcesMaxBeforeBecomingVisible()
{
    QWidget desktop;
    desktop.show();
    FSContainer container(&desktop);
    QStringList sizes;
    bool visibleWhenAnnounced = true;
    connect(&container, &ContainerBase::changeSize, this, [&](const QString& size) {
        sizes << size;
        visibleWhenAnnounced = !container.isHidden();
    });
    QSignalSpy opened(&container, &ContainerBase::WindowOpened);

    container.show();
    QCOMPARE(sizes, QStringList{QStringLiteral("Max")});
    QVERIFY(!visibleWhenAnnounced);
    QVERIFY(!container.isHidden());
    QCOMPARE(opened.count(), 1);
}

void TestFSContainer::drawsItsImages()
{
    QVERIFY(QSvgRenderer(QStringLiteral(":/images/svg/hideButton.svg")).isValid());
    QVERIFY(!QImage(QStringLiteral(":/images/vbar.png")).isNull());
}

QTEST_MAIN(TestFSContainer)
#include "tst_fscontainer.moc"
