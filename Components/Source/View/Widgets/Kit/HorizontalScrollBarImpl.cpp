#include "HorizontalScrollBarImpl.h"

#include <QPoint>

namespace Lumaro {
namespace gui {

HorizontalScrollBarImpl::HorizontalScrollBarImpl(QWidget* parent)
    : ScrollBarImpl(Qt::Horizontal, parent)
{
    const QString handle = QStringLiteral(
        "QScrollBar::handle:horizontal {"
        " image: url(:/images/svg/scrollButton.svg);"
        " border-radius: 10px;"
        " margin: -8px;"
        " min-width: 40px; }");
    const QString pages = QStringLiteral(
        "QScrollBar::add-page:horizontal, QScrollBar::sub-page:horizontal {"
        " background: none; }");

    m_defaultSheet = QStringLiteral(
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

    m_arrowsSheet = QStringLiteral(
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

    m_minSheet = QStringLiteral(
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

    changeSize(QStringLiteral("Max"));
}

void HorizontalScrollBarImpl::setValueFromPos(const QPoint& pos)
{
    setValue(valueAt(pos.x(), width()));
}

} // namespace gui
} // namespace Lumaro
