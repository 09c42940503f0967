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

    const int fullSize = font().pixelSize();
    if (fullSize > 0) {
        const int pixelSize = fittedPixelSize(fullSize);
        setStyleSheet(styleSheet() + QStringLiteral("QTZScalableLabel {    font-size: ")
                      + QString::number(pixelSize) + QStringLiteral("px;}"));
    }

    QLabel::setText(m_shownText);
    update();
}

int QTZScalableLabel::fittedPixelSize(int fullSize) const
{
    // The largest size up to the full one at which the text fits. Every size measured
    // loads a font of its own (through fontconfig, the dearest step of a start), so the
    // search starts where the full size's overshoot scales to and walks from there to
    // the boundary, instead of stepping down one pixel at a time from the top: two or
    // three sizes instead of one per pixel given up.
    const QRect area(0, 0, width(), height());
    QFont font = this->font();
    const auto overshoot = [&](int pixelSize) {
        font.setPixelSize(pixelSize);
        return QFontMetrics(font).boundingRect(area, Qt::AlignCenter, m_shownText).width() - textWidth(font);
    };
    const int fullOvershoot = overshoot(fullSize);
    if (fullOvershoot <= 0 || fullSize == 1)
        return fullSize;
    const int fullTextWidth = textWidth(font);
    const int drawnWidth = fullTextWidth + fullOvershoot;
    int size = drawnWidth > 0 ? qRound(double(fullSize) * qMax(0, fullTextWidth) / drawnWidth) : 1;
    size = qBound(1, size, fullSize - 1);
    if (overshoot(size) <= 0) {
        while (size + 1 < fullSize && overshoot(size + 1) <= 0)
            ++size;
    } else {
        while (size > 1 && overshoot(size - 1) > 0)
            --size;
        size = qMax(1, size - 1);
    }
    return size;
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
