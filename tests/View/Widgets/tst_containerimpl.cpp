// The standard container: the named parts other code finds by search, its sizes, its
// look in "Min" and "Max" under the application options, its size states as the title-bar
// buttons, closing and requests change them, and dragging it across the desktop.

#include "CSS.h"
#include "ContainerImpl.h"
#include "ContainerTestDesktop.h"
#include "GlobalImpl.h"
#include "LogCapture.h"
#include "MenuBar.h"

#include <QLabel>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QVBoxLayout>
#include <QtTest>

#include <optional>

Q_DECLARE_METATYPE(QMargins)

namespace {

// Puts the frame in the look of a size state without a state machine.
class StyledContainer : public ContainerImpl
{
public:
    using ContainerImpl::ContainerImpl;
    void styleAs(const QString& sizeName)
    {
        m_sizeName = sizeName;
        updateStyle();
    }
};

QImage rendered(QWidget& widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

} // namespace

class TestContainerImpl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void carriesNamedParts();
    void startsInMinAtItsMinimumSize();
    void titleFontFollowsScreen_data();
    void titleFontFollowsScreen();
    void longTitleShrinksInsteadOfWideningWindow();
    void minLookHasBorderAndRoundedCorners_data();
    void minLookHasBorderAndRoundedCorners();
    void maxLookMargins_data();
    void maxLookMargins();
    void takesMinimumSizeFromContainerFrame();
    void propertiesReachableByName();

    void initEntersMinAtFormSize();
    void growAndShrinkSwitchMinAndMax_data();
    void growAndShrinkSwitchMinAndMax();
    void growCyclesThroughThumb_data();
    void growCyclesThroughThumb();
    void closingReturnsToDefaultState();
    void requestsMoveOnlyWhereAllowed_data();
    void requestsMoveOnlyWhereAllowed();
    void disablingMaxLeavesGrowToThumb_data();
    void disablingMaxLeavesGrowToThumb();
    void rejectsUnknownNamesAndMalformedSizes_data();
    void rejectsUnknownNamesAndMalformedSizes();
    void configuredSizeAppliesOnNextEntry();
    void requestsDuringAnimationEndInLastState();
    void moveDuringSizeChangeWins();
    void maximizeClosesOpenNavigationBar();
    void dragLandsInsideDesktopAndOnGrid_data();
    void dragLandsInsideDesktopAndOnGrid();
    void dragStepsFollowPointerAtMostEvery25Ms();
    void destroyedWhileMaximizedWithoutManager();

private:
    QWidget* m_desktop = nullptr;
};

void TestContainerImpl::initTestCase()
{
    // The registry installs its own message handler; log captures come after it.
    QVERIFY(GlobalImpl::getInstance());
}

void TestContainerImpl::init()
{
    m_desktop = new QWidget;
    m_desktop->resize(1280, 800);
    m_desktop->show();
}

void TestContainerImpl::cleanup()
{
    delete m_desktop;
    for (const char* option : {"-res", "-size", "-systype", "-notransparency", "-animation"})
        qApp->setProperty(option, QVariant());
    GlobalImpl* registry = GlobalImpl::getInstance();
    registry->gridPoints.clear();
    registry->layoutLocked = false;
}

void TestContainerImpl::carriesNamedParts()
{
    ContainerImpl container(m_desktop);
    QCOMPARE(container.objectName(), QStringLiteral("TopContainerObject"));
    auto* frame = container.findChild<QFrame*>(QStringLiteral("Container"));
    auto* border = container.findChild<QFrame*>(QStringLiteral("BorderFrame"));
    auto* inner = container.findChild<QFrame*>(QStringLiteral("BaseFrame"));
    auto* title = container.findChild<QLabel*>(QStringLiteral("ContainerTitle"));
    QVERIFY(frame && border && inner && title);
    QCOMPARE(inner->parentWidget(), frame);
    QCOMPARE(title->parentWidget(), frame);
    QCOMPARE(container.getContainerControl()->parentWidget(), frame);
    QCOMPARE(border->parentWidget(), &container);

    // Contents on top, title row below; the title takes the row's free width.
    container.setWindowTitle(QStringLiteral("Scope"));
    container.show();
    QVERIFY(inner->geometry().bottom() < title->geometry().top());
    QVERIFY(title->width() > container.width() / 2);
    // The border frame lies behind everything else and covers the whole container.
    QCOMPARE(border->geometry(), container.rect());
    QCOMPARE(container.childAt(container.width() / 2, container.height() / 2) == border, false);
    QCOMPARE(frame->geometry(), container.rect().adjusted(2, 2, -2, -2));
}

