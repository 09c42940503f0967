#include "MenuBar.h"

#include "ApplicationOptions.h"
#include "CSS.h"
#include "CorbaFailure.h"
#include "GlobalImpl.h"
#include "MenuEntryWiring.h"
#include "MenuItem.h"
#include "MenuBarTimeoutSource.h"
#include "ScrollButton.h"
#include "ScrollableMenuBarFrame.h"
#include "SubMenu.h"
#include "SubMenuItem.h"
#include "SubSubMenu.h"
#include "SubSubMenuItem.h"

#include <QBoxLayout>
#include <QDebug>
#include <QEvent>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QShowEvent>
#include <QSpacerItem>
#include <QTimer>
#include <QtConcurrent>

#include <utility>

#include <cstdlib>
#include <limits>

namespace {

// A fraction of a length in pixels, truncated toward zero.
int part(double fraction, int length)
{
    return int(fraction * length);
}

bool isLandscape()
{
    return ApplicationOptions::screenSize() == ApplicationOptions::ScreenSize::Landscape;
}

QBoxLayout* tightLayout(QBoxLayout* layout)
{
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    return layout;
}

const char* const sourceFile = "Components/Source/View/Widgets/MenuBar";

} // namespace

MenuBar::MenuBar(QWidget* parent, Qt::AlignmentFlag location)
    : QFrame(parent)
    , location(location)
    , geometryAnimation(this, "geometry")
{
    const int W = parent ? parent->width() : 0;
    const int H = parent ? parent->height() : 0;

    setObjectName(QString());
    setStyleSheet(QStringLiteral(
        "QFrame#innerBar { background-color: black; border: none; } "
        "QFrame#top { background-color: transparent; border: 4px solid white; border-top-width: 0px; border-bottom-width: 0px; } "
        "QFrame#left { background-color: transparent; border: 4px solid white; border-left-width: 0px; border-right-width: 0px; } "
        "QWidget#ScrollButton { background-color: darkgray; color: white; } "
        "QScrollArea { background-color: black; border: none; } "));

    auto* outerFrame = new QFrame(this);
    auto* toggleButton = new QPushButton(this);
    toggleButton->setFocusPolicy(Qt::NoFocus);
    auto* tab = new QFrame(toggleButton);
    auto* tabLayout = tightLayout(new QHBoxLayout(toggleButton));
    if (ApplicationOptions::isHandheld())
        tabLayout->setContentsMargins(0, 0, 20, 0);
    else
        tabLayout->setContentsMargins(0, 0, 0, 20);
    tabLayout->addWidget(tab);
    toggleButton->setStyleSheet(
        QStringLiteral("QPushButton { background-color: ") + CSS::invisArea()
        + QStringLiteral("; border: none; }"
                         "QFrame#top { border: 4px solid white; background-color: rgb(100,100,100); "
                         "border-bottom-left-radius: 12px; border-bottom-right-radius: 12px; border-top-width: 0px; } "
                         "QFrame#left { border: 4px solid white; background-color: rgb(100,100,100); "
                         "border-bottom-right-radius: 12px; border-top-right-radius: 12px; border-left-width: 0px; } "));

    scrollArea = new QScrollArea(outerFrame);
    scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrollArea->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    if (location == Qt::AlignTop) {
        // A portrait screen keeps room below the bar for the status bar and the screens.
        const bool portrait = ApplicationOptions::isPortraitResolution();
        const int sideMargin = portrait ? 30 : 45;
        const int reference = portrait ? H - 250 : H - 50;
        const int height = part(0.3, reference);
        openGeometry = QRect(0, 20 - part(0.1, reference), W, height);
        // On a landscape screen only the tab shows while the bar is in, in the middle.
        if (isLandscape())
            closedGeometry = QRect(W / 2 - 25, (45 - part(0.3, reference)) - 5, 50, height);
        else
            closedGeometry = QRect(0, 45 - part(0.3, reference), W, height);
        setGeometry(closedGeometry);

        outerFrame->setObjectName(QStringLiteral("top"));
        tab->setObjectName(QStringLiteral("top"));
        auto* barLayout = tightLayout(new QVBoxLayout(this));
        barLayout->setContentsMargins(sideMargin, 0, sideMargin, 0);
        barLayout->addWidget(outerFrame);
        barLayout->addWidget(toggleButton);
        toggleButton->setFixedHeight(45);
        toggleButton->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);

        negButton = new ScrollButton(Qt::LeftArrow, this);
        posButton = new ScrollButton(Qt::RightArrow, this);
        for (ScrollButton* arrow : {negButton, posButton}) {
            if (portrait) {
                arrow->resize(arrow->width() + 10, arrow->height() + 10);
                arrow->setMaximumSize(arrow->size());
            } else if (isLandscape()) {
                arrow->hide();
            }
        }
        const int arrowY = part(0.2, reference) - negButton->height() / 2 - 27;
        negButton->move(5, arrowY);
        posButton->move(W - posButton->width() - 5, arrowY);

        auto* outerLayout = tightLayout(new QVBoxLayout(outerFrame));
        outerLayout->addItem(new QSpacerItem(1, 1, QSizePolicy::MinimumExpanding, QSizePolicy::Expanding));
        outerLayout->addWidget(scrollArea);
        scrollArea->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
        scrollArea->setFixedHeight(part(0.165, reference));
        scrollBar = scrollArea->horizontalScrollBar();

        itemFrame = new ScrollableMenuBarFrame(scrollArea, location);
        itemLayout = tightLayout(new QHBoxLayout(itemFrame));
        itemFrame->setMinimumHeight(scrollArea->height());
    } else {
        const int width = part(0.35, W);
        openGeometry = QRect(20 - part(0.1, W), 0, width, H);
        closedGeometry = QRect(55 - part(0.35, W), 0, width, H);
        setGeometry(closedGeometry);

        outerFrame->setObjectName(QStringLiteral("left"));
        tab->setObjectName(QStringLiteral("left"));
        auto* barLayout = tightLayout(new QHBoxLayout(this));
        barLayout->setContentsMargins(0, 45, 0, 45);
        barLayout->addWidget(outerFrame);
        barLayout->addWidget(toggleButton);
        toggleButton->setFixedWidth(55);
        toggleButton->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Minimum);

        negButton = new ScrollButton(Qt::UpArrow, this);
        posButton = new ScrollButton(Qt::DownArrow, this);
        const int arrowX = int(0.225 * W - negButton->width() / 2 - 33.75);
        negButton->move(arrowX, 5);
        posButton->move(arrowX, H - posButton->height() - 5);

        auto* outerLayout = tightLayout(new QHBoxLayout(outerFrame));
        outerLayout->addItem(new QSpacerItem(1, 1, QSizePolicy::MinimumExpanding, QSizePolicy::MinimumExpanding));
        outerLayout->addWidget(scrollArea);
        scrollArea->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Minimum);
        scrollArea->setFixedWidth(part(0.215, W));
        scrollBar = scrollArea->verticalScrollBar();

        itemFrame = new ScrollableMenuBarFrame(scrollArea, location);
        itemLayout = tightLayout(new QVBoxLayout(itemFrame));
        if (location == Qt::AlignLeft)
            itemFrame->setMinimumWidth(scrollArea->width());
    }

    negButton->setEnabled(false);
    posButton->setEnabled(false);
    scrollArea->setWidget(itemFrame);
    itemFrame->installEventFilter(this);

    scrollAnimation.setTargetObject(itemFrame);
    scrollAnimation.setPropertyName("pos");
    scrollAnimation.setDuration(500);
    scrollAnimation.setEasingCurve(QEasingCurve::OutExpo);

    hideTimer = new QTimer(this);
    hideTimer->setSingleShot(true);
    timeoutWatcher = new QFutureWatcher<std::optional<int>>(this);

    connect(itemFrame, &ScrollableMenuBarFrame::moving, this, &MenuBar::checkNavArrows);
    connect(&scrollAnimation, &QPropertyAnimation::finished, this, &MenuBar::checkNavArrows);
    connect(toggleButton, &QPushButton::clicked, this, &MenuBar::toggle);
    connect(negButton, &ScrollButton::mouseUp, this, &MenuBar::moveNeg);
    connect(negButton, &ScrollButton::mouseUp, this, &MenuBar::startTimer);
    connect(posButton, &ScrollButton::mouseUp, this, &MenuBar::movePos);
    connect(posButton, &ScrollButton::mouseUp, this, &MenuBar::startTimer);
    connect(hideTimer, &QTimer::timeout, this, &MenuBar::timeIsUp);
    connect(timeoutWatcher, &QFutureWatcherBase::finished, this, &MenuBar::timeoutRead);
}

