#ifndef MENUBUILDER_H
#define MENUBUILDER_H

#include "ScreenMap.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QString>

class MenuBar;
class MenuItem;
class QBoxLayout;
class QDomDocument;
class QFrame;
class QPushButton;
class QWidget;
class ScrollableMenuBarFrame;
class SubMenu;
class SubMenuItem;
class SubSubMenu;

/**
 * The menus of a navigation bar: which entry becomes a bar button, a group button with
 * a sub-menu, or an entry of a second-level pop-up, and how they regroup as entries
 * come and go. It keeps every entry's key (menu, sub-menu, label as shown, 1), its
 * screen, and the button it has now. The bar owns it and hands it its entry operations;
 * it puts the bar buttons into \a row, and the pop-ups on the bar's parent.
 */
class MenuBuilder : public QObject
{
    Q_OBJECT

public:
    MenuBuilder(MenuBar* bar, ScrollableMenuBarFrame* row, QBoxLayout* rowLayout);
    ~MenuBuilder() override;

    // The bar's entry operations, see MenuBar.h.
    QPushButton* addMenuItem(const QString& menu, const QString& subMenu, const QString& label, QFrame* screen,
                             int position, int priority, QObject* receiver, const QString& slot, int instNum);
    void enableScreen(const QString& menu, const QString& subMenu, const QString& label, int n);
    void disableScreen(const QString& menu, const QString& subMenu, const QString& label, int n);
    bool removeMenuItem(const QString& menu, const QString& subMenu, const QString& label, int n);
    QPushButton* menuEntry(const QString& menu, const QString& subMenu, const QString& label, int n) const;
    MenuItem* menuButton(const QString& menu) const;
    void updateButtonsToContainers(QPushButton* button, QWidget* screen);
    QHash<QString, SubMenu*> getSubMenus() const;
    QHash<QString, SubSubMenu*> getSubSubMenus() const;

public slots:
    void closeAllSubMenus();
    void closeOtherSubMenus(SubMenu* sub);
    void menuItemDeleted(QObject* menuItem);
    void subSubMenuItemDeleted(QObject* menuItem);

private slots:
    void screenDestroyed(QObject* screen);
    void settleMenus();

private:
    MenuItem* newBarButton(const QString& menu, const QString& label, QFrame* screen, int position, int priority,
                           QObject* receiver, const QString& slot);
    void putInRow(MenuItem* button, int index);
    int rowIndex(const QObject* widget) const;
    void takeFromRow(const QObject* widget);
    // Cuts \a object off from the bar and from here; \a both also cuts the bar's
    // signals to it (group buttons and pop-ups).
    void detach(QObject* object, bool both = false);
    void groupMenu(const QString& menu, int position, int priority);
    void ungroupMenu(const QString& menu);
    // A holder made for a name takes \a holderPosition, the position of the entry
    // whose arrival nests the name; \a added is that entry's sub-menu name.
    void nestSubMenuNames(const QString& menu, const QString& added, int holderPosition);
    void flattenSubMenuNames(const QString& menu);
    void nestSubMenuName(const QString& menu, const QString& subMenu, int holderPosition);
    void flattenSubMenuName(const QString& menu, const QString& subMenu);
    // \a appended puts the entry last, whatever its position (an entry back from a
    // collapsed second level).
    SubMenuItem* newSubMenuEntry(SubMenu* sub, const QString& subMenu, const QString& label, QFrame* screen,
                                 int position, QObject* receiver, const QString& slot, int instNum,
                                 bool appended = false);
    void recordEntry(QPushButton* entry, const QString& menu, const QString& subMenu, QWidget* screen);
    void passEntryOn(QPushButton* from, QPushButton* to, QObject* receiver, const QString& slot);
    // \a deletedLater: the entry still stands and its deletion is queued.
    void entryGone(QObject* entry, bool settleNow, bool deletedLater = false);
    void forgetEntry(QObject* entry, bool deletedLater);
    void settleMenu(const QString& menu);
    void clearMenu(const QString& menu);
    // Shows the holders of \a menu's names (only \a onlySubMenu's when given) and its group
    // button while they have an entry shown, and hides them otherwise.
    void refreshMenuVisibility(const QString& menu, const QString* onlySubMenu = nullptr);
    // Hides or shows the entry of \a key and the spacer above it (disableScreen, enableScreen).
    void setEntryShown(const ScreenKey& key, bool shown);
    QList<QPushButton*> entriesOf(const QString& menu) const;
    static QString nestKey(const QString& menu, const QString& subMenu);

    MenuBar* bar;
    ScrollableMenuBarFrame* itemFrame;
    QBoxLayout* itemLayout;
    QHash<QString, int> menuCount;
    QHash<QString, QHash<QString, int>> subMenuCount;
    QHash<QString, QPointer<MenuItem>> menuButtons;
    QHash<QString, QPointer<SubMenu>> subMenus;
    QHash<QString, QPointer<SubSubMenu>> subSubMenus;
    // What is known of each entry: its menu, its sub-menu name, its screen.
    struct EntryBooks
    {
        QString menu;
        QString subMenu;
        QPointer<QWidget> screen;
    };
    // Keyed by the entry as a QObject: destroyed() reports no more than that.
    QHash<QObject*, EntryBooks> entryBooks;
    ScreenMap screenMap;
    // The entry that shows each screen, to refuse a second one.
    QHash<const QObject*, QObject*> screenEntries;
    // Menus that lost entries and still have to take their new shape.
    QSet<QString> unsettledMenus;
    // Groups whose count fell to one through an entry of the sub-menu itself.
    QSet<QString> ungroupDue;
    QList<QString> groupedMenus;
};

#endif
