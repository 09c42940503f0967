#include "RotatableLabel.h"

#include <QEvent>
#include <QColor>
#include <QPainter>
#include <QPaintEvent>

#include <cmath>

RotatableLabel::RotatableLabel(QWidget* parent)
    : QLabel(parent)
{
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Maximum);
}

void RotatableLabel::retranslate()
{
    QLabel::setText(tr(m_labelText.toUtf8().constData()));
    update();
}

void RotatableLabel::setDegrees(double degrees)
{
    m_degrees = std::trunc(degrees);
}

void RotatableLabel::setText(const QString& text)
{
    m_labelText = text;
    retranslate();
}

void RotatableLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QFont font = this->font();
    font.setPixelSize(m_fontSize);
    painter.setFont(font);
    painter.setPen(QColor(m_fontColor));
    painter.translate(width() / 2, height() / 2);
    painter.rotate(m_degrees);

    const QString shown = tr(m_labelText.toUtf8().constData());
    const QSize textSize = painter.fontMetrics().boundingRect(QRect(), Qt::AlignCenter, shown).size();
    const QRect area(-textSize.width() / 2, -textSize.height() / 2, textSize.width(), textSize.height());
    painter.drawText(area, Qt::AlignVCenter, shown);
}

void RotatableLabel::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QLabel::changeEvent(event);
}