// A time-out read still running keeps its own copy of the source and reports to the
// watcher, which goes with the bar; nothing of the bar is touched once it is gone.
MenuBar::~MenuBar()
{
    // The row's buttons die with the bar's widgets, after its members: they must not
    // report back. The pop-ups live on the desktop and go with the bar.
    for (auto entry = itemMenuName.keyBegin(); entry != itemMenuName.keyEnd(); ++entry)
        disconnect(*entry, nullptr, this, nullptr);
    for (const QPointer<SubSubMenu>& nest : qAsConst(subSubMenus))
        delete nest.data();
    for (const QPointer<SubMenu>& sub : qAsConst(subMenus))
        delete sub.data();
}

QSizePolicy MenuBar::itemSizePolicy() const
{
    if (location == Qt::AlignTop)
        return QSizePolicy(QSizePolicy::Fixed, QSizePolicy::Minimum);
    return QSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
}

int MenuBar::itemExtent() const
{
    if (location != Qt::AlignTop)
        return scrollArea->width() / 2;
    if (ApplicationOptions::isPortraitResolution())
        return part(1.43, scrollArea->height());
    if (isLandscape())
        return 124;
    return part(1.5, scrollArea->height());
}

void MenuBar::addItem(QWidget* item)
{
    if (!item) {
        qDebug() << "UserInterface - MenuBar - no item to add";
        return;
    }
    applyItemSize(item);
    itemLayout->addWidget(item);
    // A child added to a visible frame is shown only later; the frame follows its
    // layout on each layout request (see eventFilter), so show it now.
    item->show();
}

