#include "SubSubMenu.h"

#include "ScrollableMenuBarFrame.h"
#include "SubMenuItem.h"

#include <QVBoxLayout>

namespace {

const char* const spacerName = "spacer";

bool isSpacer(const QWidget* widget)
{
    return widget && widget->objectName() == QLatin1String(spacerName) && !qobject_cast<const QPushButton*>(widget);
}

QString squareCorner()
{
    return QStringLiteral("SubSubMenu { border-top-left-radius: 0px; }");
}

} // namespace

SubSubMenu::SubSubMenu(QWidget* parent, QPushButton* owner)
    : SubMenuBase(parent, owner)
{
    setObjectName(QStringLiteral("SubSubMenu"));
    resize(250, 400);
    baseFrame->hide();
    itemLayout = new QVBoxLayout(this);
    itemLayout->setContentsMargins(4, 4, 4, 4);
    itemLayout->setSpacing(0);
    baseStyle = QStringLiteral(
        "SubSubMenu { background-color: rgba(176,176,176,255); border-radius: 10px; } "
        "QPushButton { margin-left: 4px; margin-right: 4px; border: 0px solid #f00; color: #000; font-size: 14px; "
        "text-align: left; padding-left: 0px; padding-right: 0px; padding-top: 5px; padding-bottom: 5px; }"
        "QFrame#spacer { border: 1px solid #fff; border-radius: 3px; min-height: 4px; max-height: 4px; margin: 0px; }");
    // The look and the connector tab are made when the pop-up first opens: a bar of
    // many screens has many of these pop-ups, and most of them never open.

    if (auto* holder = qobject_cast<SubMenuItem*>(owner)) {
        if (auto* list = qobject_cast<ScrollableMenuBarFrame*>(holder->parentWidget()))
            connect(list, &ScrollableMenuBarFrame::moving, this, &SubSubMenu::unchecking);
        connect(holder, &SubMenuItem::reposition, this, &SubSubMenu::reposition);
    }
}

SubSubMenu::~SubSubMenu()
{
    deleteEntries();
    delete connector.data();
}

void SubSubMenu::addMenuItem(QWidget* entry, int)
{
    if (!entry)
        return;
    if (dressed && itemLayout->count() > 0)
        insertSpacer(itemLayout->count(), false);
    insertEntry(itemLayout->count(), entry);
    adoptEntry(entry);
}

void SubSubMenu::insertSpacer(int index, bool hidden)
{
    auto* spacer = new QFrame(this);
    spacer->setObjectName(QLatin1String(spacerName));
    if (hidden)
        spacer->hide();
    insertEntry(index, spacer);
}

void SubSubMenu::dress()
{
    // The spacers between the entries are made when the pop-up first opens: a bar of
    // many screens has thousands of entries in pop-ups that never open, and a spacer
    // costs as much to make and to delete as a small widget does. Each takes the
    // visibility of the entry below it, as hiding an entry hides the spacer above it.
    if (dressed)
        return;
    dressed = true;
    for (int index = itemLayout->count() - 1; index > 0; --index) {
        if (QWidget* entry = itemLayout->itemAt(index)->widget())
            insertSpacer(index, isHiddenEntry(entry));
    }
}

void SubSubMenu::resizeSubMenu()
{
    dropLooseSpacers();
    resize(sizeHint());
    if (isVisible())
        reposition();
}

void SubSubMenu::fitToEntries()
{
    // A closed pop-up is sized when it opens; measuring its entries now would style
    // them all.
    if (isVisible())
        resizeSubMenu();
    else
        dropLooseSpacers();
}

void SubSubMenu::dropLooseSpacers()
{
    // A spacer separates two entries; one left first, last or after another goes.
    QWidget* previous = nullptr;
    for (int index = 0; index < itemLayout->count();) {
        QWidget* widget = itemLayout->itemAt(index)->widget();
        const bool loose = isSpacer(widget) && (!previous || isSpacer(previous) || index == itemLayout->count() - 1);
        if (loose) {
            // Deleted now, not later: a spacer has no connections that could be running,
            // and one still queued for deletion when the pop-up goes costs a search of
            // the whole event queue.
            itemLayout->removeWidget(widget);
            delete widget;
            continue;
        }
        previous = widget;
        ++index;
    }
}

void SubSubMenu::toggled(bool isChecked)
{
    if (!isChecked) {
        if (connector)
            connector->hide();
        hide();
        return;
    }
    dress();
    if (!connector && parentWidget()) {
        connector = new QFrame(parentWidget());
        connector->setStyleSheet(QStringLiteral(
            "QFrame { background-color: rgba(176,176,176,255); max-height: 32px; min-height: 32px; "
            "max-width: 6px; min-width: 6px;}"));
        connector->resize(6, 32);
    }
    applyStyle(baseStyle + squareCorner());
    resizeSubMenu();
    // Shown first: a closed pop-up does not follow its holder.
    show();
    reposition();
    if (connector)
        connector->show();
    raise();
    if (connector)
        connector->raise();
}

void SubSubMenu::unchecking()
{
    if (owner)
        owner->setChecked(false);
    if (connector)
        connector->hide();
    hide();
}

void SubSubMenu::reposition()
{
    if (!owner || !parentWidget() || !isVisible())
        return;
    const QPoint corner = parentWidget()->mapFromGlobal(owner->mapToGlobal(QPoint(0, 0)));
    const int x = corner.x() + owner->width();
    const int room = parentWidget()->height() - height();
    if (connector)
        connector->move(x, corner.y() + 11);
    int y = corner.y();
    if (y > room) {
        // Moved up to fit: no longer level with the tab, so every corner is round.
        applyStyle(baseStyle);
        y = room;
    } else {
        applyStyle(baseStyle + squareCorner());
    }
    move(x + 6, y);
}

void SubSubMenu::applyStyle(const QString& style)
{
    if (styleSheet() != style)
        setStyleSheet(style);
}
