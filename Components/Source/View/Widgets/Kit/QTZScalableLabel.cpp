#include "QTZScalableLabel.h"

#include <QEvent>
#include <QFontMetrics>
#include <QResizeEvent>
#include <QStyle>

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
        while (QFontMetrics(font).boundingRect(area, Qt::AlignCenter, m_shownText).width() > textWidth(font)
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

int QTZScalableLabel::textWidth(const QFont& font) const
{
    // QLabel draws plain text inside its contents and margin, and a label with a frame
    // (a container's sheet gives its title one through a margin) moves left- or
    // right-aligned text in by half an "x" of the font it is drawn in.
    int available = contentsRect().width() - 2 * margin();
    int inset = indent();
    if (inset < 0 && frameWidth() > 0)
        inset = QFontMetrics(font).horizontalAdvance(QLatin1Char('x')) / 2 - margin();
    const Qt::Alignment horizontal = QStyle::visualAlignment(layoutDirection(), alignment()) & Qt::AlignHorizontal_Mask;
    if (inset > 0 && (horizontal & (Qt::AlignLeft | Qt::AlignRight)))
        available -= inset;
    return available;
}

void QTZScalableLabel::resizeEvent(QResizeEvent* event)
{
    setText(m_text);
    QLabel::resizeEvent(event);
}

void QTZScalableLabel::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        setText(m_text);
    QLabel::changeEvent(event);
}