bool MenuBar::eventFilter(QObject* watched, QEvent* event)
{
    // The row grows and shrinks with its buttons: the scroll area leaves its widget's
    // size alone, so the frame is fitted to its layout whenever that changes.
    if (watched == itemFrame && event->type() == QEvent::LayoutRequest) {
        itemFrame->adjustSize();
        checkNavArrows();
    }
    return QFrame::eventFilter(watched, event);
}

void MenuBar::applyItemSize(QWidget* item) const
{
    if (!item)
        return;
    item->setSizePolicy(itemSizePolicy());
    if (location == Qt::AlignTop)
        item->setFixedWidth(itemExtent());
    else
        item->setFixedHeight(itemExtent());
}

void MenuBar::setTimeoutSource(TimeoutSource source)
{
    timeoutSource = std::move(source);
}

int MenuBar::remainingHideTime() const
{
    return hideTimer->isActive() ? hideTimer->remainingTime() : -1;
}

void MenuBar::toggle()
{
    raise();
    // A slide still under way would overwrite where this toggle puts the bar.
    geometryAnimation.stop();
    if (ApplicationOptions::animationSwitchedOn()) {
        if (isOpen) {
            geometryAnimation.setDuration(200);
            geometryAnimation.setEasingCurve(QEasingCurve::InBack);
            geometryAnimation.setStartValue(openGeometry);
            geometryAnimation.setEndValue(closedGeometry);
        } else {
            geometryAnimation.setDuration(500);
            geometryAnimation.setEasingCurve(QEasingCurve::OutBounce);
            geometryAnimation.setStartValue(closedGeometry);
            geometryAnimation.setEndValue(openGeometry);
        }
        geometryAnimation.start();
    } else {
        setGeometry(isOpen ? closedGeometry : openGeometry);
    }
    isOpen = !isOpen;
    emit toggled(isOpen);
}

void MenuBar::showMenuBar(bool show)
{
    if (isOpen != show)
        toggle();
}

void MenuBar::timeIsUp()
{
    if (isOpen)
        toggle();
}

void MenuBar::startTimer()
{
    if (timeoutReadRunning) {
        timeoutReadStale = true;
        return;
    }
    readTimeout();
}

void MenuBar::readTimeout()
{
    TimeoutSource source = timeoutSource ? timeoutSource : MenuBarTimeoutSource::fromEngines();
    if (!source)
        return;
    timeoutReadRunning = true;
    timeoutReadStale = false;
    // The engine may take up to its call time-out to answer; the GUI thread goes on.
    timeoutWatcher->setFuture(QtConcurrent::run([source]() -> std::optional<int> {
        try {
            return source();
        } catch (const std::exception& exception) {
            qDebug() << "UserInterface - Reading the menu bar time-out failed:" << exception.what();
        } catch (...) {
            CorbaFailure::logException(sourceFile, "startTimer", __LINE__);
        }
        return std::nullopt;
    }));
}

