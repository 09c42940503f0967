// The desktop window: how it covers its parent, the exit menu's slide, the diagnostic
// switch on right clicks, and what closing and shutting down do.

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
    void cleanup();

    void coversWholeParent_data();
    void coversWholeParent();
    void showsFullScreenOnlyForTrue_data();
    void showsFullScreenOnlyForTrue();
    void exitMenuSlidesOutAndBack_data();
    void exitMenuSlidesOutAndBack();
    void rightClicksToggleDiagnosticOutput();
    void closingDeletesRegistry();
    // Last: once the application has been told to exit, no further event loop runs.
    void shutdownEndsEventLoopWithZero();
};

void TestDesktopImpl::cleanup()
{
    qApp->setProperty("-fullscreen", QVariant());
    QTZMessageOutputControl::m_output = false;
    while (GlobalImpl* registry = qApp->findChild<GlobalImpl*>())
        delete registry;
}

void TestDesktopImpl::coversWholeParent_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("landscape") << QSize(800, 480);
    QTest::newRow("portrait") << QSize(480, 800);
    QTest::newRow("wide") << QSize(1280, 800);
}

void TestDesktopImpl::coversWholeParent()
{
    QFETCH(QSize, size);
    QWidget parent;
    parent.move(40, 30);
    parent.resize(size);
    DesktopImpl desktop(&parent);
    QCOMPARE(desktop.geometry(), QRect(QPoint(0, 0), size));
    QVERIFY(!desktop.isHidden());
    QCOMPARE(desktop.objectName(), QStringLiteral("TopWindow"));
    QCOMPARE(desktop.windowTitle(), QStringLiteral("Orvanth Touch Interface System"));
    QCOMPARE(desktop.styleSheet(), QStringLiteral("QFrame#TopWindow {    background-color: #000;}"));
}

void TestDesktopImpl::showsFullScreenOnlyForTrue_data()
{
    QTest::addColumn<QVariant>("option");
    QTest::addColumn<bool>("fullScreen");
    QTest::newRow("true") << QVariant(QStringLiteral("true")) << true;
    QTest::newRow("false") << QVariant(QStringLiteral("false")) << false;
    QTest::newRow("upper case") << QVariant(QStringLiteral("TRUE")) << false;
    QTest::newRow("one") << QVariant(QStringLiteral("1")) << false;
    QTest::newRow("empty") << QVariant(QString()) << false;
    QTest::newRow("absent") << QVariant() << false;
}

void TestDesktopImpl::showsFullScreenOnlyForTrue()
{
    QFETCH(QVariant, option);
    QFETCH(bool, fullScreen);
    qApp->setProperty("-fullscreen", option);
    QWidget parent;
    parent.resize(800, 480);
    DesktopImpl desktop(&parent);
    QCOMPARE(desktop.isFullScreen(), fullScreen);
    QVERIFY(!desktop.isHidden());
    if (!fullScreen)
        QCOMPARE(desktop.geometry(), QRect(0, 0, 800, 480));
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
    parent.resize(800, 480);
    DesktopImpl desktop(&parent);
    auto* menu = new QFrame(&desktop);
    menu->setGeometry(startX, 400, 110, 40);
    auto* handle = new QPushButton(menu);
    connect(handle, &QPushButton::clicked, &desktop, &DesktopImpl::toggleExitMenu);

    handle->click();
    QCOMPARE(menu->pos(), QPoint(firstX, 400));
    handle->click();
    QCOMPARE(menu->pos(), QPoint(secondX, 400));
    QCOMPARE(menu->size(), QSize(110, 40));

    // Called directly there is no sender and nothing to move.
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
    const bool afterLeftClick = QTZMessageOutputControl::m_output;
    const int linesAfterLeftClick = loggedLines.size();
    QTest::mouseClick(&desktop, Qt::RightButton, Qt::NoModifier, QPoint(100, 100));
    const bool afterFirstRightClick = QTZMessageOutputControl::m_output;
    QTest::mouseClick(&desktop, Qt::RightButton, Qt::NoModifier, QPoint(400, 300));
    qInstallMessageHandler(previous);

    QVERIFY(!afterLeftClick);
    QCOMPARE(linesAfterLeftClick, 0);
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
    parent.resize(800, 480);
    auto* desktop = new DesktopImpl(&parent);
    registry->setDesktop(desktop);
    QVERIFY(desktop->close());
    QVERIFY(registry.isNull());
    QVERIFY(desktop->isHidden());
    QVERIFY(subscriber.wait(5000));
    QCOMPARE(qApp->findChildren<GlobalImpl*>().size(), 0);
}

void TestDesktopImpl::shutdownEndsEventLoopWithZero()
{
    QWidget parent;
    DesktopImpl desktop(&parent);
    QEventLoop loop;
    QTimer::singleShot(0, &desktop, &DesktopImpl::shutdownSlot);
    QTimer::singleShot(5000, &loop, [&loop] { loop.exit(7); });
    QCOMPARE(loop.exec(), 0);
}

QTEST_MAIN(TestDesktopImpl)
#include "tst_desktopimpl.moc"
