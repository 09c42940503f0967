#include "MenuBuilder.h"

#include "GlobalImpl.h"
#include "MenuBar.h"
#include "MenuEntryWiring.h"
#include "MenuItem.h"
#include "ScrollableMenuBarFrame.h"
#include "SubMenu.h"
#include "SubMenuItem.h"
#include "SubSubMenu.h"
#include "SubSubMenuItem.h"

#include <QBoxLayout>
#include <QDebug>
#include <QPushButton>

#include <utility>

namespace {

// The pop-ups of \a table that still exist; a deleted one leaves a null entry behind.
template <class PopUp>
QHash<QString, PopUp*> livePopUps(const QHash<QString, QPointer<PopUp>>& table)
{
    QHash<QString, PopUp*> result;
    for (auto entry = table.constBegin(); entry != table.constEnd(); ++entry) {
        if (entry.value())
            result.insert(entry.key(), entry.value());
    }
    return result;
}

// Qt 5's QHash shrinks as it empties. Each shrink of a table of thousands frees its
// buckets at once, and a free that large makes malloc sweep every small block the
// deleted entries left behind. A table that keeps the largest size it reached (a few
// kilobytes for thousands of screens) never shrinks: right after it grew, its buckets
// are about twice its size, and reserving that many pins them.
template <class Key, class Value>
void keepLargestSize(QHash<Key, Value>& table)
{
    if (table.size() >= 64 && table.capacity() >= 2 * table.size())
        table.reserve(table.capacity());
}

} // namespace

MenuBuilder::MenuBuilder(MenuBar* bar, ScrollableMenuBarFrame* row, QBoxLayout* rowLayout)
    : bar(bar)
    , itemFrame(row)
    , itemLayout(rowLayout)
{
}

MenuBuilder::~MenuBuilder()
{
    // The row's buttons die with the bar's widgets, after this: they must not report
    // back. The pop-ups live on the desktop and go with the bar.
    for (auto entry = entryBooks.keyBegin(); entry != entryBooks.keyEnd(); ++entry)
        disconnect(*entry, nullptr, this, nullptr);
    for (const QPointer<SubSubMenu>& nest : qAsConst(subSubMenus))
        delete nest.data();
    for (const QPointer<SubMenu>& sub : qAsConst(subMenus))
        delete sub.data();
}

// A menu's look follows from its counts: one entry is a bar button that opens its
// screen; two or more make the bar button a group button with a sub-menu; inside a
// group, a sub-menu name gets a holder entry with a second-level pop-up when it has two
// or more entries and the menu has more than one name, and keeps it until the name is
// down to one entry. Every change of the counts
// rebuilds just the entries whose level changes; a rebuilt entry keeps its key, its
// screen, its receiver and its registrations under its new button.

QString MenuBuilder::nestKey(const QString& menu, const QString& subMenu)
{
    return menu + QLatin1Char('|') + subMenu;
}