void MenuBar::timeoutRead()
{
    timeoutReadRunning = false;
    if (timeoutReadStale) {
        readTimeout();
        return;
    }
    applyTimeout(timeoutWatcher->result());
}

void MenuBar::applyTimeout(std::optional<int> seconds)
{
    if (!seconds)
        return;
    if (*seconds == 60) {
        hideTimer->stop();
        return;
    }
    if (*seconds < 0 || *seconds > std::numeric_limits<int>::max() / 1000) {
        qDebug() << "UserInterface - Menu bar time-out out of range, timer left as it is:" << *seconds;
        return;
    }
    hideTimer->start(*seconds * 1000);
}

void MenuBar::showEvent(QShowEvent* event)
{
    QFrame::showEvent(event);
    checkNavArrows();
}

void MenuBar::movePos()
{
    const int areaWidth = scrollArea->width();
    const int areaHeight = scrollArea->height();
    const int frameWidth = itemFrame->width();
    const int frameHeight = itemFrame->height();
    const int x = itemFrame->x();
    if (location == Qt::AlignTop && frameWidth > areaWidth) {
        if (std::abs(x) + 2 * areaWidth < frameWidth)
            scrollTo(QPoint(x - areaWidth, areaHeight - frameHeight));
        else
            scrollTo(QPoint(areaWidth - frameWidth, areaHeight - frameHeight));
    } else if (location == Qt::AlignLeft && frameHeight > areaHeight) {
        scrollTo(QPoint(areaWidth - frameWidth, areaHeight - frameHeight));
    }
    emit jumped();
}

void MenuBar::moveNeg()
{
    const int areaWidth = scrollArea->width();
    const int areaHeight = scrollArea->height();
    const int frameWidth = itemFrame->width();
    const int frameHeight = itemFrame->height();
    const int x = itemFrame->x();
    if (location == Qt::AlignTop && frameWidth > areaWidth) {
        if (std::abs(x) <= areaWidth)
            scrollTo(QPoint(0, 0));
        else
            scrollTo(QPoint(x + areaWidth, areaHeight - frameHeight));
    } else if (location == Qt::AlignLeft && frameHeight > areaHeight) {
        scrollTo(QPoint(0, 0));
    }
    emit jumped();
}

void MenuBar::scrollTo(const QPoint& target)
{
    scrollAnimation.stop();
    scrollAnimation.setStartValue(itemFrame->pos());
    scrollAnimation.setEndValue(target);
    scrollAnimation.start();
}

void MenuBar::checkNavArrows()
{
    int position = 0;
    int areaLength = 0;
    int frameLength = 0;
    if (location == Qt::AlignTop) {
        position = itemFrame->x();
        areaLength = scrollArea->width();
        frameLength = itemFrame->width();
    } else if (location == Qt::AlignLeft) {
        position = itemFrame->y();
        areaLength = scrollArea->height();
        frameLength = itemFrame->height();
    } else {
        return;
    }
    // A row that fits leaves the arrows as they are.
    if (frameLength <= areaLength)
        return;
    negButton->setEnabled(position != 0);
    posButton->setEnabled(position != areaLength - frameLength);
}

// Entry bookkeeping.
//
// A menu's look follows from its counts: one entry is a bar button that opens its
// screen; two or more make the bar button a group button with a sub-menu; inside a
// group, a sub-menu name gets a holder entry with a second-level pop-up when it has two
// or more entries and the menu has more than one name, and keeps it until the name is
// down to one entry. Every change of the counts
// rebuilds just the entries whose level changes; a rebuilt entry keeps its key, its
// screen, its receiver and its registrations under its new button.

QString MenuBar::nestKey(const QString& menu, const QString& subMenu)
{
    return menu + QLatin1Char('|') + subMenu;
}

