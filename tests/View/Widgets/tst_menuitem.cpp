// Bar buttons and their tiles: the icon per category, text fitted to the tile, a tap that
// opens the screen, a drag that moves the row instead, and a button that goes with its
// screen.

#include "LogCapture.h"
#include "MenuTestDesktop.h"
#include "MenuWidgetImpl.h"

#include <QPointer>
#include <QSvgRenderer>

namespace {

// The font size the tile's last style rule sets.
int lastFontSize(const QWidget* tile)
{
    const QString sheet = tile->styleSheet();
    const QString rule = QStringLiteral("font-size: ");
    const int at = sheet.lastIndexOf(rule);
    return at < 0 ? -1 : sheet.mid(at + rule.size()).section(QStringLiteral("px"), 0, 0).toInt();
}

int textWidth(const QWidget* tile, const QString& text, int pixelSize)
{
    QFont font(tile->font().family());
    font.setPixelSize(pixelSize);
    return QFontMetrics(font).boundingRect(QRect(), Qt::AlignCenter, text).width();
}

} // namespace

class TestMenuItem : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void tilePicksIconByExactMenuName_data();
    void tilePicksIconByExactMenuName();
    void tileKeepsOnlyKnownStates();
    void benchtopTileFitsTextToItsWidth_data();
    void benchtopTileFitsTextToItsWidth();
    void handheldTileBreaksLongLabelAtSpaces();
    void tileLightsUpWhileItsScreenIsActive();

    void tapOpensScreenButDragDoesNot_data();
    void tapOpensScreenButDragDoesNot();
    void dragMovesTheRowWithinItsEnds();
    void fullScreenEntryClosesTheBar();
    void buttonGoesWithItsScreen();
    void entryFollowsItsScreensSize();
    void swapHandsRegistrationOver();
};

void TestMenuItem::cleanup()
{
    for (const char* option : {"-systype", "-res", "-size"})
        qApp->setProperty(option, QVariant());
    MenuTestDesktop::settle();
}

void TestMenuItem::tilePicksIconByExactMenuName_data()
{
    QTest::addColumn<QString>("menu");
    QTest::addColumn<QString>("icon");
    const QList<QPair<const char*, const char*>> table = {
        {"Meters", "icon_meter"},        {"Oscilloscope", "icon_analyzer"},
        {"VSWR", "icon_analyzer"},       {"Instruments", "icon_analyzer"},
        {"Demod", "icon_rcvr"},          {"demod", "icon_unknown"},
        {"Generators", "icon_gen"},      {"Utilities", "icon_utilities"},
        {"Config", "icon_system"},       {"Self Test", "icon_selftest"},
        {"Language", "icon_scripting"},  {"RF Generators", "icon_rfgen"},
        {"Ext. Power Supplies", "icon_powersupply"},
        {"DMM", "icon_dmm"},             {"Digital Data Gen.", "icon_digitaldatagen"},
        {"Calibrations", "icon_calibration"},
        {"Audio", "icon_audiogen"},      {"Applications", "icon_apps"},
        {"Help", "icon_help"},           {"Meters ", "icon_unknown"},
    };
    for (const auto& row : table)
        QTest::newRow(row.first) << QString(row.first) << QStringLiteral(":/images/%1.svg").arg(row.second);
}

void TestMenuItem::tilePicksIconByExactMenuName()
{
    QFETCH(QString, menu);
    QFETCH(QString, icon);
    MenuWidgetImpl tile(menu, QStringLiteral("Loaded"), false, nullptr);
    QCOMPARE(tile.getIconPath(), icon);
    QVERIFY2(QSvgRenderer(icon).isValid(), qPrintable(icon));
    QCOMPARE(tile.getText(), menu);
}

void TestMenuItem::tileKeepsOnlyKnownStates()
{
    MenuWidgetImpl tile(QStringLiteral("Meters"), QStringLiteral("Unloaded"), false, nullptr);
    QCOMPARE(tile.getState(), QStringLiteral("Unloaded"));
    tile.setState(QStringLiteral("Active"));
    tile.setState(QStringLiteral("Busy"));
    QCOMPARE(tile.getState(), QStringLiteral("Active"));
}

