#include "ScrollBarImpl.h"

#include <QMouseEvent>

#include <algorithm>

namespace Lumaro {
namespace gui {

namespace {

// The looks of the two orientations: the full look of each style and the compact one.
struct Sheets
{
    QString normal;
    QString arrows;
    QString compact;
};

Sheets horizontalSheets()
{
    Sheets sheets;
    const QString handle = QStringLiteral(
        "QScrollBar::handle:horizontal {"
        " image: url(:/images/svg/scrollButton.svg);"
        " border-radius: 10px;"
        " margin: -8px;"
        " min-width: 40px; }");
    const QString pages = QStringLiteral(
        "QScrollBar::add-page:horizontal, QScrollBar::sub-page:horizontal {"
        " background: none; }");

    sheets.normal = QStringLiteral(
        "QScrollBar:horizontal {"
        " border: 1px solid white;"
        " border-radius: 6px;"
        " background: black;"
        " margin: 8px;"
        " min-width: 20px;"
        " min-height: 10px;"
        " max-height: 30px; }")
        + handle
        + QStringLiteral(
        "QScrollBar::add-line:horizontal, QScrollBar::sub-line:horizontal {"
        " border: none;"
        " width: 0px;"
        " height: 0px; }")
        + pages;

    sheets.arrows = QStringLiteral(
        "QScrollBar:horizontal {"
        " border: 1px solid white;"
        " border-radius: 6px;"
        " background: black;"
        " margin: 8px 30px 8px 30px;"
        " min-width: 20px;"
        " min-height: 10px;"
        " max-height: 30px; }")
        + handle
        + QStringLiteral(
        "QScrollBar::add-line:horizontal {"
        " image: url(:/images/svg/rightButton.svg);"
        " border-radius: 10px;"
        " width: 30px;"
        " min-width: 30px;"
        " subcontrol-position: right;"
        " subcontrol-origin: margin; }"
        "QScrollBar::add-line:horizontal:pressed {"
        " image: url(:/images/svg/rightButton_pressed.svg); }"
        "QScrollBar::sub-line:horizontal {"
        " image: url(:/images/svg/leftButton.svg);"
        " border-radius: 10px;"
        " width: 30px;"
        " min-width: 30px;"
        " subcontrol-position: left;"
        " subcontrol-origin: margin; }"
        "QScrollBar::sub-line:horizontal:pressed {"
        " image: url(:/images/svg/leftButton_pressed.svg); }")
        + pages;

    sheets.compact = QStringLiteral(
        "QScrollBar:horizontal {"
        " border: 2px solid #7c9cbb;"
        " background: rgba(0,102,171,66);"
        " min-width: 15px;"
        " max-width: 800px;"
        " min-height: 25px;"
        " margin: 0px 22px 0px 22px; }"
        "QScrollBar::handle:horizontal {"
        " background: rgba(125,157,187,128);"
        " min-width: 15px;"
        " min-height: 20px; }"
        "QScrollBar::add-line:horizontal {"
        " border: 2px solid #7c9cbb;"
        " background: rgba(0,0,255,66);"
        " width: 20px;"
        " image: url(:/images/rarrow_off.png);"
        " subcontrol-position: right;"
        " subcontrol-origin: margin; }"
        "QScrollBar::sub-line:horizontal {"
        " border: 2px solid #7c9cbb;"
        " background: rgba(0,0,255,66);"
        " width: 20px;"
        " image: url(:/images/larrow_off.png);"
        " subcontrol-position: left;"
        " subcontrol-origin: margin; }"
        "QScrollBar::sub-line:horizontal:pressed {"
        " image: url(:/images/larrow_on.png);"
        " image-position: center;"
        " background: rgba(0,0,0,128); }"
        "QScrollBar::add-line:horizontal:pressed {"
        " image: url(:/images/rarrow_on.png);"
        " image-position: center;"
        " background: rgba(0,0,0,128); }");

    return sheets;
}

Sheets verticalSheets()
{
    Sheets sheets;
    const QString handle = QStringLiteral(
        "QScrollBar::handle:vertical {"
        " image: url(:/images/svg/scrollButton.svg);"
        " border-radius: 10px;"
        " margin: -8px;"
        " min-height: 40px; }");
    const QString pages = QStringLiteral(
        "QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical {"
        " background: none; }");

    sheets.normal = QStringLiteral(
        "QScrollBar:vertical {"
        " border: 1px solid white;"
        " border-radius: 7px;"
        " background: black;"
        " margin: 8px;"
        " min-height: 20px;"
        " min-width: 10px;"
        " max-width: 30px; }")
        + handle
        + QStringLiteral(
        "QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical {"
        " border: none;"
        " width: 0px;"
        " height: 0px; }")
        + pages;

    sheets.arrows = QStringLiteral(
        "QScrollBar:vertical {"
        " border: 1px solid white;"
        " border-radius: 7px;"
        " background: black;"
        " margin: 30px 8px 30px 8px;"
        " min-height: 20px;"
        " min-width: 10px;"
        " max-width: 30px; }")
        + handle
        + QStringLiteral(
        "QScrollBar::add-line:vertical {"
        " image: url(:/images/svg/downButton.svg);"
        " border-radius: 10px;"
        " height: 30px;"
        " min-height: 30px;"
        " subcontrol-position: bottom;"
        " subcontrol-origin: margin; }"
        "QScrollBar::add-line:vertical:pressed {"
        " image: url(:/images/svg/downButton_pressed.svg); }"
        "QScrollBar::sub-line:vertical {"
        " image: url(:/images/svg/upButton.svg);"
        " border-radius: 10px;"
        " height: 30px;"
        " min-height: 30px;"
        " subcontrol-position: top;"
        " subcontrol-origin: margin; }"
        "QScrollBar::sub-line:vertical:pressed {"
        " image: url(:/images/svg/upButton_pressed.svg); }")
        + pages;

    sheets.compact = QStringLiteral(
        "QScrollBar:vertical {"
        " border: 2px solid #7c9cbb;"
        " background: rgba(0,102,171,66);"
        " min-height: 15px;"
        " max-height: 800px;"
        " max-width: 17px;"
        " margin: 42px 20px 22px 40px; }"
        "QScrollBar::handle:vertical {"
        " background: rgba(125,157,187,128);"
        " min-width: 15px;"
        " min-height: 10px; }"
        "QScrollBar::add-line:vertical {"
        " border: 2px solid #7c9cbb;"
        " background: rgba(0,0,255,66);"
        " height: 20px;"
        " image: url(:/images/darrow_off.png);"
        " subcontrol-position: bottom;"
        " subcontrol-origin: margin; }"
        "QScrollBar::sub-line:vertical {"
        " border: 2px solid #7c9cbb;"
        " background: rgba(0,0,255,66);"
        " height: 20px;"
        " image: url(:/images/uarrow_off.png);"
        " subcontrol-position: top;"
        " subcontrol-origin: margin; }"
        "QScrollBar::sub-line:vertical:pressed {"
        " image: url(:/images/uarrow_on.png);"
        " image-position: center;"
        " background: rgba(0,0,0,128); }"
        "QScrollBar::add-line:vertical:pressed {"
        " image: url(:/images/darrow_on.png);"
        " image-position: center;"
        " background: rgba(0,0,0,128); }");

    return sheets;
}

} // namespace

ScrollBarImpl::ScrollBarImpl(Qt::Orientation orientation, QWidget* parent)
    : QScrollBar(orientation, parent)
{
    const Sheets sheets = orientation == Qt::Horizontal ? horizontalSheets() : verticalSheets();
    m_defaultSheet = sheets.normal;
    m_arrowsSheet = sheets.arrows;
    m_minSheet = sheets.compact;
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
    changeSize(QStringLiteral("Max"));
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

void ScrollBarImpl::setValueFromPos(const QPoint& pos)
{
    if (orientation() == Qt::Horizontal)
        setValue(valueAt(pos.x(), width()));
    else
        setValue(valueAt(pos.y(), height()));
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
