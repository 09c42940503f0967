// The pop-up lists of the navigation bar: their size and place per bar location and
// screen size, one open per level, opening and closing by taps, the finger that scrolls
// instead of tapping, and the second level beside its holder entry.

#include "MenuTestDesktop.h"
#include "SubMenu.h"
#include "SubMenuItem.h"
#include "SubSubMenu.h"
#include "SubSubMenuItem.h"

#include <QPointer>
#include <QScrollArea>

using Options = QList<QPair<const char*, QString>>;
Q_DECLARE_METATYPE(Qt::AlignmentFlag)
Q_DECLARE_METATYPE(Options)

namespace {

QPoint onDesktop(const MenuTestDesktop& desk, const QWidget* widget)
{
    return desk.desktop.mapFromGlobal(widget->mapToGlobal(QPoint(0, 0)));
}

} // namespace

class TestSubMenu : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { MenuTestDesktop::settle(); }

    void opensSizedAndPlacedByBarLocation_data();
    void opensSizedAndPlacedByBarLocation();
    void oneOpenPopUpPerLevel();
    void subSubMenuSitsBesideItsHolder_data();
    void subSubMenuSitsBesideItsHolder();
    void fingerTravelScrollsInsteadOfTapping_data();
    void fingerTravelScrollsInsteadOfTapping();
    void lastEntryGoneDeletesSubMenu();
};

void TestSubMenu::opensSizedAndPlacedByBarLocation_data()
{
    QTest::addColumn<QSize>("desktop");
    QTest::addColumn<Qt::AlignmentFlag>("location");
    QTest::addColumn<Options>("options");
    QTest::addColumn<int>("hidden");
    QTest::addColumn<bool>("animated");
    QTest::addColumn<QSize>("size");

    const QString top = QStringLiteral("top");
    const QString left = QStringLiteral("left");
    QTest::newRow("top") << QSize(1280, 800) << Qt::AlignTop << Options{{"-menubarlocation", top}} << 0 << true
                         << QSize(184, 174);
    QTest::newRow("top, one entry hidden") << QSize(1280, 800) << Qt::AlignTop << Options{{"-menubarlocation", top}}
                                           << 1 << true << QSize(184, 124);
    QTest::newRow("top, no location") << QSize(1280, 800) << Qt::AlignTop << Options{} << 0 << true
                                      << QSize(184, 174);
    QTest::newRow("top, landscape") << QSize(800, 480) << Qt::AlignTop
                                    << Options{{"-menubarlocation", top}, {"-size", QStringLiteral("landscape")}} << 0
                                    << false << QSize(124, 174);
    QTest::newRow("top, portrait") << QSize(480, 800) << Qt::AlignTop
                                   << Options{{"-menubarlocation", top}, {"-res", QStringLiteral("480x800")}} << 0
                                   << true << QSize(128, 174);
    QTest::newRow("top, handheld") << QSize(1280, 800) << Qt::AlignTop
                                   << Options{{"-menubarlocation", top}, {"-systype", QStringLiteral("handheld")}}
                                   << 0 << false << QSize(184, 174);
    QTest::newRow("left") << QSize(800, 480) << Qt::AlignLeft << Options{{"-menubarlocation", left}} << 0 << true
                          << QSize(190, 185);
}