QPushButton* MenuBuilder::addMenuItem(const QString& menu, const QString& subMenu, const QString& label, QFrame* screen,
                                  int position, int priority, QObject* receiver, const QString& slot, int instNum)
{
    settleMenus();
    QString shown = MenuBar::tr(label.toUtf8().constData());
    if (instNum > 1)
        shown += QLatin1Char(' ') + QString::number(instNum);
    if (menu.isEmpty()) {
        qDebug() << "UserInterface - Menu entry without a menu name, not added:" << shown;
        return nullptr;
    }
    if (!screen) {
        qDebug() << "UserInterface - Menu entry without a screen, not added:" << menu << subMenu << shown;
        return nullptr;
    }
    const ScreenKey key(menu, subMenu, shown, 1);
    if (screenMap.contains(key)) {
        qDebug() << "UserInterface - Menu entry already in the menu, not added:" << menu << subMenu << shown;
        return nullptr;
    }
    if (QObject* other = screenEntries.value(screen); other && entryBooks.value(other).screen == screen) {
        qDebug() << "UserInterface - Menu entry for a screen that has one already, not added:" << menu << subMenu
                 << shown;
        return nullptr;
    }
    const int nests = subSubMenus.size();
    if (groupedMenus.contains(menu) && !subMenus.value(menu)) {
        qDebug() << "UserInterface - Menu without its sub-menu, entry not added:" << menu << subMenu << shown;
        return nullptr;
    }

    const int count = ++menuCount[menu];
    ++subMenuCount[menu][subMenu];
    QPushButton* entry = nullptr;
    // Whether a holder or group button above the new entry is hidden: a new entry is
    // shown, so only such a button can change.
    bool hiddenAbove = false;
    if (count == 1) {
        MenuItem* button = newBarButton(menu, shown, screen, position, priority, receiver, slot);
        int index = itemLayout->count();
        for (int at = 0; at < itemLayout->count(); ++at) {
            auto* other = qobject_cast<MenuItem*>(itemLayout->itemAt(at)->widget());
            if (other && other->getPriority() < priority) {
                index = at;
                break;
            }
        }
        putInRow(button, index);
        menuButtons.insert(menu, button);
        connect(button, &QPushButton::clicked, bar, &MenuBar::startTimer);
        entry = button;
    } else {
        if (!groupedMenus.contains(menu))
            groupMenu(menu, position, priority);
        nestSubMenuNames(menu, subMenu, position);
        SubMenu* sub = subMenus.value(menu);
        const MenuItem* group = menuButtons.value(menu);
        hiddenAbove = group && SubMenuBase::isHiddenEntry(group);
        if (SubSubMenu* nest = subSubMenus.value(nestKey(menu, subMenu))) {
            const QPushButton* holder = nest->getOwner();
            hiddenAbove = hiddenAbove || (holder && SubMenuBase::isHiddenEntry(holder));
            auto* nested = new SubSubMenuItem(nest, sub, shown, screen, position, receiver, slot, instNum);
            nest->addMenuItem(nested, position);
            connect(nested, &QObject::destroyed, this, &MenuBuilder::subSubMenuItemDeleted);
            nested->setText(label);
            entry = nested;
        } else {
            SubMenuItem* item = newSubMenuEntry(sub, subMenu, label, screen, position, receiver, slot, instNum);
            connect(item, &QPushButton::clicked, bar, &MenuBar::startTimer);
            entry = item;
        }
    }
    recordEntry(entry, menu, subMenu, screen);
    screenMap.append(key, entry);
    // Only a new second-level pop-up brings a holder for another name than this entry's.
    if (subSubMenus.size() != nests)
        refreshMenuVisibility(menu);
    else if (hiddenAbove)
        refreshMenuVisibility(menu, &subMenu);
    return entry;
}

MenuItem* MenuBuilder::newBarButton(const QString& menu, const QString& label, QFrame* screen, int position,
                                int priority, QObject* receiver, const QString& slot)
{
    auto* button = new MenuItem(itemFrame, menu, label, screen, position, priority, receiver, slot);
    connect(button, &QObject::destroyed, this, &MenuBuilder::menuItemDeleted);
    return button;
}

SubMenuItem* MenuBuilder::newSubMenuEntry(SubMenu* sub, const QString& subMenu, const QString& label, QFrame* screen,
                                      int position, QObject* receiver, const QString& slot, int instNum,
                                      bool appended)
{
    auto* item = new SubMenuItem(sub, label, screen, position, receiver, slot, instNum);
    item->setObjectName(subMenu);
    sub->addMenuItem(item, appended ? 0 : position);
    connect(item, &QObject::destroyed, this, &MenuBuilder::menuItemDeleted);
    item->setText(label);
    return item;
}

void MenuBuilder::putInRow(MenuItem* button, int index)
{
    itemLayout->insertWidget(index, button);
    bar->applyItemSize(button);
    button->show();
    itemFrame->adjustSize();
}

