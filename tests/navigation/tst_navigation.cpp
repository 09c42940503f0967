// The navigation bar as a user and the host meet it: where it sits and slides, paging
// and dragging its row, the auto-hide time-out, the paging arrows, tiles and pop-ups,
// and the menus the host builds entry by entry and takes apart again.


#include "ContainerBase.h"
#include "FSContainer.h"
#include "GlobalImpl.h"
#include "MenuBar.h"
#include "MenuItem.h"
#include "MenuWidgetImpl.h"
#include "ScrollButton.h"
#include "ScrollableMenuBarFrame.h"
#include "SubMenu.h"
#include "SubMenuItem.h"
#include "SubSubMenu.h"
#include "SubSubMenuItem.h"

#include <QAction>
#include <QMap>
#include <QPointer>
#include <QRandomGenerator>
#include <QScrollArea>
#include <QSemaphore>
#include <QSvgRenderer>
#include <QThreadPool>
#include <QtTest>

#include <atomic>
#include <memory>
#include <stdexcept>

using Options = QList<QPair<const char*, QString>>;
Q_DECLARE_METATYPE(Qt::AlignmentFlag)
Q_DECLARE_METATYPE(Options)

// An entry the host adds (priority, position), or removes when `removes` is set.
struct Step
{
    QString menu, subMenu, label;
    int priority = 0;
    int position = 0;
    bool removes = false;
};
using Steps = QVector<Step>;
Q_DECLARE_METATYPE(Steps)

namespace {

// A desktop with a registered bar, and screens (plain containers) for its menus.
struct Desk
{
    explicit Desk(QSize size = {1280, 800}, Qt::AlignmentFlag location = Qt::AlignTop, const Options& options = {})
    {
        for (const auto& option : options)
            qApp->setProperty(option.first, option.second);
        desktop.resize(size);
        bar = new MenuBar(&desktop, location);
        GlobalImpl::getInstance()->setTopNavMenu(bar);
        desktop.show();
    }
    ~Desk()
    {
        GlobalImpl::getInstance()->setTopNavMenu(nullptr);
        for (const char* option : {"-systype", "-res", "-size", "-menubarlocation", "-animation"})
            qApp->setProperty(option, QVariant());
    }
    ContainerBase* screen(const QString& name)
    {
        auto* container = new ContainerBase(&desktop);
        container->setObjectName(name);
        container->hide();
        return container;
    }
    ContainerBase* screenNamed(const QString& name) { return desktop.findChild<ContainerBase*>(name); }
    // An entry for a new screen named after its label.
    QPushButton* add(
        const QString& menu, const QString& subMenu, const QString& label, int priority = 0, int position = 0)
    {
        return bar->addMenuItem(menu, subMenu, label, screen(label), position, priority, nullptr, QString(), 0);
    }
    void run(const Steps& steps);
    void fill(int menus)
    {
        for (int i = 0; i < menus; ++i)
            add(QString("Menu %1").arg(i), QString(), QString("Screen %1").arg(i));
    }
    void openBar() { bar->showMenuBar(true); }
    QPushButton* entry(const QString& menu, const QString& subMenu, const QString& label) const
    {
        return bar->menuEntry(menu, subMenu, label);
    }
    ScrollableMenuBarFrame* frame() const { return bar->findChild<ScrollableMenuBarFrame*>(); }
    int viewport() const { return bar->findChild<QScrollArea*>()->width(); }
    QPushButton* tab() const { return bar->findChild<QPushButton*>(QString(), Qt::FindDirectChildrenOnly); }
    ScrollButton* arrow(int index) const { return bar->findChildren<ScrollButton*>().value(index); }
    QList<MenuItem*> row() const
    {
        QList<MenuItem*> buttons;
        for (int index = 0; index < frame()->layout()->count(); ++index) {
            if (auto* button = qobject_cast<MenuItem*>(frame()->layout()->itemAt(index)->widget()))
                buttons.append(button);
        }
        return buttons;
    }
    QPoint onDesktop(const QWidget* widget) const { return desktop.mapFromGlobal(widget->mapToGlobal(QPoint())); }
    // The bar as a user finds it: bar buttons in row order, a group with its sub-menu's
    // entries in (), a holder with its second-level entries in [].
    QString shape() const;

    QWidget desktop;
    MenuBar* bar;
};

// Runs what was deleted later, and what that deleted later in turn.
void settle()
{
    for (int round = 0; round < 3; ++round) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }
}

void Desk::run(const Steps& steps)
{
    for (const Step& step : steps) {
        if (step.removes)
            QVERIFY(bar->removeMenuItem(step.menu, step.subMenu, step.label));
        else
            QVERIFY(add(step.menu, step.subMenu, step.label, step.priority, step.position));
        settle();
    }
}

