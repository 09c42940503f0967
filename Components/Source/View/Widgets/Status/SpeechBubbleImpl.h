#ifndef SPEECHBUBBLEIMPL_H
#define SPEECHBUBBLEIMPL_H

#include "tzuicomponents_export.h"

#include <QColor>
#include <QFont>
#include <QPoint>
#include <QSizeF>
#include <QString>
#include <QTextOption>
#include <QTransform>
#include <QWidget>

class QHideEvent;
class QMouseEvent;
class QPaintEvent;
class QPainterPath;
class QPropertyAnimation;
class QTextLayout;
class QTimer;

/**
 * A pop-up in the shape of a comic speech bubble: a rounded box with a short pointer
 * around one wrapped text, tinted in one of three colour schemes. It fades in when shown
 * and fades out on a tap inside its outline or 30 seconds later, then emits finished().
 *
 * The bubble lives in its parent's coordinates: show() puts its bottom-left corner at
 * the given point, so the pointer of a bubble pointing down ends just above it.
 */
class TZUICOMPONENTS_EXPORT SpeechBubbleImpl : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(int opacity READ opacity WRITE setOpacity)

public:
    /// Where along its edge the pointer sits.
    enum PointAlignment_t { paTopOrLeft = 0, paMiddle = 1, paBottomOrRight = 2 };
    Q_ENUM(PointAlignment_t)
    /// The edge the pointer sits on. Only the top and the bottom edge are drawn; a
    /// bubble given another value has no outline.
    enum PointDirection_t { pdTop = 0, pdBottom = 3 };
    Q_ENUM(PointDirection_t)
    /// Fill and outline: red, amber, green.
    enum ColorScheme { csRed = 0, csAmber = 1, csGreen = 2 };
    Q_ENUM(ColorScheme)

    /// Time from show() until the bubble starts to fade out by itself.
    static constexpr int ShowTimeMs = 30000;
    /// Length of a fade in or out.
    static constexpr int FadeTimeMs = 2000;
    /// Longest text line before the text wraps, in pixels.
    static constexpr int MaxLineWidth = 250;

    explicit SpeechBubbleImpl(QWidget* parent = nullptr);
    ~SpeechBubbleImpl() override;

    /// Lays the text out again in the current language; a visible bubble is shown
    /// again at its point (which restarts its fade and its time).
    Q_INVOKABLE virtual void retranslate();

    PointAlignment_t pointAlignment() const { return m_pointAlignment; }
    void setPointAlignment(PointAlignment_t alignment);
    PointDirection_t pointDirection() const { return m_pointDirection; }
    void setPointDirection(PointDirection_t direction);
    ColorScheme colorScheme() const { return m_colorScheme; }
    void setColorScheme(ColorScheme scheme);
    QColor fillColor() const { return m_fillColor; }
    QColor outlineColor() const { return m_outlineColor; }

    QString text() const { return m_text; }
    /// Stores \a text (untranslated; it passes through tr() when laid out) and
    /// retranslate()s.
    void setText(const QString& text);

    /// 0 (transparent) to 255 (opaque); the fades animate it.
    int opacity() const { return m_opacity; }
    void setOpacity(int opacity);

    /// The point the bubble was last shown at.
    QPoint point() const { return m_point; }
    /// The outline in widget coordinates, empty while there is none.
    QPainterPath shape() const;
    /// Whether a fade is running.
    bool isAnimating() const { return m_animating; }
    /// Milliseconds until the bubble fades out by itself, -1 when that is not due.
    int remainingShowTime() const;

    using QWidget::show;

public slots:
    /// Puts the bubble's bottom-left corner at \a point and fades it in.
    void show(QPoint point);
    /// Fades the bubble out; it hides when the fade ends.
    void hideWindow();
    void animationFinished();

signals:
    /// The bubble has been hidden.
    void finished();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void resetTextFont();
    /// Lays \a text out in lines of at most MaxLineWidth pixels; the size of the result.
    QSizeF calculateTextLayout(const QString& text);
    void setupShapePath();
    void addTopPointerOutline(QPainterPath& path, const QSizeF& textSize) const;
    void addBottomPointerOutline(QPainterPath& path, const QSizeF& textSize) const;

    double m_margin = 5.0;
    double m_scaleX = 1.0;
    double m_scaleY = 1.0;
    int m_opacity = 0;
    QPoint m_point;
    QTextLayout* m_textLayout = nullptr;
    QPainterPath* m_shape = nullptr;
    // Unparented: it animates this widget and is deleted with it.
    QPropertyAnimation* m_fadeAnimation = nullptr;
    QTimer* m_hideTimer = nullptr;
    QFont m_font;
    QTextOption m_textOption;
    // The painter's transform at the last paint at full opacity: taps are tested
    // against the outline as it was drawn.
    QTransform m_paintTransform;
    bool m_hiding = false;
    bool m_animating = false;
    PointAlignment_t m_pointAlignment = paTopOrLeft;
    PointDirection_t m_pointDirection = pdBottom;
    QString m_text;
    ColorScheme m_colorScheme = csRed;
    QColor m_fillColor;
    QColor m_outlineColor;
};

#endif
