// Building the navigation bar screen by screen: bar buttons, groups and nested groups as
// entries arrive, collapsing again as they go, single entries hidden and shown by key,
// bad input refused with a log line, and a seeded churn that keeps the menus consistent.

#include "LogCapture.h"
#include "MenuTestDesktop.h"
#include "MenuWidgetImpl.h"
#include "ScreenMap.h"
#include "SubMenu.h"
#include "SubMenuItem.h"
#include "SubSubMenu.h"
#include "SubSubMenuItem.h"

#include <QMap>
#include <QPointer>
#include <QRandomGenerator>

using Options = QList<QPair<const char*, QString>>;
Q_DECLARE_METATYPE(Qt::AlignmentFlag)
Q_DECLARE_METATYPE(Options)

// An entry the host adds, or removes when `removes` is set.
struct Step
{
    QString menu;
    QString subMenu;
    QString label;
    int priority = 0;
    int position = 0;
    bool removes = false;
};
using Steps = QVector<Step>;
Q_DECLARE_METATYPE(Steps)

namespace {

QStringList texts(const QList<QPushButton*>& buttons)
{
    QStringList result;
    for (const QPushButton* button : buttons)
        result.append(button->text());
    return result;
}

template <class Entry>
QList<QPushButton*> entriesIn(const SubMenuBase* popUp)
{
    QList<QPushButton*> result;
    for (QPushButton* button : popUp->buttons()) {
        if (qobject_cast<Entry*>(button))
            result.append(button);
    }
    return result;
}

// The bar as a user finds it: bar buttons in row order, a group with its sub-menu's
// entries in (), a holder with its second-level entries in [].
QString shapeOf(const MenuTestDesktop& desk)
{
    QStringList row;
    for (const MenuItem* button : desk.row()) {
        const SubMenu* sub = desk.bar->getSubMenus().value(button->getName());
        if (!button->isCheckable() || !sub) {
            row.append(button->text());
            continue;
        }
        QStringList entries;
        for (const QPushButton* entry : sub->buttons()) {
            const SubSubMenu* nest = desk.bar->getSubSubMenus().value(button->getName() + '|' + entry->text());
            entries.append(entry->isCheckable() && nest
                               ? entry->text() + '[' + texts(entriesIn<SubSubMenuItem>(nest)).join(", ") + ']'
                               : entry->text());
        }
        row.append(button->getName() + '(' + entries.join(", ") + ')');
    }
    return row.join(" | ");
}

// Counts calls of its slot.
class Receiver : public QObject
{
    Q_OBJECT
public:
    int calls = 0;
public slots:
    void open() { ++calls; }
};

} // namespace

class TestMenuBuilding : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { MenuTestDesktop::settle(); }

    void screenMapAnswersByKeyAndButton();
    void buildsMenusOfARealisticSet_data();
    void buildsMenusOfARealisticSet();
    void shapesMenusAsEntriesComeAndGo_data();
    void shapesMenusAsEntriesComeAndGo();
    void collapsesBackToSingleEntries();
    void hidesAndShowsSingleEntries();
    void rebuiltEntriesCallTheReceiver();
    void refusesBadInput_data();
    void refusesBadInput();
    void moduleLeavesWhileItsSubMenuIsOpen();
    void staysConsistentThroughSeededChurn();
};

void TestMenuBuilding::screenMapAnswersByKeyAndButton()
{
    QPushButton a;
    QPushButton b;
    ScreenMap map;
    const ScreenKey first(QStringLiteral("M"), QStringLiteral("S"), QStringLiteral("L"), 1);
    map.append(first, &a);
    map.append(first, &b);
    QCOMPARE(map.button(first), &a);
    map.remove(first, &a);
    QCOMPARE(map.button(first), &b);
    map.replaceButton(&b, &a);
    QCOMPARE(map.key(&a), first);

    const ScreenKey none = map.key(&b);
    QVERIFY(!none.menu.isNull() && none.menu.isEmpty() && none.label.isEmpty() && none.number == 0);
    QCOMPARE(none, ScreenKey());
    QVERIFY(!map.button(ScreenKey(QStringLiteral("M"), QStringLiteral("S"), QStringLiteral("L"), 2)));
}