QString Desk::shape() const
{
    QStringList shown;
    for (const MenuItem* button : row()) {
        const SubMenu* sub = bar->getSubMenus().value(button->getName());
        if (!button->isCheckable() || !sub) {
            shown.append(button->text());
            continue;
        }
        QStringList entries;
        for (QPushButton* entry : sub->buttons()) {
            QStringList nested;
            if (const SubSubMenu* nest = bar->getSubSubMenus().value(button->getName() + '|' + entry->text()))
                for (QPushButton* each : nest->buttons())
                    nested.append(each->text());
            entries.append(entry->isCheckable() ? entry->text() + '[' + nested.join(", ") + ']' : entry->text());
        }
        shown.append(button->getName() + '(' + entries.join(", ") + ')');
    }
    return shown.join(" | ");
}

// Lets every time-out read finish and its answer reach the bar.
void settleTimeoutReads()
{
    for (int round = 0; round < 3; ++round) {
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
    }
}

MenuBar::TimeoutSource fixedTimeout(std::optional<int> seconds)
{
    return [seconds] { return seconds; };
}

// A finger pressed at \a from, moved to \a to and lifted there, in \a widget's coordinates
// before the press: a widget that moves under the finger sees it where it really is.
void fingerDrag(QWidget* widget, const QPoint& from, const QPoint& to)
{
    const QPoint globalFrom = widget->mapToGlobal(from);
    const QPoint globalTo = widget->mapToGlobal(to);
    auto send = [widget](QEvent::Type type, const QPoint& global, Qt::MouseButtons buttons) {
        QMouseEvent event(type, widget->mapFromGlobal(global), global, Qt::LeftButton, buttons, Qt::NoModifier);
        QApplication::sendEvent(widget, &event);
    };
    send(QEvent::MouseButtonPress, globalFrom, Qt::LeftButton);
    send(QEvent::MouseMove, globalTo, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, globalTo, Qt::NoButton);
}

} // namespace