QPushButton* MenuBar::addMenuItem(const QString& menu, const QString& subMenu, const QString& label, QFrame* screen,
                                  int position, int priority, QObject* receiver, const QString& slot, int instNum)
{
    settleMenus();
    QString shown = tr(label.toUtf8().constData());
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
    if (QObject* other = screenEntries.value(screen); other && buttonScreens.value(other) == screen) {
        qDebug() << "UserInterface - Menu entry for a screen that has one already, not added:" << menu << subMenu
                 << shown;
        return nullptr;
    }
    if (groupedMenus.contains(menu) && !subMenus.value(menu)) {
        qDebug() << "UserInterface - Menu without its sub-menu, entry not added:" << menu << subMenu << shown;
        return nullptr;
    }

    const int count = ++menuCount[menu];
    ++subMenuCount[menu][subMenu];
    QPushButton* entry = nullptr;
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
        connect(button, &QPushButton::clicked, this, &MenuBar::startTimer);
        entry = button;
    } else {
        if (!groupedMenus.contains(menu))
            groupMenu(menu, position, priority);
        nestSubMenuNames(menu, position);
        SubMenu* sub = subMenus.value(menu);
        if (SubSubMenu* nest = subSubMenus.value(nestKey(menu, subMenu))) {
            auto* nested = new SubSubMenuItem(nest, sub, shown, screen, position, receiver, slot, instNum);
            nest->addMenuItem(nested, position);
            connect(nested, &QObject::destroyed, this, &MenuBar::subSubMenuItemDeleted);
            nested->setText(label);
            entry = nested;
        } else {
            SubMenuItem* item = newSubMenuEntry(sub, subMenu, label, screen, position, receiver, slot, instNum);
            connect(item, &QPushButton::clicked, this, &MenuBar::startTimer);
            entry = item;
        }
    }
    recordEntry(entry, menu, subMenu, screen);
    screenMap.append(key, entry);
    refreshMenuVisibility(menu);
    return entry;
}

void MenuBar::addMenu(QDomDocument*)
{
}

MenuItem* MenuBar::newBarButton(const QString& menu, const QString& label, QFrame* screen, int position,
                                int priority, QObject* receiver, const QString& slot)
{
    auto* button = new MenuItem(itemFrame, menu, label, screen, position, priority, receiver, slot);
    connect(button, &QObject::destroyed, this, &MenuBar::menuItemDeleted);
    return button;
}

SubMenuItem* MenuBar::newSubMenuEntry(SubMenu* sub, const QString& subMenu, const QString& label, QFrame* screen,
                                      int position, QObject* receiver, const QString& slot, int instNum)
{
    auto* item = new SubMenuItem(sub, label, screen, position, receiver, slot, instNum);
    item->setObjectName(subMenu);
    sub->addMenuItem(item, position);
    connect(item, &QObject::destroyed, this, &MenuBar::menuItemDeleted);
    item->setText(label);
    return item;
}

void MenuBar::putInRow(MenuItem* button, int index)
{
    itemLayout->insertWidget(index, button);
    applyItemSize(button);
    button->show();
    itemFrame->adjustSize();
}

int MenuBar::rowIndex(const QObject* widget) const
{
    for (int index = 0; index < itemLayout->count(); ++index) {
        const QObject* inRow = itemLayout->itemAt(index)->widget();
        if (inRow && inRow == widget)
            return index;
    }
    return itemLayout->count();
}

void MenuBar::takeFromRow(const QObject* widget)
{
    const int index = rowIndex(widget);
    if (index == itemLayout->count())
        return;
    delete itemLayout->takeAt(index);
    itemFrame->adjustSize();
}

void MenuBar::groupMenu(const QString& menu, int position, int priority)
{
    MenuItem* single = menuButtons.value(menu);
    // The group stands where the single button stood, but ranks as the entry that made it.
    auto* group = new MenuItem(itemFrame, menu, menu, nullptr, position, priority, nullptr, QString());
    putInRow(group, rowIndex(single));
    takeFromRow(single);
    groupedMenus.append(menu);
    connect(this, &MenuBar::toggled, group, &MenuItem::setClosed);
    connect(this, &MenuBar::jumped, group, &MenuItem::setClosed);
    connect(group, &QPushButton::clicked, this, &MenuBar::startTimer);

    auto* sub = new SubMenu(parentWidget(), group);
    connect(sub, &SubMenu::subMenuToggledOn, this, &MenuBar::closeOtherSubMenus);
    subMenus.insert(menu, sub);
    connect(group, &MenuItem::moving, sub, &SubMenu::reposition);
    connect(this, &MenuBar::toggled, sub, &QWidget::hide);
    connect(this, &MenuBar::jumped, sub, &QWidget::hide);
    menuButtons.insert(menu, group);

    if (!single || !itemMenuName.contains(single))
        return;
    SubMenuItem* moved = newSubMenuEntry(sub, itemSubMenuName.value(single), single->getLabel(), single->getScreen(),
                                         single->getPosition(), single->getReceiver(), single->getSlot(), 0);
    passEntryOn(single, moved, single->getReceiver(), single->getSlot());
}