void TestMenuBuilding::buildsMenusOfARealisticSet_data()
{
    QTest::addColumn<QSize>("desktop");
    QTest::addColumn<Qt::AlignmentFlag>("location");
    QTest::addColumn<Options>("options");
    QTest::newRow("top") << QSize(1280, 800) << Qt::AlignTop << Options{};
    QTest::newRow("top, landscape") << QSize(800, 480) << Qt::AlignTop
                                    << Options{{"-size", QStringLiteral("landscape")}};
    QTest::newRow("top, portrait") << QSize(480, 800) << Qt::AlignTop << Options{{"-res", QStringLiteral("480x800")}};
    QTest::newRow("left") << QSize(800, 480) << Qt::AlignLeft << Options{{"-menubarlocation", QStringLiteral("left")}};
}

void TestMenuBuilding::buildsMenusOfARealisticSet()
{
    QFETCH(QSize, desktop);
    QFETCH(Qt::AlignmentFlag, location);
    QFETCH(Options, options);
    MenuTestDesktop desk(desktop, location, options);

    desk.add(QStringLiteral("Meters"), QString(), QStringLiteral("Power Meter"), 5);
    desk.add(QStringLiteral("Analyzers"), QStringLiteral("Spectrum"), QStringLiteral("Spectrum 1"), 9, 3);
    desk.add(QStringLiteral("Analyzers"), QStringLiteral("Scope"), QStringLiteral("Scope"), 9, 5);
    desk.add(QStringLiteral("Analyzers"), QStringLiteral("Spectrum"), QStringLiteral("Spectrum 2"), 9, 3);
    desk.add(QStringLiteral("System"), QString(), QStringLiteral("Config"), 1);
    desk.add(QStringLiteral("System"), QString(), QStringLiteral("Self Test"), 1);
    desk.add(QStringLiteral("Help"), QString(), QStringLiteral("Help"), 5);
    // An instance number follows the label.
    QCOMPARE(desk.bar->addMenuItem(QStringLiteral("Analyzers"), QStringLiteral("Spectrum"),
                                   QStringLiteral("Spectrum 1"), desk.screen(QStringLiteral("Spectrum 1 #2")), 3,
                                   9, nullptr, QString(), 2)
                 ->text(),
             QStringLiteral("Spectrum 1 2"));

    // Higher priorities first, equal ones in the order they came.
    QStringList names;
    for (const MenuItem* button : desk.row()) {
        names.append(button->getName());
        QCOMPARE(button->isCheckable(), button->getName() == QLatin1String("Analyzers")
                                            || button->getName() == QLatin1String("System"));
        QCOMPARE(button->tile()->getSubmenu(), button->isCheckable());
        if (location == Qt::AlignTop)
            QCOMPARE(button->width(), desk.bar->itemExtent());
        else
            QCOMPARE(button->height(), desk.bar->itemExtent());
    }
    QCOMPARE(names, QStringList({"Analyzers", "Meters", "Help", "System"}));
    QCOMPARE(desk.row().at(1)->text(), QStringLiteral("Power Meter"));

    const QHash<QString, SubMenu*> subs = desk.bar->getSubMenus();
    QCOMPARE(subs.keys().size(), 2);
    // The holder of "Spectrum" takes the position of the entry that nested it: below "Scope".
    QCOMPARE(texts(subs.value(QStringLiteral("Analyzers"))->buttons()), QStringList({"Scope", "Spectrum"}));
    QCOMPARE(subs.value(QStringLiteral("Analyzers"))->buttons().first()->objectName(), QStringLiteral("Scope"));
    QCOMPARE(texts(subs.value(QStringLiteral("System"))->buttons()), QStringList({"Config", "Self Test"}));

    const QHash<QString, SubSubMenu*> nests = desk.bar->getSubSubMenus();
    QCOMPARE(nests.keys(), QStringList({"Analyzers|Spectrum"}));
    SubSubMenu* spectrum = nests.value(QStringLiteral("Analyzers|Spectrum"));
    QCOMPARE(texts(entriesIn<SubSubMenuItem>(spectrum)), QStringList({"Spectrum 1", "Spectrum 2", "Spectrum 1 2"}));
    QVERIFY(spectrum->getOwner()->isCheckable());
}

