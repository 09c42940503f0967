#include "SubMenu.h"

#include "ApplicationOptions.h"
#include "CSS.h"
#include "ScrollableMenuBarFrame.h"
#include "SubMenuItem.h"

#include <QHideEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalBlocker>

#include <algorithm>

namespace {

// Every entry of a sub-menu is one row of this height.
const int rowHeight = 50;
const int leftWidth = 190;

QString topStyle(int topSpacerHeight)
{
    const QString border = CSS::border();
    const QString spacer = QString::number(topSpacerHeight);
    return QStringLiteral("QFrame#topSpacer { background-color: transparent; border: 2px solid ") + border
        + QStringLiteral("; border-top-width: 0px; border-bottom-width: 0px; min-height: ") + spacer
        + QStringLiteral("px; max-height: ") + spacer
        + QStringLiteral("px; }"
                         "QFrame#BaseFrame { background-color: rgba(0,0,0,128); border: 0px solid #fff; }"
                         "QFrame#innerBar { background-color: black; border: none; } "
                         "QScrollArea { background-color: black; border: none; } "
                         "QFrame#bottomCap { background-color: rgba(0,0,0,128); border: 2px solid ")
        + border
        + QStringLiteral("; border-top-width: 0px; border-bottom-right-radius: 12px; "
                         "border-bottom-left-radius: 12px; min-height: 13px; max-height: 13px; }"
                         "QPushButton      { border: 0px solid #f00; color: #fff; font-size: 14px; "
                         "text-align: left; padding: 6px 0px 0px 22px; }"
                         "QPushButton:checked { color: #000; }");
}

QString leftStyle()
{
    const QString border = CSS::border();
    return QStringLiteral("QFrame#topSpacer { background-color: rgba(0,0,0,255); border: 2px solid ") + border
        + QStringLiteral("; border-bottom-width: 0px; border-top-right-radius: 12px; "
                         "border-top-left-radius: 12px;min-height: 13px; max-height: 13px; }"
                         "QFrame#BaseFrame { background-color: rgba(0,0,0,255); border: 0px solid #fff; }"
                         "QFrame#innerBar { background-color: black; border: none; } "
                         "QScrollArea { background-color: black; border: none; } "
                         "QFrame#bottomCap { background-color: rgba(0,0,0,255); border: 2px solid ")
        + border
        + QStringLiteral("; border-top-width: 0px; border-bottom-right-radius: 12px; "
                         "border-bottom-left-radius: 12px; min-height: 17px; max-height: 17px; }"
                         "QPushButton      { border: 0px solid #f00; color: #fff; font-size: 14px; "
                         "text-align: left; padding: 6px 0px 0px 26px; }"
                         "QPushButton:checked { color: #000; }");
}

} // namespace

SubMenu::SubMenu(QWidget* parent, QPushButton* owner)
    : SubMenuBase(parent, owner)
{
    setObjectName(QStringLiteral("SubMenu"));
    if (isLeft()) {
        setStyleSheet(leftStyle());
        fixedWidth = leftWidth;
    } else {
        setStyleSheet(topStyle(topSpacerHeight));
    }

    topSpacer = new QFrame(this);
    topSpacer->setObjectName(QStringLiteral("topSpacer"));
    topSpacer->setAttribute(Qt::WA_TransparentForMouseEvents);
    topSpacer->setFixedHeight(spacerExtent());
    bottomCap = new QFrame(this);
    bottomCap->setObjectName(QStringLiteral("bottomCap"));
    bottomCap->setFixedHeight(capExtent());

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(topSpacer);
    layout->addWidget(baseFrame);
    layout->addWidget(bottomCap);

    scrollArea = new QScrollArea(baseFrame);
    scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrollArea->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrollArea->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Maximum);
    if (isLeft())
        scrollArea->setFixedWidth(leftWidth);
    else
        scrollArea->setMinimumWidth(ownerWidth());
    scrollArea->setFixedHeight(wantedHeight);
    scrollBar = scrollArea->verticalScrollBar();
    auto* baseLayout = new QVBoxLayout(baseFrame);
    baseLayout->setContentsMargins(0, 0, 0, 0);
    baseLayout->setSpacing(0);
    baseLayout->addWidget(scrollArea);

    contentFrame = new ScrollableMenuBarFrame(scrollArea, Qt::AlignLeft);
    itemLayout = new QVBoxLayout(contentFrame);
    itemLayout->setContentsMargins(0, 0, 0, 0);
    itemLayout->setSpacing(0);
    scrollArea->setWidget(contentFrame);

    connect(&closeGroup, &QAbstractAnimation::finished, this, &QWidget::hide);
    reposition();
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Minimum);
}

SubMenu::~SubMenu()
{
    deleteEntries();
}

void SubMenu::addMenuItem(QWidget* entry, int position)
{
    if (!entry)
        return;
    const int index = insertionIndex(position);
    insertEntry(index, entry);
    if (positionsDescending) {
        const int own = positionAt(index);
        const bool fitsBefore = index == 0 || positionAt(index - 1) >= own;
        const bool fitsAfter = index + 1 == itemLayout->count() || positionAt(index + 1) <= own;
        positionsDescending = qobject_cast<SubMenuItem*>(entry) && fitsBefore && fitsAfter;
    }
    adoptEntry(entry);
}

int SubMenu::positionAt(int index) const
{
    const auto* entry = qobject_cast<const SubMenuItem*>(itemLayout->itemAt(index)->widget());
    return entry ? entry->getPosition() : 0;
}

