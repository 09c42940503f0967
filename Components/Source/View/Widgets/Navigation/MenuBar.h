#ifndef MENUBAR_H
#define MENUBAR_H

#include "ScreenMap.h"
#include "tzuicomponents_export.h"

#include <QFrame>
#include <QFutureWatcher>
#include <QHash>
#include <QList>
#include <QPointer>
#include <QPropertyAnimation>
#include <QSet>
#include <QRect>
#include <QSizePolicy>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class MenuBuilder;
class MenuItem;
class QBoxLayout;
class QDomDocument;
class QPushButton;
class QScrollArea;
class QScrollBar;
class QShowEvent;
class QTimer;
class ScrollButton;
class ScrollableMenuBarFrame;
class SubMenu;
class SubMenuItem;
class SubSubMenu;

/**
 * The navigation bar of the touch desktop: a strip that slides out from the top (or the
 * left) edge of its parent, carries one button per menu in a row that pages and drags
 * when it is longer than the bar, and hides itself after a time-out that the engines set.
 *
 * The host fills it screen by screen with addMenuItem(). The first entry of a menu is a
 * bar button that opens its screen; from the second on the bar button opens a sub-menu
 * of the entries, and a sub-menu name with several entries (in a menu of more than one
 * name) gets a second-level pop-up. Entries go when their button is deleted (a button
 * goes with its screen) or through removeMenuItem(); the menus collapse again as they
 * shrink. Every entry keeps the key (menu, sub-menu, label as shown, 1) under which the
 * host hides, shows or removes it, whatever button it has become meanwhile.
 */
class TZUICOMPONENTS_EXPORT MenuBar : public QFrame
{
    Q_OBJECT

public:
    /**
     * The auto-hide time-out in seconds, as the engines configure it: 60 keeps the bar
     * open, no value leaves the timer as it is. Called on a worker thread, so it must
     * not touch widgets; it may block on remote calls.
     */
    using TimeoutSource = std::function<std::optional<int>()>;

    /// A bar at the top of \a parent (Qt::AlignTop), or at its left (any other flag),
    /// sized from the parent's size now; it starts closed.
    MenuBar(QWidget* parent, Qt::AlignmentFlag location);
    ~MenuBar() override;

    /// Sets the policy and the fixed length along the bar of \a item, a button about to
    /// go into the bar's row.
    void applyItemSize(QWidget* item) const;
    /// The size policy of a bar button: (Fixed, Minimum) on a top bar, (Minimum, Fixed)
    /// on a left one.
    QSizePolicy itemSizePolicy() const;
    /// A bar button's fixed width (top bar) or height (left bar).
    int itemExtent() const;

    /// Appends \a item to the bar's row, sized as a bar button; the row forgets it when
    /// it is deleted.
    void addItem(QWidget* item);

    /// Replaces where startTimer() reads the time-out; an empty source restores the
    /// engines' attribute "MenuBarTimeout1", found through module discovery.
    void setTimeoutSource(TimeoutSource source);

    /**
     * Adds an entry that shows \a screen under \a menu and \a subMenu, labelled
     * \a label (translated, followed by \a instNum when above 1), and returns the
     * button made for it; null when the entry is refused (no menu name, no screen, an
     * entry of that key or for that screen already there), which is logged.
     * \a priority orders the bar buttons (higher first), \a position the entries of a
     * sub-menu. \a receiver and \a slot (a SLOT() signature) are not connected to the
     * returned button; the bar connects them to the buttons it makes for the entry when
     * it regroups.
     */
    QPushButton* addMenuItem(const QString& menu, const QString& subMenu, const QString& label, QFrame* screen,
                             int position, int priority, QObject* receiver, const QString& slot, int instNum);
    /// Menus are built entry by entry; a menu description is not read.
    void addMenu(QDomDocument* description);
    /// Shows the entry of key (\a menu, \a subMenu, \a label, \a n) again, with the
    /// group and holder buttons it needs; its screen stays as it is.
    void enableScreen(const QString& menu, const QString& subMenu, const QString& label, int n);
    /// Hides the entry of that key, and its screen when shown; group and holder buttons
    /// with nothing left to show hide too.
    void disableScreen(const QString& menu, const QString& subMenu, const QString& label, int n);
    /// Removes the entry of that key now and deletes its button later; false (and a log
    /// line) when there is none.
    bool removeMenuItem(const QString& menu, const QString& subMenu, const QString& label, int n = 1);
    /// The button that the entry of that key has now, or null.
    QPushButton* menuEntry(const QString& menu, const QString& subMenu, const QString& label, int n = 1) const;
    /// The bar button of \a menu (its entry, or its group button), or null.
    MenuItem* menuButton(const QString& menu) const;
    /// Makes \a screen the one that \a button's entry shows and hides.
    void updateButtonsToContainers(QPushButton* button, QWidget* screen);
    QHash<QString, SubMenu*> getSubMenus() const;
    /// Keyed by menu name, "|", sub-menu name.
    QHash<QString, SubSubMenu*> getSubSubMenus() const;
    /// Milliseconds until the bar hides itself, or -1 when no hiding is due.
    int remainingHideTime() const;

    /// Slid out. Read directly by the containers and menu entries that close the bar.
    bool isOpen = false;

public slots:
    /// Slides the bar in or out; isOpen flips and toggled() is emitted as the move starts.
    void toggle();
    void closeAllSubMenus();
    /// (Re)starts the auto-hide timer with the engines' time-out. The remote read runs
    /// off the GUI thread; its answer is applied here when it comes, unless a newer
    /// call has come meanwhile.
    void startTimer();
    void showMenuBar(bool show);

signals:
    void toggled(bool open);
    /// After every paging request, whether anything moved or not.
    void jumped();

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private slots:
    void moveNeg();
    void movePos();
    void checkNavArrows();
    void timeIsUp();
    void closeOtherSubMenus(SubMenu* sub);
    void menuItemDeleted(QObject* menuItem);
    void subSubMenuItemDeleted(QObject* menuItem);

private:
    void scrollTo(const QPoint& target);
    void readTimeout();
    void timeoutRead();
    void applyTimeout(std::optional<int> seconds);

    Qt::AlignmentFlag location;
    QRect openGeometry;
    QRect closedGeometry;
    QPropertyAnimation geometryAnimation;
    QPropertyAnimation scrollAnimation;
    QScrollBar* scrollBar = nullptr;
    ScrollButton* negButton = nullptr;
    ScrollButton* posButton = nullptr;
    QScrollArea* scrollArea = nullptr;
    ScrollableMenuBarFrame* itemFrame = nullptr;
    QBoxLayout* itemLayout = nullptr;
    QTimer* hideTimer = nullptr;

    // The time-out read in flight: at most one; a startTimer() meanwhile makes its answer
    // stale and asks again when it is in.
    TimeoutSource timeoutSource;
    QFutureWatcher<std::optional<int>>* timeoutWatcher = nullptr;
    bool timeoutReadRunning = false;
    bool timeoutReadStale = false;

    // Menus, sub-menus and entries; made last, gone first.
    std::unique_ptr<MenuBuilder> menus;
};

#endif