void TestMenuItem::benchtopTileFitsTextToItsWidth_data()
{
    QTest::addColumn<bool>("submenu");
    QTest::addColumn<QString>("label");
    QTest::newRow("short") << false << QStringLiteral("DMM");
    QTest::newRow("long") << false << QStringLiteral("Digital Data Generator Settings");
    QTest::newRow("long, group") << true << QStringLiteral("Digital Data Generator Settings");
}

void TestMenuItem::benchtopTileFitsTextToItsWidth()
{
    QFETCH(bool, submenu);
    QFETCH(QString, label);
    qApp->setProperty("-systype", QStringLiteral("benchtop"));
    MenuWidgetImpl tile(QStringLiteral("DMM"), QStringLiteral("Loaded"), submenu, nullptr);
    tile.resize(150, 120);
    tile.setText(label);

    const int available = 150 - 8 - (submenu ? 22 : 0);
    const int size = lastFontSize(&tile);
    QVERIFY(size > 0 && size <= 21);
    QVERIFY(textWidth(&tile, label, size) <= available);
    if (size < 21)
        QVERIFY(textWidth(&tile, label, size + 1) > available);
    QCOMPARE(tile.QLabel::text(), label);
}

void TestMenuItem::handheldTileBreaksLongLabelAtSpaces()
{
    qApp->setProperty("-systype", QStringLiteral("handheld"));
    MenuWidgetImpl tile(QStringLiteral("Ext. Power Supplies"), QStringLiteral("Loaded"), false, nullptr);
    tile.resize(60, 80);
    tile.setText(QStringLiteral("Ext. Power Supplies"));
    QCOMPARE(tile.QLabel::text(), QStringLiteral("Ext.\nPower\nSupplies"));
    // No size fitting on a handheld: the text wraps instead.
    QVERIFY(!tile.styleSheet().contains(QStringLiteral("QLabel#MenuWidget {    font-size:")));
}

void TestMenuItem::tileLightsUpWhileItsScreenIsActive()
{
    MenuTestDesktop desk(QSize(1280, 800), Qt::AlignTop, {{"-systype", QStringLiteral("benchtop")}});
    ContainerBase* screen = desk.screen(QStringLiteral("Scope"));
    auto* item = qobject_cast<MenuItem*>(
        desk.bar->addMenuItem(QStringLiteral("Analyzers"), QString(), QStringLiteral("Scope"), screen, 0, 0,
                              nullptr, QString(), 0));
    QVERIFY(item);
    emit screen->contentsActive(true);
    QVERIFY(item->tile()->styleSheet().contains(QStringLiteral("border: 3px solid #fff;")));
    emit screen->contentsActive(false);
    QVERIFY(!item->tile()->styleSheet().contains(QStringLiteral("border: 3px solid #fff;")));
}

void TestMenuItem::tapOpensScreenButDragDoesNot_data()
{
    QTest::addColumn<int>("travel");
    QTest::addColumn<bool>("opens");
    QTest::newRow("tap") << 0 << true;
    QTest::newRow("100 pixels") << 100 << true;
    QTest::newRow("101 pixels") << 101 << false;
}

void TestMenuItem::tapOpensScreenButDragDoesNot()
{
    QFETCH(int, travel);
    QFETCH(bool, opens);
    MenuTestDesktop desk;
    ContainerBase* screen = desk.screen(QStringLiteral("Meter"));
    QPushButton* item = desk.bar->addMenuItem(QStringLiteral("Meters"), QString(), QStringLiteral("Meter"), screen,
                                              0, 0, nullptr, QString(), 0);
    desk.openBar();
    QSignalSpy clicks(item, &QPushButton::clicked);
    // The row fits: the frame stays put and the finger ends inside the 184-pixel button.
    fingerDrag(item, QPoint(10, 20), QPoint(10 + travel, 20));
    QCOMPARE(clicks.count(), opens ? 1 : 0);
    QCOMPARE(screen->isVisible(), opens);
}

void TestMenuItem::dragMovesTheRowWithinItsEnds()
{
    MenuTestDesktop desk;
    for (int menu = 0; menu < 10; ++menu)
        desk.add(QStringLiteral("Menu %1").arg(menu), QString(), QStringLiteral("Screen %1").arg(menu));
    desk.openBar();
    auto* frame = desk.bar->findChild<ScrollableMenuBarFrame*>();
    const int viewport = frame->parentWidget()->width();
    QCOMPARE(frame->width(), 10 * desk.bar->itemExtent());
    QVERIFY(frame->width() > viewport);

    MenuItem* first = desk.row().first();
    fingerDrag(first, QPoint(150, 20), QPoint(50, 60));
    QCOMPARE(frame->pos(), QPoint(-100, 0));
    fingerDrag(first, QPoint(150, 20), QPoint(150 - 5000, 20));
    QCOMPARE(frame->pos(), QPoint(viewport - frame->width(), 0));
    fingerDrag(first, QPoint(10, 20), QPoint(5000, 20));
    QCOMPARE(frame->pos(), QPoint(0, 0));
}