int MenuBuilder::rowIndex(const QObject* widget) const
{
    for (int index = 0; index < itemLayout->count(); ++index) {
        const QObject* inRow = itemLayout->itemAt(index)->widget();
        if (inRow && inRow == widget)
            return index;
    }
    return itemLayout->count();
}

void MenuBuilder::detach(QObject* object, bool both)
{
    disconnect(object, nullptr, this, nullptr);
    disconnect(object, nullptr, bar, nullptr);
    if (both)
        disconnect(bar, nullptr, object, nullptr);
}

void MenuBuilder::takeFromRow(const QObject* widget)
{
    // Only the bar's own buttons stand in the row; the entries of the pop-ups, thousands
    // of them, need no search.
    if (!widget || widget->parent() != itemFrame)
        return;
    const int index = rowIndex(widget);
    if (index == itemLayout->count())
        return;
    delete itemLayout->takeAt(index);
    itemFrame->adjustSize();
}

void MenuBuilder::groupMenu(const QString& menu, int position, int priority)
{
    MenuItem* single = menuButtons.value(menu);
    // The group stands where the single button stood, but ranks as the entry that made it.
    auto* group = new MenuItem(itemFrame, menu, menu, nullptr, position, priority, nullptr, QString());
    putInRow(group, rowIndex(single));
    takeFromRow(single);
    groupedMenus.append(menu);
    connect(bar, &MenuBar::toggled, group, &MenuItem::setClosed);
    connect(bar, &MenuBar::jumped, group, &MenuItem::setClosed);
    connect(group, &QPushButton::clicked, bar, &MenuBar::startTimer);

    auto* sub = new SubMenu(bar->parentWidget(), group);
    connect(sub, &SubMenu::subMenuToggledOn, this, &MenuBuilder::closeOtherSubMenus);
    subMenus.insert(menu, sub);
    connect(group, &MenuItem::moving, sub, &SubMenu::reposition);
    connect(bar, &MenuBar::toggled, sub, &QWidget::hide);
    connect(bar, &MenuBar::jumped, sub, &QWidget::hide);
    menuButtons.insert(menu, group);

    if (!single || !entryBooks.contains(single))
        return;
    SubMenuItem* moved = newSubMenuEntry(sub, entryBooks.value(single).subMenu, single->getLabel(), single->getScreen(),
                                         single->getPosition(), single->getReceiver(), single->getSlot(), 0);
    passEntryOn(single, moved, single->getReceiver(), single->getSlot());
}

void MenuBuilder::ungroupMenu(const QString& menu)
{
    const QList<QPushButton*> left = entriesOf(menu);
    auto* remaining = left.size() == 1 ? qobject_cast<SubMenuItem*>(left.first()) : nullptr;
    if (!remaining || !remaining->getScreen())
        return;
    SubMenu* sub = subMenus.value(menu);
    MenuItem* group = menuButtons.value(menu);

    QString shown = MenuBar::tr(remaining->getLabel().toUtf8().constData());
    if (remaining->getInstNum() > 1)
        shown += QLatin1Char(' ') + QString::number(remaining->getInstNum());
    // Back to a single button, the menu ranks 0: later menus of any rank go before it.
    MenuItem* button = newBarButton(menu, shown, remaining->getScreen(), remaining->getPosition(), 0,
                                    remaining->getReceiver(), remaining->getSlot());
    putInRow(button, rowIndex(group));
    if (group) {
        takeFromRow(group);
        detach(group, true);
        group->hide();
        group->deleteLater();
    }
    groupedMenus.removeAll(menu);
    menuButtons.insert(menu, button);
    if (sub)
        sub->removeMenuItem(remaining);
    passEntryOn(remaining, button, remaining->getReceiver(), remaining->getSlot());

    subMenus.remove(menu);
    if (sub) {
        detach(sub, true);
        sub->dispose();
    }
}

