#ifndef SCROLLBARIMPL_H
#define SCROLLBARIMPL_H

#include "tzuicomponents_export.h"

#include <QScrollBar>
#include <QString>

class QMouseEvent;
class QPoint;

namespace Lumaro {
namespace gui {

/**
 * The kit's touch scroll bar: a touch on the track jumps straight to that point, one page
 * is about 20 pixels of track, and the look follows the container's size state. The two
 * orientations differ only in their style sheets; the two named classes only choose one.
 */
class TZUICOMPONENTS_EXPORT ScrollBarImpl : public QScrollBar
{
    Q_OBJECT
    Q_PROPERTY(Style Style READ getStyle WRITE setStyle)

public:
    enum Style {
        BRIVANE_DEFAULT = 0,
        WITH_SCROLL_ARROWS = 1
    };
    Q_ENUM(Style)

    ScrollBarImpl(Qt::Orientation orientation, QWidget* parent = nullptr);

    Style getStyle() const { return m_style; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public slots:
    /// Stores the style and shows its full look. Hides QWidget::setStyle(QStyle*): the
    /// bar's look comes from its style sheets.
    void setStyle(Lumaro::gui::ScrollBarImpl::Style style);
    /// "Max" shows the full look of the current style, "Min" the compact one; other
    /// size names leave the look as it is.
    virtual void changeSize(const QString& size);

protected:
    /// Moves the value to the point of the track under a touch, along the bar's orientation.
    virtual void setValueFromPos(const QPoint& pos);
    /// The value under a touch at position along a track of length pixels; a track too
    /// short to map keeps the current value.
    int valueAt(int position, int length) const;

    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void sliderChange(SliderChange change) override;

    /// Track length in pixels that one page step stands for.
    int m_pixelsPerStep = 20;
    Style m_style = BRIVANE_DEFAULT;
    QString m_defaultSheet;
    QString m_arrowsSheet;
    QString m_minSheet;
};

} // namespace gui
} // namespace Lumaro

// Forms name this header for either orientation, so it brings both.
#include "HorizontalScrollBarImpl.h"
#include "VerticalScrollBarImpl.h"

#endif