void TestContainerImpl::startsInMinAtItsMinimumSize()
{
    ContainerImpl container(m_desktop);
    QCOMPARE(container.size(), QSize(480, 400));
    QCOMPARE(container.sizeHint(), QSize(120, 120));
    QCOMPARE(container.mSize(), QStringLiteral("Min"));
    QCOMPARE(container.state(), QString());
    QCOMPARE(container.property("MinGeometry").toRect(), container.geometry());
}

void TestContainerImpl::titleFontFollowsScreen_data()
{
    QTest::addColumn<QVariant>("res");
    QTest::addColumn<QVariant>("size");
    QTest::addColumn<int>("pixels");
    QTest::newRow("portrait") << QVariant("480x800") << QVariant() << 22;
    QTest::newRow("portrait, landscape size") << QVariant("480x800") << QVariant("landscape") << 22;
    QTest::newRow("landscape size") << QVariant("800x480") << QVariant("landscape") << 18;
    QTest::newRow("no options") << QVariant() << QVariant() << 26;
}

void TestContainerImpl::titleFontFollowsScreen()
{
    QFETCH(QVariant, res);
    QFETCH(QVariant, size);
    QFETCH(int, pixels);
    qApp->setProperty("-res", res);
    qApp->setProperty("-size", size);
    ContainerImpl container(m_desktop);
    container.setWindowTitle(QStringLiteral("Scope"));
    container.show();

    QCOMPARE(container.findChild<QLabel*>(QStringLiteral("ContainerTitle"))->font().pixelSize(), pixels);
}

void TestContainerImpl::longTitleShrinksInsteadOfWideningWindow()
{
    ContainerImpl container(m_desktop);
    container.setWindowTitle(QStringLiteral("Scope"));
    container.show();
    container.setWindowTitle(QStringLiteral("Spectrum Analyzer Measurement Settings for the Second Channel"));
    auto* title = container.findChild<QLabel*>(QStringLiteral("ContainerTitle"));

    QCOMPARE(container.size(), QSize(480, 400));
    QVERIFY(title->font().pixelSize() < 26);
    QVERIFY(title->fontMetrics().horizontalAdvance(title->text()) <= title->width());
}

void TestContainerImpl::minLookHasBorderAndRoundedCorners_data()
{
    QTest::addColumn<QVariant>("noTransparency");
    QTest::addColumn<bool>("border");
    QTest::addColumn<int>("alpha");
    QTest::newRow("translucent, border") << QVariant() << true << 215;
    QTest::newRow("opaque, border") << QVariant("true") << true << 255;
    QTest::newRow("opaque, no border") << QVariant("true") << false << 255;
}

void TestContainerImpl::minLookHasBorderAndRoundedCorners()
{
    QFETCH(QVariant, noTransparency);
    QFETCH(bool, border);
    QFETCH(int, alpha);
    qApp->setProperty("-notransparency", noTransparency);
    StyledContainer container(m_desktop);
    container.setBorder(border);
    container.show();

    const QImage image = rendered(container);
    const QColor middle = image.pixelColor(container.width() / 2, container.height() / 2);
    QCOMPARE(middle.alpha(), alpha);
    QCOMPARE(middle.rgb() & 0xffffff, 0u);
    const QColor edge = image.pixelColor(0, container.height() / 2);
    if (border)
        QCOMPARE(edge.rgb(), QColor(CSS::border()).rgb());
    else
        QCOMPARE(edge.alpha(), alpha);
    QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
    QCOMPARE(container.findChild<QFrame*>(QStringLiteral("Container"))->contentsMargins(), QMargins());

    // Edge to edge when maximized: no border, square corners.
    container.styleAs(QStringLiteral("Max"));
    const QImage maximized = rendered(container);
    QCOMPARE(maximized.pixelColor(0, 0).alpha(), alpha);
    QCOMPARE(maximized.pixelColor(0, container.height() / 2).alpha(), alpha);
    QCOMPARE(maximized.pixelColor(0, container.height() / 2).rgb() & 0xffffff, 0u);
}