void MenuBuilder::nestSubMenuNames(const QString& menu, const QString& added, int holderPosition)
{
    if (!groupedMenus.contains(menu))
        return;
    const QHash<QString, int>& counts = subMenuCount[menu];
    if (counts.size() < 2)
        return;
    // Only a name's second entry, or a menu's new name, can make a name nest.
    const int addedCount = counts.value(added);
    if (addedCount >= 2) {
        if (!subSubMenus.contains(nestKey(menu, added)))
            nestSubMenuName(menu, added, holderPosition);
        return;
    }
    QStringList names = counts.keys();
    names.sort();
    for (const QString& name : qAsConst(names)) {
        if (counts.value(name) >= 2 && !subSubMenus.contains(nestKey(menu, name)))
            nestSubMenuName(menu, name, holderPosition);
    }
}

void MenuBuilder::flattenSubMenuNames(const QString& menu)
{
    // A nested name stays nested until its own entries are down to one, whatever the
    // other names of the menu do meanwhile.
    const QHash<QString, int> counts = subMenuCount.value(menu);
    const QString prefix = nestKey(menu, QString());
    QStringList names;
    for (auto nest = subSubMenus.keyBegin(); nest != subSubMenus.keyEnd(); ++nest) {
        if (nest->startsWith(prefix) && counts.value(nest->mid(prefix.size())) < 2)
            names.append(nest->mid(prefix.size()));
    }
    names.sort();
    for (const QString& name : qAsConst(names))
        flattenSubMenuName(menu, name);
}

void MenuBuilder::nestSubMenuName(const QString& menu, const QString& subMenu, int holderPosition)
{
    SubMenu* sub = subMenus.value(menu);
    if (!sub)
        return;
    QList<SubMenuItem*> plain;
    for (QPushButton* button : sub->buttons()) {
        auto* entry = qobject_cast<SubMenuItem*>(button);
        const auto books = entryBooks.constFind(entry);
        if (entry && books != entryBooks.constEnd() && books->subMenu == subMenu)
            plain.append(entry);
    }

    auto* holder = new SubMenuItem(sub, subMenu, nullptr, holderPosition, nullptr, QString(), 0);
    disconnect(holder, &QPushButton::clicked, nullptr, nullptr);
    holder->setCheckable(true);
    auto* nest = new SubSubMenu(bar->parentWidget(), holder);
    subSubMenus.insert(nestKey(menu, subMenu), nest);
    if (MenuItem* group = menuButtons.value(menu))
        connect(group, &MenuItem::moving, nest, &SubSubMenu::reposition);
    sub->addMenuItem(holder, holderPosition);

    for (SubMenuItem* entry : qAsConst(plain)) {
        auto* moved = new SubSubMenuItem(nest, sub, entry->getLabel(), entry->getScreen(), entry->getPosition(),
                                         entry->getReceiver(), entry->getSlot(), entry->getInstNum());
        nest->addMenuItem(moved, 0);
        connect(moved, &QObject::destroyed, this, &MenuBuilder::subSubMenuItemDeleted);
        moved->setText(entry->getLabel());
        sub->removeMenuItem(entry);
        passEntryOn(entry, moved, entry->getReceiver(), entry->getSlot());
    }
}

void MenuBuilder::flattenSubMenuName(const QString& menu, const QString& subMenu)
{
    const QPointer<SubSubMenu> nest = subSubMenus.take(nestKey(menu, subMenu));
    if (!nest)
        return;
    SubMenu* sub = subMenus.value(menu);
    QPushButton* holder = nest->getOwner();
    if (sub) {
        for (QPushButton* button : nest->buttons()) {
            auto* entry = qobject_cast<SubSubMenuItem*>(button);
            if (!entry || !entryBooks.contains(entry))
                continue;
            SubMenuItem* moved = newSubMenuEntry(sub, subMenu, entry->getLabel(), entry->getScreen(),
                                                 entry->getPosition(), entry->getReceiver(), entry->getSlot(),
                                                 entry->getInstNum(), true);
            nest->removeMenuItem(entry);
            passEntryOn(entry, moved, entry->getReceiver(), entry->getSlot());
        }
        // Only now: a sub-menu left without entries deletes itself.
        if (holder)
            sub->removeMenuItem(holder);
    }
    nest->unchecking();
    if (holder) {
        holder->hide();
        holder->deleteLater();
    }
    nest->dispose();
}

