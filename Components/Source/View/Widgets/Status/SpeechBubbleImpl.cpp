#include "SpeechBubbleImpl.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFontMetricsF>
#include <QHideEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPropertyAnimation>
#include <QTextLayout>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace {

// A corner of radius 25 drawn as one cubic segment: its control points lie this far
// from the corner's vertex along the two edges.
constexpr double CornerControl = 11.2008;

// From the current point to \a end around the corner whose edges meet at \a vertex.
void cornerTo(QPainterPath& path, const QPointF& vertex, const QPointF& end)
{
    const QPointF start = path.currentPosition();
    const auto towards = [](const QPointF& from, const QPointF& to) {
        const QPointF d = from - to;
        const double length = std::hypot(d.x(), d.y());
        return length > 0 ? to + d * (CornerControl / length) : to;
    };
    path.cubicTo(towards(start, vertex), towards(end, vertex), end);
}

} // namespace

SpeechBubbleImpl::SpeechBubbleImpl(QWidget* parent)
    : QWidget(parent)
    , m_textLayout(new QTextLayout)
    , m_fadeAnimation(new QPropertyAnimation(this, "opacity"))
    , m_hideTimer(new QTimer(this))
{
    m_font.setPointSize(10);
    m_textOption.setWrapMode(QTextOption::WordWrap);
    setColorScheme(csRed);
    m_textLayout->setTextOption(m_textOption);
    m_textLayout->setFont(m_font);

    m_fadeAnimation->setEasingCurve(QEasingCurve::InOutQuad);
    m_fadeAnimation->setDuration(FadeTimeMs);
    connect(m_fadeAnimation, &QPropertyAnimation::finished, this, &SpeechBubbleImpl::animationFinished);
    m_hideTimer->setInterval(ShowTimeMs);
    m_hideTimer->setSingleShot(true);
    connect(m_hideTimer, &QTimer::timeout, this, &SpeechBubbleImpl::hideWindow);
}

SpeechBubbleImpl::~SpeechBubbleImpl()
{
    m_fadeAnimation->stop();
    delete m_fadeAnimation;
    delete m_shape;
    delete m_textLayout;
}

void SpeechBubbleImpl::setPointAlignment(PointAlignment_t alignment)
{
    if (alignment == m_pointAlignment)
        return;
    m_pointAlignment = alignment;
    setupShapePath();
}

void SpeechBubbleImpl::setPointDirection(PointDirection_t direction)
{
    if (direction == m_pointDirection)
        return;
    m_pointDirection = direction;
    setupShapePath();
}

void SpeechBubbleImpl::setColorScheme(ColorScheme scheme)
{
    m_colorScheme = scheme;
    switch (scheme) {
    case csAmber:
        m_fillColor = QColor(255, 205, 118);
        m_outlineColor = QColor(255, 198, 0);
        break;
    case csGreen:
        m_fillColor = QColor(71, 161, 71);
        m_outlineColor = QColor(0, 255, 0);
        break;
    case csRed:
    default:
        m_fillColor = QColor(161, 71, 71);
        m_outlineColor = QColor(255, 0, 0);
        break;
    }
    update();
}

void SpeechBubbleImpl::setText(const QString& text)
{
    m_text = text;
    retranslate();
}

void SpeechBubbleImpl::setOpacity(int opacity)
{
    m_opacity = opacity;
    repaint();
}

QPainterPath SpeechBubbleImpl::shape() const
{
    return m_shape ? *m_shape : QPainterPath();
}

int SpeechBubbleImpl::remainingShowTime() const
{
    return m_hideTimer->remainingTime();
}

void SpeechBubbleImpl::retranslate()
{
    const bool wasVisible = isVisible();
    setupShapePath();
    if (wasVisible)
        show(m_point);
}

void SpeechBubbleImpl::resetTextFont()
{
    if (font() != m_font) {
        m_font = font();
        m_font.setPointSize(10);
    }
}

QSizeF SpeechBubbleImpl::calculateTextLayout(const QString& text)
{
    resetTextFont();
    const QString translated = QCoreApplication::translate("SpeechBubbleImpl", text.toUtf8().constData());
    const QFontMetricsF metrics(m_font);
    // Rounded up: a line a fraction narrower than the text would wrap its last word.
    const int lineWidth = std::min(int(std::ceil(metrics.horizontalAdvance(translated))), MaxLineWidth);
    const double leading = metrics.leading();

    m_textLayout->setFont(m_font);
    m_textLayout->setTextOption(m_textOption);
    m_textLayout->setText(translated);
    double height = 0;
    m_textLayout->beginLayout();
    for (QTextLine line = m_textLayout->createLine(); line.isValid(); line = m_textLayout->createLine()) {
        line.setLineWidth(lineWidth);
        line.setPosition(QPointF(0, height + leading));
        height += line.height() + leading;
    }
    m_textLayout->endLayout();
    return m_textLayout->boundingRect().size();
}

void SpeechBubbleImpl::setupShapePath()
{
    if (m_text.isEmpty())
        return;
    if (m_shape) {
        if (isVisible())
            hide();
        delete m_shape;
        m_shape = nullptr;
    }

    const QSizeF textSize = calculateTextLayout(m_text);
    auto* path = new QPainterPath;
    switch (int(m_pointDirection)) {
    case pdTop:
        addTopPointerOutline(*path, textSize);
        break;
    case pdBottom:
        addBottomPointerOutline(*path, textSize);
        break;
    default:
        qDebug() << "UserInterface - SpeechBubble invalid point direction!";
        break;
    }
    path->closeSubpath();
    m_shape = path;

    const QRectF bounds = path->boundingRect();
    setGeometry(m_point.x(), m_point.y() - int(2 * bounds.y() + bounds.height()), int(2 * bounds.x() + bounds.width()),
                int(2 * bounds.y() + bounds.height()));
    repaint();
}

