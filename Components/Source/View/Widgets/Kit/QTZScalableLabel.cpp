#include "QTZScalableLabel.h"

#include <QFontMetrics>
#include <QResizeEvent>

QTZScalableLabel::QTZScalableLabel(QWidget* parent)
    : QLabel(parent)
{
}

QTZScalableLabel::QTZScalableLabel(const QString& text, QWidget* parent)
    : QLabel(parent)
{
    setText(text);
}

void QTZScalableLabel::setText(QString text)
{
    // Clearing the label's own sheet first gives back the font size that the sheets of
    // its parents set, so every fit starts from the full size.
    setStyleSheet(QString());
    m_shownText = tr(text.toUtf8().constData());
    m_text = text;

    QFont font = this->font();
    int pixelSize = font.pixelSize();
    if (pixelSize > 0) {
        const QRect area(0, 0, width(), height());
        while (QFontMetrics(font).boundingRect(area, Qt::AlignCenter, m_shownText).width() > width()
               && pixelSize > 1) {
            --pixelSize;
            font.setPixelSize(pixelSize);
        }
        setStyleSheet(styleSheet() + QStringLiteral("QTZScalableLabel {    font-size: ")
                      + QString::number(pixelSize) + QStringLiteral("px;}"));
    }

    QLabel::setText(m_shownText);
    update();
}

void QTZScalableLabel::resizeEvent(QResizeEvent* event)
{
    setText(m_text);
    QLabel::resizeEvent(event);
}
