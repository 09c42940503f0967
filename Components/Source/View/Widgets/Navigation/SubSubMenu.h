#ifndef SUBSUBMENU_H
#define SUBSUBMENU_H

#include "SubMenuBase.h"

#include <QPointer>
#include <QString>

/**
 * The second-level pop-up of the navigation bar: the entries of one sub-menu name, beside
 * the holder entry that opens it and joined to it by a small tab. It closes when the
 * sub-menu's list is dragged.
 */
class TZUICOMPONENTS_EXPORT SubSubMenu : public SubMenuBase
{
    Q_OBJECT

public:
    /// \a parent is the desktop; \a owner the holder entry (a SubMenuItem).
    SubSubMenu(QWidget* parent, QPushButton* owner);
    /// Takes the connector tab along, which lives on the desktop.
    ~SubSubMenu() override;

    /// Appends \a entry, after a thin "spacer" line when there are entries already (in a
    /// pop-up that has not opened yet, the spacers come when it first opens); \a position
    /// is not used at this level.
    void addMenuItem(QWidget* entry, int position) override;
    /// The tab between holder and pop-up; made when the pop-up first opens.
    QFrame* getConnector() const { return connector; }

public slots:
    /// Unchecks the holder and hides the pop-up and its tab.
    virtual void unchecking();
    void reposition() override;

protected slots:
    void toggled(bool isChecked) override;
    virtual void resizeSubMenu();

protected:
    void fitToEntries() override;

private:
    void dropLooseSpacers();
    void insertSpacer(int index, bool hidden);
    // Puts a spacer between every two entries, once.
    void dress();
    void applyStyle(const QString& style);

    QPointer<QFrame> connector;
    QString baseStyle;
    bool dressed = false;
};

#endif
