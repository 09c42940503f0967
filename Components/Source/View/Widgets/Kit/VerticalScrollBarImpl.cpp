#include "VerticalScrollBarImpl.h"

#include <QPoint>

namespace Lumaro {
namespace gui {

VerticalScrollBarImpl::VerticalScrollBarImpl(QWidget* parent)
    : ScrollBarImpl(Qt::Vertical, parent)
{
    const QString handle = QStringLiteral(
        "QScrollBar::handle:vertical {"
        " image: url(:/images/svg/scrollButton.svg);"
        " border-radius: 10px;"
        " margin: -8px;"
        " min-height: 40px; }");
    const QString pages = QStringLiteral(
        "QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical {"
        " background: none; }");

    m_defaultSheet = QStringLiteral(
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

    m_arrowsSheet = QStringLiteral(
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

    m_minSheet = QStringLiteral(
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

    changeSize(QStringLiteral("Max"));
}

void VerticalScrollBarImpl::setValueFromPos(const QPoint& pos)
{
    setValue(valueAt(pos.y(), height()));
}

} // namespace gui
} // namespace Lumaro