void MenuBuilder::recordEntry(QPushButton* entry, const QString& menu, const QString& subMenu, QWidget* screen)
{
    entryBooks.insert(entry, EntryBooks{menu, subMenu, screen});
    keepLargestSize(entryBooks);
    if (screen) {
        screenEntries.insert(screen, entry);
        keepLargestSize(screenEntries);
        connect(screen, &QObject::destroyed, this, &MenuBuilder::screenDestroyed, Qt::UniqueConnection);
    }
}

void MenuBuilder::passEntryOn(QPushButton* from, QPushButton* to, QObject* receiver, const QString& slot)
{
    detach(from);
    const EntryBooks books = entryBooks.take(from);
    recordEntry(to, books.menu, books.subMenu, books.screen);
    screenMap.replaceButton(from, to);

    if (auto* item = qobject_cast<MenuItem*>(from))
        item->swap(to);
    else if (auto* subItem = qobject_cast<SubMenuItem*>(from))
        subItem->swap(to);
    else if (GlobalImpl* registry = GlobalImpl::existingInstance())
        registry->swapMenuItems(from, to);

    // A hidden entry stays hidden, and the size its screen last announced stays known.
    if (SubMenuBase::isHiddenEntry(from))
        to->hide();
    to->setProperty("screenSize", from->property("screenSize"));
    MenuEntryWiring::connectReceiver(to, receiver, slot);
    from->hide();
    from->deleteLater();
}

void MenuBuilder::menuItemDeleted(QObject* menuItem)
{
    entryGone(menuItem, false);
}

void MenuBuilder::subSubMenuItemDeleted(QObject* menuItem)
{
    entryGone(menuItem, false);
}

void MenuBuilder::screenDestroyed(QObject* screen)
{
    // The entry deletes itself later; it leaves the books now, so that nothing rebuilds
    // an entry for a screen that is gone. It stays connected until then: what it reports
    // of itself finds it gone from the books, and cutting each of thousands of entries
    // loose one by one as their screens close together costs more than that.
    QObject* entry = screenEntries.take(screen);
    if (!entry || !entryBooks.contains(entry))
        return;
    entryGone(entry, false, true);
}

void MenuBuilder::entryGone(QObject* entry, bool settleNow, bool deletedLater)
{
    const auto books = entryBooks.constFind(entry);
    if (books == entryBooks.constEnd())
        return;
    const QString menu = books->menu;
    forgetEntry(entry, deletedLater);
    if (settleNow) {
        settleMenu(menu);
        return;
    }
    // Reported from a destructor, maybe of the whole desktop: widgets are rebuilt once
    // control is back in the event loop, and not at all if the bar goes too.
    unsettledMenus.insert(menu);
    if (unsettledMenus.size() == 1)
        QMetaObject::invokeMethod(this, &MenuBuilder::settleMenus, Qt::QueuedConnection);
}

void MenuBuilder::settleMenus()
{
    const QSet<QString> menus = std::exchange(unsettledMenus, {});
    for (const QString& menu : menus)
        settleMenu(menu);
}

