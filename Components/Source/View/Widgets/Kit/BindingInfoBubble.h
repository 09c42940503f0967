#ifndef BINDINGINFOBUBBLE_H
#define BINDINGINFOBUBBLE_H

#include "SpeechBubbleImpl.h"

/**
 * The small bubble a long press on a bound widget opens: what the widget is bound to and
 * how that stands. It closes on the next touch anywhere, which does nothing else.
 */
class BindingInfoBubble : public SpeechBubbleImpl
{
    Q_OBJECT

public:
    explicit BindingInfoBubble(QWidget* parent);
    ~BindingInfoBubble() override;

    /// Shows \a text above \a globalPosition, kept inside the parent.
    void showAt(const QString& text, ColorScheme scheme, const QPoint& globalPosition);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void stopWatchingTouches();

    bool m_watching = false;
    bool m_swallowRelease = false;
};

#endif
