#include "FirstFrameStamp.h"

#include <QEvent>
#include <QWidget>

#include <cstdio>
#include <ctime>

FirstFrameStamp::FirstFrameStamp(QWidget* window)
    : QObject(window)
    , m_window(window)
{
    window->installEventFilter(this);
}

bool FirstFrameStamp::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_window && event->type() == QEvent::Paint && !m_painted) {
        m_painted = true;
        m_window->removeEventFilter(this);
        // The window's own paint event comes first in a repaint; the frame is complete,
        // children and flush included, when the event loop gets back to its queue.
        QMetaObject::invokeMethod(
            this,
            [] {
                timespec now{};
                clock_gettime(CLOCK_MONOTONIC, &now);
                std::printf("FIRST FRAME %lld\n", static_cast<long long>(now.tv_sec) * 1000000000LL + now.tv_nsec);
                std::fflush(stdout);
            },
            Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}