void TestContainerImpl::maxLookMargins_data()
{
    QTest::addColumn<QVariant>("systype");
    QTest::addColumn<QVariant>("res");
    QTest::addColumn<QVariant>("size");
    QTest::addColumn<QMargins>("margins");
    QTest::newRow("handheld") << QVariant("handheld") << QVariant("800x480") << QVariant() << QMargins(0, 0, 0, 0);
    QTest::newRow("benchtop") << QVariant("benchtop") << QVariant("1280x800") << QVariant() << QMargins(30, 40, 30, 0);
    QTest::newRow("no system type") << QVariant() << QVariant() << QVariant() << QMargins(30, 40, 30, 0);
    QTest::newRow("480x800 handheld") << QVariant("handheld") << QVariant("480x800") << QVariant() << QMargins(0, 40, 0, 40);
    QTest::newRow("480x800 benchtop") << QVariant("benchtop") << QVariant("480x800") << QVariant() << QMargins(0, 40, 0, 40);
    QTest::newRow("landscape handheld") << QVariant("handheld") << QVariant("800x480") << QVariant("landscape") << QMargins(0, 40, 0, 40);
}

void TestContainerImpl::maxLookMargins()
{
    QFETCH(QVariant, systype);
    QFETCH(QVariant, res);
    QFETCH(QVariant, size);
    QFETCH(QMargins, margins);
    qApp->setProperty("-systype", systype);
    qApp->setProperty("-res", res);
    qApp->setProperty("-size", size);
    StyledContainer container(m_desktop);
    auto* frame = container.findChild<QFrame*>(QStringLiteral("Container"));

    container.styleAs(QStringLiteral("Max"));
    QCOMPARE(frame->contentsMargins(), margins);
    container.styleAs(QStringLiteral("Min"));
    QCOMPARE(frame->contentsMargins(), QMargins());
}

void TestContainerImpl::takesMinimumSizeFromContainerFrame()
{
    ContainerImpl container(m_desktop);
    auto* form = new QFrame;
    form->setObjectName(QStringLiteral("ContainerFrame"));
    form->setMinimumSize(300, 200);
    auto* layout = new QVBoxLayout;
    layout->addWidget(form);
    container.setLayout(layout);

    QCOMPARE(form->parentWidget(), container.findChild<QFrame*>(QStringLiteral("BaseFrame")));
    QCOMPARE(container.getContainerFrame(), form);
    QCOMPARE(container.minimumSize(), QSize(300, 200));
    QCOMPARE(form->minimumSize(), QSize(0, 0));

    ContainerImpl plain(m_desktop);
    LogCapture log;
    plain.setLayout(new QVBoxLayout);
    QVERIFY(log.lines().contains(QStringLiteral("Failed to find ContainerFrame")));
    QCOMPARE(plain.minimumSize(), QSize(0, 0));
}

void TestContainerImpl::propertiesReachableByName()
{
    ContainerImpl container(m_desktop);
    container.show();
    QVERIFY(container.setProperty("MinGeometry", QRect(40, 50, 480, 400)));
    container.hide();
    QCOMPARE(container.geometry(), QRect(40, 50, 480, 400));
    // Forms set these by name.
    QVERIFY(container.setProperty("Lockable", true));
    QVERIFY(container.setProperty("SnapsToGrid", true));
}

namespace {

QPushButton* button(ContainerImpl* container, const char* name)
{
    return container->findChild<QPushButton*>(QLatin1String(name));
}

// The geometry each state should end with, for a container placed at \a home in "Min".
QRect geometryOf(const QString& state, const QRect& home, const QRect& maximized)
{
    if (state == QLatin1String("Max"))
        return maximized;
    if (state == QLatin1String("Thumb"))
        return QRect(home.topLeft(), QSize(240, 200));
    return home;
}

// Waits until no state animation runs any more; they delete themselves when done.
bool settled(ContainerImpl* container)
{
    return container->findChildren<QPropertyAnimation*>().isEmpty();
}

} // namespace

void TestContainerImpl::initEntersMinAtFormSize()
{
    ContainerTestDesktop desk(QStringLiteral("benchtop"), QVariant(), false);
    ContainerImpl* container = desk.addContainer(QSize(300, 200));

    QCOMPARE(container->state(), QStringLiteral("Min"));
    QCOMPARE(container->mSize(), QStringLiteral("Min"));
    QCOMPARE(container->geometry(), QRect(30, 150, 300, 200));
    QVERIFY(button(container, "ContainerGrow")->isVisible());
    QVERIFY(!button(container, "ContainerShrink")->isVisible());
    QCOMPARE(container->findChild<QFrame*>(QStringLiteral("BorderFrame"))->size(), QSize(300, 200));
    QCOMPARE(desk.manager->reservedCells(container), desk.cellsOf(container->geometry()));
}