void MenuBuilder::forgetEntry(QObject* entry, bool deletedLater)
{
    const EntryBooks books = entryBooks.take(entry);
    const QString& menu = books.menu;
    const QString& subMenu = books.subMenu;
    QWidget* screen = books.screen;
    if (screen && screenEntries.value(screen) == entry)
        screenEntries.remove(screen);
    screenMap.removeButton(entry);

    takeFromRow(entry);
    // A name is nested as a whole: the entry sat in a second-level pop-up if its name has one.
    SubSubMenu* nest = subSubMenus.value(nestKey(menu, subMenu));
    for (SubMenuBase* popUp : {static_cast<SubMenuBase*>(subMenus.value(menu)), static_cast<SubMenuBase*>(nest)}) {
        if (popUp && deletedLater)
            popUp->entryLeaving(entry);
        else if (popUp)
            popUp->forgetEntry(entry);
    }

    const int left = --menuCount[menu];
    if (left <= 0)
        menuCount.remove(menu);
    // A group goes back to a single button only when it loses an entry of its own
    // sub-menu; one left by a second-level pop-up stays in the group.
    if (left == 1 && !nest && groupedMenus.contains(menu))
        ungroupDue.insert(menu);
    else if (left == 1)
        ungroupDue.remove(menu);
    QHash<QString, int>& names = subMenuCount[menu];
    if (--names[subMenu] <= 0)
        names.remove(subMenu);
    if (names.isEmpty())
        subMenuCount.remove(menu);
}

void MenuBuilder::settleMenu(const QString& menu)
{
    const int count = menuCount.value(menu);
    const bool ungroup = ungroupDue.remove(menu) && count == 1;
    if (count == 0) {
        clearMenu(menu);
        return;
    }
    if (groupedMenus.contains(menu)) {
        flattenSubMenuNames(menu);
        if (ungroup)
            ungroupMenu(menu);
    }
    refreshMenuVisibility(menu);
}

void MenuBuilder::clearMenu(const QString& menu)
{
    if (const QPointer<MenuItem> button = menuButtons.take(menu)) {
        takeFromRow(button);
        detach(button, true);
        button->hide();
        button->deleteLater();
    }
    groupedMenus.removeAll(menu);
    if (const QPointer<SubMenu> sub = subMenus.take(menu)) {
        detach(sub, true);
        sub->dispose();
    }
    const QString prefix = nestKey(menu, QString());
    for (auto nest = subSubMenus.begin(); nest != subSubMenus.end();) {
        if (!nest.key().startsWith(prefix)) {
            ++nest;
            continue;
        }
        if (nest.value()) {
            nest.value()->unchecking();
            nest.value()->dispose();
        }
        nest = subSubMenus.erase(nest);
    }
    menuCount.remove(menu);
    subMenuCount.remove(menu);
}

void MenuBuilder::refreshMenuVisibility(const QString& menu, const QString* onlySubMenu)
{
    if (!groupedMenus.contains(menu))
        return;
    const QString prefix = nestKey(menu, QString());
    for (const QString& name : onlySubMenu ? QStringList{*onlySubMenu} : subMenuCount.value(menu).keys()) {
        SubSubMenu* nest = subSubMenus.value(prefix + name);
        QPushButton* holder = nest ? nest->getOwner() : nullptr;
        const bool shown = nest && nest->hasShownEntry();
        if (holder && SubMenuBase::isHiddenEntry(holder) == shown)
            holder->setVisible(shown);
    }
    SubMenu* sub = subMenus.value(menu);
    MenuItem* group = menuButtons.value(menu);
    const bool shown = sub && sub->hasShownEntry();
    if (group && SubMenuBase::isHiddenEntry(group) == shown)
        group->setVisible(shown);
}