void TestSubMenu::opensSizedAndPlacedByBarLocation()
{
    QFETCH(QSize, desktop);
    QFETCH(Qt::AlignmentFlag, location);
    QFETCH(Options, options);
    QFETCH(int, hidden);
    QFETCH(bool, animated);
    QFETCH(QSize, size);

    MenuTestDesktop desk(desktop, location, options);
    for (const char* label : {"Spectrum", "Scope", "Network"})
        desk.add(QStringLiteral("Analyzers"), QString(), QLatin1String(label));
    for (int entry = 0; entry < hidden; ++entry)
        desk.bar->disableScreen(QStringLiteral("Analyzers"), QString(), QStringLiteral("Network"), 1);
    desk.openBar();
    MenuItem* group = desk.bar->menuButton(QStringLiteral("Analyzers"));
    SubMenu* sub = desk.bar->getSubMenus().value(QStringLiteral("Analyzers"));
    QVERIFY(group && sub && group->isCheckable());
    QVERIFY(!sub->isVisible());

    QTest::mouseClick(group, Qt::LeftButton);
    QVERIFY(group->isChecked());
    QVERIFY(sub->isVisible());
    if (!animated)
        QCOMPARE(sub->size(), size);
    QTRY_COMPARE(sub->size(), size);

    const QPoint corner = onDesktop(desk, group);
    if (location == Qt::AlignTop)
        QCOMPARE(sub->pos(), QPoint(corner.x(), group->y() + group->height() - 11));
    else
        QCOMPARE(sub->pos(), QPoint(corner.x() + group->width() + 3, std::max(0, corner.y())));

    QTest::mouseClick(group, Qt::LeftButton);
    QVERIFY(!group->isChecked());
    if (!animated)
        QVERIFY(!sub->isVisible());
    QTRY_VERIFY(!sub->isVisible());
}

void TestSubMenu::oneOpenPopUpPerLevel()
{
    MenuTestDesktop desk;
    for (const char* label : {"Spectrum A", "Spectrum B"})
        desk.add(QStringLiteral("Analyzers"), QStringLiteral("Spectrum"), QLatin1String(label));
    for (const char* label : {"Scope A", "Scope B"})
        desk.add(QStringLiteral("Analyzers"), QStringLiteral("Scope"), QLatin1String(label));
    for (const char* label : {"Power", "Voltage"})
        desk.add(QStringLiteral("Meters"), QString(), QLatin1String(label));
    desk.openBar();
    MenuItem* analyzers = desk.bar->menuButton(QStringLiteral("Analyzers"));
    MenuItem* meters = desk.bar->menuButton(QStringLiteral("Meters"));
    SubMenu* analyzerMenu = desk.bar->getSubMenus().value(QStringLiteral("Analyzers"));
    SubMenu* meterMenu = desk.bar->getSubMenus().value(QStringLiteral("Meters"));

    QTest::mouseClick(analyzers, Qt::LeftButton);
    QTest::mouseClick(meters, Qt::LeftButton);
    QVERIFY(!analyzers->isChecked());
    QVERIFY(meterMenu->isVisible());
    QTRY_VERIFY(!analyzerMenu->isVisible());

    QTest::mouseClick(analyzers, Qt::LeftButton);
    QTRY_VERIFY(!meterMenu->isVisible());
    const QHash<QString, SubSubMenu*> nests = desk.bar->getSubSubMenus();
    SubSubMenu* spectrum = nests.value(QStringLiteral("Analyzers|Spectrum"));
    SubSubMenu* scope = nests.value(QStringLiteral("Analyzers|Scope"));
    QVERIFY(spectrum && scope);
    QTest::mouseClick(spectrum->getOwner(), Qt::LeftButton);
    QVERIFY(spectrum->isVisible() && spectrum->getConnector()->isVisible());
    QTest::mouseClick(scope->getOwner(), Qt::LeftButton);
    QVERIFY(scope->isVisible());
    QVERIFY(!spectrum->getOwner()->isChecked());
    QVERIFY(!spectrum->isVisible() && !spectrum->getConnector()->isVisible());

    // Sliding the bar closes every pop-up at once.
    desk.bar->toggle();
    QVERIFY(!analyzerMenu->isVisible() && !scope->isVisible());
    QVERIFY(!analyzers->isChecked());
}

void TestSubMenu::subSubMenuSitsBesideItsHolder_data()
{
    QTest::addColumn<QSize>("desktop");
    QTest::addColumn<bool>("movesUp");
    QTest::newRow("room below") << QSize(1280, 800) << false;
    QTest::newRow("near the bottom") << QSize(1280, 400) << true;
}