int SubMenu::insertionIndex(int position) const
{
    const int count = itemLayout->count();
    if (position == 0)
        return count;
    if (positionsDescending) {
        int low = 0;
        int high = count;
        while (low < high) {
            const int middle = (low + high) / 2;
            if (positionAt(middle) >= position)
                low = middle + 1;
            else
                high = middle;
        }
        return low;
    }
    for (int index = 0; index < count; ++index) {
        auto* other = qobject_cast<SubMenuItem*>(itemLayout->itemAt(index)->widget());
        if (other && other->getPosition() < position)
            return index;
    }
    return count;
}

void SubMenu::resizeSubMenu()
{
    if (itemLayout->count() == 0) {
        deleteLater();
        return;
    }
    int shown = 0;
    for (int index = 0; index < itemLayout->count(); ++index) {
        const QWidget* entry = itemLayout->itemAt(index)->widget();
        if (entry && !isHiddenEntry(entry))
            ++shown;
    }
    const int extra = isLeft() ? 24 : 13;
    wantedHeight = rowHeight * shown + topSpacerHeight + extra;
    releaseHeight();
    if (isLeft()) {
        resize(leftWidth, std::min(wantedHeight, desktopHeight()));
        contentFrame->resize(leftWidth, rowHeight * shown);
    } else {
        const int room = owner ? desktopHeight() - owner->height() - owner->y() : desktopHeight();
        resize(ownerWidth(), std::min(wantedHeight, room));
        contentFrame->resize(ownerWidth(), rowHeight * shown);
    }
    fitScrollArea();
    // Fewer rows may leave the list scrolled past its end; the row is put back within
    // bounds without closing what is open.
    const QSignalBlocker blocker(contentFrame);
    contentFrame->move(contentFrame->pos());
}

void SubMenu::toggled(bool isChecked)
{
    if (isChecked) {
        openGroup.stop();
        closeGroup.stop();
        resizeSubMenu();
        if (itemLayout->count() == 0)
            return;
        const bool topBar = ApplicationOptions::menuBarLocation() == ApplicationOptions::MenuBarLocation::Top;
        maxHeight = topBar && owner ? desktopHeight() - owner->height() - owner->y() : desktopHeight();
        if (wantedHeight > maxHeight) {
            wantedHeight = maxHeight;
            resize(isLeft() ? leftWidth : ownerWidth(), wantedHeight);
            fitScrollArea();
        }
        reposition();
        show();
        raise();
        if (animates()) {
            for (QPropertyAnimation* animation : {&openMin, &openMax}) {
                animation->setDuration(duration);
                animation->setEasingCurve(QEasingCurve::OutBounce);
                animation->setStartValue(0);
                animation->setEndValue(height());
            }
            openGroup.start();
        }
        emit subMenuToggledOn(this);
        return;
    }
    if (!animates()) {
        hide();
        return;
    }
    for (SubMenuItem* entry : entries<SubMenuItem>()) {
        if (entry->isCheckable() && entry->isChecked())
            entry->setChecked(false);
    }
    openGroup.stop();
    for (QPropertyAnimation* animation : {&closeMin, &closeMax}) {
        animation->setDuration(duration / 2);
        animation->setEasingCurve(QEasingCurve::InBack);
        animation->setStartValue(height());
        animation->setEndValue(0);
    }
    closeGroup.start();
}

void SubMenu::reposition()
{
    if (!owner || !parentWidget())
        return;
    const QPoint corner = parentWidget()->mapFromGlobal(owner->mapToGlobal(QPoint(0, 0)));
    if (!isLeft()) {
        move(corner.x(), owner->y() + owner->height() - topSpacerHeight);
        return;
    }
    int y = corner.y();
    if (y + wantedHeight > desktopHeight())
        y = desktopHeight() - wantedHeight;
    move(corner.x() + owner->width() + 3, std::max(0, y));
}

void SubMenu::closeOtherSubSubMenus()
{
    const QObject* opened = sender();
    for (SubMenuItem* entry : entries<SubMenuItem>()) {
        if (entry != opened && entry->isCheckable())
            entry->setChecked(false);
    }
}

void SubMenu::hideEvent(QHideEvent* event)
{
    SubMenuBase::hideEvent(event);
    for (SubMenuItem* entry : entries<SubMenuItem>()) {
        if (entry->isCheckable() && entry->isChecked())
            entry->setChecked(false);
    }
}

bool SubMenu::isLeft() const
{
    return ApplicationOptions::menuBarLocation() == ApplicationOptions::MenuBarLocation::Left;
}

bool SubMenu::animates() const
{
    return !ApplicationOptions::isHandheld()
        && ApplicationOptions::screenSize() != ApplicationOptions::ScreenSize::Landscape;
}

int SubMenu::desktopHeight() const
{
    return parentWidget() ? parentWidget()->height() : height();
}

int SubMenu::ownerWidth() const
{
    return owner ? owner->width() : width();
}

int SubMenu::spacerExtent() const
{
    return isLeft() ? 13 : topSpacerHeight;
}

int SubMenu::capExtent() const
{
    return isLeft() ? 17 : 13;
}

void SubMenu::releaseHeight()
{
    // An opening or closing slide holds the height between fixed bounds; once it is
    // over the pop-up takes the size its entries ask for again.
    if (openGroup.state() == QAbstractAnimation::Running || closeGroup.state() == QAbstractAnimation::Running)
        return;
    setMinimumHeight(0);
    setMaximumHeight(QWIDGETSIZE_MAX);
}

void SubMenu::fitScrollArea()
{
    scrollArea->setFixedHeight(std::max(0, height() - spacerExtent() - capExtent()));
}
