#include "DesktopImpl.h"

#include "ApplicationOptions.h"
#include "GlobalImpl.h"
#include "QTZMessageOutputControl.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDebug>
#include <QMouseEvent>

DesktopImpl::DesktopImpl(QWidget* parent)
    : QFrame(parent, Qt::WindowFlags())
{
    setWindowTitle(QStringLiteral("Orvanth Touch Interface System"));
    setObjectName(QStringLiteral("TopWindow"));
    setStyleSheet(QStringLiteral("QFrame#TopWindow {    background-color: #000;}"));
    if (parent)
        setGeometry(0, 0, parent->width(), parent->height());

    if (ApplicationOptions::fullScreen())
        showFullScreen();
    else
        show();
}

void DesktopImpl::toggleExitMenu()
{
    auto* button = qobject_cast<QWidget*>(sender());
    QWidget* menu = button ? button->parentWidget() : nullptr;
    if (!menu)
        return;
    menu->move(menu->x() == 0 ? -80 : 0, menu->y());
}

void DesktopImpl::shutdownSlot()
{
    QCoreApplication::exit(0);
}

void DesktopImpl::updateMessageOutput()
{
    // Both lines are logged while output is on, so that each of them is seen.
    if (!QTZMessageOutputControl::m_output) {
        QTZMessageOutputControl::m_output = true;
        qDebug() << "UserInterface - Turn ON debug messages!";
    } else {
        qDebug() << "UserInterface - Turn OFF debug messages!";
        QTZMessageOutputControl::m_output = false;
    }
}

void DesktopImpl::closeEvent(QCloseEvent* event)
{
    delete GlobalImpl::existingInstance();
    event->accept();
}

void DesktopImpl::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::RightButton)
        updateMessageOutput();
    QFrame::mousePressEvent(event);
}