void MenuBar::ungroupMenu(const QString& menu)
{
    const QList<QPushButton*> left = entriesOf(menu);
    auto* remaining = left.size() == 1 ? qobject_cast<SubMenuItem*>(left.first()) : nullptr;
    if (!remaining || !remaining->getScreen())
        return;
    SubMenu* sub = subMenus.value(menu);
    MenuItem* group = menuButtons.value(menu);

    QString shown = tr(remaining->getLabel().toUtf8().constData());
    if (remaining->getInstNum() > 1)
        shown += QLatin1Char(' ') + QString::number(remaining->getInstNum());
    // Back to a single button, the menu ranks 0: later menus of any rank go before it.
    MenuItem* button = newBarButton(menu, shown, remaining->getScreen(), remaining->getPosition(), 0,
                                    remaining->getReceiver(), remaining->getSlot());
    putInRow(button, rowIndex(group));
    if (group) {
        takeFromRow(group);
        disconnect(group, nullptr, this, nullptr);
        disconnect(this, nullptr, group, nullptr);
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
        disconnect(sub, nullptr, this, nullptr);
        disconnect(this, nullptr, sub, nullptr);
        sub->hide();
        sub->deleteLater();
    }
}

void MenuBar::nestSubMenuNames(const QString& menu, int holderPosition)
{
    if (!groupedMenus.contains(menu))
        return;
    const QHash<QString, int> counts = subMenuCount.value(menu);
    if (counts.size() < 2)
        return;
    QStringList names = counts.keys();
    names.sort();
    for (const QString& name : qAsConst(names)) {
        if (counts.value(name) >= 2 && !subSubMenus.contains(nestKey(menu, name)))
            nestSubMenuName(menu, name, holderPosition);
    }
}

void MenuBar::flattenSubMenuNames(const QString& menu)
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

void MenuBar::nestSubMenuName(const QString& menu, const QString& subMenu, int holderPosition)
{
    SubMenu* sub = subMenus.value(menu);
    if (!sub)
        return;
    QList<SubMenuItem*> plain;
    for (QPushButton* button : sub->buttons()) {
        auto* entry = qobject_cast<SubMenuItem*>(button);
        if (entry && itemMenuName.contains(entry) && itemSubMenuName.value(entry) == subMenu)
            plain.append(entry);
    }

    auto* holder = new SubMenuItem(sub, subMenu, nullptr, holderPosition, nullptr, QString(), 0);
    disconnect(holder, &QPushButton::clicked, nullptr, nullptr);
    holder->setCheckable(true);
    auto* nest = new SubSubMenu(parentWidget(), holder);
    subSubMenus.insert(nestKey(menu, subMenu), nest);
    if (MenuItem* group = menuButtons.value(menu))
        connect(group, &MenuItem::moving, nest, &SubSubMenu::reposition);
    sub->addMenuItem(holder, holderPosition);

    for (SubMenuItem* entry : qAsConst(plain)) {
        auto* moved = new SubSubMenuItem(nest, sub, entry->getLabel(), entry->getScreen(), entry->getPosition(),
                                         entry->getReceiver(), entry->getSlot(), entry->getInstNum());
        nest->addMenuItem(moved, 0);
        connect(moved, &QObject::destroyed, this, &MenuBar::subSubMenuItemDeleted);
        moved->setText(entry->getLabel());
        sub->removeMenuItem(entry);
        passEntryOn(entry, moved, entry->getReceiver(), entry->getSlot());
    }
}

