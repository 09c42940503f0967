#ifndef MENUBAR_H
#define MENUBAR_H

#include "tzuicomponents_export.h"

#include <QFrame>
#include <QFutureWatcher>
#include <QPropertyAnimation>
#include <QRect>
#include <QSizePolicy>

#include <functional>
#include <optional>

class QBoxLayout;
class QScrollArea;
class QScrollBar;
class QShowEvent;
class QTimer;
class ScrollButton;
class ScrollableMenuBarFrame;

/**
 * The navigation bar of the touch desktop: a strip that slides out from the top (or the
 * left) edge of its parent, carries one button per menu in a row that pages and drags
 * when it is longer than the bar, and hides itself after a time-out that the engines set.
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

    /// Replaces where startTimer() reads the time-out; an empty source restores the
    /// engines' attribute "MenuBarTimeout1", found through module discovery.
    /// Appends \a item to the bar's row, sized as a bar button; the row forgets it when
    /// it is deleted.
    void addItem(QWidget* item);

    void setTimeoutSource(TimeoutSource source);
    /// Milliseconds until the bar hides itself, or -1 when no hiding is due.
    int remainingHideTime() const;

    /// Slid out. Read directly by the containers and menu entries that close the bar.
    bool isOpen = false;

public slots:
    /// Slides the bar in or out; isOpen flips and toggled() is emitted as the move starts.
    void toggle();
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
};

#endif