void TestContainerImpl::growAndShrinkSwitchMinAndMax_data()
{
    QTest::addColumn<QVariant>("systype");
    QTest::addColumn<QVariant>("res");
    QTest::addColumn<bool>("animated");
    QTest::addColumn<QRect>("home");
    QTest::addColumn<QRect>("maximized");
    QTest::newRow("benchtop") << QVariant("benchtop") << QVariant() << false << QRect(30, 150, 300, 200)
                              << QRect(0, 0, 1280, 800);
    QTest::newRow("benchtop, animated") << QVariant("benchtop") << QVariant() << true << QRect(30, 150, 300, 200)
                                        << QRect(0, 0, 1280, 800);
    QTest::newRow("handheld, animated") << QVariant("handheld") << QVariant("800x480") << true
                                        << QRect(45, 35, 300, 200) << QRect(35, 0, 765, 550);
    QTest::newRow("portrait") << QVariant("handheld") << QVariant("480x800") << false << QRect(45, 35, 300, 200)
                              << QRect(0, 0, 480, 800);
    QTest::newRow("no system type") << QVariant() << QVariant("1024x600") << false << QRect(30, 150, 300, 200)
                                    << QRect(0, 0, 1024, 600);
}

void TestContainerImpl::growAndShrinkSwitchMinAndMax()
{
    QFETCH(QVariant, systype);
    QFETCH(QVariant, res);
    QFETCH(bool, animated);
    QFETCH(QRect, home);
    QFETCH(QRect, maximized);
    ContainerTestDesktop desk(systype, res, animated);
    ContainerImpl* container = desk.addContainer();
    QCOMPARE(container->geometry(), home);
    QSignalSpy sizes(container, &ContainerBase::changeSize);

    QTest::mouseClick(button(container, "ContainerGrow"), Qt::LeftButton);
    QCOMPARE(container->state(), QStringLiteral("Max"));
    QCOMPARE(container->mSize(), QStringLiteral("Max"));
    QTRY_COMPARE_WITH_TIMEOUT(container->geometry(), maximized, 2000);
    QVERIFY(!button(container, "ContainerGrow")->isVisible());
    QVERIFY(button(container, "ContainerShrink")->isVisible());
    QCOMPARE(container->findChild<QFrame*>(QStringLiteral("BorderFrame"))->size(), maximized.size());

    QTest::mouseClick(button(container, "ContainerShrink"), Qt::LeftButton);
    QCOMPARE(container->state(), QStringLiteral("Min"));
    QTRY_COMPARE_WITH_TIMEOUT(container->geometry(), home, 2000);
    QTRY_VERIFY(settled(container));
    QCOMPARE(container->geometry(), home);
    QVERIFY(button(container, "ContainerGrow")->isVisible());
    QVERIFY(!button(container, "ContainerShrink")->isVisible());
    QCOMPARE(sizeNames(sizes), QStringList({"Max", "Min"}));
}

void TestContainerImpl::growCyclesThroughThumb_data()
{
    QTest::addColumn<bool>("animated");
    QTest::newRow("immediate") << false;
    QTest::newRow("animated") << true;
}

void TestContainerImpl::growCyclesThroughThumb()
{
    QFETCH(bool, animated);
    ContainerTestDesktop desk(QStringLiteral("benchtop"), QVariant(), animated);
    ContainerImpl* container = desk.addContainer();
    const QRect home = container->geometry();
    container->enableState(QStringLiteral("Thumb"));
    QSignalSpy sizes(container, &ContainerBase::changeSize);
    QPushButton* grow = button(container, "ContainerGrow");

    const QStringList cycle{"Max", "Thumb", "Min"};
    for (const QString& state : cycle) {
        QVERIFY2(grow->isVisible(), qPrintable(state));
        QTest::mouseClick(grow, Qt::LeftButton);
        QCOMPARE(container->state(), state);
        QCOMPARE(container->mSize(), state == QLatin1String("Max") ? state : QStringLiteral("Min"));
        QTRY_COMPARE_WITH_TIMEOUT(container->geometry(), geometryOf(state, home, QRect(0, 0, 1280, 800)), 2000);
        // With "Thumb" enabled, grow (not shrink) leads on from "Max".
        QVERIFY(!button(container, "ContainerShrink")->isVisible());
    }
    QCOMPARE(sizeNames(sizes), cycle);
    QTRY_VERIFY(settled(container));
    QCOMPARE(desk.manager->reservedCells(container), desk.cellsOf(home));
}