void MenuBar::flattenSubMenuName(const QString& menu, const QString& subMenu)
{
    const QPointer<SubSubMenu> nest = subSubMenus.take(nestKey(menu, subMenu));
    if (!nest)
        return;
    SubMenu* sub = subMenus.value(menu);
    QPushButton* holder = nest->getOwner();
    if (sub) {
        for (QPushButton* button : nest->buttons()) {
            auto* entry = qobject_cast<SubSubMenuItem*>(button);
            if (!entry || !itemMenuName.contains(entry))
                continue;
            SubMenuItem* moved = newSubMenuEntry(sub, subMenu, entry->getLabel(), entry->getScreen(),
                                                 entry->getPosition(), entry->getReceiver(), entry->getSlot(),
                                                 entry->getInstNum());
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
    nest->deleteLater();
}

void MenuBar::recordEntry(QPushButton* entry, const QString& menu, const QString& subMenu, QWidget* screen)
{
    itemMenuName.insert(entry, menu);
    itemSubMenuName.insert(entry, subMenu);
    buttonScreens.insert(entry, screen);
    if (screen) {
        screenEntries.insert(screen, entry);
        connect(screen, &QObject::destroyed, this, &MenuBar::screenDestroyed, Qt::UniqueConnection);
    }
}

void MenuBar::passEntryOn(QPushButton* from, QPushButton* to, QObject* receiver, const QString& slot)
{
    disconnect(from, nullptr, this, nullptr);
    const QString menu = itemMenuName.take(from);
    const QString subMenu = itemSubMenuName.take(from);
    const QPointer<QWidget> screen = buttonScreens.take(from);
    recordEntry(to, menu, subMenu, screen);
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

void MenuBar::menuItemDeleted(QObject* menuItem)
{
    entryGone(menuItem, false);
}

void MenuBar::subSubMenuItemDeleted(QObject* menuItem)
{
    entryGone(menuItem, false);
}

void MenuBar::screenDestroyed(QObject* screen)
{
    // The entry deletes itself later; it leaves the books now, so that nothing rebuilds
    // an entry for a screen that is gone.
    QObject* entry = screenEntries.take(screen);
    if (!entry || !itemMenuName.contains(entry))
        return;
    disconnect(entry, nullptr, this, nullptr);
    entryGone(entry, false);
}

void MenuBar::entryGone(QObject* entry, bool settleNow)
{
    if (!itemMenuName.contains(entry))
        return;
    const QString menu = itemMenuName.value(entry);
    forgetEntry(entry);
    if (settleNow) {
        settleMenu(menu);
        return;
    }
    // Reported from a destructor, maybe of the whole desktop: widgets are rebuilt once
    // control is back in the event loop, and not at all if the bar goes too.
    unsettledMenus.insert(menu);
    if (unsettledMenus.size() == 1)
        QMetaObject::invokeMethod(this, &MenuBar::settleMenus, Qt::QueuedConnection);
}

void MenuBar::settleMenus()
{
    const QSet<QString> menus = std::exchange(unsettledMenus, {});
    for (const QString& menu : menus)
        settleMenu(menu);
}

void MenuBar::forgetEntry(QObject* entry)
{
    const QString menu = itemMenuName.take(entry);
    const QString subMenu = itemSubMenuName.take(entry);
    const QPointer<QWidget> screen = buttonScreens.take(entry);
    if (screen && screenEntries.value(screen) == entry)
        screenEntries.remove(screen);
    screenMap.removeButton(entry);

    takeFromRow(entry);
    if (SubMenu* sub = subMenus.value(menu))
        sub->forgetEntry(entry);
    // A name is nested as a whole: the entry sat in a second-level pop-up if its name has one.
    SubSubMenu* nest = subSubMenus.value(nestKey(menu, subMenu));
    if (nest)
        nest->forgetEntry(entry);

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

void MenuBar::settleMenu(const QString& menu)
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

void MenuBar::clearMenu(const QString& menu)
{
    if (const QPointer<MenuItem> button = menuButtons.take(menu)) {
        takeFromRow(button);
        disconnect(button, nullptr, this, nullptr);
        disconnect(this, nullptr, button, nullptr);
        button->hide();
        button->deleteLater();
    }
    groupedMenus.removeAll(menu);
    if (const QPointer<SubMenu> sub = subMenus.take(menu)) {
        disconnect(sub, nullptr, this, nullptr);
        disconnect(this, nullptr, sub, nullptr);
        sub->hide();
        sub->deleteLater();
    }
    const QString prefix = nestKey(menu, QString());
    for (auto nest = subSubMenus.begin(); nest != subSubMenus.end();) {
        if (!nest.key().startsWith(prefix)) {
            ++nest;
            continue;
        }
        if (nest.value()) {
            nest.value()->unchecking();
            nest.value()->deleteLater();
        }
        nest = subSubMenus.erase(nest);
    }
    menuCount.remove(menu);
    subMenuCount.remove(menu);
}

void MenuBar::refreshMenuVisibility(const QString& menu)
{
    if (!groupedMenus.contains(menu))
        return;
    const QString prefix = nestKey(menu, QString());
    for (const QString& name : subMenuCount.value(menu).keys()) {
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

QList<QPushButton*> MenuBar::entriesOf(const QString& menu) const
{
    QList<QPushButton*> result;
    if (!groupedMenus.contains(menu)) {
        MenuItem* single = menuButtons.value(menu);
        if (single && itemMenuName.contains(single))
            result.append(single);
        return result;
    }
    if (SubMenu* sub = subMenus.value(menu)) {
        for (QPushButton* entry : sub->buttons()) {
            if (itemMenuName.contains(entry))
                result.append(entry);
        }
    }
    const QString prefix = nestKey(menu, QString());
    for (auto nest = subSubMenus.constBegin(); nest != subSubMenus.constEnd(); ++nest) {
        if (!nest.key().startsWith(prefix) || !nest.value())
            continue;
        for (QPushButton* entry : nest.value()->buttons()) {
            if (itemMenuName.contains(entry))
                result.append(entry);
        }
    }
    return result;
}

void MenuBar::disableScreen(const QString& menu, const QString& subMenu, const QString& label, int n)
{
    setEntryShown(ScreenKey(menu, subMenu, label, n), false);
}

void MenuBar::enableScreen(const QString& menu, const QString& subMenu, const QString& label, int n)
{
    setEntryShown(ScreenKey(menu, subMenu, label, n), true);
}

void MenuBar::setEntryShown(const ScreenKey& key, bool shown)
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
    if (QWidget* screen = buttonScreens.value(entry); !shown && screen && screen->isVisible())
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

bool MenuBar::removeMenuItem(const QString& menu, const QString& subMenu, const QString& label, int n)
{
    settleMenus();
    QPushButton* entry = screenMap.button(ScreenKey(menu, subMenu, label, n));
    if (!entry) {
        qDebug() << "UserInterface - Menu has no entry to remove:" << menu << subMenu << label << n;
        return false;
    }
    disconnect(entry, nullptr, this, nullptr);
    entry->hide();
    entry->deleteLater();
    entryGone(entry, true);
    return true;
}

QPushButton* MenuBar::menuEntry(const QString& menu, const QString& subMenu, const QString& label, int n) const
{
    return screenMap.button(ScreenKey(menu, subMenu, label, n));
}

MenuItem* MenuBar::menuButton(const QString& menu) const
{
    return menuButtons.value(menu);
}

void MenuBar::updateButtonsToContainers(QPushButton* button, QWidget* screen)
{
    buttonScreens.insert(button, screen);
    if (screen && itemMenuName.contains(button)) {
        screenEntries.insert(screen, button);
        connect(screen, &QObject::destroyed, this, &MenuBar::screenDestroyed, Qt::UniqueConnection);
    }
}

QHash<QString, SubMenu*> MenuBar::getSubMenus() const
{
    QHash<QString, SubMenu*> result;
    for (auto sub = subMenus.constBegin(); sub != subMenus.constEnd(); ++sub) {
        if (sub.value())
            result.insert(sub.key(), sub.value());
    }
    return result;
}

QHash<QString, SubSubMenu*> MenuBar::getSubSubMenus() const
{
    QHash<QString, SubSubMenu*> result;
    for (auto nest = subSubMenus.constBegin(); nest != subSubMenus.constEnd(); ++nest) {
        if (nest.value())
            result.insert(nest.key(), nest.value());
    }
    return result;
}

void MenuBar::closeOtherSubMenus(SubMenu* sub)
{
    for (const QPointer<SubMenu>& other : qAsConst(subMenus)) {
        if (other && other != sub)
            other->setClosed();
    }
}

void MenuBar::closeAllSubMenus()
{
    for (const QPointer<SubMenu>& sub : qAsConst(subMenus)) {
        if (sub)
            sub->setClosed();
    }
}
