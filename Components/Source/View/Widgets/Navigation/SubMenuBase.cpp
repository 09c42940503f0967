#include "SubMenuBase.h"

#include <QEvent>

SubMenuBase::SubMenuBase(QWidget* parent, QPushButton* owner)
    : QFrame(parent)
    , owner(owner)
    , openMin(this, "minimumHeight")
    , openMax(this, "maximumHeight")
    , closeMin(this, "minimumHeight")
    , closeMax(this, "maximumHeight")
{
    hide();
    baseFrame = new QFrame(this);
    baseFrame->setObjectName(QStringLiteral("BaseFrame"));
    openGroup.addAnimation(&openMin);
    openGroup.addAnimation(&openMax);
    closeGroup.addAnimation(&closeMin);
    closeGroup.addAnimation(&closeMax);
    if (owner)
        connect(owner, &QAbstractButton::toggled, this, &SubMenuBase::toggled);
}

void SubMenuBase::setClosed()
{
    if (owner)
        owner->setChecked(false);
}

SubMenuBase::~SubMenuBase()
{
    const QList<QWidget*> children = findChildren<QWidget*>();
    for (QWidget* child : children)
        disconnect(child, nullptr, this, nullptr);
}

void SubMenuBase::deleteEntries()
{
    QList<QWidget*> held;
    for (int index = itemLayout ? itemLayout->count() - 1 : -1; index >= 0; --index) {
        QLayoutItem* item = itemLayout->takeAt(index);
        if (QWidget* entry = item->widget()) {
            disconnect(entry, nullptr, this, nullptr);
            held.append(entry);
        }
        delete item;
    }
    qDeleteAll(held);
}

bool SubMenuBase::hasShownEntry() const
{
    for (int index = 0; itemLayout && index < itemLayout->count(); ++index) {
        const auto* entry = qobject_cast<const QPushButton*>(itemLayout->itemAt(index)->widget());
        if (entry && !isHiddenEntry(entry) && !leaving.contains(entry))
            return true;
    }
    return false;
}

bool SubMenuBase::isHiddenEntry(const QWidget* entry)
{
    return entry->isHidden() && entry->testAttribute(Qt::WA_WState_ExplicitShowHide);
}

namespace {

// Takes \a entry out of \a list; false when it is not there.
bool takeFromList(QLayout* list, const QObject* entry)
{
    for (int index = 0; list && index < list->count(); ++index) {
        const QObject* widget = list->itemAt(index)->widget();
        if (widget && widget == entry) {
            delete list->takeAt(index);
            return true;
        }
    }
    return false;
}

} // namespace

void SubMenuBase::fitWhenIdle()
{
    if (fitQueued)
        return;
    fitQueued = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            fitQueued = false;
            fitToEntries();
        },
        Qt::QueuedConnection);
}

void SubMenuBase::refit()
{
    if (isVisible())
        fitToEntries();
    else
        fitWhenIdle();
}

void SubMenuBase::adoptEntry(QWidget* entry)
{
    refit();
    // One connection for all that an entry's end means here: each costs its set-up and
    // its removal, entry by entry.
    connect(entry, &QObject::destroyed, this, [this](QObject* gone) {
        fitWhenIdle();
        setClosed();
        if (taken.remove(gone) && taken.isEmpty() && disposed)
            deleteLater();
    });
}

void SubMenuBase::removeMenuItem(QWidget* entry)
{
    leaving.remove(entry);
    if (!entry || itemLayout->indexOf(entry) < 0)
        return;
    itemLayout->removeWidget(entry);
    disconnect(entry, nullptr, this, nullptr);
    refit();
}

void SubMenuBase::insertEntry(int index, QWidget* entry)
{
    // A new entry may stand where one that left did, at the same address.
    leaving.remove(entry);
    itemLayout->insertWidget(index, entry);
    entry->installEventFilter(this);
    // A closed pop-up shows its entries when it opens; showing each now would style
    // every entry of a large menu up front.
    if (isVisible())
        entry->show();
}

bool SubMenuBase::event(QEvent* event)
{
    // Polishing a widget polishes all its children, shown or not: a closed pop-up
    // polished as soon as control is back in the event loop would style every entry it
    // holds. It is polished when it opens instead.
    if (event->type() == QEvent::PolishRequest && !isVisible())
        return true;
    return QFrame::event(event);
}

bool SubMenuBase::eventFilter(QObject* watched, QEvent* event)
{
    // A new widget asks to be styled as soon as control is back in the event loop; an
    // entry of a closed pop-up is styled when it first shows instead (QWidget::show
    // polishes), so that a menu of thousands of screens styles only what opens.
    if (event->type() == QEvent::PolishRequest && watched->isWidgetType()
        && !static_cast<QWidget*>(watched)->isVisible())
        return true;
    return QFrame::eventFilter(watched, event);
}

void SubMenuBase::forgetEntry(const QObject* entry)
{
    leaving.remove(entry);
    takeFromList(itemLayout, entry);
}

void SubMenuBase::entryLeaving(QObject* entry)
{
    if (!entry || !itemLayout)
        return;
    // Searching the layout for each of thousands of leaving entries would be quadratic.
    leaving.insert(entry);
    if (leaving.size() == 1)
        QMetaObject::invokeMethod(this, &SubMenuBase::sweepLeaving, Qt::QueuedConnection);
}

void SubMenuBase::sweepLeaving()
{
    if (leaving.isEmpty())
        return;
    // From the end, so that each take moves only what stays behind it.
    for (int index = itemLayout->count() - 1; index >= 0; --index) {
        QWidget* entry = itemLayout->itemAt(index)->widget();
        if (!entry || !leaving.contains(entry))
            continue;
        delete itemLayout->takeAt(index);
        taken.insert(entry);
    }
    // Entries already gone left the layout with their deletion; those not found here
    // were never in this pop-up.
    leaving.clear();
}

void SubMenuBase::dispose()
{
    hide();
    disposed = true;
    sweepLeaving();
    // A child still waiting for its queued deletion makes Qt search the whole event
    // queue as it dies with its parent: with thousands of entries going at once (their
    // screens closed together) that is quadratic, so the pop-up goes after them.
    if (taken.isEmpty())
        deleteLater();
}