void TestContainerImpl::closingReturnsToDefaultState()
{
    ContainerTestDesktop desk(QStringLiteral("benchtop"), QVariant(), false);
    ContainerImpl* container = desk.addContainer();
    const QRect home = container->geometry();

    // Closed by its button while maximized: hidden at home, back in "Min".
    container->setState(QStringLiteral("Max"));
    QTest::mouseClick(button(container, "ContainerClose"), Qt::LeftButton);
    QVERIFY(container->isHidden());
    QCOMPARE(container->state(), QStringLiteral("Min"));
    QCOMPARE(container->geometry(), home);
    QVERIFY(desk.manager->reservedCells(container).isEmpty());

    container->show();
    QCOMPARE(container->geometry(), home);
    QCOMPARE(desk.manager->reservedCells(container), desk.cellsOf(home));

    // With "Thumb" as the default, closing falls back to it; back to "Min" afterwards.
    container->setDefaultState(QStringLiteral("Thumb"));
    container->setState(QStringLiteral("Max"));
    container->hide();
    QCOMPARE(container->state(), QStringLiteral("Thumb"));
    container->show();
    QCOMPARE(container->size(), QSize(240, 200));
    container->setDefaultState(QStringLiteral("Min"));
    QTest::mouseClick(button(container, "ContainerGrow"), Qt::LeftButton);
    QCOMPARE(container->state(), QStringLiteral("Min"));
    container->setState(QStringLiteral("Max"));
    container->hide();
    QCOMPARE(container->state(), QStringLiteral("Min"));
    container->show();
    QCOMPARE(container->geometry(), home);
}

void TestContainerImpl::requestsMoveOnlyWhereAllowed_data()
{
    QTest::addColumn<bool>("thumb");
    QTest::addColumn<bool>("noMax");
    QTest::addColumn<QStringList>("requests");
    QTest::addColumn<QStringList>("states");
    QTest::newRow("min, max, min") << false << false << QStringList{"Max", "Max", "Min"} << QStringList{"Max", "Max", "Min"};
    QTest::newRow("thumb not enabled") << false << false << QStringList{"Thumb"} << QStringList{"Min"};
    QTest::newRow("thumb enabled") << true << false << QStringList{"Thumb", "Max", "Thumb", "Min", "Max", "Min"}
                                   << QStringList{"Thumb", "Max", "Thumb", "Min", "Max", "Min"};
    QTest::newRow("max disabled") << false << true << QStringList{"Max"} << QStringList{"Min"};
    QTest::newRow("max disabled, thumb") << true << true << QStringList{"Thumb", "Max", "Min"}
                                         << QStringList{"Thumb", "Thumb", "Min"};
}

void TestContainerImpl::requestsMoveOnlyWhereAllowed()
{
    QFETCH(bool, thumb);
    QFETCH(bool, noMax);
    QFETCH(QStringList, requests);
    QFETCH(QStringList, states);
    ContainerTestDesktop desk(QStringLiteral("benchtop"), QVariant(), false);
    ContainerImpl* container = desk.addContainer();
    const QRect home = container->geometry();
    if (noMax)
        container->disableState(QStringLiteral("Max"));
    if (thumb)
        container->enableState(QStringLiteral("Thumb"));
    QSignalSpy sizes(container, &ContainerBase::changeSize);

    QStringList entered;
    for (int i = 0; i < requests.size(); ++i) {
        const QString before = container->state();
        container->setState(requests.at(i));
        QCOMPARE(container->state(), states.at(i));
        QCOMPARE(container->geometry(), geometryOf(states.at(i), home, QRect(0, 0, 1280, 800)));
        if (states.at(i) != before)
            entered << states.at(i);
    }
    QCOMPARE(sizeNames(sizes), entered);
}

void TestContainerImpl::disablingMaxLeavesGrowToThumb_data()
{
    QTest::addColumn<bool>("thumb");
    QTest::addColumn<bool>("thumbFirst");
    QTest::newRow("no thumb") << false << false;
    QTest::newRow("thumb enabled before") << true << true;
    QTest::newRow("thumb enabled after") << true << false;
}

