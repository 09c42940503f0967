// The desktop and the windows on it: the desktop window, where the desktop manager puts
// containers and the map of the cells they cover, the container's title, size states,
// drag and look, its title-bar controls and handle, the full-screen container, and the
// drawers beside a container.

#include "ContainerTestDesktop.h"
#include "ContainerHandleImpl.h"
#include "CSS.h"
#include "FSContainer.h"
#include "MenuBar.h"
#include "RotatableLabel.h"
#include "WindowDrawer.h"

#include <QFile>
#include <QLabel>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QSvgRenderer>
#include <QTranslator>
#include <QtTest>

#include <optional>

Q_DECLARE_METATYPE(QMargins)

namespace {

constexpr int handle = 40;    // a drawer's tab
constexpr int contents = 380; // a drawer's panel without a form
constexpr int slideTimeout = 2000;

QPushButton* button(QWidget* widget, const char* name)
{
    return widget->findChild<QPushButton*>(QLatin1String(name));
}

QFrame* frame(QWidget* widget, const char* name)
{
    return widget->findChild<QFrame*>(QLatin1String(name));
}

QLabel* titleOf(QWidget* container)
{
    return container->findChild<QLabel*>(QStringLiteral("ContainerTitle"));
}

// Size-state animations delete themselves when done.
bool settled(QWidget* container)
{
    return container->findChildren<QPropertyAnimation*>().isEmpty();
}

QImage rendered(QWidget& widget)
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    QImage image(widget.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

// Where a state leaves the 300 x 200 container that stood at \a home on a 1280 x 800 benchtop.
QRect geometryOf(const QString& state, const QRect& home)
{
    if (state == QLatin1String("Max"))
        return QRect(0, 0, 1280, 800);
    return state == QLatin1String("Thumb") ? QRect(home.topLeft(), QSize(240, 200)) : home;
}

ContainerBase* plainContainer(ContainerTestDesktop& desk, QSize size)
{
    auto* container = new ContainerBase(desk.desktop);
    container->resize(size);
    desk.manager->registerModule(container);
    return container;
}

ContainerHandleImpl* shownHandle(ContainerImpl* container)
{
    auto* grip = container->findChild<ContainerHandleImpl*>(QStringLiteral("ContainerHandle"));
    grip->setGeometry(0, 0, 20, container->height());
    grip->show();
    return grip;
}

// Empty when the map agrees with the containers: nobody twice in a cell, nobody hidden or
// gone, and (where the desktop reserves) every open container over exactly its own cells.
QString mapFault(const ContainerTestDesktop& desk, const QList<ContainerBase*>& live, bool reserves)
{
    QHash<ContainerBase*, int> listed;
    for (int column = 0; column < desk.desktop->width() / 10; ++column) {
        for (int row = 0; row < desk.desktop->height() / 10; ++row) {
            const QList<ContainerBase*> cell = desk.manager->containersAt(column, row);
            for (ContainerBase* container : cell) {
                if (cell.count(container) > 1 || !live.contains(container) || container->isHidden() || !reserves
                    || !desk.cellsOf(container->geometry()).contains(column, row))
                    return QStringLiteral("cell %1,%2 lists a container it should not").arg(column).arg(row);
                ++listed[container];
            }
        }
    }
    for (ContainerBase* container : live) {
        QRect expected = reserves && !container->isHidden() ? desk.cellsOf(container->geometry()) : QRect();
        expected = expected.isEmpty() ? QRect() : expected;
        if (listed.value(container) != expected.width() * expected.height()
            || desk.manager->reservedCells(container) != expected)
            return QStringLiteral("a container covers %1 cells, reserved or expected differ").arg(listed.value(container));
    }
    return QString();
}

// Translates as a language's translation file would, in the generic object context.
class Translator : public QTranslator
{
public:
    QString translate(const char* context, const char* sourceText, const char*, int) const override
    {
        const QHash<QString, QString> texts{{"Scope", "Oszilloskop"}, {QStringLiteral("Größe"), "Size"},
                                            {QStringLiteral("示波器"), "Oscilloscope"}};
        return qstrcmp(context, "QObject") == 0 ? texts.value(QString::fromUtf8(sourceText)) : QString();
    }
};

// A plain 1600 x 900 desktop with a 480 x 400 container at (500, 100), for the drawers.
struct DrawerDesk
{
    DrawerDesk()
    {
        desk.resize(1600, 900);
        desk.show();
        container = new ContainerImpl(&desk);
        container->setGeometry(500, 100, 480, 400);
    }
    QWidget desk;
    ContainerImpl* container;
};

} // namespace

class TestDesktop : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(GlobalImpl::getInstance()); }

    void cleanup()
    {
        for (const char* option : {"-res", "-size", "-systype", "-notransparency", "-animation", "-fullscreen"})
            qApp->setProperty(option, QVariant());
        GlobalImpl* registry = GlobalImpl::getInstance();
        registry->gridPoints.clear();
        registry->layoutLocked = false;
        registry->setTopNavMenu(nullptr);
    }

    // ---- The desktop window

    void desktopCoversParentFullScreenOnlyForTrue_data()
    {
        QTest::addColumn<QVariant>("option");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<bool>("fullScreen");
        QTest::newRow("true") << QVariant("true") << QSize(800, 480) << true;
        QTest::newRow("absent") << QVariant() << QSize(480, 800) << false;
        QTest::newRow("upper case") << QVariant("TRUE") << QSize(1280, 800) << false;
    }

    void desktopCoversParentFullScreenOnlyForTrue()
    {
        QFETCH(QVariant, option);
        QFETCH(QSize, size);
        qApp->setProperty("-fullscreen", option);
        QWidget parent;
        parent.setGeometry(QRect(QPoint(40, 30), size));
        DesktopImpl desktop(&parent);
        QTEST(desktop.isFullScreen(), "fullScreen");
        QVERIFY(!desktop.isHidden());
        if (!desktop.isFullScreen())
            QCOMPARE(desktop.geometry(), QRect(QPoint(0, 0), size));
    }

    // ---- Placement and the map of cells

    void placesBesideOthersThenBelowThenCentred()
    {
        ContainerTestDesktop desk("benchtop", "800x600", false);
        QList<ContainerBase*> containers;
        const auto open = [&] {
            containers << plainContainer(desk, QSize(200, 150));
            containers.last()->show();
            return containers.last()->pos();
        };
        for (QPoint expected : {QPoint(30, 150), QPoint(260, 150), QPoint(490, 150), QPoint(30, 330), QPoint(260, 330),
                                QPoint(490, 330)}) {
            QCOMPARE(open(), expected);
            QCOMPARE(mapFault(desk, containers, true), QString());
        }
        QCOMPARE(desk.manager->reservedCells(containers[3]), QRect(3, 33, 20, 15));
        // Hidden, a container returns to the place it was given and frees it for the next one.
        containers[1]->move(0, 0);
        containers[1]->hide();
        QCOMPARE(containers[1]->pos(), QPoint(260, 150));
        QVERIFY(desk.manager->reservedCells(containers[1]).isEmpty());
        QCOMPARE(open(), QPoint(260, 150));
        // Shown again, the first owner keeps its place and overlaps the newcomer.
        containers[1]->show();
        QCOMPARE(containers[1]->pos(), QPoint(260, 150));
        QCOMPARE(desk.manager->containersAt(26, 15), (QList<ContainerBase*>{containers[6], containers[1]}));
        QCOMPARE(open(), QPoint(300, 225));
        QCOMPARE(mapFault(desk, containers, true), QString());
    }

    void placesAtStartOrCentresWithoutRoom_data()
    {
        QTest::addColumn<QVariant>("systemType");
        QTest::addColumn<QVariant>("resolution");
        QTest::addColumn<QSize>("first");
        QTest::addColumn<QVector<QPoint>>("positions");
        // The first container is of the given size, those after it 200 x 150. Off benchtop
        // nothing is reserved and every container goes to the start.
        const QVector<QPoint> start{QPoint(30, 150), QPoint(30, 150), QPoint(30, 150)};
        QTest::newRow("handheld") << QVariant("handheld") << QVariant("480x800") << QSize(200, 150)
                                  << QVector<QPoint>{QPoint(45, 35), QPoint(45, 35), QPoint(45, 35)};
        QTest::newRow("unspecified") << QVariant() << QVariant("800x600") << QSize(200, 150) << start;
        QTest::newRow("upper case") << QVariant("BENCHTOP") << QVariant("800x600") << QSize(200, 150) << start;
        // Below a container too wide for a row, or in the centre of a full desktop.
        const QVariant bench("benchtop");
        QTest::newRow("too wide for a row") << bench << QVariant("800x600") << QSize(790, 100)
                                            << QVector<QPoint>{QPoint(5, 250), QPoint(30, 380)};
        QTest::newRow("larger than desktop") << bench << QVariant("800x600") << QSize(900, 700)
                                             << QVector<QPoint>{QPoint(0, 0), QPoint(300, 225)};
        QTest::newRow("ragged desktop") << bench << QVariant("805x603") << QSize(805, 603)
                                        << QVector<QPoint>{QPoint(0, 0), QPoint(300, 225)};
    }

    void placesAtStartOrCentresWithoutRoom()
    {
        QFETCH(QVariant, systemType);
        QFETCH(QVariant, resolution);
        QFETCH(QSize, first);
        QFETCH(QVector<QPoint>, positions);
        ContainerTestDesktop desk(systemType, resolution, false);
        QList<ContainerBase*> containers;
        for (const QPoint& expected : positions) {
            containers << plainContainer(desk, containers.isEmpty() ? first : QSize(200, 150));
            containers.last()->show();
            QCOMPARE(containers.last()->pos(), expected);
        }
        QCOMPARE(mapFault(desk, containers, systemType == QVariant("benchtop")), QString());
        QVERIFY(desk.manager->containersAt(desk.desktop->width() / 10, 0).isEmpty());
    }

    void followsRegisteredContainersOnly()
    {
        ContainerTestDesktop desk("benchtop", "800x600", false);
        // Registered twice (and nobody once), it is followed as once.
        ContainerBase* container = plainContainer(desk, QSize(200, 150));
        desk.manager->registerModule(container);
        desk.manager->registerModule(nullptr);
        container->show();
        emit container->WindowOpened(); // shown twice, listed once
        // Dragged away: the reservation follows, and the start is free for the next one.
        container->move(400, 300);
        emit container->updatePosition(container, QPoint(30, 150));
        QCOMPARE(desk.manager->reservedCells(container), QRect(40, 30, 20, 15));
        ContainerBase* next = plainContainer(desk, QSize(200, 150));
        next->show();
        QCOMPARE(next->pos(), QPoint(30, 150));
        // Hidden twice, or reports about a hidden container, a widget that is none or nobody:
        // nothing changes.
        next->hide();
        emit next->WindowClosed();
        emit next->updatePosition(next, QPoint(30, 150));
        QWidget stranger;
        desk.manager->updatePosition(&stranger, QPoint(0, 0));
        desk.manager->allocate();
        desk.manager->deallocate();
        QObject notAContainer;
        connect(&notAContainer, &QObject::objectNameChanged, desk.manager.get(),
                QOverload<>::of(&DesktopManagerImpl::deallocate));
        notAContainer.setObjectName(QStringLiteral("x"));
        // Dragged partly off the desktop, it covers the cells still on it.
        container->move(-60, -40);
        emit container->updatePosition(container, QPoint(400, 300));
        QCOMPARE(mapFault(desk, {container, next}, true), QString());
        // Often built at the address of one just deleted, a container is still new to the manager.
        delete next;
        delete container;
        ContainerBase* fresh = plainContainer(desk, QSize(100, 100));
        fresh->show();
        QCOMPARE(fresh->pos(), QPoint(30, 150));
        QCOMPARE(mapFault(desk, {fresh}, true), QString());
    }

    // ---- The container base: title, saved location, opening and closing

    void titleShowsTranslatedNumberedText_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<int>("instance");
        QTest::addColumn<QString>("retitledBy");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("untranslated");
        QTest::newRow("instance 1") << "Meter" << 1 << "" << "Meter" << "Meter";
        QTest::newRow("ASCII, instance 2") << "Scope" << 2 << "" << "Oszilloskop 2" << "Scope 2";
        QTest::newRow("Latin-1") << QStringLiteral("Größe") << 2 << "" << "Size 2" << QStringLiteral("Größe 2");
        QTest::newRow("beyond Latin-1") << QStringLiteral("示波器") << 2 << "" << QStringLiteral("示波器 2")
                                        << QStringLiteral("示波器 2");
        // Setting the plain title again through Qt, or the invokable a script reaches, drops the number.
        QTest::newRow("Qt title") << "Scope" << 3 << "Qt" << "Oszilloskop" << "Scope";
        QTest::newRow("invokable") << "Scope" << 3 << "invokable" << "Oszilloskop" << "Scope";
        // A title that came from an engine is shown as it came.
        QTest::newRow("from an engine") << "Scope" << 2 << "engine" << "Scope 2" << "Scope 2";
    }

    void titleShowsTranslatedNumberedText()
    {
        QFETCH(QString, title);
        QFETCH(int, instance);
        QFETCH(QString, retitledBy);
        QWidget desk;
        Translator translator;
        QCoreApplication::installTranslator(&translator);
        ContainerBase container(&desk);
        QVERIFY(titleOf(&container)->isHidden());
        container.setWindowTitle(title, instance);
        if (retitledBy == QLatin1String("engine"))
            container.setTitleTranslated(false);
        else if (retitledBy == QLatin1String("Qt"))
            static_cast<QWidget&>(container).setWindowTitle(title);
        else if (!retitledBy.isEmpty())
            QVERIFY(QMetaObject::invokeMethod(&container, "setWindowTitle", Q_ARG(QString, title)));
        QVERIFY(!titleOf(&container)->isHidden());
        QTEST(titleOf(&container)->text(), "shown");
        // The registry names the window by its plain title.
        QCOMPARE(container.property("windowCaption").toString(), title);
        // Without the translation the title is shown in its own words again.
        QCoreApplication::removeTranslator(&translator);
        QCoreApplication::processEvents();
        QTEST(titleOf(&container)->text(), "untranslated");
        QTEST(container.windowTitle(), "untranslated");
    }

    void containerFrameIsTheFormsFrame()
    {
        QWidget desk;
        ContainerBase base(&desk);
        QFrame* inner = frame(&base, "BaseFrame");
        QCOMPARE(base.getContainerFrame(), inner);
        // A frame of that name, however deep, is the one the module fills; another kind is not.
        auto* form = new QWidget(inner);
        (new QWidget(form))->setObjectName(QStringLiteral("ContainerFrame"));
        QCOMPARE(base.getContainerFrame(), inner);
        auto* deep = new QFrame(form);
        deep->setObjectName(QStringLiteral("ContainerFrame"));
        QCOMPARE(base.getContainerFrame(), deep);
        // The standard container takes the form's minimum as its own and frees the form's.
        ContainerTestDesktop standard("benchtop", QVariant(), false);
        ContainerImpl* container = standard.addContainer(QSize(300, 200));
        QCOMPARE(container->minimumSize(), QSize(300, 200));
        QCOMPARE(container->getContainerFrame()->minimumSize(), QSize(0, 0));
    }

    void returnsToSavedLocationWhenHidden_data()
    {
        QTest::addColumn<QString>("how");
        for (const char* how : {"hide", "close", "setShown", "hideContainer", "delete"})
            QTest::newRow(how) << QString::fromLatin1(how);
    }

    void returnsToSavedLocationWhenHidden()
    {
        QFETCH(QString, how);
        QWidget desk;
        desk.show();
        QPointer<ContainerBase> container = new ContainerBase(&desk);
        QSignalSpy raised(container, &ContainerBase::raiseContainer);
        QSignalSpy closed(container, &ContainerBase::WindowClosed);
        container->setGeometry(100, 120, 200, 150);
        container->setShown(true);
        QCOMPARE(raised.count(), 1);
        container->setLocation(10, 20);
        QCOMPARE(container->pos(), QPoint(100, 120));
        container->resize(220, 160);
        if (how == QLatin1String("delete"))
            delete container; // reported closed, so that its space is released
        else if (how == QLatin1String("setShown"))
            container->setShown(false);
        else
            QVERIFY(QMetaObject::invokeMethod(container, how.toLatin1()));
        QCOMPARE(closed.count(), 1);
        if (container) {
            QVERIFY(container->isHidden());
            QCOMPARE(container->geometry(), QRect(10, 20, 200, 150));
        }
    }

    // ---- The standard container

    void layoutAndLookFollowSystemAndState_data()
    {
        QTest::addColumn<QVariant>("systype");
        QTest::addColumn<QVariant>("res");
        QTest::addColumn<QVariant>("size");
        QTest::addColumn<bool>("animated");
        QTest::addColumn<bool>("opaque");
        QTest::addColumn<bool>("border");
        QTest::addColumn<QRect>("home");
        QTest::addColumn<QRect>("maximized");
        QTest::addColumn<QMargins>("margins");
        const QVariant bench("benchtop");
        const QVariant hand("handheld");
        const QRect benchHome(30, 150, 300, 200);
        const QRect handHome(45, 35, 300, 200);
        QTest::newRow("benchtop") << bench << QVariant() << QVariant() << true << false << true << benchHome
                                  << QRect(0, 0, 1280, 800) << QMargins(30, 40, 30, 0);
        QTest::newRow("handheld, opaque, no border") << hand << QVariant("800x480") << QVariant() << true << true << false
                                                     << handHome << QRect(35, 0, 765, 550) << QMargins();
        QTest::newRow("handheld, landscape size") << hand << QVariant("800x480") << QVariant("landscape") << false << false
                                                  << true << handHome << QRect(35, 0, 765, 550) << QMargins(0, 40, 0, 40);
        QTest::newRow("portrait") << hand << QVariant("480x800") << QVariant() << false << false << true << handHome
                                  << QRect(0, 0, 480, 800) << QMargins(0, 40, 0, 40);
        QTest::newRow("no system type") << QVariant() << QVariant("1024x600") << QVariant() << false << true << true
                                        << benchHome << QRect(0, 0, 1024, 600) << QMargins(30, 40, 30, 0);
    }

    void layoutAndLookFollowSystemAndState()
    {
        QFETCH(QVariant, systype);
        QFETCH(QVariant, res);
        QFETCH(QVariant, size);
        QFETCH(bool, animated);
        QFETCH(bool, opaque);
        QFETCH(bool, border);
        QFETCH(QRect, home);
        QFETCH(QRect, maximized);
        qApp->setProperty("-size", size);
        qApp->setProperty("-notransparency", opaque ? QVariant("true") : QVariant());
        const QColor background(0, 0, 0, opaque ? 255 : 215);
        ContainerTestDesktop desk(systype, res, animated);
        // Maximizing closes an open navigation bar; a closed one stays closed.
        auto* bar = new MenuBar(desk.desktop, Qt::AlignTop);
        bar->setTimeoutSource([] { return std::optional<int>(); });
        GlobalImpl::getInstance()->setTopNavMenu(bar);
        bar->toggle();
        ContainerImpl* container = desk.addContainer();
        container->setBorder(border);
        QCOMPARE(container->geometry(), home);
        QCOMPARE(desk.manager->reservedCells(container), systype == QVariant("benchtop") ? desk.cellsOf(home) : QRect());
        QVERIFY(button(container, "ContainerClose")->isVisible() && !button(container, "ContainerHalt")->isVisible());
        // A long title shrinks rather than widening the window.
        container->setWindowTitle(QStringLiteral("Spectrum Analyzer Measurement Settings for the Second Channel"));
        QLabel* title = titleOf(container);
        QCOMPARE(container->size(), home.size());
        QVERIFY(title->fontMetrics().horizontalAdvance(title->text()) <= title->width());
        // The border frame covers the whole container, behind everything else: rounded, and
        // with its line where there is one.
        QVERIFY(container->childAt(container->rect().center()) != frame(container, "BorderFrame"));
        const QPoint edge(0, 100);
        QImage image = rendered(*container);
        QCOMPARE(image.pixelColor(container->rect().center()), background);
        QCOMPARE(image.pixelColor(edge), border ? QColor(CSS::border()) : background);
        QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
        for (int round = 0; round < 2; ++round) {
            QTest::mouseClick(button(container, "ContainerGrow"), Qt::LeftButton);
            QVERIFY(!bar->isOpen);
            QTRY_COMPARE_WITH_TIMEOUT(container->geometry(), maximized, 2000);
            QCOMPARE(frame(container, "BorderFrame")->size(), maximized.size());
            QTEST(frame(container, "Container")->contentsMargins(), "margins");
            // Edge to edge: no border, square corners.
            image = rendered(*container);
            QCOMPARE(image.pixelColor(0, 0), background);
            QCOMPARE(image.pixelColor(edge), background);
            QTest::mouseClick(button(container, "ContainerShrink"), Qt::LeftButton);
            QTRY_VERIFY(settled(container));
            QCOMPARE(container->geometry(), home);
            QCOMPARE(frame(container, "Container")->contentsMargins(), QMargins());
        }
        GlobalImpl::getInstance()->setTopNavMenu(nullptr);
    }

    // Setup: calls "verb state [params]" separated by ";". Steps: "grow" and "shrink" click a
    // button that must show, "-grow" finds grow hidden, other steps are requests.
    void sizeStatesFollowButtonsAndRequests_data()
    {
        QTest::addColumn<bool>("animated");
        QTest::addColumn<QString>("setup");
        QTest::addColumn<QString>("steps");
        QTest::addColumn<QString>("states");
        QTest::newRow("grow, shrink") << false << "" << "grow shrink" << "Max Min";
        QTest::newRow("grow cycles through thumb") << false << "enable Thumb" << "grow grow grow" << "Max Thumb Min";
        QTest::newRow("grow cycles, animated") << true << "enable Thumb" << "grow grow grow" << "Max Thumb Min";
        QTest::newRow("no max, thumb before") << false << "enable Thumb;disable Max" << "grow grow" << "Thumb Min";
        QTest::newRow("no max, thumb after") << false << "disable Max;enable Thumb" << "grow grow" << "Thumb Min";
        QTest::newRow("no max, no thumb") << false << "disable Max" << "-grow Max" << "Min Min";
        QTest::newRow("requests") << false << "" << "Max Max Min Thumb" << "Max Max Min Min";
        QTest::newRow("requests with thumb") << false << "enable Thumb" << "Thumb Max Thumb Min Max Min"
                                             << "Thumb Max Thumb Min Max Min";
        QTest::newRow("requests, no max") << false << "disable Max;enable Thumb" << "Thumb Max Min" << "Thumb Thumb Min";
        // Rejected calls change nothing, now or at the next entries of the states.
        for (const char* call : {"set Huge", "set max", "enable Max", "disable Thumb", "configure Max 1|2",
                                 "configure Min 300", "configure Thumb wide|tall", "configure Min 0|200"})
            QTest::newRow(call) << false << QString::fromLatin1(call) + ";enable Thumb" << "Thumb Max Min Thumb"
                                << "Thumb Max Min Thumb";
    }

    void sizeStatesFollowButtonsAndRequests()
    {
        QFETCH(bool, animated);
        QFETCH(QString, setup);
        QFETCH(QString, steps);
        QFETCH(QString, states);
        ContainerTestDesktop desk("benchtop", QVariant(), animated);
        ContainerImpl* container = desk.addContainer();
        const QRect home = container->geometry();
        for (const QString& call : setup.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
            const QStringList words = call.split(QLatin1Char(' '));
            const QByteArray method = words[0].toLatin1() + "State";
            QVERIFY(words.size() == 2 ? QMetaObject::invokeMethod(container, method, Q_ARG(QString, words[1]))
                                      : QMetaObject::invokeMethod(container, method, Q_ARG(QString, words[1]),
                                                                  Q_ARG(QString, words[2])));
        }
        QSignalSpy sizes(container, &ContainerBase::changeSize);
        QStringList entered;
        const QStringList stepList = steps.split(QLatin1Char(' '));
        const QStringList stateList = states.split(QLatin1Char(' '));
        for (int i = 0; i < stepList.size(); ++i) {
            const QString& step = stepList[i];
            const QString& state = stateList[i];
            const QString before = container->state();
            if (step.endsWith(QLatin1String("grow")) || step == QLatin1String("shrink")) {
                QPushButton* control = button(container, step == QLatin1String("shrink") ? "ContainerShrink" : "ContainerGrow");
                QCOMPARE(control->isVisible(), step != QLatin1String("-grow"));
                if (control->isVisible())
                    QTest::mouseClick(control, Qt::LeftButton);
            } else {
                container->setState(step);
            }
            QCOMPARE(container->state(), state);
            QCOMPARE(container->mSize(), state == QLatin1String("Max") ? state : QStringLiteral("Min"));
            QTRY_COMPARE_WITH_TIMEOUT(container->geometry(), geometryOf(state, home), 2000);
            // With "Thumb" enabled, grow (not shrink) leads on from "Max".
            QCOMPARE(button(container, "ContainerShrink")->isVisible(),
                     state == QLatin1String("Max") && !setup.contains(QLatin1String("enable Thumb")));
            if (state != before)
                entered << state;
        }
        QCOMPARE(sizeNames(sizes), entered);
        QTRY_VERIFY(settled(container));
        QCOMPARE(desk.manager->reservedCells(container), desk.cellsOf(container->geometry()));
    }

    void closingReturnsToDefaultStateAtConfiguredSize()
    {
        ContainerTestDesktop desk("benchtop", QVariant(), false);
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
        // Sizes configured now apply at the next entry of their state.
        container->configureState(QStringLiteral("Min"), QStringLiteral("350|220"));
        container->configureState(QStringLiteral("Thumb"), QStringLiteral("200|150"));
        QCOMPARE(container->size(), QSize(300, 200));
        // With "Thumb" as the default, closing falls back to it.
        container->setDefaultState(QStringLiteral("Thumb"));
        container->setState(QStringLiteral("Max"));
        container->hide();
        QCOMPARE(container->state(), QStringLiteral("Thumb"));
        container->show();
        QCOMPARE(container->geometry(), QRect(30, 150, 200, 150));
        // With "Min" the default again, grow leads there and closing returns there.
        container->setDefaultState(QStringLiteral("Min"));
        QTest::mouseClick(button(container, "ContainerGrow"), Qt::LeftButton);
        QCOMPARE(container->geometry(), QRect(30, 150, 350, 220));
        QCOMPARE(container->minimumSize(), QSize(350, 220));
        QCOMPARE(desk.manager->reservedCells(container), desk.cellsOf(container->geometry()));
        container->setState(QStringLiteral("Max"));
        container->hide();
        QCOMPARE(container->state(), QStringLiteral("Min"));
        // Forms set the place to return to by name.
        QVERIFY(container->setProperty("MinGeometry", QRect(40, 50, 350, 220)));
        container->show();
        container->hide();
        QCOMPARE(container->geometry(), QRect(40, 50, 350, 220));
    }

    void requestsAndMovesDuringAnimationEndInLastOne()
    {
        ContainerTestDesktop desk("benchtop", QVariant(), true);
        ContainerImpl* container = desk.addContainer();
        const QRect home = container->geometry();
        container->enableState(QStringLiteral("Thumb"));
        // Each request arrives while the previous change is on its way, 40 of its 50 ms done.
        const auto requestHalfWay = [container](const char* state) {
            container->setState(QLatin1String(state));
            for (QPropertyAnimation* animation : container->findChildren<QPropertyAnimation*>())
                if (animation->state() == QAbstractAnimation::Running)
                    animation->setCurrentTime(40);
        };
        for (const char* state : {"Max", "Thumb", "Max", "Min"})
            requestHalfWay(state);
        QCOMPARE(container->state(), QStringLiteral("Min"));
        QTRY_VERIFY_WITH_TIMEOUT(settled(container), 2000);
        QCOMPARE(container->geometry(), home);
        for (const char* state : {"Max", "Min", "Max"})
            requestHalfWay(state);
        QTRY_VERIFY_WITH_TIMEOUT(settled(container), 2000);
        QCOMPARE(container->geometry(), QRect(0, 0, 1280, 800));
        // Still the place it came from, not one half way there.
        QCOMPARE(container->property("MinGeometry").toRect(), home);
        QCOMPARE(desk.manager->reservedCells(container), desk.cellsOf(home));
        // Moved (as a remote request does) on its way back to "Min": the move wins.
        container->setState(QStringLiteral("Min"));
        container->move(400, 300);
        QTRY_VERIFY_WITH_TIMEOUT(settled(container), 2000);
        QTest::qWait(100);
        QCOMPARE(container->pos(), QPoint(400, 300));
    }

    void dragLandsInsideDesktopAndOnGrid_data()
    {
        QTest::addColumn<QString>("by");
        QTest::addColumn<bool>("snaps");
        QTest::addColumn<QString>("condition");
        QTest::addColumn<QPoint>("releasedAt");
        QTest::addColumn<QPoint>("landsAt");
        // The container stands at (30, 150), 300 x 200, on a 1280 x 800 desktop.
        QTest::newRow("snaps to near point") << "title" << true << "" << QPoint(335, 385) << QPoint(320, 400);
        QTest::newRow("too far to snap") << "title" << true << "" << QPoint(350, 420) << QPoint(350, 420);
        QTest::newRow("no snapping") << "title" << false << "" << QPoint(335, 385) << QPoint(335, 385);
        QTest::newRow("beyond right and bottom") << "title" << false << "" << QPoint(1200, 700) << QPoint(980, 600);
        QTest::newRow("beyond left and top") << "title" << true << "" << QPoint(-50, -40) << QPoint(0, 0);
        // The grid point at (990, 400) would leave the container hanging over the right edge.
        QTest::newRow("near point it cannot take") << "title" << true << "" << QPoint(975, 395) << QPoint(975, 395);
        QTest::newRow("locked") << "title" << false << "locked" << QPoint(335, 385) << QPoint(30, 150);
        QTest::newRow("lockable, layout free") << "title" << false << "lockable" << QPoint(335, 385) << QPoint(335, 385);
        QTest::newRow("maximized") << "title" << false << "maximized" << QPoint(335, 385) << QPoint(0, 0);
        QTest::newRow("handle, beyond edge") << "handle" << true << "" << QPoint(1500, 900) << QPoint(980, 600);
        QTest::newRow("handle, locked") << "handle" << false << "locked" << QPoint(630, 385) << QPoint(30, 150);
        QTest::newRow("handle, maximized") << "handle" << false << "maximized" << QPoint(630, 385) << QPoint(0, 0);
        // Held at the release point first: the container follows inside the desktop, by its
        // handle it may hang over the right edge until let go.
        QTest::newRow("held") << "title" << false << "held" << QPoint(1500, 100) << QPoint(980, 100);
        QTest::newRow("handle, held") << "handle" << false << "held" << QPoint(1500, -500) << QPoint(980, 0);
    }

    void dragLandsInsideDesktopAndOnGrid()
    {
        QFETCH(QString, by);
        QFETCH(bool, snaps);
        QFETCH(QString, condition);
        QFETCH(QPoint, releasedAt);
        QFETCH(QPoint, landsAt);
        ContainerTestDesktop desk("benchtop", QVariant(), false);
        GlobalImpl* registry = GlobalImpl::getInstance();
        registry->gridPoints = {QPoint(0, 0), QPoint(320, 0), QPoint(320, 400), QPoint(640, 400), QPoint(990, 400)};
        ContainerImpl* container = desk.addContainer();
        QVERIFY(container->setProperty("SnapsToGrid", snaps));
        QVERIFY(container->setProperty("Lockable", condition == "locked" || condition == "lockable"));
        registry->layoutLocked = condition == QLatin1String("locked");
        if (condition == QLatin1String("maximized"))
            container->setState(QStringLiteral("Max"));
        const QRect before = container->geometry();
        QSignalSpy moved(container, &ContainerBase::updatePosition);
        QSignalSpy positions(container, &ContainerImpl::newPos);
        // Grabbed 10 pixels into the container; the container itself takes the presses its title leaves.
        const bool byHandle = by == QLatin1String("handle");
        QWidget* grip = byHandle ? static_cast<QWidget*>(shownHandle(container)) : titleOf(container);
        QWidget* grabber = byHandle ? grip : container;
        const QPoint release = desk.desktop->mapToGlobal(releasedAt + QPoint(10, 10));
        sendMouse(grip, QEvent::MouseButtonPress, desk.desktop->mapToGlobal(before.topLeft() + QPoint(10, 10)));
        if (condition == QLatin1String("held")) {
            // A step right after the press comes too soon to be followed.
            sendMouse(grabber, QEvent::MouseMove, release);
            QCOMPARE(positions.count(), 0);
            QTRY_VERIFY_WITH_TIMEOUT((sendMouse(grabber, QEvent::MouseMove, release), !positions.isEmpty()), 1000);
            QCOMPARE(container->pos(), byHandle ? QPoint(releasedAt.x(), 0) : landsAt);
        }
        sendMouse(grabber, QEvent::MouseButtonRelease, release);
        QCOMPARE(container->pos(), landsAt);
        QCOMPARE(moved.count(), landsAt == before.topLeft() ? 0 : 1);
        if (moved.isEmpty())
            return;
        QCOMPARE(moved.at(0).at(1).toPoint(), before.topLeft());
        QCOMPARE(container->property("MinGeometry").toRect(), container->geometry());
        QCOMPARE(desk.manager->reservedCells(container), desk.cellsOf(container->geometry()));
    }

    // ---- Title-bar controls

    void maxRestoreIsUncheckedByClosingHidingHaltOrDeletion_data()
    {
        QTest::addColumn<QString>("how");
        for (const char* how : {"ContainerClose", "hide", "ContainerHalt", "delete"})
            QTest::newRow(how) << QString::fromLatin1(how);
    }

    void maxRestoreIsUncheckedByClosingHidingHaltOrDeletion()
    {
        QFETCH(QString, how);
        ContainerTestDesktop desk("handheld", "800x480", false);
        auto* bar = new MenuBar(desk.desktop, Qt::AlignTop);
        bar->setTimeoutSource([] { return std::optional<int>(); });
        GlobalImpl::getInstance()->setTopNavMenu(bar);
        bar->toggle();
        ContainerImpl* container = desk.addContainer();
        const QRect home = container->geometry();
        QPushButton* maxRestore = button(container, "ContainerMaxRestore");
        maxRestore->show();
        button(container, "ContainerHalt")->show();
        QTest::mouseClick(maxRestore, Qt::LeftButton);
        QVERIFY(maxRestore->isChecked() && !bar->isOpen);
        QCOMPARE(container->geometry(), QRect(35, 0, 765, 550));
        GlobalImpl::getInstance()->setTopNavMenu(nullptr);
        QSignalSpy raised(container, &ContainerBase::raiseContainer);
        if (how == QLatin1String("delete")) {
            // The last WindowClosed() comes when only the base is left; a restore, which ends
            // by raising the container, must not run on what remains.
            delete container;
            QCOMPARE(raised.count(), 0);
            return;
        }
        if (how == QLatin1String("hide"))
            container->hide();
        else
            QTest::mouseClick(button(container, how.toLatin1()), Qt::LeftButton);
        QVERIFY(!maxRestore->isChecked());
        QCOMPARE(container->geometry(), home);
        QCOMPARE(container->isHidden(), how != QLatin1String("ContainerHalt"));
    }

    void imagesAreBundled_data()
    {
        QTest::addColumn<QString>("path");
        for (const char* image : {":/images/svg/hideButton.svg", ":/images/svg/maximizeButton.svg",
                                  ":/images/svg/restoreButton.svg", ":/images/svg/closeButton.svg",
                                  ":/images/svg/sendToBackIcon.png", ":/images/vbar.png"})
            QTest::newRow(image) << QString::fromLatin1(image);
    }

    void imagesAreBundled()
    {
        QFETCH(QString, path);
        QVERIFY(QFile::exists(path));
        QVERIFY(path.endsWith(QLatin1String(".svg")) ? QSvgRenderer(path).isValid() : !QImage(path).isNull());
    }

    // ---- The full-screen container

    void fullScreenContainerCoversScreen_data()
    {
        QTest::addColumn<QVariant>("res");
        QTest::addColumn<QVariant>("systype");
        QTest::addColumn<QSize>("expected");
        QTest::addColumn<bool>("handleBeside");
        QTest::newRow("800x480 handheld") << QVariant("800x480") << QVariant("handheld") << QSize(800, 430) << true;
        QTest::newRow("800x480 benchtop") << QVariant("800x480") << QVariant("benchtop") << QSize(800, 480) << false;
        QTest::newRow("no -res, handheld") << QVariant() << QVariant("handheld") << QSize(1280, 800) << true;
        QTest::newRow("malformed -res") << QVariant("wide") << QVariant() << QSize(1280, 800) << false;
    }

    void fullScreenContainerCoversScreen()
    {
        QFETCH(QVariant, res);
        QFETCH(QVariant, systype);
        QFETCH(QSize, expected);
        QFETCH(bool, handleBeside);
        qApp->setProperty("-res", res);
        qApp->setProperty("-systype", systype);
        QWidget desk;
        desk.resize(1280, 800);
        desk.show();
        FSContainer container(&desk);
        QStringList sizes;
        connect(&container, &ContainerBase::changeSize, this,
                [&](const QString& size) { sizes << size + (container.isHidden() ? "" : " while visible"); });
        container.show();
        QCOMPARE(sizes, QStringList{"Max"}); // announced before it becomes visible
        QCOMPARE(container.geometry(), QRect(QPoint(0, 0), expected));
        // The handle strip lies above the contents, or beside them on a handheld.
        const QRect strip = container.findChild<QLabel*>(QStringLiteral("ContainerHandle"))->geometry();
        const QRect inner = frame(&container, "Container")->geometry();
        QCOMPARE(handleBeside ? strip.right() + 1 : strip.bottom() + 1, handleBeside ? inner.x() : inner.y());
        QCOMPARE(handleBeside ? inner.height() : inner.width(), handleBeside ? expected.height() : expected.width());
        // Wherever it was moved, its close button hides it back over the screen.
        container.move(100, 100);
        button(&container, "ContainerClose")->click();
        QVERIFY(container.isHidden());
        QCOMPARE(container.geometry(), QRect(QPoint(0, 0), expected));
    }

    // ---- Drawers

    void drawerCaptionStaysInsideLowTab()
    {
        DrawerDesk d;
        d.container->resize(220, 130);
        WindowDrawer drawer(&d.desk, d.container, WindowDrawer::Right, QStringLiteral("Configuration"));
        drawer.show();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        auto* tab = drawer.findChild<QLabel*>(QStringLiteral("handle_type"));
        auto* caption = drawer.findChild<RotatableLabel*>();
        QVERIFY(tab->rect().contains(QRect(caption->mapTo(tab, QPoint(0, 0)), caption->size())));
        // Long enough for the whole title, rotated.
        QFont painted = caption->font();
        painted.setPixelSize(caption->fontSize());
        QVERIFY(caption->height() >= QFontMetrics(painted).horizontalAdvance(caption->text()));
    }

    void drawerSlidesOpenBesideOrOverContainer_data()
    {
        QTest::addColumn<WindowDrawer::DockPosition_t>("position");
        QTest::addColumn<int>("containerX");
        QTest::addColumn<int>("closedX");
        QTest::addColumn<int>("openedX");
        QTest::addColumn<double>("degrees");
        QTest::newRow("right") << WindowDrawer::Right << 500 << 980 << 980 << 90.0;
        QTest::newRow("left") << WindowDrawer::Left << 500 << 500 - handle << 500 - handle - contents << 270.0;
        // Without room beside the container, out over it from its far edge.
        QTest::newRow("right, no room") << WindowDrawer::Right << 1100 << 1580 << 1578 - handle - contents << 90.0;
        QTest::newRow("left, no room") << WindowDrawer::Left << 100 << 100 - handle << 102 << 270.0;
    }

    void drawerSlidesOpenBesideOrOverContainer()
    {
        QFETCH(WindowDrawer::DockPosition_t, position);
        QFETCH(int, containerX);
        QFETCH(int, closedX);
        QFETCH(int, openedX);
        DrawerDesk d;
        d.container->move(containerX, 100);
        WindowDrawer drawer(&d.desk, d.container, position, QStringLiteral("Configuration"));
        QVERIFY(!drawer.isVisible());
        drawer.show();
        // Closed, only the tab shows, its caption reading towards the container.
        QCOMPARE(drawer.geometry(), QRect(closedX, 100, handle, 400));
        QTEST(drawer.findChild<RotatableLabel*>()->degrees(), "degrees");
        QSignalSpy closedSpy(&drawer, &WindowDrawer::WindowClosed);
        drawer.setDrawerOpened(true);
        QVERIFY(drawer.isOpen() && drawer.width() < handle + contents); // a slide, not a jump
        QCOMPARE(drawer.position() == position, containerX == 500);
        QTRY_COMPARE_WITH_TIMEOUT(drawer.geometry(), QRect(openedX, 100, handle + contents, 400), slideTimeout);
        // The panel shows in full, the tab at the outer edge.
        auto* panel = frame(&drawer, "container_type");
        QCOMPARE(panel->width(), contents);
        QCOMPARE(panel->mapTo(&d.desk, QPoint(0, 0)).x(), openedX + (drawer.position() == WindowDrawer::Right ? 0 : handle));
        QCOMPARE(closedSpy.count(), 0);
        drawer.setDrawerOpened(false);
        QCOMPARE(closedSpy.count(), 1);
        QTRY_COMPARE_WITH_TIMEOUT(drawer.geometry(), QRect(closedX, 100, handle, 400), slideTimeout);
        QCOMPARE(drawer.position(), position);
        auto* tab = drawer.findChild<QPushButton*>(QStringLiteral("handle_type"));
        QTRY_COMPARE(tab->mapTo(&d.desk, QPoint(0, 0)).x(), closedX);
    }

    void drawersFollowContainerMoveResizeAndVisibility()
    {
        DrawerDesk d;
        d.container->show();
        WindowDrawer* right = d.container->addDrawer(WindowDrawer::Right, QStringLiteral("Configuration"));
        WindowDrawer* left = d.container->addDrawer(WindowDrawer::Left, QStringLiteral("Markers"));
        QVERIFY(right->isVisible() && left->isVisible());
        d.container->move(600, 150);
        d.container->resize(500, 300);
        QCOMPARE(right->geometry(), QRect(1100, 150, handle, 300));
        QCOMPARE(left->geometry(), QRect(600 - handle, 150, handle, 300));
        // An open drawer moves along open; a move by geometry alone is followed too.
        left->setDrawerOpened(true);
        QTRY_COMPARE_WITH_TIMEOUT(left->width(), handle + contents, slideTimeout);
        d.container->setGeometry(550, 120, 500, 300);
        QCOMPARE(left->geometry(), QRect(550 - handle - contents, 120, handle + contents, 300));
        QCOMPARE(right->geometry(), QRect(1050, 120, handle, 300));
        // Both above the container once it is raised.
        d.container->raise();
        const QObjectList stack = d.desk.children();
        QVERIFY(stack.indexOf(right) > stack.indexOf(d.container) && stack.indexOf(left) > stack.indexOf(d.container));
        QSignalSpy closed(right, &WindowDrawer::WindowClosed);
        d.container->hide();
        QVERIFY(!right->isVisible() && !left->isVisible());
        QCOMPARE(closed.count(), 1);
        d.container->show();
        QVERIFY(right->isVisible() && left->isVisible());
    }

    void drawersGoToScreenEdgeOutsideMin()
    {
        DrawerDesk d;
        d.container->init();
        d.container->enableState(QStringLiteral("Thumb"));
        d.container->show();
        d.container->move(500, 100);
        WindowDrawer* right = d.container->addDrawer(WindowDrawer::Right, QStringLiteral("Configuration"));
        WindowDrawer* left = d.container->addDrawer(WindowDrawer::Left, QStringLiteral("Markers"));
        // A point of the tab above the caption: a blue gradient beside the container, dark at the edge.
        const QColor beside = rendered(*right).pixelColor(14, 20);
        QVERIFY2(beside.blue() > 100, qPrintable(beside.name()));
        d.container->setState(QStringLiteral("Max"));
        QTRY_COMPARE(d.container->geometry(), d.desk.rect());
        // The tabs face the middle of the screen.
        const int edgeHeight = d.desk.height() - 96;
        QCOMPARE(right->position(), WindowDrawer::Left);
        QCOMPARE(right->geometry(), QRect(d.desk.width() - handle, 22, handle, edgeHeight));
        QCOMPARE(left->geometry(), QRect(0, 22, handle, edgeHeight));
        const QColor dark = rendered(*right).pixelColor(handle - 1 - 14, 20);
        QVERIFY2(dark.blue() < 40 && dark.alpha() > 200, qPrintable(dark.name(QColor::HexArgb)));
        right->setDrawerOpened(true);
        QTRY_COMPARE_WITH_TIMEOUT(right->geometry(),
                                  QRect(d.desk.width() - handle - contents, 22, handle + contents, edgeHeight),
                                  slideTimeout);
        d.container->setState(QStringLiteral("Min"));
        QTRY_COMPARE(d.container->geometry(), QRect(500, 100, 480, 400));
        QCOMPARE(right->position(), WindowDrawer::Right);
        QCOMPARE(right->geometry(), QRect(980, 100, handle + contents, 400));
        QCOMPARE(left->geometry(), QRect(500 - handle, 100, handle, 400));
        QCOMPARE(rendered(*right).pixelColor(contents + 14, 20), beside);
        d.container->setState(QStringLiteral("Thumb"));
        QCOMPARE(left->pos(), QPoint(0, 22));
    }

    void containerTakesOneDrawerASideSizedByItsForm()
    {
        DrawerDesk d;
        d.container->show();
        auto* form = new QFrame;
        form->setObjectName(QStringLiteral("ContainerFrame"));
        form->setMinimumWidth(300);
        auto* layout = new QVBoxLayout;
        layout->addWidget(form);
        d.container->setDrawerLayout(layout);
        WindowDrawer* configuration = d.container->getDrawer(WindowDrawer::Right);
        QCOMPARE(configuration->windowCaption(), QStringLiteral("Configuration"));
        QCOMPARE(configuration->getContainerFrame(), form);
        QCOMPARE(configuration->parentWidget(), &d.desk);
        // The registry finds the drawer, by its caption, from a control inside it.
        auto* control = new QWidget(form);
        QCOMPARE(GlobalImpl::getParentWindow(control), configuration);
        QCOMPARE(GlobalImpl::getParentWindowName(control), QStringLiteral("Configuration"));
        // Any side but the left one means the right-hand drawer; unknown sides add and open nothing.
        QCOMPARE(d.container->getDrawer(WindowDrawer::DockPosition_t(2)), configuration);
        QCOMPARE(d.container->getDrawer(WindowDrawer::Left), nullptr);
        QCOMPARE(d.container->addDrawer(WindowDrawer::Right, QStringLiteral("Another")), configuration);
        QCOMPARE(d.container->addDrawer(WindowDrawer::DockPosition_t(3), QStringLiteral("Third")), nullptr);
        d.container->setDrawerOpened(WindowDrawer::DockPosition_t(3), true);
        QVERIFY(!configuration->isOpen());
        // Open, it is as wide as the form asked.
        d.container->setDrawerOpened(WindowDrawer::Right, true);
        QTRY_COMPARE_WITH_TIMEOUT(configuration->width(), 300, slideTimeout);
        // A drawer of an unknown side takes the right; one without a container survives use.
        WindowDrawer odd(&d.desk, d.container, WindowDrawer::DockPosition_t(5), QStringLiteral("Odd"));
        QCOMPARE(odd.position(), WindowDrawer::Right);
        WindowDrawer orphan(&d.desk, nullptr, WindowDrawer::Right, QStringLiteral("Orphan"));
        orphan.changeSize(QStringLiteral("Max"));
        orphan.setDrawerOpened(true);
        QCOMPARE(orphan.parentWindow(), nullptr);
        // The drawers go with their container.
        QPointer<WindowDrawer> watched(configuration);
        delete d.container;
        QVERIFY(!watched);
    }

    // ---- Last, as it takes the registry down

    void closingDesktopDeletesRegistry()
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
};

QTEST_MAIN(TestDesktop)
#include "tst_desktop.moc"