class TestNavigation : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { settle(); }

    void barSlidesBetweenClosedAndOpen_data()
    {
        QTest::addColumn<Qt::AlignmentFlag>("location");
        QTest::addColumn<QSize>("desktop");
        QTest::addColumn<Options>("options");
        QTest::addColumn<QRect>("closed");
        QTest::addColumn<QRect>("open");
        QTest::addColumn<QRect>("negArrow");
        QTest::addColumn<int>("itemExtent");
        QTest::newRow("top") << Qt::AlignTop << QSize(1280, 800) << Options {} << QRect(0, -180, 1280, 225)
                             << QRect(0, -55, 1280, 225) << QRect(5, 99, 49, 49) << 184;
        QTest::newRow("top, portrait") << Qt::AlignTop << QSize(480, 800) << Options {{"-res", "480x800"}}
                                       << QRect(0, -120, 480, 165) << QRect(0, -35, 480, 165) << QRect(5, 60, 46, 46)
                                       << 128;
        QTest::newRow("top, landscape") << Qt::AlignTop << QSize(800, 480) << Options {{"-size", "landscape"}}
                                        << QRect(375, -89, 50, 129) << QRect(0, -23, 800, 129) << QRect() << 124;
        QTest::newRow("top, small portrait")
            << Qt::AlignTop << QSize(600, 1024) << Options {{"-size", "small_portrait"}} << QRect(0, -247, 600, 292)
            << QRect(0, -77, 600, 292) << QRect(5, 135, 64, 64) << 240;
        QTest::newRow("left") << Qt::AlignLeft << QSize(800, 480) << Options {} << QRect(-225, 0, 280, 480)
                              << QRect(-60, 0, 280, 480) << QRect(121, 5, 50, 50) << 86;
        QTest::newRow("left, wide") << Qt::AlignLeft << QSize(1280, 800)
                                    << Options {{"-res", "480x800"}, {"-size", "landscape"}} << QRect(-393, 0, 448, 800)
                                    << QRect(-108, 0, 448, 800) << QRect(214, 5, 80, 80) << 137;
    }
    void barSlidesBetweenClosedAndOpen()
    {
        QFETCH(Qt::AlignmentFlag, location);
        QFETCH(QSize, desktop);
        QFETCH(Options, options);
        QFETCH(QRect, closed);
        QFETCH(QRect, open);
        QFETCH(QRect, negArrow);
        QFETCH(int, itemExtent);
        Desk d(desktop, location, options);
        QSignalSpy toggled(d.bar, &MenuBar::toggled);
        QCOMPARE(d.bar->geometry(), closed);
        // A landscape bar has no arrows to show.
        QCOMPARE(d.arrow(0)->isVisible(), !negArrow.isNull());
        QVERIFY(negArrow.isNull() || d.arrow(0)->geometry() == negArrow);
        QVERIFY(!d.arrow(0)->isEnabled() && !d.arrow(1)->isEnabled());
        d.fill(1);
        QCOMPARE(location == Qt::AlignTop ? d.row().first()->width() : d.row().first()->height(), itemExtent);

        d.bar->toggle();
        QVERIFY(d.bar->isOpen);
        QCOMPARE(d.bar->geometry(), open);
        // Showing what is shown changes nothing; the time-out closes it.
        d.bar->showMenuBar(true);
        QMetaObject::invokeMethod(d.bar, "timeIsUp");
        QVERIFY(!d.bar->isOpen);
        QCOMPARE(d.bar->geometry(), closed);
        QCOMPARE(toggled.size(), 2);
        QVERIFY(toggled.at(0).at(0).toBool() && !toggled.at(1).at(0).toBool());
        // The tab opens it (the closed landscape bar is narrower than its side margins: no tab).
        QTest::mouseClick(d.tab(), Qt::LeftButton);
        QVERIFY(d.bar->isOpen || d.tab()->width() == 0);
    }

    void topRowPagesByViewportsThenToTheEnd()
    {
        Desk d;
        const int viewport = d.viewport();
        // Three and a half viewports of buttons.
        d.fill(viewport * 7 / 2 / d.bar->itemExtent() + 1);
        const int end = viewport - d.frame()->width();
        d.bar->setTimeoutSource(fixedTimeout(8));
        QSignalSpy jumped(d.bar, &MenuBar::jumped);
        QTRY_VERIFY(d.arrow(1)->isEnabled());
        QVERIFY(!d.arrow(0)->isEnabled());

        QTest::mouseClick(d.arrow(1), Qt::LeftButton);
        QTRY_COMPARE(d.frame()->pos(), QPoint(-viewport, 0));
        QTRY_VERIFY(d.arrow(0)->isEnabled());
        // Every arrow release restarts the auto-hide.
        QTRY_VERIFY(d.bar->remainingHideTime() > 7000);
        for (const int target : {-2 * viewport, end}) {
            QTest::mouseClick(d.arrow(1), Qt::LeftButton);
            QTRY_COMPARE(d.frame()->pos(), QPoint(target, 0));
        }
        QTRY_VERIFY(!d.arrow(1)->isEnabled());
        // A release outside the arrow is no tap.
        QTest::mousePress(d.arrow(0), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
        QTest::mouseRelease(d.arrow(0), Qt::LeftButton, Qt::NoModifier, QPoint(-5, 5));
        QTest::mouseClick(d.arrow(0), Qt::LeftButton);
        QTRY_COMPARE(d.frame()->pos(), QPoint(end + viewport, 0));
        d.frame()->move(-viewport + 1, 0);
        QTest::mouseClick(d.arrow(0), Qt::LeftButton);
        QTRY_COMPARE(d.frame()->pos(), QPoint(0, 0));
        QTRY_VERIFY(!d.arrow(0)->isEnabled());
        QCOMPARE(jumped.size(), 5);
    }

    void rowFollowsFingerAndPagesWithinItsEnds()
    {
        Desk d;
        d.fill(10);
        d.openBar();
        ScrollableMenuBarFrame* frame = d.frame();
        // Through a bar button: the row follows the finger along the bar only.
        MenuItem* first = d.row().first();
        fingerDrag(first, QPoint(150, 20), QPoint(50, 60));
        QCOMPARE(frame->pos(), QPoint(-100, 0));
        QVERIFY(d.arrow(0)->isEnabled() && d.arrow(1)->isEnabled());
        fingerDrag(first, QPoint(150, 20), QPoint(150 - 5000, 20));
        QCOMPARE(frame->pos(), QPoint(d.viewport() - frame->width(), 0));
        QVERIFY(!d.arrow(1)->isEnabled());
        fingerDrag(first, QPoint(10, 20), QPoint(5000, 20));
        QCOMPARE(frame->pos(), QPoint(0, 0));
    }

    void hidesAfterTheTimeout()
    {
        const MenuBar::TimeoutSource throwing = []() -> std::optional<int> { throw std::runtime_error("no engine"); };
        // 0 closes, 60 keeps the bar open; no reading, a bad one or a failed read leave the timer running.
        for (const auto& [source, remaining] : {std::pair {fixedTimeout(0), 0}, {fixedTimeout(60), -1},
                 {fixedTimeout(std::nullopt), 30}, {fixedTimeout(-3), 30}, {throwing, 30}}) {
            Desk d;
            d.openBar();
            d.bar->setTimeoutSource(fixedTimeout(30));
            d.bar->startTimer();
            settleTimeoutReads();
            d.bar->setTimeoutSource(source);
            d.bar->startTimer();
            settleTimeoutReads();
            QTRY_COMPARE(d.bar->isOpen, remaining != 0);
            QCOMPARE(d.bar->remainingHideTime() > 20000, remaining == 30);
            QCOMPARE(d.bar->remainingHideTime() == -1, remaining <= 0);
        }
    }

    void newerStartSupersedesPendingRead()
    {
        auto entered = std::make_shared<QSemaphore>();
        auto release = std::make_shared<QSemaphore>();
        auto calls = std::make_shared<std::atomic<int>>(0);
        auto source = [=]() -> std::optional<int> {
            if (++*calls > 1)
                return 8;
            entered->release();
            release->acquire();
            return 0;
        };
        Desk d;
        d.openBar();
        d.bar->setTimeoutSource(source);
        d.bar->startTimer();
        QVERIFY(entered->tryAcquire(1, 5000));
        d.bar->startTimer();
        release->release();
        settleTimeoutReads();
        // The first answer, which would have closed the bar at once, is dropped.
        QTRY_VERIFY(d.bar->remainingHideTime() > 7000);
        QVERIFY(d.bar->isOpen && calls->load() == 2);

        // A bar that goes while a read is out is not touched by its answer.
        *calls = 0;
        {
            Desk gone;
            gone.bar->setTimeoutSource(source);
            gone.bar->startTimer();
            QVERIFY(entered->tryAcquire(1, 5000));
        }
        release->release();
        settleTimeoutReads();
    }

    void tilePicksIconByExactMenuName()
    {
        // Every category has its icon, found by the exact menu name.
        for (const char* menu : {"Meters", "Oscilloscope", "VSWR", "Instruments", "Demod", "Generators", "Utilities",
                 "Config", "Self Test", "Language", "RF Generators", "Ext. Power Supplies", "DMM", "Digital Data Gen.",
                 "Calibrations", "Audio", "Applications", "Help", "Meters "}) {
            const QString icon = MenuWidgetImpl(menu, "Loaded", false, nullptr).getIconPath();
            QVERIFY2(QSvgRenderer(icon).isValid(), menu);
            QCOMPARE(icon.endsWith("icon_unknown.svg"), menu == QLatin1String("Meters "));
        }
        // A tile sized before it shows draws its icon when it paints: alike but for it,
        // two categories' tiles differ.
        MenuWidgetImpl meters("Meters", "Loaded", false, nullptr), help("Help", "Loaded", false, nullptr);
        for (MenuWidgetImpl* tile : {&meters, &help})
            tile->setText("Tile"), tile->resize(200, 120);
        QVERIFY(meters.grab().toImage() != help.grab().toImage());
    }

    void tapOpensScreenButTravelDoesNot_data()
    {
        QTest::addColumn<bool>("inSubMenu");
        QTest::addColumn<QPoint>("travel");
        QTest::addColumn<bool>("opens");
        QTest::newRow("bar, tap") << false << QPoint() << true;
        QTest::newRow("bar, 100 pixels") << false << QPoint(100, 0) << true;
        QTest::newRow("bar, 101 pixels") << false << QPoint(101, 0) << false;
        QTest::newRow("sub-menu, 40 pixels") << true << QPoint(0, 40) << true;
        QTest::newRow("sub-menu, 41 pixels") << true << QPoint(0, 41) << false;
        // A handheld shows screens full size: the bar gets out of the way.
        QTest::newRow("handheld, tap") << false << QPoint() << true;
        QTest::newRow("handheld, sub-menu tap") << true << QPoint() << true;
    }
    void tapOpensScreenButTravelDoesNot()
    {
        QFETCH(bool, inSubMenu);
        QFETCH(QPoint, travel);
        QFETCH(bool, opens);
        const bool handheld = QByteArray(QTest::currentDataTag()).startsWith("handheld");
        Desk desk(QSize(1280, 800), Qt::AlignTop, {{"-systype", handheld ? "handheld" : "benchtop"}});
        if (inSubMenu)
            desk.add("Meters", QString(), "Power");
        // A full-screen container's own show() announces its size first.
        auto* screen = new FSContainer(&desk.desktop);
        screen->hide();
        QPushButton* entry = desk.bar->addMenuItem("Meters", QString(), "Voltage", screen, 0, 0, nullptr, QString(), 0);
        desk.openBar();
        if (inSubMenu)
            QTest::mouseClick(desk.bar->menuButton("Meters"), Qt::LeftButton);
        QSignalSpy clicks(entry, &QPushButton::clicked);
        fingerDrag(entry, QPoint(10, 4), QPoint(10, 4) + travel);
        QCOMPARE(clicks.count(), opens ? 1 : 0);
        QCOMPARE(screen->isVisible(), opens);
        QCOMPARE(entry->property("screenSize").toString(), QString(opens ? "Max" : ""));
        QCOMPARE(desk.bar->isOpen, !handheld);
        // The screen it opened closes the sub-menu.
        if (inSubMenu)
            QCOMPARE(desk.bar->menuButton("Meters")->isChecked(), !opens);
    }

    void subMenuOpensSizedAndPlaced_data()
    {
        QTest::addColumn<QSize>("desktop");
        QTest::addColumn<Qt::AlignmentFlag>("location");
        QTest::addColumn<Options>("options");
        QTest::addColumn<QSize>("size");
        const QSize wide(1280, 800);
        QTest::newRow("top, one entry hidden") << wide << Qt::AlignTop << Options {} << QSize(184, 124);
        QTest::newRow("top, landscape") << QSize(800, 480) << Qt::AlignTop << Options {{"-size", "landscape"}}
                                        << QSize(124, 174);
        QTest::newRow("left") << QSize(800, 480) << Qt::AlignLeft << Options {{"-menubarlocation", "left"}}
                              << QSize(190, 185);
    }
    void subMenuOpensSizedAndPlaced()
    {
        QFETCH(QSize, desktop);
        QFETCH(Qt::AlignmentFlag, location);
        QFETCH(Options, options);
        QFETCH(QSize, size);
        Desk desk(desktop, location, options);
        for (const char* label : {"Spectrum", "Scope", "Network"})
            desk.add("Analyzers", QString(), label);
        if (QByteArray(QTest::currentDataTag()).contains("hidden"))
            desk.bar->disableScreen("Analyzers", QString(), "Network", 1);
        desk.openBar();
        MenuItem* group = desk.bar->menuButton("Analyzers");
        SubMenu* sub = desk.bar->getSubMenus().value("Analyzers");
        QTest::mouseClick(group, Qt::LeftButton);
        QVERIFY(group->isChecked() && sub->isVisible());
        QTRY_COMPARE(sub->size(), size);
        const QPoint corner = desk.onDesktop(group);
        QCOMPARE(sub->pos(),
            location == Qt::AlignTop ? QPoint(corner.x(), group->y() + group->height() - 11)
                                     : QPoint(corner.x() + group->width() + 3, std::max(0, corner.y())));
        QTest::mouseClick(group, Qt::LeftButton);
        QVERIFY(!group->isChecked());
        QTRY_VERIFY(!sub->isVisible());
    }

    void oneOpenPopUpPerLevel()
    {
        Desk desk;
        desk.run({{"Analyzers", "Spectrum", "Spectrum A"}, {"Analyzers", "Spectrum", "Spectrum B"},
            {"Analyzers", "Scope", "Scope A"}, {"Analyzers", "Scope", "Scope B"}, {"Meters", "", "Power"},
            {"Meters", "", "Voltage"}});
        desk.openBar();
        MenuItem* analyzers = desk.bar->menuButton("Analyzers");
        SubMenu* analyzerMenu = desk.bar->getSubMenus().value("Analyzers");
        SubMenu* meterMenu = desk.bar->getSubMenus().value("Meters");
        QTest::mouseClick(analyzers, Qt::LeftButton);
        QTest::mouseClick(desk.bar->menuButton("Meters"), Qt::LeftButton);
        QVERIFY(!analyzers->isChecked() && meterMenu->isVisible());
        QTRY_VERIFY(!analyzerMenu->isVisible());

        QTest::mouseClick(analyzers, Qt::LeftButton);
        QTRY_VERIFY(!meterMenu->isVisible());
        SubSubMenu* spectrum = desk.bar->getSubSubMenus().value("Analyzers|Spectrum");
        SubSubMenu* scope = desk.bar->getSubSubMenus().value("Analyzers|Scope");
        QTest::mouseClick(spectrum->getOwner(), Qt::LeftButton);
        QVERIFY(spectrum->isVisible() && spectrum->getConnector()->isVisible());
        // Entries made while their pop-ups were closed look, once open, as buttons made there then.
        for (QPushButton* entry : analyzerMenu->findChildren<QPushButton*>() + spectrum->findChildren<QPushButton*>()) {
            QPushButton probe(entry->text(), entry->parentWidget());
            probe.show();
            QCOMPARE(entry->font(), probe.font());
            QCOMPARE(entry->palette(), probe.palette());
            QCOMPARE(QWidgetItem(entry).sizeHint().width(), QWidgetItem(&probe).sizeHint().width());
        }
        // Beside its holder, joined by the connector.
        const QPoint corner = desk.onDesktop(spectrum->getOwner());
        const int right = corner.x() + spectrum->getOwner()->width();
        QCOMPARE(spectrum->getConnector()->geometry(), QRect(right, corner.y() + 11, 6, 32));
        QCOMPARE(spectrum->pos(), QPoint(right + 6, corner.y()));
        desk.bar->disableScreen("Analyzers", "Scope", "Scope B", 1);
        QTest::mouseClick(scope->getOwner(), Qt::LeftButton);
        QVERIFY(scope->isVisible() && !spectrum->getOwner()->isChecked());
        // Made as their pop-ups opened, spacers show as the entries below them do.
        const auto spacers = [](SubSubMenu* nest) { return nest->findChildren<QFrame*>("spacer"); };
        QVERIFY(spacers(spectrum).size() == 1 && !spacers(spectrum)[0]->isHidden());
        QVERIFY(spacers(scope).size() == 1 && spacers(scope)[0]->isHidden());
        QVERIFY(!spectrum->isVisible() && !spectrum->getConnector()->isVisible());
        // Sliding the bar closes every pop-up at once.
        desk.bar->toggle();
        QVERIFY(!analyzerMenu->isVisible() && !scope->isVisible() && !analyzers->isChecked());
    }

    void buildsMenusOfARealisticSet()
    {
        Desk desk;
        desk.run({{"Meters", "", "Power Meter", 5}, {"Analyzers", "Spectrum", "Spectrum 1", 9, 3},
            {"Analyzers", "Scope", "Scope", 9, 5}, {"Analyzers", "Spectrum", "Spectrum 2", 9, 3},
            {"System", "", "Config", 1}, {"System", "", "Self Test", 1}, {"Help", "", "Help", 5}});
        // An instance number follows the label.
        QPushButton* again = desk.bar->addMenuItem(
            "Analyzers", "Spectrum", "Spectrum 1", desk.screen("Spectrum 1 #2"), 3, 9, nullptr, QString(), 2);
        QCOMPARE(again->text(), QString("Spectrum 1 2"));
        // Higher priorities first, equal ones in the order they came; the holder of "Spectrum"
        // takes the position of the entry that nested it: below "Scope".
        QCOMPARE(desk.shape(),
            QString("Analyzers(Scope, Spectrum[Spectrum 1, Spectrum 2, Spectrum 1 2]) | "
                    "Power Meter | Help | System(Config, Self Test)"));
        QCOMPARE(desk.bar->getSubSubMenus().keys(), QStringList({"Analyzers|Spectrum"}));
    }

    void shapesMenusAsEntriesComeAndGo_data()
    {
        QTest::addColumn<Steps>("steps");
        QTest::addColumn<QString>("shape");
        const Step spectrum1 {"Analyzers", "Spectrum", "Spectrum 1"};
        const Step spectrum2 {"Analyzers", "Spectrum", "Spectrum 2"};
        const Step scope {"Analyzers", "Scope", "Scope"};
        Step gone1 = spectrum2, gone2 = scope;
        gone1.removes = gone2.removes = true;
        // The group takes the row place of the button it replaces, and the rank of the
        // entry that made it a group: a later menu of a rank in between goes after it.
        QTest::newRow("group ranks as its second entry")
            << Steps {{"Meters", "", "Power", 1}, {"Meters", "", "Voltage", 9}, {"Help", "", "Help", 5}}
            << QStringLiteral("Meters(Power, Voltage) | Help");
        QTest::newRow("holder placed as the entry that nests its name")
            << Steps {{"Analyzers", "Spectrum", "Spectrum 1", 0, 5}, {"Analyzers", "Scope", "Scope", 0, 3},
                   {"Analyzers", "Spectrum", "Spectrum 2", 0, 1}}
            << QStringLiteral("Analyzers(Scope, Spectrum[Spectrum 1, Spectrum 2])");
        QTest::newRow("nested name outlives the other names") << Steps {
            spectrum1, scope, spectrum2, gone2} << QStringLiteral("Analyzers(Spectrum[Spectrum 1, Spectrum 2])");
        // The last entry but one leaves from the second level: the group stays.
        QTest::newRow("group kept when its second level collapses")
            << Steps {spectrum1, scope, spectrum2, gone2, gone1} << QStringLiteral("Analyzers(Spectrum 1)");
        // An entry back from a collapsed second level goes last, whatever its position.
        QTest::newRow("collapsed entry appended") << Steps {{"Analyzers", "Spectrum", "Spectrum 1", 0, 5},
            {"Analyzers", "Scope", "Scope", 0, 1}, {"Analyzers", "Spectrum", "Spectrum 2", 0, 5},
            {"Analyzers", "Spectrum", "Spectrum 2", 0, 5, true}} << QStringLiteral("Analyzers(Scope, Spectrum 1)");
        // Back to a single button, the menu ranks 0 whatever rank its group had.
        QTest::newRow("ungrouped button ranks 0") << Steps {{"Meters", "", "Power", 5}, {"Meters", "", "Voltage", 5},
            {"Meters", "", "Voltage", 0, 0, true}, {"Help", "", "Help", 3}}
                                                  << QStringLiteral("Help | Power");
    }
    void shapesMenusAsEntriesComeAndGo()
    {
        QFETCH(Steps, steps);
        QFETCH(QString, shape);
        Desk desk;
        desk.run(steps);
        QCOMPARE(desk.shape(), shape);
        // Nothing of a pop-up the bar let go stays on the desktop.
        QCOMPARE(desk.desktop.findChildren<SubMenu*>().size(), desk.bar->getSubMenus().size());
        QCOMPARE(desk.desktop.findChildren<SubSubMenu*>().size(), desk.bar->getSubSubMenus().size());
    }

    void closingEveryScreenAtOnceEmptiesTheBar_data()
    {
        QTest::addColumn<int>("names");
        QTest::newRow("one flat sub-menu") << 1;
        QTest::newRow("nested names") << 4;
    }
    void closingEveryScreenAtOnceEmptiesTheBar()
    {
        QFETCH(int, names);
        Desk desk;
        QList<ContainerBase*> screens;
        for (int i = 0; i < 40; ++i) {
            desk.add("Meters", QString("Name %1").arg(i % names), QString("Screen %1").arg(i));
            screens.append(desk.screenNamed(QString("Screen %1").arg(i)));
        }
        settle();
        QTest::mouseClick(desk.bar->menuButton("Meters"), Qt::LeftButton);
        QCOMPARE(desk.bar->getSubSubMenus().size(), names > 1 ? names : 0);
        // As a host closing down: every screen goes outside the event loop, and the
        // menus empty before the entries' own deletion comes. Before any event, no list
        // shows an entry that is leaving.
        qDeleteAll(screens.mid(1));
        QList<QPushButton*> listed;
        for (const SubMenuBase* popUp : desk.desktop.findChildren<SubMenuBase*>())
            listed += popUp->buttons();
        QCOMPARE(listed.count(desk.entry("Meters", QString("Name 0"), "Screen 0")), 1);
        QCOMPARE(listed.size(), names > 1 ? names + 1 : 1);
        delete screens.first();
        QCoreApplication::processEvents();
        settle();
        QCOMPARE(desk.shape(), QString());
        QVERIFY(desk.desktop.findChildren<SubMenuBase*>().isEmpty());
        QVERIFY(desk.desktop.findChildren<SubMenuItem*>().isEmpty());
    }

    void regroupedEntryKeepsWhatItHad()
    {
        Desk desk;
        QAction receiver;
        QSignalSpy calls(&receiver, &QAction::triggered);
        GlobalImpl* registry = GlobalImpl::getInstance();
        ContainerBase* screen = desk.screen("Power");
        const QString slot = QString::fromLatin1(SLOT(trigger()));
        QPushButton* first = desk.bar->addMenuItem("Meters", QString(), "Power", screen, 0, 0, &receiver, slot, 0);
        QCOMPARE(first->property("Slot").toString(), slot);
        registry->addScreen("Power entry", first);
        emit screen->changeSize("Max");
        desk.openBar();
        // The bar does not connect the receiver to the entry it returns...
        QTest::mouseClick(first, Qt::LeftButton);
        QCOMPARE(calls.size(), 0);
        QSignalSpy swaps(first, SIGNAL(swappingMenuItem(QObject*)));

        desk.add("Meters", QString(), "Voltage");
        QPushButton* moved = desk.entry("Meters", QString(), "Power");
        QVERIFY(moved && moved != first && swaps.count() == 1);
        QCOMPARE(registry->getScreen("Power entry"), moved);
        registry->removeScreen("Power entry");
        QCOMPARE(moved->property("screenSize").toString(), QString("Max"));
        emit screen->changeSize("Thumb");
        QCOMPARE(moved->property("screenSize").toString(), QString("Thumb"));
        // ...but to the one it rebuilds.
        QTest::mouseClick(desk.bar->menuButton("Meters"), Qt::LeftButton);
        QTest::mouseClick(moved, Qt::LeftButton);
        QCOMPARE(calls.size(), 1);

        // A desktop deletes its children in the order they stand, and a bar raised above
        // its pop-ups goes after them: entries die with their pop-up while the bar still
        // keeps them in its books.
        const QPointer<QPushButton> entry = moved;
        delete desk.bar->getSubMenus().value("Meters");
        settle();
        QVERIFY(!entry && desk.shape().isEmpty());
    }

    void hidesAndShowsSingleEntries()
    {
        Desk desk;
        QPushButton* power = desk.add("Meters", QString(), "Power");
        ContainerBase* powerScreen = desk.screenNamed("Power");
        powerScreen->show();
        desk.bar->disableScreen("Meters", QString(), "Power", 1);
        QVERIFY(power->isHidden() && !powerScreen->isVisible());
        desk.bar->enableScreen("Meters", QString(), "Power", 1);
        QVERIFY(!power->isHidden() && !powerScreen->isVisible());
        // Keys carry the number 1: 2 never matches.
        desk.bar->disableScreen("Meters", QString(), "Power", 2);
        QVERIFY(!power->isHidden());

        desk.add("Meters", QString(), "Voltage");
        MenuItem* group = desk.bar->menuButton("Meters");
        desk.bar->disableScreen("Meters", QString(), "Power", 1);
        QVERIFY(!group->isHidden());
        desk.bar->disableScreen("Meters", QString(), "Voltage", 1);
        QVERIFY(group->isHidden());
        desk.bar->enableScreen("Meters", QString(), "Voltage", 1);
        QVERIFY(!group->isHidden());
        // A hidden entry stays hidden through regrouping.
        desk.bar->removeMenuItem("Meters", QString(), "Voltage");
        QVERIFY(desk.bar->menuButton("Meters")->isHidden());
        // A name whose entries are all hidden gets a hidden holder when a second name nests it.
        for (const char* label : {"AC 1", "AC 2"})
            desk.bar->disableScreen("Sources", "AC", desk.add("Sources", "AC", label)->text(), 1);
        desk.add("Sources", "DC", "DC 1");
        QVERIFY(desk.bar->getSubSubMenus().value("Sources|AC")->getOwner()->isHidden());
        QVERIFY(!desk.bar->menuButton("Sources")->isHidden());
        // A new entry shows the holder and the group that hid with all their entries.
        desk.bar->disableScreen("Sources", "DC", "DC 1", 1);
        QVERIFY(desk.bar->menuButton("Sources")->isHidden());
        desk.add("Sources", "AC", "AC 3");
        QVERIFY(!desk.bar->menuButton("Sources")->isHidden());
        QVERIFY(!desk.bar->getSubSubMenus().value("Sources|AC")->getOwner()->isHidden());
    }

    void refusesBadInput()
    {
        Desk desk;
        QPushButton* power = desk.add("Meters", QString(), "Power");
        // No screen, no menu name, a key that is there, a screen that has an entry.
        const QList<std::tuple<QString, QString, ContainerBase*>> refused
            = {{"Meters", "Voltage", nullptr}, {QString(), "Voltage", desk.screen("Voltage")},
                {"Meters", "Power", desk.screen("New")}, {"Analyzers", "Again", desk.screenNamed("Power")}};
        for (const auto& [menu, label, screen] : refused)
            QVERIFY(!desk.bar->addMenuItem(menu, QString(), label, screen, 0, 0, nullptr, QString(), 0));
        QCOMPARE(desk.shape(), QString("Power"));
        QVERIFY(!desk.bar->removeMenuItem("Meters", QString(), "Voltage"));
        QCOMPARE(desk.entry("Meters", QString(), "Power"), power);
    }

    void staysConsistentThroughSeededChurn()
    {
        Desk desk;
        QRandomGenerator random(20240611);
        const auto keyOf = [](int i) {
            return std::tuple {
                QString("Menu %1").arg(i % 5), QString("Name %1").arg(i % 3), QString("Screen %1").arg(i)};
        };
        QVector<QPointer<ContainerBase>> screens(40);
        QVector<bool> present(40);
        for (int step = 0; step < 300; ++step) {
            const int picked = random.bounded(40);
            const auto [menu, subMenu, label] = keyOf(picked);
            // In by the host; out as the screen goes, as the button goes, or by the host.
            if (!present[picked]) {
                if (!screens[picked])
                    screens[picked] = desk.screen(label);
                QVERIFY(desk.bar->addMenuItem(
                    menu, subMenu, label, screens[picked], int(random.bounded(3)), 0, nullptr, QString(), 0));
            } else if (const int way = random.bounded(3); way == 0) {
                delete screens[picked].data();
            } else if (way == 1) {
                delete desk.entry(menu, subMenu, label);
            } else {
                QVERIFY(desk.bar->removeMenuItem(menu, subMenu, label));
            }
            present[picked] = !present[picked];
            settle();

            QMap<QString, QMap<QString, int>> expected;
            for (int i = 0; i < 40; ++i) {
                const auto [m, n, l] = keyOf(i);
                QPushButton* entry = desk.entry(m, n, l);
                QVERIFY2(bool(entry) == present[i] && (!entry || entry->text() == l), qPrintable(l));
                if (entry)
                    ++expected[m][n];
            }
            // Every button left stands for a live entry, at a level its counts allow.
            int entries = 0;
            for (QPushButton* button : desk.desktop.findChildren<QPushButton*>())
                entries += qobject_cast<SubSubMenuItem*>(button)
                    || ((qobject_cast<MenuItem*>(button) || qobject_cast<SubMenuItem*>(button))
                        && !button->isCheckable());
            QCOMPARE(entries, int(present.count(true)));
            QCOMPARE(desk.row().size(), expected.size());
            for (auto menu = expected.cbegin(); menu != expected.cend(); ++menu) {
                int count = 0;
                for (auto name = menu.value().cbegin(); name != menu.value().cend(); ++name) {
                    count += name.value();
                    const bool nested = desk.bar->getSubSubMenus().contains(menu.key() + '|' + name.key());
                    QVERIFY(nested ? name.value() >= 2 : name.value() < 2 || menu.value().size() < 2);
                }
                // A group may be down to one entry when its second level collapsed last.
                MenuItem* button = desk.bar->menuButton(menu.key());
                QVERIFY(button && (button->isCheckable() || count == 1));
                QCOMPARE(desk.bar->getSubMenus().contains(menu.key()), button->isCheckable());
            }
            QCOMPARE(desk.desktop.findChildren<SubMenu*>().size(), desk.bar->getSubMenus().size());
            QCOMPARE(desk.desktop.findChildren<SubSubMenu*>().size(), desk.bar->getSubSubMenus().size());
        }
    }
};

QTEST_MAIN(TestNavigation)
#include "tst_navigation.moc"