void TestContainerImpl::disablingMaxLeavesGrowToThumb()
{
    QFETCH(bool, thumb);
    QFETCH(bool, thumbFirst);
    ContainerTestDesktop desk(QStringLiteral("benchtop"), QVariant(), false);
    ContainerImpl* container = desk.addContainer();
    if (thumb && thumbFirst)
        container->enableState(QStringLiteral("Thumb"));
    container->disableState(QStringLiteral("Max"));
    if (thumb && !thumbFirst)
        container->enableState(QStringLiteral("Thumb"));
    QPushButton* grow = button(container, "ContainerGrow");

    QVERIFY(!button(container, "ContainerShrink")->isVisible());
    QCOMPARE(grow->isVisible(), thumb);
    if (!thumb)
        return;
    QTest::mouseClick(grow, Qt::LeftButton);
    QCOMPARE(container->state(), QStringLiteral("Thumb"));
    QTest::mouseClick(grow, Qt::LeftButton);
    QCOMPARE(container->state(), QStringLiteral("Min"));
}

void TestContainerImpl::rejectsUnknownNamesAndMalformedSizes_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("params");
    QTest::addColumn<QString>("logged");
    QTest::newRow("set unknown") << "set" << "Huge" << QString()
                                 << "UserInterface - Invalid state specified for ContainerImpl: \"Huge\"";
    QTest::newRow("set lower case") << "set" << "max" << QString()
                                    << "UserInterface - Invalid state specified for ContainerImpl: \"max\"";
    QTest::newRow("enable max") << "enable" << "Max" << QString()
                                << "UserInterface - Attempting to enable unknown state: \"Max\" on screen \"Scope\"";
    QTest::newRow("disable thumb")
        << "disable" << "Thumb" << QString()
        << "UserInterface - Attempting to disable unknown/unallowed state: \"Thumb\" on screen \"Scope\"";
    QTest::newRow("configure max")
        << "configure" << "Max" << "1|2"
        << "UserInterface - Attempting to configure unknown state: \"Max\" with params: \"1|2\" on screen \"Scope\"";
    QTest::newRow("one number") << "configure" << "Min" << "300"
                                << "UserInterface - Improper params passed in, should be \"width|height\" \"Min\" \"300\" \"Scope\"";
    QTest::newRow("not numbers") << "configure" << "Thumb" << "wide|tall"
                                 << "UserInterface - Improper params passed in, should be \"width|height\" \"Thumb\" \"wide|tall\" \"Scope\"";
    QTest::newRow("zero width") << "configure" << "Min" << "0|200"
                                << "UserInterface - Improper params passed in, should be \"width|height\" \"Min\" \"0|200\" \"Scope\"";
}

void TestContainerImpl::rejectsUnknownNamesAndMalformedSizes()
{
    QFETCH(QString, call);
    QFETCH(QString, state);
    QFETCH(QString, params);
    QFETCH(QString, logged);
    ContainerTestDesktop desk(QStringLiteral("benchtop"), QVariant(), false);
    ContainerImpl* container = desk.addContainer();
    const QRect home = container->geometry();
    QSignalSpy sizes(container, &ContainerBase::changeSize);

    LogCapture log;
    if (call == QLatin1String("set"))
        container->setState(state);
    else if (call == QLatin1String("enable"))
        container->enableState(state);
    else if (call == QLatin1String("disable"))
        container->disableState(state);
    else
        container->configureState(state, params);
    QCOMPARE(log.lines(), QStringList{logged});

    // Nothing changed, now or at the next entries of the states.
    container->enableState(QStringLiteral("Thumb"));
    for (const char* next : {"Thumb", "Max", "Min"})
        container->setState(next);
    QCOMPARE(sizeNames(sizes), QStringList({"Thumb", "Max", "Min"}));
    QCOMPARE(container->geometry(), home);
    container->setState(QStringLiteral("Thumb"));
    QCOMPARE(container->size(), QSize(240, 200));
}

void TestContainerImpl::configuredSizeAppliesOnNextEntry()
{
    ContainerTestDesktop desk(QStringLiteral("benchtop"), QVariant(), false);
    ContainerImpl* container = desk.addContainer();
    container->enableState(QStringLiteral("Thumb"));

    container->configureState(QStringLiteral("Min"), QStringLiteral("350|220"));
    container->configureState(QStringLiteral("Thumb"), QStringLiteral("200|150"));
    QCOMPARE(container->size(), QSize(300, 200));
    container->setState(QStringLiteral("Thumb"));
    QCOMPARE(container->geometry(), QRect(30, 150, 200, 150));
    container->setState(QStringLiteral("Min"));
    QCOMPARE(container->geometry(), QRect(30, 150, 350, 220));
    QCOMPARE(container->minimumSize(), QSize(350, 220));
    QCOMPARE(desk.manager->reservedCells(container), desk.cellsOf(container->geometry()));
}

