#ifndef CONTAINERIMPL_H
#define CONTAINERIMPL_H

#include "ContainerBase.h"

#include <QRect>
#include <QSize>
#include <QString>

class QFrame;

/**
 * The standard module window: the module's contents above a title row with the title-bar
 * controls, on a rounded, translucent border frame. Its look follows its size state: a
 * bordered window in "Min", edge to edge in "Max".
 */
class TZUICOMPONENTS_EXPORT ContainerImpl : public ContainerBase
{
    Q_OBJECT
    // The geometry the container returns to from "Max"; the same as the saved location.
    Q_PROPERTY(QRect MinGeometry READ minGeometry WRITE setMinGeometry)
    // Lockable containers cannot be dragged while the desktop's layout is locked.
    Q_PROPERTY(bool Lockable READ lockable WRITE setLockable)
    Q_PROPERTY(bool SnapsToGrid READ snapsToGrid WRITE setSnapsToGrid)

public:
    explicit ContainerImpl(QWidget* parent = nullptr);

    QSize sizeHint() const override;

    /// Puts \a layout around the module's contents and takes the minimum size of the
    /// contents' "ContainerFrame" as the size of "Min".
    void setLayout(QLayout* layout) override;
    using ContainerBase::setLayout;

    /// "Max" while maximized, otherwise "Min".
    Q_INVOKABLE QString mSize() const { return m_sizeName; }
    /// "Min", "Max" or "Thumb" once a state was entered; empty before.
    QString state() const { return m_stateName; }

    /// Puts the container in its normal state: the size of its module's form, the normal
    /// look, and changeSize("Min"). The owner calls it once the contents are set.
    void init() override;
    /// The title-bar control cluster.
    Q_INVOKABLE QWidget* getContainerControl() const { return m_containerControl; }

    QRect minGeometry() const { return m_savedGeometry; }
    void setMinGeometry(const QRect& geometry) { m_savedGeometry = geometry; }
    bool lockable() const { return m_lockable; }
    void setLockable(bool lockable) { m_lockable = lockable; }
    bool snapsToGrid() const { return m_snapsToGrid; }
    void setSnapsToGrid(bool snaps) { m_snapsToGrid = snaps; }

public slots:
    void showEvent(QShowEvent* event) override;

public:
    /// Brings the border frame and the frame's margins in line with the size state and
    /// the application options.
    virtual void updateStyle();
    /// Whether the window draws its border outside "Max".
    virtual void setBorder(bool border);

protected:
    // The frames are looked up by name, as the style sheets address them.
    QFrame* containerFrame() const;
    QFrame* borderFrame() const;
    // Resizes the frame that draws the border and background behind the other children.
    void resizeBorderFrame(const QSize& size);

    QWidget* m_containerControl = nullptr;
    QSize m_minSize{480, 400};
    bool m_border = true;
    QString m_sizeName = QStringLiteral("Min");
    QString m_stateName;
    bool m_lockable = false;
    bool m_snapsToGrid = false;
};

#endif
