// The desktop window: how it covers its parent, the exit menu's slide, the diagnostic
// switch on right clicks, and what closing does.

#include "DesktopImpl.h"
#include "GlobalImpl.h"
#include "QTZMessageOutputControl.h"

#include <QApplication>
#include <QPushButton>
#include <QtTest>

namespace {

// Each message with the state of the output switch at the moment it was logged.
QList<QPair<QString, bool>> loggedLines;

void recordWithSwitch(QtMsgType, const QMessageLogContext&, const QString& message)
{
    loggedLines.append({message, bool(QTZMessageOutputControl::m_output)});
}

} // namespace

class TestDesktopImpl : public QObject
{
    Q_OBJECT

private slots:
    void coversParentAndGoesFullScreenOnlyForTrue_data();
    void coversParentAndGoesFullScreenOnlyForTrue();
    void exitMenuSlidesOutAndBack_data();
    void exitMenuSlidesOutAndBack();
    void rightClicksToggleDiagnosticOutput();
    void closingDeletesRegistry();
};

void TestDesktopImpl::coversParentAndGoesFullScreenOnlyForTrue_data()
{
    QTest::addColumn<QVariant>("option");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("fullScreen");
    QTest::newRow("true") << QVariant("true") << QSize(800, 480) << true;
    QTest::newRow("absent, portrait") << QVariant() << QSize(480, 800) << false;
    QTest::newRow("false, wide") << QVariant("false") << QSize(1280, 800) << false;
    QTest::newRow("upper case") << QVariant("TRUE") << QSize(800, 480) << false;
}

void TestDesktopImpl::coversParentAndGoesFullScreenOnlyForTrue()
{
    QFETCH(QVariant, option);
    QFETCH(QSize, size);
    QFETCH(bool, fullScreen);
    qApp->setProperty("-fullscreen", option);
    QWidget parent;
    parent.setGeometry(QRect(QPoint(40, 30), size));
    DesktopImpl desktop(&parent);
    qApp->setProperty("-fullscreen", QVariant());

    QCOMPARE(desktop.isFullScreen(), fullScreen);
    QVERIFY(!desktop.isHidden());
    if (!fullScreen)
        QCOMPARE(desktop.geometry(), QRect(QPoint(0, 0), size));
    QCOMPARE(desktop.objectName(), QStringLiteral("TopWindow"));
}

void TestDesktopImpl::exitMenuSlidesOutAndBack_data()
{
    QTest::addColumn<int>("startX");
    QTest::addColumn<int>("firstX");
    QTest::addColumn<int>("secondX");
    QTest::newRow("shown") << 0 << -80 << 0;
    QTest::newRow("hidden") << -80 << 0 << -80;
    QTest::newRow("elsewhere") << 35 << 0 << -80;
}

void TestDesktopImpl::exitMenuSlidesOutAndBack()
{
    QFETCH(int, startX);
    QFETCH(int, firstX);
    QFETCH(int, secondX);
    QWidget parent;
    DesktopImpl desktop(&parent);
    auto* menu = new QFrame(&desktop);
    menu->setGeometry(startX, 400, 110, 40);
    auto* handle = new QPushButton(menu);
    connect(handle, &QPushButton::clicked, &desktop, &DesktopImpl::toggleExitMenu);

    handle->click();
    QCOMPARE(menu->pos(), QPoint(firstX, 400));
    handle->click();
    QCOMPARE(menu->geometry(), QRect(secondX, 400, 110, 40));
    // Called without a sender there is nothing to move.
    desktop.toggleExitMenu();
    QCOMPARE(menu->pos(), QPoint(secondX, 400));
}

void TestDesktopImpl::rightClicksToggleDiagnosticOutput()
{
    GlobalImpl::getInstance();
    QWidget parent;
    parent.resize(800, 480);
    DesktopImpl desktop(&parent);
    parent.show();
    QVERIFY(QTest::qWaitForWindowExposed(&parent));

    loggedLines.clear();
    const QtMessageHandler previous = qInstallMessageHandler(&recordWithSwitch);
    QTest::mouseClick(&desktop, Qt::LeftButton, Qt::NoModifier, QPoint(100, 100));
    const QList<QPair<QString, bool>> afterLeftClick = loggedLines;
    QTest::mouseClick(&desktop, Qt::RightButton, Qt::NoModifier, QPoint(100, 100));
    const bool afterFirstRightClick = QTZMessageOutputControl::m_output;
    QTest::mouseClick(&desktop, Qt::RightButton, Qt::NoModifier, QPoint(400, 300));
    qInstallMessageHandler(previous);

    QVERIFY(afterLeftClick.isEmpty());
    QVERIFY(afterFirstRightClick);
    QVERIFY(!QTZMessageOutputControl::m_output);
    // Both lines are logged while output is on, so both are seen.
    const QList<QPair<QString, bool>> expected{{QStringLiteral("UserInterface - Turn ON debug messages!"), true},
                                               {QStringLiteral("UserInterface - Turn OFF debug messages!"), true}};
    QCOMPARE(loggedLines, expected);
}

void TestDesktopImpl::closingDeletesRegistry()
{
    QPointer<GlobalImpl> registry = GlobalImpl::getInstance();
    QThread subscriber;
    subscriber.start();
    registry->storeSubscriberThread(&subscriber);
    QWidget parent;
    auto* desktop = new DesktopImpl(&parent);
    registry->setDesktop(desktop);

    QVERIFY(desktop->close());
    QVERIFY(registry.isNull());
    QVERIFY(qApp->findChildren<GlobalImpl*>().isEmpty());
    QVERIFY(subscriber.wait(5000));
}

QTEST_MAIN(TestDesktopImpl)
#include "tst_desktopimpl.moc"