void SpeechBubbleImpl::addTopPointerOutline(QPainterPath& path, const QSizeF& textSize) const
{
    const double w = textSize.width();
    const int hh = int(textSize.height() + 2 * m_margin);
    const double hb = hh >= 51 ? hh : 50;

    switch (m_pointAlignment) {
    case paTopOrLeft:
        qDebug() << "m_pa == paTopOrLeft ";
        path.moveTo(30, 25);
        path.lineTo(29.2454, 5);
        path.lineTo(45, 25);
        path.lineTo(w + 25, 25);
        cornerTo(path, {w + 50, 25}, {w + 50, 50});
        path.lineTo(w + 50, hb);
        cornerTo(path, {w + 50, hb + 25}, {w + 25, hb + 25});
        path.lineTo(45, hb + 25);
        cornerTo(path, {20, hb + 25}, {20, hb});
        path.lineTo(20, 50);
        // Ends 10 to the right of the left edge, where the pointer begins.
        cornerTo(path, {20, 25}, {30, 25});
        break;
    case paBottomOrRight:
        qDebug() << "m_pa == paBottomOrRight ";
        path.moveTo(30, 25);
        path.lineTo(w + 10, 25);
        path.lineTo(w + 21.3464, 5);
        path.lineTo(w + 24, 25);
        cornerTo(path, {w + 35, 25}, {w + 35, 50});
        path.lineTo(w + 35, hb);
        cornerTo(path, {w + 35, hb + 25}, {w + 10, hb + 25});
        path.lineTo(30, hb + 25);
        cornerTo(path, {5, hb + 25}, {5, hb});
        path.lineTo(5, 50);
        cornerTo(path, {5, 25}, {30, 25});
        break;
    case paMiddle:
    default:
        qDebug() << "UserInterface - SpeechBubble paMiddle is not Implemented yet! ";
        break;
    }
}

void SpeechBubbleImpl::addBottomPointerOutline(QPainterPath& path, const QSizeF& textSize) const
{
    const double w = textSize.width();
    const int hh = int(textSize.height() + 2 * m_margin);
    const double yb = hh >= 51 ? hh - 20 : 30;

    path.moveTo(30, 5);
    path.lineTo(w + 10, 5);
    cornerTo(path, {w + 35, 5}, {w + 35, 30});
    path.lineTo(w + 35, yb);
    switch (m_pointAlignment) {
    case paTopOrLeft:
        cornerTo(path, {w + 35, yb + 25}, {w + 10, yb + 25});
        path.lineTo(30, yb + 25);
        path.lineTo(15, yb + 45);
        path.lineTo(16.3464, yb + 25);
        path.cubicTo(18.799, yb + 25, 5, yb + 13.799, 5, yb);
        break;
    case paBottomOrRight:
        path.cubicTo(w + 35, yb + 13.7992, w + 23.799, yb + 25, w + 21, yb + 25);
        path.lineTo(w + 22.3464, yb + 45);
        path.lineTo(w + 6, yb + 25);
        path.lineTo(30, yb + 25);
        cornerTo(path, {5, yb + 25}, {5, yb});
        break;
    case paMiddle:
    default:
        qDebug() << "UserInterface - SpeechBubble paMiddle is not implemented yet!";
        break;
    }
    path.lineTo(5, 30);
    cornerTo(path, {5, 5}, {30, 5});
}

void SpeechBubbleImpl::show(QPoint point)
{
    m_point = point;
    setGeometry(point.x(), point.y() - height(), width(), height());
    m_hideTimer->stop();
    m_hiding = false;
    m_animating = true;
    m_fadeAnimation->stop();
    m_fadeAnimation->setStartValue(0);
    m_fadeAnimation->setEndValue(255);
    m_fadeAnimation->start();
    m_hideTimer->start();
    setVisible(true);
    raise();
}

void SpeechBubbleImpl::hideWindow()
{
    m_hideTimer->stop();
    m_animating = true;
    m_hiding = true;
    m_fadeAnimation->stop();
    m_fadeAnimation->setStartValue(255);
    m_fadeAnimation->setEndValue(0);
    m_fadeAnimation->start();
}

void SpeechBubbleImpl::animationFinished()
{
    m_animating = false;
    if (m_hiding)
        hide();
}

void SpeechBubbleImpl::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    emit finished();
}

void SpeechBubbleImpl::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_shape && m_paintTransform.map(*m_shape).contains(event->pos())) {
        raise();
        hideWindow();
    }
    QWidget::mouseReleaseEvent(event);
}

void SpeechBubbleImpl::paintEvent(QPaintEvent*)
{
    if (!m_shape)
        return;
    if (m_animating && m_opacity <= 0)
        return;
    QColor fill = m_fillColor;
    QColor outline = m_outlineColor;
    // Black on the light amber, white on the dark red and green.
    QColor textColor = m_colorScheme == csAmber ? QColor(Qt::black) : QColor(Qt::white);
    if (m_opacity < 255) {
        const int alpha = std::max(0, m_opacity);
        fill.setAlpha(alpha);
        outline.setAlpha(alpha);
        textColor.setAlpha(alpha);
    }

    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(m_scaleX, m_scaleY);
    painter.setPen(QPen(outline, 2));
    painter.setBrush(fill);
    painter.drawPath(*m_shape);
    if (!m_animating || m_opacity >= 255)
        m_paintTransform = painter.transform();

    const QRectF bounds = m_shape->boundingRect();
    const double textTop = bounds.y() + m_margin + (m_pointDirection == pdTop ? 20 : 0);
    painter.setPen(textColor);
    m_textLayout->draw(&painter, QPointF(bounds.x() + 15, textTop));
}