void TestMenuBuilding::shapesMenusAsEntriesComeAndGo_data()
{
    QTest::addColumn<Steps>("steps");
    QTest::addColumn<QString>("shape");
    // The group takes the row place of the button it replaces, and the rank of the
    // entry that made it a group: a later menu of a rank in between goes after it.
    QTest::newRow("group ranks as its second entry")
        << Steps{{"Meters", "", "Power", 1}, {"Meters", "", "Voltage", 9}, {"Help", "", "Help", 5}}
        << QStringLiteral("Meters(Power, Voltage) | Help");
    QTest::newRow("holder placed as the entry that nests its name")
        << Steps{{"Analyzers", "Spectrum", "Spectrum 1", 0, 5},
                 {"Analyzers", "Scope", "Scope", 0, 3},
                 {"Analyzers", "Spectrum", "Spectrum 2", 0, 1}}
        << QStringLiteral("Analyzers(Scope, Spectrum[Spectrum 1, Spectrum 2])");
    QTest::newRow("nested name outlives the other names")
        << Steps{{"Analyzers", "Spectrum", "Spectrum 1"},
                 {"Analyzers", "Scope", "Scope"},
                 {"Analyzers", "Spectrum", "Spectrum 2"},
                 {"Analyzers", "Scope", "Scope", 0, 0, true}}
        << QStringLiteral("Analyzers(Spectrum[Spectrum 1, Spectrum 2])");
    // Back to a single button, the menu ranks 0 whatever rank its group had.
    QTest::newRow("ungrouped button ranks 0")
        << Steps{{"Meters", "", "Power", 5},
                 {"Meters", "", "Voltage", 5},
                 {"Meters", "", "Voltage", 0, 0, true},
                 {"Help", "", "Help", 3}}
        << QStringLiteral("Help | Power");
    // The last entry but one leaves from the second level: the group stays.
    QTest::newRow("group kept when its second level collapses")
        << Steps{{"Analyzers", "Spectrum", "Spectrum 1"},
                 {"Analyzers", "Scope", "Scope"},
                 {"Analyzers", "Spectrum", "Spectrum 2"},
                 {"Analyzers", "Scope", "Scope", 0, 0, true},
                 {"Analyzers", "Spectrum", "Spectrum 2", 0, 0, true}}
        << QStringLiteral("Analyzers(Spectrum 1)");
}

void TestMenuBuilding::shapesMenusAsEntriesComeAndGo()
{
    QFETCH(Steps, steps);
    QFETCH(QString, shape);
    MenuTestDesktop desk;
    for (const Step& step : qAsConst(steps)) {
        if (step.removes)
            QVERIFY(desk.bar->removeMenuItem(step.menu, step.subMenu, step.label));
        else
            QVERIFY(desk.add(step.menu, step.subMenu, step.label, step.priority, step.position));
        MenuTestDesktop::settle();
    }
    QCOMPARE(shapeOf(desk), shape);
}

