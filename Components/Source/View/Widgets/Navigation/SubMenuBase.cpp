#include "SubMenuBase.h"

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

bool SubMenuBase::hasShownEntry() const
{
    for (int index = 0; itemLayout && index < itemLayout->count(); ++index) {
        const auto* entry = qobject_cast<const QPushButton*>(itemLayout->itemAt(index)->widget());
        if (entry && !isHiddenEntry(entry))
            return true;
    }
    return false;
}

bool SubMenuBase::isHiddenEntry(const QWidget* entry)
{
    return entry->isHidden() && entry->testAttribute(Qt::WA_WState_ExplicitShowHide);
}

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
    connect(entry, &QObject::destroyed, this, [this] { fitWhenIdle(); });
    connect(entry, &QObject::destroyed, this, &SubMenuBase::setClosed);
}

void SubMenuBase::removeMenuItem(QWidget* entry)
{
    if (!entry || itemLayout->indexOf(entry) < 0)
        return;
    itemLayout->removeWidget(entry);
    disconnect(entry, nullptr, this, nullptr);
    refit();
}

void SubMenuBase::insertEntry(int index, QWidget* entry)
{
    itemLayout->insertWidget(index, entry);
    // A closed pop-up shows its entries when it opens; showing each now would style
    // every entry of a large menu up front.
    if (isVisible())
        entry->show();
}

void SubMenuBase::forgetEntry(const QObject* entry)
{
    for (int index = 0; itemLayout && index < itemLayout->count(); ++index) {
        const QObject* widget = itemLayout->itemAt(index)->widget();
        if (widget && widget == entry) {
            delete itemLayout->takeAt(index);
            return;
        }
    }
}
