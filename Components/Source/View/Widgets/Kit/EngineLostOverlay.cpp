#include "EngineLostOverlay.h"

#include <QMouseEvent>
#include <QPainter>

namespace {

// Dark enough to tell a lost widget at a glance, light enough to read what it last showed.
const QColor dimming(0, 0, 0, 150);
const QColor outline(220, 220, 220);
constexpr int outlineWidth = 2;

} // namespace

EngineLostOverlay::EngineLostOverlay(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("EngineLostOverlay"));
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_NoSystemBackground);
    hide();
}

void EngineLostOverlay::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), dimming);
    QPen pen(outline, outlineWidth, Qt::DashLine);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    const qreal inset = outlineWidth / 2.0;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), 6, 6);
}

// Accepted and dropped: the widget under the overlay refuses input while its engine is lost.
void EngineLostOverlay::mousePressEvent(QMouseEvent* event)
{
    event->accept();
}

void EngineLostOverlay::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
}

void EngineLostOverlay::mouseDoubleClickEvent(QMouseEvent* event)
{
    event->accept();
}