void TestMenuBuilding::collapsesBackToSingleEntries()
{
    MenuTestDesktop desk;
    desk.add(QStringLiteral("Analyzers"), QStringLiteral("Spectrum"), QStringLiteral("Spectrum 1"));
    desk.add(QStringLiteral("Analyzers"), QStringLiteral("Spectrum"), QStringLiteral("Spectrum 2"));
    desk.add(QStringLiteral("Analyzers"), QStringLiteral("Scope"), QStringLiteral("Scope"));
    QCOMPARE(desk.bar->getSubSubMenus().size(), 1);
    const QPointer<QPushButton> nested =
        desk.bar->menuEntry(QStringLiteral("Analyzers"), QStringLiteral("Spectrum"), QStringLiteral("Spectrum 1"));

    // The nested name is down to one entry: it comes back into the sub-menu.
    QVERIFY(desk.bar->removeMenuItem(QStringLiteral("Analyzers"), QStringLiteral("Spectrum"),
                                     QStringLiteral("Spectrum 2")));
    QVERIFY(desk.bar->getSubSubMenus().isEmpty());
    SubMenu* sub = desk.bar->getSubMenus().value(QStringLiteral("Analyzers"));
    QCOMPARE(texts(entriesIn<SubMenuItem>(sub)), QStringList({"Scope", "Spectrum 1"}));
    QCOMPARE(sub->buttons().last()->objectName(), QStringLiteral("Spectrum"));
    MenuTestDesktop::settle();
    QVERIFY(desk.desktop.findChildren<SubSubMenu*>().isEmpty());
    QVERIFY(!nested);

    // One entry left: it is the bar button again, and opens its screen.
    delete desk.desktop.findChild<ContainerBase*>(QStringLiteral("Scope"));
    MenuTestDesktop::settle();
    QVERIFY(desk.bar->getSubMenus().isEmpty());
    QVERIFY(desk.desktop.findChildren<SubMenu*>().isEmpty());
    QCOMPARE(desk.row().size(), 1);
    MenuItem* single = desk.row().first();
    QVERIFY(!single->isCheckable());
    QCOMPARE(single->text(), QStringLiteral("Spectrum 1"));
    QCOMPARE(desk.bar->menuEntry(QStringLiteral("Analyzers"), QStringLiteral("Spectrum"),
                                 QStringLiteral("Spectrum 1")),
             single);
    desk.openBar();
    QTest::mouseClick(single, Qt::LeftButton);
    QVERIFY(desk.desktop.findChild<ContainerBase*>(QStringLiteral("Spectrum 1"))->isVisible());
}

void TestMenuBuilding::hidesAndShowsSingleEntries()
{
    MenuTestDesktop desk;
    LogCapture log;
    QPushButton* power = desk.add(QStringLiteral("Meters"), QString(), QStringLiteral("Power"));
    ContainerBase* powerScreen = desk.desktop.findChild<ContainerBase*>(QStringLiteral("Power"));
    powerScreen->show();
    desk.bar->disableScreen(QStringLiteral("Meters"), QString(), QStringLiteral("Power"), 1);
    QVERIFY(power->isHidden());
    QVERIFY(!powerScreen->isVisible());
    desk.bar->enableScreen(QStringLiteral("Meters"), QString(), QStringLiteral("Power"), 1);
    QVERIFY(!power->isHidden());
    QVERIFY(!powerScreen->isVisible());

    // Keys carry the number 1: 2 never matches.
    desk.bar->disableScreen(QStringLiteral("Meters"), QString(), QStringLiteral("Power"), 2);
    QVERIFY(!power->isHidden());
    QVERIFY(log.contains(QStringLiteral("UserInterface - Menu has no entry to hide:")));

    desk.add(QStringLiteral("Meters"), QString(), QStringLiteral("Voltage"));
    MenuItem* group = desk.bar->menuButton(QStringLiteral("Meters"));
    desk.bar->disableScreen(QStringLiteral("Meters"), QString(), QStringLiteral("Power"), 1);
    QVERIFY(!group->isHidden());
    desk.bar->disableScreen(QStringLiteral("Meters"), QString(), QStringLiteral("Voltage"), 1);
    QVERIFY(group->isHidden());
    desk.bar->enableScreen(QStringLiteral("Meters"), QString(), QStringLiteral("Voltage"), 1);
    QVERIFY(!group->isHidden());

    // A hidden entry stays hidden through regrouping.
    desk.bar->removeMenuItem(QStringLiteral("Meters"), QString(), QStringLiteral("Voltage"));
    QVERIFY(desk.bar->menuButton(QStringLiteral("Meters"))->isHidden());
}

void TestMenuBuilding::rebuiltEntriesCallTheReceiver()
{
    MenuTestDesktop desk;
    Receiver receiver;
    QPushButton* first = desk.bar->addMenuItem(QStringLiteral("Meters"), QString(), QStringLiteral("Power"),
                                               desk.screen(QStringLiteral("Power")), 0, 0, &receiver,
                                               QString::fromLatin1(SLOT(open())), 0);
    QCOMPARE(first->property("Slot").toString(), QString::fromLatin1(SLOT(open())));
    desk.openBar();
    QTest::mouseClick(first, Qt::LeftButton);
    QCOMPARE(receiver.calls, 0);

    desk.add(QStringLiteral("Meters"), QString(), QStringLiteral("Voltage"));
    QPushButton* rebuilt = desk.bar->menuEntry(QStringLiteral("Meters"), QString(), QStringLiteral("Power"));
    QTest::mouseClick(desk.bar->menuButton(QStringLiteral("Meters")), Qt::LeftButton);
    QTest::mouseClick(rebuilt, Qt::LeftButton);
    QCOMPARE(receiver.calls, 1);
}