QList<QPushButton*> MenuBuilder::entriesOf(const QString& menu) const
{
    QList<QPushButton*> result;
    if (!groupedMenus.contains(menu)) {
        MenuItem* single = menuButtons.value(menu);
        if (single && entryBooks.contains(single))
            result.append(single);
        return result;
    }
    if (SubMenu* sub = subMenus.value(menu)) {
        for (QPushButton* entry : sub->buttons()) {
            if (entryBooks.contains(entry))
                result.append(entry);
        }
    }
    const QString prefix = nestKey(menu, QString());
    for (auto nest = subSubMenus.constBegin(); nest != subSubMenus.constEnd(); ++nest) {
        if (!nest.key().startsWith(prefix) || !nest.value())
            continue;
        for (QPushButton* entry : nest.value()->buttons()) {
            if (entryBooks.contains(entry))
                result.append(entry);
        }
    }
    return result;
}

void MenuBuilder::disableScreen(const QString& menu, const QString& subMenu, const QString& label, int n)
{
    setEntryShown(ScreenKey(menu, subMenu, label, n), false);
}

void MenuBuilder::enableScreen(const QString& menu, const QString& subMenu, const QString& label, int n)
{
    setEntryShown(ScreenKey(menu, subMenu, label, n), true);
}

void MenuBuilder::setEntryShown(const ScreenKey& key, bool shown)
{
    settleMenus();
    QPushButton* entry = screenMap.button(key);
    if (!entry) {
        qDebug() << (shown ? "UserInterface - Menu has no entry to show:" : "UserInterface - Menu has no entry to hide:")
                 << key.menu << key.subMenu << key.label << key.number;
        return;
    }
    entry->setVisible(shown);
    // A hidden entry takes its screen off the desktop; showing the entry again does not
    // bring the screen back.
    if (QWidget* screen = entryBooks.value(entry).screen; !shown && screen && screen->isVisible())
        screen->hide();
    // The spacer above an entry goes and comes with it.
    auto* layout = qobject_cast<QVBoxLayout*>(entry->parentWidget() ? entry->parentWidget()->layout() : nullptr);
    if (layout) {
        const int index = layout->indexOf(entry);
        QWidget* before = index > 0 ? layout->itemAt(index - 1)->widget() : nullptr;
        if (before && before->objectName() == QLatin1String("spacer"))
            before->setVisible(shown);
    }
    refreshMenuVisibility(key.menu);
}

bool MenuBuilder::removeMenuItem(const QString& menu, const QString& subMenu, const QString& label, int n)
{
    settleMenus();
    QPushButton* entry = screenMap.button(ScreenKey(menu, subMenu, label, n));
    if (!entry) {
        qDebug() << "UserInterface - Menu has no entry to remove:" << menu << subMenu << label << n;
        return false;
    }
    detach(entry);
    entry->hide();
    entry->deleteLater();
    entryGone(entry, true, true);
    return true;
}

QPushButton* MenuBuilder::menuEntry(const QString& menu, const QString& subMenu, const QString& label, int n) const
{
    return screenMap.button(ScreenKey(menu, subMenu, label, n));
}

MenuItem* MenuBuilder::menuButton(const QString& menu) const
{
    return menuButtons.value(menu);
}

void MenuBuilder::updateButtonsToContainers(QPushButton* button, QWidget* screen)
{
    const auto books = entryBooks.find(button);
    if (books == entryBooks.end())
        return;
    books->screen = screen;
    if (screen) {
        screenEntries.insert(screen, button);
        connect(screen, &QObject::destroyed, this, &MenuBuilder::screenDestroyed, Qt::UniqueConnection);
    }
}

QHash<QString, SubMenu*> MenuBuilder::getSubMenus() const
{
    return livePopUps(subMenus);
}

QHash<QString, SubSubMenu*> MenuBuilder::getSubSubMenus() const
{
    return livePopUps(subSubMenus);
}

void MenuBuilder::closeOtherSubMenus(SubMenu* sub)
{
    for (const QPointer<SubMenu>& other : qAsConst(subMenus)) {
        if (other && other != sub)
            other->setClosed();
    }
}

void MenuBuilder::closeAllSubMenus()
{
    for (const QPointer<SubMenu>& sub : qAsConst(subMenus)) {
        if (sub)
            sub->setClosed();
    }
}
