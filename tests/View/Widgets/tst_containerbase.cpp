// The container base: its title, its saved location, the signals that report its
// showing, hiding and destruction, and the opening animation.

#include "ContainerBase.h"

#include <QLabel>
#include <QSignalSpy>
#include <QTranslator>
#include <QtTest>

class TestContainerBase : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void showsTitleWithInstanceNumber_data();
    void showsTitleWithInstanceNumber();
    void translatesOnlyLatin1Titles_data();
    void translatesOnlyLatin1Titles();
    void qtWindowTitleChangeResetsInstanceNumber();
    void containerFrameFallsBackToInnerFrame();
    void returnsToSetLocationWhenHidden_data();
    void returnsToSetLocationWhenHidden();
    void reportsOpenedAndClosed();
    void opensAtOnceUnlessAnimationSwitchedOn();
    void opensFromItsMiddleWithAnimation();

private:
    QWidget* m_desktop = nullptr;
};

namespace {

// Translates texts of the generic object context, as a language's translation file would.
class Translator : public QTranslator
{
public:
    QString translate(const char* context, const char* sourceText, const char*, int) const override
    {
        if (qstrcmp(context, "QObject") != 0)
            return QString();
        const QString source = QString::fromUtf8(sourceText);
        if (source == QLatin1String("Scope"))
            return QStringLiteral("Oszilloskop");
        if (source == QStringLiteral("Größe"))
            return QStringLiteral("Size");
        if (source == QStringLiteral("示波器"))
            return QStringLiteral("Oscilloscope");
        return QString();
    }
};

QLabel* titleOf(const ContainerBase& container)
{
    return container.findChild<QLabel*>(QStringLiteral("ContainerTitle"));
}

} // namespace

void TestContainerBase::init()
{
    m_desktop = new QWidget;
    m_desktop->resize(800, 600);
    m_desktop->show();
}

void TestContainerBase::cleanup()
{
    delete m_desktop;
    qApp->setProperty("-animation", QVariant());
}

void TestContainerBase::showsTitleWithInstanceNumber_data()
{
    QTest::addColumn<int>("instance");
    QTest::addColumn<QString>("shown");
    QTest::newRow("0") << 0 << QStringLiteral("Scope");
    QTest::newRow("1") << 1 << QStringLiteral("Scope");
    QTest::newRow("2") << 2 << QStringLiteral("Scope 2");
}

void TestContainerBase::showsTitleWithInstanceNumber()
{
    QFETCH(int, instance);
    QFETCH(QString, shown);
    ContainerBase container(m_desktop);
    QLabel* title = titleOf(container);
    QVERIFY(title);
    QVERIFY(title->isHidden());

    container.setWindowTitle(QStringLiteral("Scope"), instance);
    QVERIFY(!title->isHidden());
    QCOMPARE(title->text(), shown);
    // The registry names the window by its plain title.
    QCOMPARE(container.property("windowCaption").toString(), QStringLiteral("Scope"));
}

void TestContainerBase::translatesOnlyLatin1Titles_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("shown");
    QTest::newRow("ASCII") << QStringLiteral("Scope") << QStringLiteral("Oszilloskop 2");
    QTest::newRow("Latin-1") << QStringLiteral("Größe") << QStringLiteral("Size 2");
    QTest::newRow("beyond Latin-1") << QStringLiteral("示波器") << QStringLiteral("示波器 2");
}

void TestContainerBase::translatesOnlyLatin1Titles()
{
    QFETCH(QString, title);
    QFETCH(QString, shown);
    Translator translator;
    QCoreApplication::installTranslator(&translator);
    ContainerBase container(m_desktop);
    container.setWindowTitle(title, 2);
    QCoreApplication::removeTranslator(&translator);

    QCOMPARE(titleOf(container)->text(), shown);
    QCOMPARE(container.getWindowTitle(), title);
}

void TestContainerBase::qtWindowTitleChangeResetsInstanceNumber()
{
    ContainerBase container(m_desktop);
    container.setWindowTitle(QStringLiteral("Scope"), 3);
    QCOMPARE(titleOf(container)->text(), QStringLiteral("Scope 3"));

    static_cast<QWidget&>(container).setWindowTitle(QStringLiteral("Meter"));
    QCOMPARE(titleOf(container)->text(), QStringLiteral("Meter"));
    QCOMPARE(container.getWindowTitle(), QStringLiteral("Meter"));

    // The same text as before is a change too.
    container.setWindowTitle(QStringLiteral("Scope"), 3);
    static_cast<QWidget&>(container).setWindowTitle(QStringLiteral("Scope"));
    QCOMPARE(titleOf(container)->text(), QStringLiteral("Scope"));

    // Also through the invokable without a number, as a script reaches it.
    container.setWindowTitle(QStringLiteral("Scope"), 3);
    QVERIFY(QMetaObject::invokeMethod(&container, "setWindowTitle", Q_ARG(QString, QStringLiteral("Scope"))));
    QCOMPARE(titleOf(container)->text(), QStringLiteral("Scope"));
}