void TestMenuBuilding::refusesBadInput_data()
{
    QTest::addColumn<QString>("menu");
    QTest::addColumn<QString>("label");
    QTest::addColumn<bool>("withScreen");
    QTest::addColumn<QString>("logged");
    QTest::newRow("no screen") << QStringLiteral("Meters") << QStringLiteral("Voltage") << false
                               << QStringLiteral("UserInterface - Menu entry without a screen, not added:");
    QTest::newRow("no menu name") << QString() << QStringLiteral("Voltage") << true
                                  << QStringLiteral("UserInterface - Menu entry without a menu name, not added:");
    QTest::newRow("same key twice") << QStringLiteral("Meters") << QStringLiteral("Power") << true
                                    << QStringLiteral("UserInterface - Menu entry already in the menu, not added:");
    QTest::newRow("same screen twice")
        << QStringLiteral("Analyzers") << QStringLiteral("Power again") << false
        << QStringLiteral("UserInterface - Menu entry for a screen that has one already, not added:");
}

void TestMenuBuilding::refusesBadInput()
{
    QFETCH(QString, menu);
    QFETCH(QString, label);
    QFETCH(bool, withScreen);
    QFETCH(QString, logged);
    MenuTestDesktop desk;
    LogCapture log;
    QPushButton* power = desk.add(QStringLiteral("Meters"), QString(), QStringLiteral("Power"));
    ContainerBase* screen = withScreen ? desk.screen(label) : nullptr;
    if (QTest::currentDataTag() == QByteArray("same screen twice"))
        screen = desk.desktop.findChild<ContainerBase*>(QStringLiteral("Power"));

    QVERIFY(!desk.bar->addMenuItem(menu, QString(), label, screen, 0, 0, nullptr, QString(), 0));
    QVERIFY2(log.contains(logged), qPrintable(log.lines().join('\n')));
    QCOMPARE(desk.row().size(), 1);
    QCOMPARE(desk.row().first(), power);
    QVERIFY(desk.bar->getSubMenus().isEmpty());

    QVERIFY(!desk.bar->removeMenuItem(QStringLiteral("Meters"), QString(), QStringLiteral("Voltage")));
    QVERIFY(log.contains(QStringLiteral("UserInterface - Menu has no entry to remove:")));
    QCOMPARE(desk.bar->menuEntry(QStringLiteral("Meters"), QString(), QStringLiteral("Power")), power);
}

void TestMenuBuilding::moduleLeavesWhileItsSubMenuIsOpen()
{
    MenuTestDesktop desk;
    desk.add(QStringLiteral("Applications"), QStringLiteral("Modules"), QStringLiteral("Module 1"));
    desk.add(QStringLiteral("Applications"), QStringLiteral("Modules"), QStringLiteral("Module 2"));
    desk.add(QStringLiteral("Applications"), QStringLiteral("Tools"), QStringLiteral("Notes"));
    desk.openBar();
    QTest::mouseClick(desk.bar->menuButton(QStringLiteral("Applications")), Qt::LeftButton);
    SubSubMenu* nest = desk.bar->getSubSubMenus().value(QStringLiteral("Applications|Modules"));
    QTest::mouseClick(nest->getOwner(), Qt::LeftButton);
    QVERIFY(nest->isVisible());

    delete desk.desktop.findChild<ContainerBase*>(QStringLiteral("Module 2"));
    delete desk.desktop.findChild<ContainerBase*>(QStringLiteral("Notes"));
    MenuTestDesktop::settle();
    QVERIFY(desk.desktop.findChildren<SubMenu*>().isEmpty());
    QVERIFY(desk.desktop.findChildren<SubSubMenu*>().isEmpty());
    // Nothing of the pop-ups is left on the desktop: the bar and the one screen.
    QCOMPARE(desk.desktop.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly).size(), 2);
    QCOMPARE(desk.row().size(), 1);
    QCOMPARE(desk.row().first()->text(), QStringLiteral("Module 1"));
}

