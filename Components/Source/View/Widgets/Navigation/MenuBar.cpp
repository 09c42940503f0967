#include "MenuBar.h"

#include "ApplicationOptions.h"
#include "CSS.h"
#include "CorbaFailure.h"
#include "MenuBarTimeoutSource.h"
#include "MenuBuilder.h"
#include "ScrollButton.h"
#include "ScrollableMenuBarFrame.h"

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

const char* const menuBarSource = "Components/Source/View/Widgets/MenuBar";

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
    menus = std::make_unique<MenuBuilder>(this, itemFrame, itemLayout);
}

// A time-out read still running keeps its own copy of the source and reports to the
// watcher, which goes with the bar; nothing of the bar is touched once it is gone.
MenuBar::~MenuBar()
{
    // The menus go first, with their pop-ups, while the row's buttons still stand.
    menus.reset();
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
            CorbaFailure::logException(menuBarSource, "startTimer", __LINE__);
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

// The entry operations are the menus' (MenuBuilder).

QPushButton* MenuBar::addMenuItem(const QString& menu, const QString& subMenu, const QString& label, QFrame* screen,
                                  int position, int priority, QObject* receiver, const QString& slot, int instNum)
{
    return menus->addMenuItem(menu, subMenu, label, screen, position, priority, receiver, slot, instNum);
}

void MenuBar::addMenu(QDomDocument*)
{
}

void MenuBar::enableScreen(const QString& menu, const QString& subMenu, const QString& label, int n)
{
    menus->enableScreen(menu, subMenu, label, n);
}

void MenuBar::disableScreen(const QString& menu, const QString& subMenu, const QString& label, int n)
{
    menus->disableScreen(menu, subMenu, label, n);
}

bool MenuBar::removeMenuItem(const QString& menu, const QString& subMenu, const QString& label, int n)
{
    return menus->removeMenuItem(menu, subMenu, label, n);
}

QPushButton* MenuBar::menuEntry(const QString& menu, const QString& subMenu, const QString& label, int n) const
{
    return menus->menuEntry(menu, subMenu, label, n);
}

MenuItem* MenuBar::menuButton(const QString& menu) const
{
    return menus->menuButton(menu);
}

void MenuBar::updateButtonsToContainers(QPushButton* button, QWidget* screen)
{
    menus->updateButtonsToContainers(button, screen);
}

QHash<QString, SubMenu*> MenuBar::getSubMenus() const
{
    return menus->getSubMenus();
}

QHash<QString, SubSubMenu*> MenuBar::getSubSubMenus() const
{
    return menus->getSubSubMenus();
}

void MenuBar::closeAllSubMenus()
{
    menus->closeAllSubMenus();
}

void MenuBar::closeOtherSubMenus(SubMenu* sub)
{
    menus->closeOtherSubMenus(sub);
}

void MenuBar::menuItemDeleted(QObject* menuItem)
{
    menus->menuItemDeleted(menuItem);
}

void MenuBar::subSubMenuItemDeleted(QObject* menuItem)
{
    menus->subSubMenuItemDeleted(menuItem);
}
