#ifndef CONTAINERIMPL_H
#define CONTAINERIMPL_H

#include "ContainerBase.h"
#include "WindowDrawer.h"

#include <QElapsedTimer>
#include <QList>
#include <QPoint>
#include <QPointer>
#include <QRect>
#include <QSize>
#include <QStateMachine>
#include <QString>

class ContainerControlImpl;
class ContainerHandleImpl;
class QFrame;
class QMouseEvent;
class QPushButton;
class QPropertyAnimation;
class QResizeEvent;
class QSignalTransition;
class QState;

/**
 * The standard module window: the module's contents above a title row with the title-bar
 * controls, on a rounded, translucent border frame. It has three size states, "Min" (the
 * normal window), "Max" (maximized) and "Thumb" (a thumbnail, once enabled), which the
 * title-bar buttons, closing and remote requests change; the user drags it by pressing
 * anywhere that its contents leave free, or by its handle.
 */
class TZUICOMPONENTS_EXPORT ContainerImpl : public ContainerBase
{
    Q_OBJECT
    // The geometry the container returns to from "Max"; the same as the saved location.
    Q_PROPERTY(QRect MinGeometry READ minGeometry WRITE setMinGeometry)
    // Lockable containers cannot be dragged while the desktop's layout is locked.
    Q_PROPERTY(bool Lockable READ lockable WRITE setLockable)
    // A dragged container let go near a point of the desktop grid lands on it.
    Q_PROPERTY(bool SnapsToGrid READ snapsToGrid WRITE setSnapsToGrid)

public:
    explicit ContainerImpl(QWidget* parent = nullptr);
    /// Cuts the controls off before the base class announces the closing: they would
    /// otherwise restore a container that is half destroyed.
    ~ContainerImpl() override;

    QSize sizeHint() const override;

    /// Puts \a layout around the module's contents and takes the minimum size of the
    /// contents' "ContainerFrame" as the size of "Min".
    void setLayout(QLayout* layout) override;
    using ContainerBase::setLayout;

    /// Starts the size states: the container enters its default state ("Min" unless
    /// changed) before this returns. The owner calls it once the contents are set.
    void init() override;

    /// "Max" while maximized, otherwise "Min" (also in "Thumb").
    Q_INVOKABLE QString mSize() const { return m_sizeName; }
    /// "Min", "Max" or "Thumb" once a state was entered; empty before.
    QString state() const { return m_stateName; }
    /// The title-bar control cluster.
    Q_INVOKABLE QWidget* getContainerControl() const;

    /// Lets "Thumb" be entered: grow then cycles "Min", "Max", "Thumb" (or toggles "Min"
    /// and "Thumb" without "Max"). Only "Thumb" can be enabled.
    Q_INVOKABLE void enableState(QString state);
    /// Keeps "Max" from being entered. Only "Max" can be disabled.
    Q_INVOKABLE void disableState(QString state);
    /// Sets the size of "Min" or "Thumb" from \a params, "width|height"; it takes effect
    /// the next time the state is entered.
    Q_INVOKABLE void configureState(QString state, QString params);
    /// Makes \a state the state the container starts in and falls back to when closed,
    /// and requests it now.
    Q_INVOKABLE void setDefaultState(QString state);
    Q_INVOKABLE void showSendToBackButton(bool show);
    /// Requests "Min", "Max" or "Thumb"; the container changes only where its current
    /// state allows.
    Q_INVOKABLE void setState(QString state);

    /// Moves the container and everything that follows it; emits newPos(). A size
    /// change still animating is finished first.
    virtual void move(const QPoint& position);
    Q_INVOKABLE virtual void move(int x, int y);
    /// Lets the drawers follow the container's size; nothing to do without drawers.
    virtual void resizeDrawers();

    /// The right-hand drawer for any position but 0, the left-hand one for 0; null when
    /// there is none.
    WindowDrawer* getDrawer(WindowDrawer::DockPosition_t position) const;
    /// Adds a drawer on the side of \a position, at most one a side; returns the drawer
    /// on that side, or null for an unknown side.
    WindowDrawer* addDrawer(WindowDrawer::DockPosition_t position, const QString& title);
    /// Puts \a layout in the right-hand drawer, titled "Configuration" when it is added here.
    void setDrawerLayout(QLayout* layout);
    void setDrawerOpened(WindowDrawer::DockPosition_t position, bool open);
    /// Brings the border frame and the frame's margins in line with the size state and
    /// the application options.
    virtual void updateStyle();
    /// Whether the window draws its border outside "Max".
    virtual void setBorder(bool border);
    /// The last listed transition on a signal of \a sender from \a from to \a to, or null.
    virtual QSignalTransition* findTransition(QObject* sender, QState* from, QState* to);

