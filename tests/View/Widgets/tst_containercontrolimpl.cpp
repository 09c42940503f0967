// The title-bar buttons of the standard container: which show, their size and order,
// their images, and what close, maximize/restore and send-to-back do to the container.

#include "ContainerControlImpl.h"
#include "ContainerImpl.h"
#include "ContainerTestDesktop.h"
#include "GlobalImpl.h"
#include "MenuBar.h"

#include <QFile>
#include <QHBoxLayout>
#include <QImage>
#include <QPainter>
#include <QPushButton>
#include <QSvgRenderer>
#include <QtTest>

#include <optional>

class TestContainerControlImpl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void freshClusterShowsCloseAndGrow();
    void buttonImagesAreBundled_data();
    void buttonImagesAreBundled();
    void closeHidesAtSavedLocationAndUnchecksMaxRestore();
    void maxRestoreMaximizesAndClosesBar_data();
    void maxRestoreMaximizesAndClosesBar();
    void hidingOrHaltUnchecksMaxRestore();
    void sendToBackLowersContainer();
};

namespace {

QPushButton* button(QWidget* container, const char* name)
{
    return container->findChild<QPushButton*>(QLatin1String(name));
}

} // namespace

void TestContainerControlImpl::initTestCase()
{
    QVERIFY(GlobalImpl::getInstance());
}

void TestContainerControlImpl::freshClusterShowsCloseAndGrow()
{
    ContainerTestDesktop desk(QStringLiteral("benchtop"), QVariant(), false);
    ContainerImpl* container = desk.addContainer();
    QWidget* cluster = container->getContainerControl();
    QVERIFY(qobject_cast<ContainerControlImpl*>(cluster));
    QCOMPARE(cluster->objectName(), QStringLiteral("ContainerControl"));

    QStringList order;
    QStringList shown;
    for (int i = 0; i < cluster->layout()->count(); ++i) {
        auto* item = qobject_cast<QPushButton*>(cluster->layout()->itemAt(i)->widget());
        QVERIFY(item);
        order << item->objectName();
        if (item->isVisible())
            shown << item->objectName();
        QCOMPARE(item->focusPolicy(), Qt::NoFocus);
        // 36 x 36 of image inside a margin of 6 on every side.
        QCOMPARE(item->size(), QSize(48, 48));
    }
    QCOMPARE(order, QStringList({"ContainerHalt", "ContainerClose", "ContainerShrink", "ContainerGrow",
                                 "ContainerMaxRestore", "ContainerToBack"}));
    QCOMPARE(shown, QStringList({"ContainerClose", "ContainerGrow"}));
    QVERIFY(button(container, "ContainerMaxRestore")->isCheckable());
    // The cluster sits at the right end of the title row, under the contents.
    QVERIFY(cluster->geometry().right() >= cluster->parentWidget()->width() - 3);
}

void TestContainerControlImpl::buttonImagesAreBundled_data()
{
    QTest::addColumn<QString>("path");
    for (const char* image : {":/images/svg/hideButton.svg", ":/images/svg/maximizeButton.svg",
                              ":/images/svg/restoreButton.svg", ":/images/svg/closeButton.svg",
                              ":/images/svg/sendToBackIcon.png", ":/images/vbar.png"})
        QTest::newRow(image) << QString::fromLatin1(image);
}

void TestContainerControlImpl::buttonImagesAreBundled()
{
    QFETCH(QString, path);
    QVERIFY(QFile::exists(path));
    if (path.endsWith(QLatin1String(".svg"))) {
        QSvgRenderer renderer(path);
        QVERIFY(renderer.isValid());
        QImage image(36, 36, QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        renderer.render(&painter);
        painter.end();
        // White strokes on nothing: something is drawn, and only in white.
        int drawn = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor pixel = image.pixelColor(x, y);
                if (pixel.alpha() == 255) {
                    ++drawn;
                    QCOMPARE(pixel.rgb(), QColor(Qt::white).rgb());
                }
            }
        }
        QVERIFY(drawn > 20);
    } else {
        QVERIFY(!QImage(path).isNull());
    }
}

