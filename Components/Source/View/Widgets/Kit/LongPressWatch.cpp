#include "LongPressWatch.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>

LongPressWatch::LongPressWatch(QWidget* widget) : QObject(widget)
{
    m_hold.setSingleShot(true);
    m_hold.setInterval(HoldMs);
    connect(&m_hold, &QTimer::timeout, this, &LongPressWatch::held);
    watch(widget);
}

void LongPressWatch::watch(QWidget* widget)
{
    widget->installEventFilter(this);
    for (QWidget* child : widget->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        watch(child);
}

bool LongPressWatch::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::ChildAdded: {
        // Sent from the child's constructor: it is a widget already, its children come later.
        QObject* child = static_cast<QChildEvent*>(event)->child();
        if (child->isWidgetType())
            child->installEventFilter(this);
        break;
    }
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: {
        auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::RightButton) {
            m_hold.stop();
            m_swallowRelease = true;
            emit longPressed(mouse->globalPos());
            return true;
        }
        if (mouse->button() == Qt::LeftButton) {
            m_pressed = qobject_cast<QWidget*>(watched);
            m_pressPosition = mouse->globalPos();
            m_swallowRelease = false;
            m_hold.start();
        }
        break;
    }
    case QEvent::MouseMove:
        if (m_hold.isActive()
            && (static_cast<QMouseEvent*>(event)->globalPos() - m_pressPosition).manhattanLength()
                   > QApplication::startDragDistance())
            m_hold.stop();
        break;
    case QEvent::MouseButtonRelease:
        if (m_givingUp)
            break;
        m_hold.stop();
        if (m_swallowRelease) {
            m_swallowRelease = false;
            return true;
        }
        break;
    case QEvent::ContextMenu:
        // A right click is a long press here, not a menu.
        return true;
    default:
        break;
    }
    return false;
}

void LongPressWatch::held()
{
    m_swallowRelease = true;
    if (m_pressed) {
        // Released far outside: a button lets go of its pressed look without a click.
        const QPoint outside(-10000, -10000);
        QMouseEvent release(QEvent::MouseButtonRelease, outside, m_pressed->mapToGlobal(outside), Qt::LeftButton,
                            Qt::NoButton, Qt::NoModifier);
        m_givingUp = true;
        QCoreApplication::sendEvent(m_pressed, &release);
        m_givingUp = false;
    }
    emit longPressed(m_pressPosition);
}
