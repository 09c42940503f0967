#ifndef WINDOWDRAWER_H
#define WINDOWDRAWER_H

#include "tzuicomponents_export.h"

#include <QFrame>
#include <QPoint>
#include <QPointer>
#include <QSize>
#include <QString>

class ContainerImpl;
class QEvent;
class QHBoxLayout;
class QHideEvent;
class QLayout;
class QMouseEvent;
class QParallelAnimationGroup;
class QPropertyAnimation;
class QPushButton;
class QShowEvent;
class RotatableLabel;

/**
 * A panel that slides out from one side of a container, for a module's configuration
 * controls. Closed, only a tab with the vertical title shows beside the container; the
 * tab slides the panel out and back. The drawer is a sibling of its container and
 * follows it: beside it while the container is in "Min", at the screen edge otherwise.
 */
class TZUICOMPONENTS_EXPORT WindowDrawer : public QFrame
{
    Q_OBJECT
    /// The rotated caption on the handle: the name under which the registry knows the
    /// drawer.
    Q_PROPERTY(QString windowCaption READ windowCaption)

public:
    // Both enums have a fixed type: remote calls and forms hand over any int, which
    // the drawer range-checks, and only a fixed type makes such a value defined.
    enum DockPosition_t : int {
        Left = 0,
        Right = 1,
    };
    Q_ENUM(DockPosition_t)

    /// How updateGeometry() places the drawer.
    enum UpdateMode_t : int {
        BesideContainer = 0,
        ScreenEdge = 1,
        /// Closed, on the side it has just been moved to.
        SideChange = 2,
    };
    Q_ENUM(UpdateMode_t)

    /// \a parent is the container's parent widget (none for a top-level container); the
    /// drawer starts closed and hidden, and the container shows it.
    WindowDrawer(QWidget* parent, ContainerImpl* container, DockPosition_t position, const QString& title);
    QString windowCaption() const;

    /// The frame named "ContainerFrame" that the module's form brought along, or else
    /// the frame that holds the contents.
    Q_INVOKABLE virtual QWidget* getContainerFrame();

    /// Puts \a layout in the panel; the minimum width of its "ContainerFrame" becomes the
    /// drawer's full width.
    void setDrawerLayout(QLayout* layout);
    /// Checks or unchecks the tab, which slides the panel out or back.
    void setDrawerOpened(bool open);
    /// The full width, tab included.
    void setWidth(int width);
    /// Takes \a height, less a margin at the screen edge.
    void setHeight(int height);
    /// Puts the drawer where its container and its state say.
    void moveDrawer();
    /// Where the drawer sits relative to its container's x: to the right of it for the
    /// right-hand drawer, to the left for the left-hand one.
    int getPositionOffset() const;
    /// Orders the tab and the panel for \a position and applies the matching look.
    void updateDrawerPosition(const DockPosition_t& position);
    using QFrame::updateGeometry;
    void updateGeometry(const DockPosition_t& position, const UpdateMode_t& mode);
    void animateLeftDrawer(bool open);
    void animateRightDrawer(bool open);
    ContainerImpl* parentWindow() const;
    QSize sizeHint() const override;

    /// The side the drawer is on now; it differs from the side it was built for while
    /// the container is not in "Min", or while there was no room to open there.
    DockPosition_t position() const { return m_position; }
    bool isOpen() const { return m_open; }

    using QFrame::move;

public slots:
    /// Follows the container's size state: beside it in "Min", at the screen edge
    /// with the tab towards the middle in "Max" and "Thumb".
    void changeSize(QString size);
    void animateContainer(bool enable);
    /// Moves the drawer and emits newPos().
    virtual void move(int x, int y);

signals:
    void newPos(QPoint pos);
    void WindowClosed();

protected:
    // Follows moves of the container that do not go through its own move().
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private slots:
    void animationFinished();

private:
    int contentsWidth() const;
    // The container's rectangle in the drawer's parent's coordinates.
    // The container, or null once it is gone or is being destroyed.
    ContainerImpl* followedContainer() const;
    QRect containerRect() const;
    // The parent's rectangle, or the screen's for a top-level drawer.
    QRect parentArea() const;
    // The x of the drawer on its current side, open or closed.
    int drawerX(bool open, bool atScreenEdge) const;
    void placeOuterFrame(const DockPosition_t& position, bool open);
    // The look for the side and the mode, fitted to the drawer's height.
    void applyStyle();
    bool slideRunning() const;
    void stopSlides();

    int m_captionWidth = 28;
    int m_handleWidth = 40;
    QHBoxLayout* m_handleLayout = nullptr;
    QFrame* m_innerFrame = nullptr;
    QFrame* m_contentsFrame = nullptr;
    QFrame* m_outerFrame = nullptr;
    int m_width = 200;
    int m_height = 100;
    // The drawer is a sibling of the container, so it may outlive it briefly; and
    // while the container is destroyed, its base classes still move it (see
    // followedContainer()), so the pointer is kept untyped.
    QPointer<QObject> m_container;
    bool m_contentsHidden = true;
    bool m_screenMode = false;
    DockPosition_t m_position;
    DockPosition_t m_homePosition;
    int m_screenHeightMargin = 96;
    QPropertyAnimation* m_slideAnimation = nullptr;
    bool m_open = false;
    bool m_sideSwapped = false;
    QPushButton* m_handleButton = nullptr;
    QString m_rightBesideStyle;
    QString m_leftBesideStyle;
    QString m_rightScreenStyle;
    QString m_leftScreenStyle;

    QHBoxLayout* m_innerLayout = nullptr;
    RotatableLabel* m_caption = nullptr;
    // The running slide of the right-hand layout; it deletes itself when done.
    QPointer<QParallelAnimationGroup> m_rightSlide;
};

#endif