void TestMenuBuilding::staysConsistentThroughSeededChurn()
{
    MenuTestDesktop desk;
    QRandomGenerator random(20240611);
    struct Screen
    {
        QString menu;
        QString subMenu;
        QString label;
        QPointer<ContainerBase> screen;
        bool present = false;
    };
    QVector<Screen> pool;
    for (int index = 0; index < 40; ++index) {
        pool.append({QStringLiteral("Menu %1").arg(index % 5), QStringLiteral("Name %1").arg(index % 3),
                     QStringLiteral("Screen %1").arg(index), {}, false});
    }

    for (int step = 0; step < 300; ++step) {
        Screen& picked = pool[int(random.bounded(pool.size()))];
        if (!picked.present) {
            // A screen whose entry was removed earlier may come back.
            if (!picked.screen)
                picked.screen = desk.screen(picked.label);
            QVERIFY(desk.bar->addMenuItem(picked.menu, picked.subMenu, picked.label, picked.screen,
                                          int(random.bounded(3)), 0, nullptr, QString(), 0));
            picked.present = true;
        } else {
            // Three ways out: the screen goes, the button goes, or the host removes the entry.
            switch (random.bounded(3)) {
            case 0:
                delete picked.screen.data();
                break;
            case 1:
                delete desk.bar->menuEntry(picked.menu, picked.subMenu, picked.label);
                break;
            default:
                QVERIFY(desk.bar->removeMenuItem(picked.menu, picked.subMenu, picked.label));
            }
            picked.present = false;
        }
        MenuTestDesktop::settle();

        QMap<QString, QMap<QString, int>> expected;
        int live = 0;
        for (const Screen& each : qAsConst(pool)) {
            QPushButton* entry = desk.bar->menuEntry(each.menu, each.subMenu, each.label);
            QVERIFY2(bool(entry) == each.present, qPrintable(QStringLiteral("%1 at step %2").arg(each.label).arg(step)));
            if (!entry)
                continue;
            ++expected[each.menu][each.subMenu];
            ++live;
            QCOMPARE(entry->text(), each.label);
        }
        // Every button left stands for a live entry, at a level its counts allow: a name
        // with two entries beside another name is nested, one with a single entry is not.
        int entries = 0;
        for (QPushButton* button : desk.desktop.findChildren<QPushButton*>()) {
            const bool plain = (qobject_cast<MenuItem*>(button) || qobject_cast<SubMenuItem*>(button))
                && !button->isCheckable();
            if (plain || qobject_cast<SubSubMenuItem*>(button))
                ++entries;
        }
        QCOMPARE(entries, live);
        QCOMPARE(desk.row().size(), expected.size());
        for (auto menu = expected.cbegin(); menu != expected.cend(); ++menu) {
            int count = 0;
            for (int perName : menu.value())
                count += perName;
            MenuItem* button = desk.bar->menuButton(menu.key());
            QVERIFY(button);
            // A group may be down to one entry when its second level collapsed last.
            QVERIFY(button->isCheckable() || count == 1);
            QCOMPARE(desk.bar->getSubMenus().contains(menu.key()), button->isCheckable());
            for (auto name = menu.value().cbegin(); name != menu.value().cend(); ++name) {
                const bool nested = desk.bar->getSubSubMenus().contains(menu.key() + '|' + name.key());
                if (name.value() < 2)
                    QVERIFY(!nested);
                else if (menu.value().size() > 1)
                    QVERIFY(nested);
            }
        }
        QCOMPARE(desk.desktop.findChildren<SubMenu*>().size(), desk.bar->getSubMenus().size());
        QCOMPARE(desk.desktop.findChildren<SubSubMenu*>().size(), desk.bar->getSubSubMenus().size());
    }
}

QTEST_MAIN(TestMenuBuilding)
#include "tst_menubuilding.moc"