void TestContainerBase::containerFrameFallsBackToInnerFrame()
{
    ContainerBase container(m_desktop);
    auto* inner = container.findChild<QFrame*>(QStringLiteral("BaseFrame"));
    QVERIFY(inner);
    QCOMPARE(container.getContainerFrame(), inner);

    // A form's frame of that name, however deep, is the one the module fills.
    auto* form = new QWidget(inner);
    auto* wrongKind = new QWidget(form);
    wrongKind->setObjectName(QStringLiteral("ContainerFrame"));
    QCOMPARE(container.getContainerFrame(), inner);
    auto* frame = new QFrame(form);
    frame->setObjectName(QStringLiteral("ContainerFrame"));
    QCOMPARE(container.getContainerFrame(), frame);
}

void TestContainerBase::returnsToSetLocationWhenHidden_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("hide") << QStringLiteral("hide");
    QTest::newRow("close") << QStringLiteral("close");
    QTest::newRow("setShown(false)") << QStringLiteral("setShown");
    QTest::newRow("hideContainer()") << QStringLiteral("hideContainer");
}

void TestContainerBase::returnsToSetLocationWhenHidden()
{
    QFETCH(QString, how);
    ContainerBase container(m_desktop);
    container.setGeometry(100, 120, 200, 150);
    container.setShown(true);
    QVERIFY(container.isVisible());

    container.setLocation(10, 20);
    QCOMPARE(container.pos(), QPoint(100, 120));
    container.resize(220, 160);

    if (how == QLatin1String("hide"))
        container.hide();
    else if (how == QLatin1String("close"))
        container.close();
    else if (how == QLatin1String("setShown"))
        container.setShown(false);
    else
        emit container.hideContainer();
    QVERIFY(container.isHidden());
    QCOMPARE(container.geometry(), QRect(10, 20, 200, 150));

    // saveLocation() takes the place the container stands at.
    container.move(300, 40);
    container.saveLocation();
    container.move(0, 0);
    container.restoreLocation();
    QCOMPARE(container.geometry(), QRect(300, 40, 200, 150));
}

void TestContainerBase::reportsOpenedAndClosed()
{
    auto* container = new ContainerBase(m_desktop);
    QSignalSpy opened(container, &ContainerBase::WindowOpened);
    QSignalSpy closed(container, &ContainerBase::WindowClosed);

    container->show();
    QCOMPARE(opened.count(), 1);
    QCOMPARE(closed.count(), 0);
    container->hide();
    QCOMPARE(closed.count(), 1);
    container->show();
    QCOMPARE(opened.count(), 2);

    // Destroyed while shown: reported closed so that its space is released.
    delete container;
    QCOMPARE(closed.count(), 2);
}

void TestContainerBase::opensAtOnceUnlessAnimationSwitchedOn()
{
    auto* sibling = new QWidget(m_desktop);
    ContainerBase container(m_desktop);
    container.setGeometry(50, 60, 300, 200);
    sibling->raise();
    QSignalSpy raised(&container, &ContainerBase::raiseContainer);
    qApp->setProperty("-animation", QStringLiteral("false"));

    container.show();
    QCOMPARE(container.geometry(), QRect(50, 60, 300, 200));
    QCOMPARE(container.minimumWidth(), 0);
    QCOMPARE(raised.count(), 1);
    QCOMPARE(m_desktop->children().last(), &container);
}

void TestContainerBase::opensFromItsMiddleWithAnimation()
{
    ContainerBase container(m_desktop);
    container.setGeometry(50, 60, 300, 200);
    QSignalSpy raised(&container, &ContainerBase::raiseContainer);
    qApp->setProperty("-animation", QStringLiteral("true"));

    container.show();
    QCOMPARE(raised.count(), 1);
    QVERIFY(container.x() > 50);
    QVERIFY(container.width() < 300);
    QTRY_COMPARE_WITH_TIMEOUT(container.geometry(), QRect(50, 60, 300, 200), 2000);
    QCOMPARE(container.maximumWidth(), 300);
}

QTEST_MAIN(TestContainerBase)
#include "tst_containerbase.moc"
