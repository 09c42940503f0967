#ifndef CONTAINERTESTDESKTOP_H
#define CONTAINERTESTDESKTOP_H

// A registered desktop with its desktop manager, for the tests of the standard container,
// its controls and its handle: containers on it are placed, reserved and maximized as on
// the instrument.

#include "ApplicationOptions.h"
#include "ContainerImpl.h"
#include "DesktopImpl.h"
#include "DesktopManagerImpl.h"
#include "GlobalImpl.h"

#include <QApplication>
#include <QFrame>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>

struct ContainerTestDesktop
{
    /// \a resolution is the "-res" text, or null for a 1280 x 800 desktop without one.
    ContainerTestDesktop(const QVariant& systemType, const QVariant& resolution, bool animated)
    {
        qApp->setProperty("-systype", systemType);
        qApp->setProperty("-res", resolution);
        qApp->setProperty("-animation", animated ? QVariant() : QVariant(QStringLiteral("false")));
        window.resize(ApplicationOptions::resolutionOr(QSize(1280, 800)));
        desktop = new DesktopImpl(&window);
        GlobalImpl::getInstance()->setDesktop(desktop);
        manager = std::make_unique<DesktopManagerImpl>();
        window.show();
    }
    ~ContainerTestDesktop()
    {
        manager.reset();
        GlobalImpl::getInstance()->setDesktop(nullptr);
        for (const char* option : {"-systype", "-res", "-animation", "-size", "-notransparency"})
            qApp->setProperty(option, QVariant());
    }

    /// A container around a form of \a formSize, started, registered and shown: on a
    /// fresh benchtop desktop the first one stands at (30, 150).
    ContainerImpl* addContainer(QSize formSize = QSize(300, 200))
    {
        auto* container = new ContainerImpl(desktop);
        container->setWindowTitle(QStringLiteral("Scope"));
        auto* form = new QFrame;
        form->setObjectName(QStringLiteral("ContainerFrame"));
        form->setMinimumSize(formSize);
        auto* layout = new QVBoxLayout;
        layout->addWidget(form);
        container->setLayout(layout);
        container->init();
        manager->registerModule(container);
        container->show();
        return container;
    }

    /// The cells a container at \a geometry reserves on this desktop.
    QRect cellsOf(const QRect& geometry) const
    {
        const int x0 = std::max(geometry.x(), 0);
        const int y0 = std::max(geometry.y(), 0);
        const int x1 = std::min(x0 + geometry.width(), desktop->width() / 10 * 10);
        const int y1 = std::min(y0 + geometry.height(), desktop->height() / 10 * 10);
        return QRect(QPoint(x0 / 10, y0 / 10), QPoint(x1 / 10 - 1, y1 / 10 - 1));
    }

    QWidget window;
    DesktopImpl* desktop = nullptr;
    std::unique_ptr<DesktopManagerImpl> manager;
};

/// Sends a left-button event with the pointer at \a global, as the screen reports it.
inline void sendMouse(QWidget* receiver, QEvent::Type type, const QPoint& global)
{
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, receiver->mapFromGlobal(global), global,
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held, Qt::NoModifier);
    QApplication::sendEvent(receiver, &event);
}

/// The size names a changeSize(QString) spy recorded, in order.
inline QStringList sizeNames(const QSignalSpy& spy)
{
    QStringList names;
    for (const QList<QVariant>& arguments : spy)
        names << arguments.at(0).toString();
    return names;
}

#endif