void TestContainerControlImpl::closeHidesAtSavedLocationAndUnchecksMaxRestore()
{
    ContainerTestDesktop desk(QStringLiteral("benchtop"), QVariant(), false);
    ContainerImpl* container = desk.addContainer();
    const QRect home = container->geometry();
    QPushButton* maxRestore = button(container, "ContainerMaxRestore");
    maxRestore->show();
    QTest::mouseClick(maxRestore, Qt::LeftButton);
    QCOMPARE(container->geometry(), QRect(0, 0, 1280, 800));

    QTest::mouseClick(button(container, "ContainerClose"), Qt::LeftButton);
    QVERIFY(container->isHidden());
    QCOMPARE(container->geometry(), home);
    QVERIFY(!maxRestore->isChecked());
    QVERIFY(desk.manager->reservedCells(container).isEmpty());
}

void TestContainerControlImpl::maxRestoreMaximizesAndClosesBar_data()
{
    QTest::addColumn<bool>("animated");
    QTest::newRow("immediate") << false;
    QTest::newRow("animated") << true;
}

void TestContainerControlImpl::maxRestoreMaximizesAndClosesBar()
{
    QFETCH(bool, animated);
    ContainerTestDesktop desk(QStringLiteral("handheld"), QStringLiteral("800x480"), animated);
    auto* bar = new MenuBar(desk.desktop, Qt::AlignTop);
    bar->setTimeoutSource([] { return std::optional<int>(); });
    GlobalImpl::getInstance()->setTopNavMenu(bar);
    ContainerImpl* container = desk.addContainer();
    const QRect home = container->geometry();
    QWidget* cluster = container->getContainerControl();
    QPushButton* maxRestore = button(container, "ContainerMaxRestore");
    maxRestore->show();
    bar->toggle();

    QTest::mouseClick(maxRestore, Qt::LeftButton);
    QVERIFY(maxRestore->isChecked());
    QVERIFY(!bar->isOpen);
    QTRY_COMPARE_WITH_TIMEOUT(container->geometry(), QRect(35, 0, 765, 550), 2000);
    QCOMPARE(cluster->layout()->contentsMargins(), QMargins(0, 0, 0, 10));

    QTest::mouseClick(maxRestore, Qt::LeftButton);
    QVERIFY(!maxRestore->isChecked());
    QTRY_COMPARE_WITH_TIMEOUT(container->geometry(), home, 2000);
    QCOMPARE(cluster->layout()->contentsMargins(), QMargins(0, 0, 0, 0));
    GlobalImpl::getInstance()->setTopNavMenu(nullptr);
}

void TestContainerControlImpl::hidingOrHaltUnchecksMaxRestore()
{
    ContainerTestDesktop desk(QStringLiteral("benchtop"), QVariant(), false);
    ContainerImpl* container = desk.addContainer();
    const QRect home = container->geometry();
    QPushButton* maxRestore = button(container, "ContainerMaxRestore");
    QPushButton* halt = button(container, "ContainerHalt");
    maxRestore->show();
    halt->show();

    maxRestore->setChecked(true);
    container->hide();
    QVERIFY(!maxRestore->isChecked());
    QCOMPARE(container->geometry(), home);

    container->show();
    maxRestore->setChecked(true);
    QTest::mouseClick(halt, Qt::LeftButton);
    QVERIFY(!maxRestore->isChecked());
    QCOMPARE(container->geometry(), home);
}

void TestContainerControlImpl::sendToBackLowersContainer()
{
    ContainerTestDesktop desk(QStringLiteral("benchtop"), QVariant(), false);
    ContainerImpl* back = desk.addContainer();
    ContainerImpl* front = desk.addContainer();
    front->move(back->pos());
    front->raise();
    const QPoint middle = back->geometry().center();
    QVERIFY(front->isAncestorOf(desk.desktop->childAt(middle)) || desk.desktop->childAt(middle) == front);

    QVERIFY(!button(front, "ContainerToBack")->isVisible());
    front->showSendToBackButton(true);
    QVERIFY(button(front, "ContainerToBack")->isVisible());
    QTest::mouseClick(button(front, "ContainerToBack"), Qt::LeftButton);
    QVERIFY(back->isAncestorOf(desk.desktop->childAt(middle)) || desk.desktop->childAt(middle) == back);
    front->showSendToBackButton(false);
    QVERIFY(!button(front, "ContainerToBack")->isVisible());
}

QTEST_MAIN(TestContainerControlImpl)
#include "tst_containercontrolimpl.moc"
