#include "ScrollBarImpl.h"

#include <QMouseEvent>

#include <algorithm>

namespace Lumaro {
namespace gui {

ScrollBarImpl::ScrollBarImpl(Qt::Orientation orientation, QWidget* parent)
    : QScrollBar(orientation, parent)
{
    setObjectName(QStringLiteral("ScrollBarImpl"));
    setPageStep(10);
    setValue(0);
    setRange(0, 100);
    setTracking(true);
    setInvertedAppearance(false);
    setInvertedControls(true);
    setFocusPolicy(Qt::NoFocus);
    setMinimumSize(minimumSizeHint());
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Minimum);
}

QSize ScrollBarImpl::sizeHint() const
{
    return minimumSizeHint();
}

QSize ScrollBarImpl::minimumSizeHint() const
{
    return orientation() == Qt::Horizontal ? QSize(75, 30) : QSize(30, 75);
}

void ScrollBarImpl::setStyle(Style style)
{
    m_style = style;
    changeSize(QStringLiteral("Max"));
}

void ScrollBarImpl::changeSize(const QString& size)
{
    if (size == QLatin1String("Max"))
        setStyleSheet(m_style == WITH_SCROLL_ARROWS ? m_arrowsSheet : m_defaultSheet);
    else if (size == QLatin1String("Min"))
        setStyleSheet(m_minSheet);
}

int ScrollBarImpl::valueAt(int position, int length) const
{
    // The handle is 40 pixels long, so its centre, under the finger, travels from 20 pixels
    // after the start of the track to 20 pixels before its end.
    const int span = length - 40;
    if (span <= 0)
        return value();
    const int offset = std::clamp(position - 20, 0, span);
    // 64 bits: the range times the offset overflows an int on wide ranges.
    return minimum() + static_cast<int>((qint64(maximum()) - minimum()) * offset / span);
}

void ScrollBarImpl::mousePressEvent(QMouseEvent* event)
{
    if (m_style == BRIVANE_DEFAULT)
        setValueFromPos(event->pos());
    else
        QScrollBar::mousePressEvent(event);
}

void ScrollBarImpl::mouseMoveEvent(QMouseEvent* event)
{
    if (m_style == BRIVANE_DEFAULT)
        setValueFromPos(event->pos());
    else
        QScrollBar::mouseMoveEvent(event);
}

void ScrollBarImpl::sliderChange(SliderChange change)
{
    // Deliberately only on a change of the steps: a later change of the range or the size
    // keeps the page step the bar worked out.
    if (change == SliderStepsChange) {
        const bool horizontal = orientation() == Qt::Horizontal;
        const int length = horizontal ? width() : height();
        if (length > m_pixelsPerStep) {
            const int smallestPage = horizontal ? 1 : 2;
            setPageStep(std::max(maximum() / (length / m_pixelsPerStep), smallestPage));
        }
    }
    update();
}

} // namespace gui
} // namespace Lumaro