void TestMenuItem::fullScreenEntryClosesTheBar()
{
    MenuTestDesktop desk(QSize(1280, 800), Qt::AlignTop, {{"-systype", QStringLiteral("handheld")}});
    ContainerBase* screen = desk.screen(QStringLiteral("Meter"));
    QPushButton* item = desk.bar->addMenuItem(QStringLiteral("Meters"), QString(), QStringLiteral("Meter"), screen,
                                              0, 0, nullptr, QString(), 0);
    desk.openBar();
    QTest::mouseClick(item, Qt::LeftButton);
    QVERIFY(screen->isVisible());
    QVERIFY(!desk.bar->isOpen);
}

void TestMenuItem::buttonGoesWithItsScreen()
{
    MenuTestDesktop desk;
    ContainerBase* screen = desk.screen(QStringLiteral("Meter"));
    const QPointer<QPushButton> item = desk.bar->addMenuItem(QStringLiteral("Meters"), QString(),
                                                             QStringLiteral("Meter"), screen, 0, 0, nullptr,
                                                             QString(), 0);
    delete screen;
    QVERIFY(!desk.bar->menuEntry(QStringLiteral("Meters"), QString(), QStringLiteral("Meter")));
    MenuTestDesktop::settle();
    QVERIFY(item.isNull());
    QVERIFY(!desk.bar->menuButton(QStringLiteral("Meters")));
    QVERIFY(desk.row().isEmpty());
}

void TestMenuItem::entryFollowsItsScreensSize()
{
    MenuTestDesktop desk;
    ContainerBase* screen = desk.screen(QStringLiteral("Power"));
    QPushButton* item = desk.bar->addMenuItem(QStringLiteral("Meters"), QString(), QStringLiteral("Power"), screen,
                                              0, 0, nullptr, QString(), 0);
    emit screen->changeSize(QStringLiteral("Max"));
    QCOMPARE(item->property("screenSize").toString(), QStringLiteral("Max"));

    // Regrouped, the entry keeps what it knew and follows on.
    desk.add(QStringLiteral("Meters"), QString(), QStringLiteral("Voltage"));
    QPushButton* moved = desk.bar->menuEntry(QStringLiteral("Meters"), QString(), QStringLiteral("Power"));
    QCOMPARE(moved->property("screenSize").toString(), QStringLiteral("Max"));
    emit screen->changeSize(QStringLiteral("Thumb"));
    QCOMPARE(moved->property("screenSize").toString(), QStringLiteral("Thumb"));
}

void TestMenuItem::swapHandsRegistrationOver()
{
    MenuTestDesktop desk;
    GlobalImpl* registry = GlobalImpl::getInstance();
    QPushButton* first = desk.add(QStringLiteral("Meters"), QString(), QStringLiteral("Power"));
    registry->addScreen(QStringLiteral("Power entry"), first);
    QSignalSpy swaps(first, SIGNAL(swappingMenuItem(QObject*)));

    desk.add(QStringLiteral("Meters"), QString(), QStringLiteral("Voltage"));
    QPushButton* moved = desk.bar->menuEntry(QStringLiteral("Meters"), QString(), QStringLiteral("Power"));
    QVERIFY(moved && moved != first);
    QCOMPARE(swaps.count(), 1);
    QCOMPARE(swaps.first().first().value<QObject*>(), moved);
    QCOMPARE(registry->getScreen(QStringLiteral("Power entry")), moved);
    registry->removeScreen(QStringLiteral("Power entry"));

    auto* item = desk.bar->menuButton(QStringLiteral("Meters"));
    QSignalSpy nobody(item, &MenuItem::swappingMenuItem);
    item->swap(nullptr);
    QCOMPARE(nobody.count(), 1);
    QCOMPARE(nobody.first().first().value<QObject*>(), nullptr);
}

QTEST_MAIN(TestMenuItem)
#include "tst_menuitem.moc"
