#ifndef SUBMENUBASE_H
#define SUBMENUBASE_H

#include "tzuicomponents_export.h"

#include <QFrame>
#include <QParallelAnimationGroup>
#include <QPointer>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QSet>
#include <QVBoxLayout>

/**
 * A pop-up list of the navigation bar: it opens while the button that owns it is
 * checked and closes when that button is unchecked. Pop-ups are children of the
 * desktop, hidden until they open.
 */
class TZUICOMPONENTS_EXPORT SubMenuBase : public QFrame
{
    Q_OBJECT

public:
    /// \a parent is the desktop; \a owner the button that opens the pop-up.
    SubMenuBase(QWidget* parent, QPushButton* owner);
    /// Its entries die with it and must not report back to it on their way.
    ~SubMenuBase() override;

    /// Adds \a entry to the list; what \a position means is the pop-up's choice.
    virtual void addMenuItem(QWidget* entry, int position) = 0;
    /// Takes \a entry out of the list without deleting it.
    virtual void removeMenuItem(QWidget* entry);
    /// The button that opens the pop-up; null once it is gone.
    QPushButton* getOwner() const { return owner; }
    /// The entries in list order, without spacers.
    QList<QPushButton*> buttons() const { return entries<QPushButton>(); }
    /// Whether any entry shows when the pop-up opens.
    bool hasShownEntry() const;
    /// Whether \a entry stays hidden when its pop-up opens: it was hidden on purpose.
    /// (An entry added while the pop-up is closed is shown with it.)
    static bool isHiddenEntry(const QWidget* entry);
    /// Drops \a entry from the list without touching it: it may be on its way out.
    void forgetEntry(const QObject* entry);
    /// Drops \a entry, whose deletion is queued, from the list; the pop-up outlives it
    /// when disposed of meanwhile. The list shows it no more at once; its place in the
    /// layout goes once control is back in the event loop, in one pass for all entries
    /// that left meanwhile (thousands leave together when their screens close).
    void entryLeaving(QObject* entry);
    /// Hides the pop-up and deletes it later, once the entries still leaving it are gone.
    void dispose();

public slots:
    /// Unchecks the owner, which closes the pop-up.
    void setClosed();
    /// Follows the owner to wherever it now stands.
    virtual void reposition() = 0;

protected slots:
    virtual void toggled(bool isChecked) = 0;

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    /// Fits the pop-up to its entries now.
    virtual void fitToEntries() = 0;
    /// Fits the pop-up to its entries now when it is open, otherwise when idle.
    void refit();
    /// The last step of addMenuItem, once \a entry is in the list: the pop-up fits
    /// itself to it, and refits and closes when it goes.
    void adoptEntry(QWidget* entry);
    /// Fits the pop-up to its entries once control is back in the event loop, once for
    /// any number of changes meanwhile: a closed pop-up is fitted again when it opens.
    void fitWhenIdle();
    /// Adds \a entry at \a index of the list, shown if the pop-up is open.
    void insertEntry(int index, QWidget* entry);
    /// Deletes the entries still in the list, out of it in one pass and cut loose from
    /// the pop-up first. Each kind of pop-up calls it from its destructor: Qt deletes a
    /// widget's layout before its children, and entries left to die with the pop-up
    /// would tell the builder of their end when the list, and the pop-up's own kind, are
    /// gone; the builder then asks the pop-up to take them out.
    void deleteEntries();

    /// The entries in list order, without spacers.
    template <class Entry>
    QList<Entry*> entries() const;

    QFrame* baseFrame = nullptr;
    QPointer<QPushButton> owner;
    Qt::AlignmentFlag alignment = Qt::AlignLeft;
    QVBoxLayout* itemLayout = nullptr;
    QParallelAnimationGroup openGroup;
    QParallelAnimationGroup closeGroup;
    QPropertyAnimation openMin;
    QPropertyAnimation openMax;
    QPropertyAnimation closeMin;
    QPropertyAnimation closeMax;
    int duration = 500;

private:
    /// Takes the entries that left out of the layout, in one pass.
    void sweepLeaving();

    bool fitQueued = false;
    // Entries that left, still in the layout until the next sweep; only compared, never
    // followed (one may be deleted meanwhile).
    QSet<const QObject*> leaving;
    // Entries taken out of the layout whose queued deletion is still to come; each
    // leaves this set as it is destroyed.
    QSet<const QObject*> taken;
    bool disposed = false;
};

template <class Entry>
QList<Entry*> SubMenuBase::entries() const
{
    QList<Entry*> result;
    if (!itemLayout)
        return result;
    for (int index = 0; index < itemLayout->count(); ++index) {
        auto* entry = qobject_cast<Entry*>(itemLayout->itemAt(index)->widget());
        if (entry && !leaving.contains(entry))
            result.append(entry);
    }
    return result;
}

#endif