void TestSubMenu::subSubMenuSitsBesideItsHolder()
{
    QFETCH(QSize, desktop);
    QFETCH(bool, movesUp);
    MenuTestDesktop desk(desktop);
    // Four plain entries above the holder, which goes fifth.
    for (const char* name : {"A", "B", "C", "D"})
        desk.add(QStringLiteral("Analyzers"), QLatin1String(name), QLatin1String(name), 0, 9);
    for (int entry = 1; entry <= 8; ++entry)
        desk.add(QStringLiteral("Analyzers"), QStringLiteral("Spectrum"), QStringLiteral("Trace %1").arg(entry), 0, 1);
    desk.openBar();
    QTest::mouseClick(desk.bar->menuButton(QStringLiteral("Analyzers")), Qt::LeftButton);
    SubSubMenu* nest = desk.bar->getSubSubMenus().value(QStringLiteral("Analyzers|Spectrum"));
    QPushButton* holder = nest->getOwner();
    QCOMPARE(holder->text(), QStringLiteral("Spectrum"));
    QTRY_VERIFY(holder->isVisible());
    QTest::mouseClick(holder, Qt::LeftButton);
    QVERIFY(nest->isVisible());

    const QPoint corner = onDesktop(desk, holder);
    const int right = corner.x() + holder->width();
    QCOMPARE(nest->getConnector()->geometry(), QRect(right, corner.y() + 11, 6, 32));
    QCOMPARE(nest->x(), right + 6);
    const int room = desk.desktop.height() - nest->height();
    QCOMPARE(corner.y() > room, movesUp);
    QCOMPARE(nest->y(), movesUp ? room : corner.y());
    QCOMPARE(nest->styleSheet().contains(QStringLiteral("border-top-left-radius: 0px")), !movesUp);
    QCOMPARE(nest->findChildren<SubSubMenuItem*>().size(), 8);
    QCOMPARE(nest->findChildren<QFrame*>(QStringLiteral("spacer")).size(), 7);
}

void TestSubMenu::fingerTravelScrollsInsteadOfTapping_data()
{
    QTest::addColumn<int>("travel");
    QTest::addColumn<bool>("opens");
    QTest::newRow("40 pixels") << 40 << true;
    QTest::newRow("41 pixels") << 41 << false;
}

void TestSubMenu::fingerTravelScrollsInsteadOfTapping()
{
    QFETCH(int, travel);
    QFETCH(bool, opens);
    MenuTestDesktop desk;
    desk.add(QStringLiteral("Meters"), QString(), QStringLiteral("Power"));
    QPushButton* entry = desk.add(QStringLiteral("Meters"), QString(), QStringLiteral("Voltage"));
    ContainerBase* screen = desk.desktop.findChild<ContainerBase*>(QStringLiteral("Voltage"));
    desk.openBar();
    QTest::mouseClick(desk.bar->menuButton(QStringLiteral("Meters")), Qt::LeftButton);
    QVERIFY(entry->isVisible());
    QSignalSpy clicks(entry, &QPushButton::clicked);
    fingerDrag(entry, QPoint(30, 4), QPoint(30, 4 + travel));
    QCOMPARE(clicks.count(), opens ? 1 : 0);
    QCOMPARE(screen->isVisible(), opens);
    QVERIFY(!entry->signalsBlocked());
}

void TestSubMenu::lastEntryGoneDeletesSubMenu()
{
    QWidget desktop;
    desktop.resize(800, 480);
    QPushButton owner(&desktop);
    owner.setCheckable(true);
    const QPointer<SubMenu> sub = new SubMenu(&desktop, &owner);
    auto* entry = new SubMenuItem(sub, QStringLiteral("Power"), nullptr, 0, nullptr, QString(), 0);
    sub->addMenuItem(entry, 0);
    delete entry;
    QTRY_VERIFY(sub.isNull());
}

QTEST_MAIN(TestSubMenu)
#include "tst_submenu.moc"
