#include "BindingInfoBubble.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMouseEvent>

BindingInfoBubble::BindingInfoBubble(QWidget* parent) : SpeechBubbleImpl(parent)
{
    setObjectName(QStringLiteral("BindingInfoBubble"));
    hide();
}

BindingInfoBubble::~BindingInfoBubble()
{
    stopWatchingTouches();
}

void BindingInfoBubble::showAt(const QString& text, ColorScheme scheme, const QPoint& globalPosition)
{
    setColorScheme(scheme);
    setText(text);
    // The text gives the size; the bubble's bottom-left corner goes to the point.
    QPoint point = parentWidget() ? parentWidget()->mapFromGlobal(globalPosition) : globalPosition;
    if (parentWidget()) {
        point.setX(qBound(0, point.x(), qMax(0, parentWidget()->width() - width())));
        point.setY(qBound(qMin(height(), parentWidget()->height()), point.y(), parentWidget()->height()));
    }
    show(point);
    if (!m_watching) {
        m_watching = true;
        m_swallowRelease = false;
        QCoreApplication::instance()->installEventFilter(this);
    }
}

bool BindingInfoBubble::eventFilter(QObject* /*watched*/, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::TouchBegin:
        hideWindow();
        m_swallowRelease = true;
        return true;
    case QEvent::MouseButtonRelease:
    case QEvent::TouchEnd:
        // The release of the press that opened the bubble passes; that of the closing one not.
        if (!m_swallowRelease)
            return false;
        stopWatchingTouches();
        return true;
    default:
        return false;
    }
}

void BindingInfoBubble::hideEvent(QHideEvent* event)
{
    if (!m_swallowRelease)
        stopWatchingTouches();
    SpeechBubbleImpl::hideEvent(event);
}

void BindingInfoBubble::stopWatchingTouches()
{
    if (!m_watching)
        return;
    m_watching = false;
    m_swallowRelease = false;
    if (QCoreApplication* application = QCoreApplication::instance())
        application->removeEventFilter(this);
}