void TestContainerImpl::moveDuringSizeChangeWins()
{
    ContainerTestDesktop desk(QStringLiteral("benchtop"), QVariant(), true);
    ContainerImpl* container = desk.addContainer();
    container->setState(QStringLiteral("Max"));
    QTRY_VERIFY_WITH_TIMEOUT(settled(container), 2000);
    // Back to "Min", and moved (as a remote request does) while on the way there.
    container->setState(QStringLiteral("Min"));
    container->move(400, 300);
    QTRY_VERIFY_WITH_TIMEOUT(settled(container), 2000);
    QTest::qWait(100);
    QCOMPARE(container->pos(), QPoint(400, 300));
}

void TestContainerImpl::requestsDuringAnimationEndInLastState()
{
    ContainerTestDesktop desk(QStringLiteral("benchtop"), QVariant(), true);
    ContainerImpl* container = desk.addContainer();
    const QRect home = container->geometry();
    container->enableState(QStringLiteral("Thumb"));
    const QRect maximized(0, 0, 1280, 800);
    // Each request arrives while the previous change is on its way, 40 of its 50 ms done.
    const auto requestHalfWay = [container](const char* state) {
        container->setState(QLatin1String(state));
        const QList<QPropertyAnimation*> animations = container->findChildren<QPropertyAnimation*>();
        for (QPropertyAnimation* animation : animations) {
            if (animation->state() == QAbstractAnimation::Running)
                animation->setCurrentTime(40);
        }
    };

    for (const char* state : {"Max", "Thumb", "Max", "Min"})
        requestHalfWay(state);
    QCOMPARE(container->state(), QStringLiteral("Min"));
    QTRY_VERIFY_WITH_TIMEOUT(settled(container), 2000);
    QCOMPARE(container->geometry(), home);
    QCOMPARE(desk.manager->reservedCells(container), desk.cellsOf(home));

    for (const char* state : {"Max", "Min", "Max"})
        requestHalfWay(state);
    QTRY_VERIFY_WITH_TIMEOUT(settled(container), 2000);
    QCOMPARE(container->geometry(), maximized);
    // Still the place it came from, not one half way there.
    QCOMPARE(container->property("MinGeometry").toRect(), home);
    QCOMPARE(desk.manager->reservedCells(container), desk.cellsOf(home));
    container->setState(QStringLiteral("Min"));
    QTRY_COMPARE_WITH_TIMEOUT(container->geometry(), home, 2000);
}

void TestContainerImpl::maximizeClosesOpenNavigationBar()
{
    ContainerTestDesktop desk(QStringLiteral("benchtop"), QVariant(), false);
    auto* bar = new MenuBar(desk.desktop, Qt::AlignTop);
    bar->setTimeoutSource([] { return std::optional<int>(); });
    GlobalImpl::getInstance()->setTopNavMenu(bar);
    ContainerImpl* container = desk.addContainer();

    bar->toggle();
    QVERIFY(bar->isOpen);
    QTest::mouseClick(button(container, "ContainerGrow"), Qt::LeftButton);
    QVERIFY(!bar->isOpen);
    // A closed bar stays closed.
    container->setState(QStringLiteral("Min"));
    container->setState(QStringLiteral("Max"));
    QVERIFY(!bar->isOpen);
    GlobalImpl::getInstance()->setTopNavMenu(nullptr);
}

void TestContainerImpl::dragLandsInsideDesktopAndOnGrid_data()
{
    QTest::addColumn<bool>("snaps");
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QPoint>("releasedAt");
    QTest::addColumn<QPoint>("landsAt");
    // The container stands at (30, 150), 300 x 200, on a 1280 x 800 desktop.
    QTest::newRow("snaps to near point") << true << QString() << QPoint(335, 385) << QPoint(320, 400);
    QTest::newRow("too far to snap") << true << QString() << QPoint(350, 420) << QPoint(350, 420);
    QTest::newRow("no snapping") << false << QString() << QPoint(335, 385) << QPoint(335, 385);
    QTest::newRow("beyond right and bottom") << false << QString() << QPoint(1200, 700) << QPoint(980, 600);
    QTest::newRow("beyond left and top") << true << QString() << QPoint(-50, -40) << QPoint(0, 0);
    // The grid point at (990, 400) would leave the container hanging over the right edge.
    QTest::newRow("near point it cannot take") << true << QString() << QPoint(975, 395) << QPoint(975, 395);
    QTest::newRow("lockable, layout locked") << false << "locked" << QPoint(335, 385) << QPoint(30, 150);
    QTest::newRow("lockable, layout free") << false << "lockable" << QPoint(335, 385) << QPoint(335, 385);
    QTest::newRow("maximized") << false << "maximized" << QPoint(335, 385) << QPoint(0, 0);
}

