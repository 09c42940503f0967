#ifndef SUBMENU_H
#define SUBMENU_H

#include "SubMenuBase.h"

class QHideEvent;
class QScrollArea;
class QScrollBar;
class ScrollableMenuBarFrame;

/**
 * The pop-up list a group button of the navigation bar opens: under the button on a top
 * bar, beside it on a left one. Its entries scroll under the finger when they do not
 * fit, and only one holder entry in it has its second-level pop-up open at a time.
 */
class TZUICOMPONENTS_EXPORT SubMenu : public SubMenuBase
{
    Q_OBJECT

public:
    /// \a parent is the desktop; \a owner the group button.
    SubMenu(QWidget* parent, QPushButton* owner);
    ~SubMenu() override;

    /// Position 0 appends \a entry; any other puts it before the first entry of a lower
    /// position (higher positions first, equal ones in the order they came).
    void addMenuItem(QWidget* entry, int position) override;

    ScrollableMenuBarFrame* getContentFrame() const { return contentFrame; }
    QScrollArea* getScrollArea() const { return scrollArea; }
    /// The height the pop-up takes with all its shown entries.
    int getWantedHeight() const { return wantedHeight; }

public slots:
    void reposition() override;
    /// Unchecks every holder entry but the one that sent the signal.
    virtual void closeOtherSubSubMenus();

signals:
    void subMenuToggledOn(SubMenu* menu);

protected slots:
    void toggled(bool isChecked) override;
    virtual void resizeSubMenu();

protected:
    void hideEvent(QHideEvent* event) override;
    void fitToEntries() override { resizeSubMenu(); }

private:
    int insertionIndex(int position) const;
    int positionAt(int index) const;
    bool isLeft() const;
    bool animates() const;
    int desktopHeight() const;
    int ownerWidth() const;
    int spacerExtent() const;
    int capExtent() const;
    void releaseHeight();
    void fitScrollArea();

    int wantedHeight = 0;
    int maxHeight = 0;
    int topSpacerHeight = 11;
    int fixedWidth = 0;
    QScrollBar* scrollBar = nullptr;
    QScrollArea* scrollArea = nullptr;
    ScrollableMenuBarFrame* contentFrame = nullptr;
    QFrame* topSpacer = nullptr;
    QFrame* bottomCap = nullptr;
    // While the list runs from higher positions to lower ones, where an entry goes is
    // found by halving; otherwise by walking the list.
    bool positionsDescending = true;
};

#endif