    /// Covers the screen area of the system type, remembering where the container was.
    void maximize();
    /// Back to the remembered place and size.
    void restore();

    /// Whether a drag may not start now: while maximized, or while the desktop's layout
    /// is locked and the container is lockable.
    bool dragLocked() const;
    /// Where a drag let go at \a requested puts the container: wholly inside its parent,
    /// and on the nearest grid point within reach if it snaps to the grid.
    QPoint dropPosition(const QPoint& requested) const;

    QRect minGeometry() const { return m_savedGeometry; }
    void setMinGeometry(const QRect& geometry) { m_savedGeometry = geometry; }
    bool lockable() const { return m_lockable; }
    void setLockable(bool lockable) { m_lockable = lockable; }
    bool snapsToGrid() const { return m_snapsToGrid; }
    void setSnapsToGrid(bool snaps) { m_snapsToGrid = snaps; }

public slots:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void raise() override;

signals:
    void setStateMin();
    void setStateMax();
    void setStateThumb();
    void newPos(QPoint position);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

    // Where the drawers join in; the container alone has none.
    virtual void showDrawers();
    virtual void hideDrawers();
    virtual void raiseDrawers();
    virtual void moveDrawers(int x, int y);

    // The frames are looked up by name, as the style sheets address them.
    QFrame* containerFrame() const;
    QFrame* borderFrame() const;
    // Resizes the frame that draws the border and background behind the other children.
    void resizeBorderFrame(const QSize& size);

    QSize m_minSize{480, 400};
    QSize m_thumbSize{240, 200};
    bool m_border = true;
    QString m_sizeName = QStringLiteral("Min");
    QString m_stateName;

private slots:
    void setMaximizedView(QString state);
    virtual void initStateMin();
    virtual void initStateMax();
    virtual void initStateThumb();

private:
    QState* stateNamed(const QString& name) const;
    QSignalTransition* addGrowTransition(QState* from, QState* to);
    QSignalTransition* addClosedTransition(QState* from, QState* to);
    // Adds the transition on the request signal \a request unless there is one already.
    template <class Request>
    void addRequestTransition(QState* from, Request request, QState* to);
    void removeTransition(QSignalTransition* transition);
    void recountOptionalStates();
    QPushButton* growButton() const;
    QPushButton* shrinkButton() const;
    void setControlMargins(int bottom);
    void closeNavigationBar();

    QRect maximizedGeometry() const;
    QSize parentArea() const;
    // Animates or sets the geometry; a change still running is finished first, so that
    // the place remembered for "Min" is never one half way.
    void changeGeometry(const QRect& target);
    void finishGeometryChange();
    void restoreTo(QRect target);
    void geometrySettled();
    QPoint followingPosition(const QPoint& globalPos) const;

    ContainerControlImpl* m_containerControl = nullptr;
    ContainerHandleImpl* m_containerHandle = nullptr;
    bool m_thumbEnabled = false;
    bool m_maxEnabled = true;
    QStateMachine m_stateMachine;
    QState* m_stateMin = nullptr;
    QState* m_stateMax = nullptr;
    QState* m_stateThumb = nullptr;
    // The transitions that enabling, disabling and default changes rewire.
    QList<QSignalTransition*> m_transitions;
    int m_dragOffsetX = 0;
    int m_dragOffsetY = 0;
    bool m_dragging = false;
    bool m_maximizedView = false;
    QElapsedTimer m_moveTimer;
    QPoint m_dragStartPos;
    int m_optionalStateCount = 1;
    bool m_lockable = false;
    bool m_snapsToGrid = false;
    QPointer<QPropertyAnimation> m_geometryAnimation;
    // Siblings of the container, so that they can reach past its edges.
    QPointer<WindowDrawer> m_configurationDrawer;
    QPointer<WindowDrawer> m_secondDrawer;
};

#endif