void TestContainerImpl::dragLandsInsideDesktopAndOnGrid()
{
    QFETCH(bool, snaps);
    QFETCH(QString, condition);
    QFETCH(QPoint, releasedAt);
    QFETCH(QPoint, landsAt);
    ContainerTestDesktop desk(QStringLiteral("benchtop"), QVariant(), false);
    GlobalImpl* registry = GlobalImpl::getInstance();
    registry->gridPoints = {QPoint(0, 0), QPoint(320, 0), QPoint(320, 400), QPoint(990, 400)};
    ContainerImpl* container = desk.addContainer();
    container->setProperty("SnapsToGrid", snaps);
    container->setProperty("Lockable", condition == QLatin1String("locked") || condition == QLatin1String("lockable"));
    registry->layoutLocked = condition == QLatin1String("locked");
    if (condition == QLatin1String("maximized"))
        container->setState(QStringLiteral("Max"));
    const QRect before = container->geometry();
    QSignalSpy moved(container, &ContainerBase::updatePosition);

    // Grabbed by its title, 10 pixels into the container, and let go at once.
    QWidget* title = container->findChild<QLabel*>(QStringLiteral("ContainerTitle"));
    const QPoint grip = desk.desktop->mapToGlobal(before.topLeft() + QPoint(10, 10));
    QTest::mousePress(title, Qt::LeftButton, {}, title->mapFromGlobal(grip));
    sendMouse(container, QEvent::MouseButtonRelease, desk.desktop->mapToGlobal(releasedAt + QPoint(10, 10)));

    QCOMPARE(container->pos(), landsAt);
    if (landsAt == before.topLeft()) {
        QCOMPARE(moved.count(), 0);
        return;
    }
    QCOMPARE(container->property("MinGeometry").toRect(), container->geometry());
    QCOMPARE(moved.count(), 1);
    QCOMPARE(moved.at(0).at(1).toPoint(), before.topLeft());
    QCOMPARE(desk.manager->reservedCells(container), desk.cellsOf(container->geometry()));
}

void TestContainerImpl::dragStepsFollowPointerAtMostEvery25Ms()
{
    // No desktop manager: a drag reports its end to nobody.
    qApp->setProperty("-animation", "false");
    ContainerImpl container(m_desktop);
    container.init();
    container.move(100, 100);
    container.show();
    QSignalSpy positions(&container, &ContainerImpl::newPos);
    const QPoint grip = m_desktop->mapToGlobal(QPoint(110, 110));

    sendMouse(&container, QEvent::MouseButtonPress, grip);
    sendMouse(&container, QEvent::MouseMove, grip + QPoint(40, 30));
    QCOMPARE(container.pos(), QPoint(100, 100));
    // Kept inside the desktop while it follows the pointer.
    QTRY_VERIFY_WITH_TIMEOUT((sendMouse(&container, QEvent::MouseMove, grip + QPoint(5000, 30)),
                              container.pos() == QPoint(1280 - 480, 130)),
                             1000);
    sendMouse(&container, QEvent::MouseButtonRelease, grip + QPoint(-20, -30));
    QCOMPARE(container.pos(), QPoint(80, 70));
    QCOMPARE(positions.last().at(0).toPoint(), QPoint(80, 70));
    QCOMPARE(container.property("MinGeometry").toRect().topLeft(), QPoint(80, 70));
}

void TestContainerImpl::destroyedWhileMaximizedWithoutManager()
{
    qApp->setProperty("-systype", "benchtop");
    qApp->setProperty("-animation", "false");
    auto* container = new ContainerImpl(m_desktop);
    container->init();
    container->show();
    auto* maxRestore = container->findChild<QPushButton*>(QStringLiteral("ContainerMaxRestore"));
    maxRestore->show();
    QTest::mouseClick(maxRestore, Qt::LeftButton);
    QVERIFY(maxRestore->isChecked());
    QCOMPARE(container->geometry(), m_desktop->rect());
    QSignalSpy closed(container, &ContainerBase::WindowClosed);
    QSignalSpy raised(container, &ContainerBase::raiseContainer);

    // The last WindowClosed() comes when only the base is left; a restore, which ends by
    // raising the container, must not run on what remains.
    delete container;
    QCOMPARE(closed.count(), 1);
    QCOMPARE(raised.count(), 0);
}

QTEST_MAIN(TestContainerImpl)
#include "tst_containerimpl.moc"
