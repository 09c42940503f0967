#include "ScrollButton.h"

#include "CSS.h"

#include <QDebug>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QPolygonF>

ScrollButton::ScrollButton(Qt::ArrowType direction, QWidget* parent)
    : QWidget(parent)
    , direction(direction)
{
    setObjectName(QStringLiteral("ScrollButton"));

    int side = 0;
    switch (direction) {
    case Qt::UpArrow:
    case Qt::DownArrow:
        side = parent ? int(0.18 * parent->width()) : 0;
        break;
    case Qt::LeftArrow:
    case Qt::RightArrow:
        side = parent ? int(0.22 * parent->height()) : 0;
        break;
    default:
        qDebug() << "ScrollButton: Invalid arrow type given.";
        break;
    }
    resize(side, side);
}

void ScrollButton::mousePressEvent(QMouseEvent*)
{
    pressed = true;
    repaint();
    emit mouseDown();
}

void ScrollButton::mouseReleaseEvent(QMouseEvent* event)
{
    pressed = false;
    repaint();
    // Sliding off the button before lifting the finger cancels the page.
    if (rect().contains(event->pos()))
        emit mouseUp();
}

void ScrollButton::mouseMoveEvent(QMouseEvent*)
{
}

void ScrollButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);

    const bool lit = pressed && isEnabled();
    const QRect circle(QPoint(3, 3), QPoint(width() - 4, height() - 4));
    painter.setPen(QPen(Qt::white, 3));
    if (lit) {
        painter.setBrush(Qt::white);
    } else {
        QLinearGradient gradient(0, circle.top(), 0, circle.bottom());
        gradient.setColorAt(0, QColor(isEnabled() ? CSS::gradientLight() : QStringLiteral("darkgray")));
        gradient.setColorAt(1, QColor(isEnabled() ? CSS::gradientDark() : QStringLiteral("black")));
        painter.setBrush(gradient);
    }
    painter.drawEllipse(circle);

    // The triangle points up before the rotation; its corners lie on a circle of 2s.
    const qreal s = height() * 0.125;
    const QPolygonF arrow(QVector<QPointF>{QPointF(0, -2 * s), QPointF(-1.73205 * s, s), QPointF(1.73205 * s, s)});
    qreal angle = 0;
    switch (direction) {
    case Qt::DownArrow:
        angle = 180;
        break;
    case Qt::LeftArrow:
        angle = 270;
        break;
    case Qt::RightArrow:
        angle = 90;
        break;
    default:
        break;
    }
    painter.translate(width() / 2.0, height() / 2.0);
    painter.rotate(angle);
    painter.setPen(Qt::NoPen);
    painter.setBrush(lit ? Qt::black : Qt::white);
    painter.drawPolygon(arrow);
}
