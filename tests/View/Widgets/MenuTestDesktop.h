#ifndef MENUTESTDESKTOP_H
#define MENUTESTDESKTOP_H

// A desktop with a registered navigation bar, and screens (plain containers) to put in
// its menus, for the tests of the menus.

#include "ContainerBase.h"
#include "GlobalImpl.h"
#include "MenuBar.h"
#include "MenuItem.h"
#include "ScrollableMenuBarFrame.h"

#include <QApplication>
#include <QLayout>
#include <QMouseEvent>
#include <QPushButton>
#include <QtTest>

struct MenuTestDesktop
{
    /// Options are name, value pairs set before anything is built.
    explicit MenuTestDesktop(const QSize& size = QSize(1280, 800), Qt::AlignmentFlag location = Qt::AlignTop,
                             const QList<QPair<const char*, QString>>& options = {})
    {
        for (const auto& option : options)
            qApp->setProperty(option.first, option.second);
        desktop.resize(size);
        bar = new MenuBar(&desktop, location);
        GlobalImpl::getInstance()->setTopNavMenu(bar);
        desktop.show();
    }
    ~MenuTestDesktop()
    {
        GlobalImpl::getInstance()->setTopNavMenu(nullptr);
        for (const char* option : {"-systype", "-res", "-size", "-menubarlocation", "-animation"})
            qApp->setProperty(option, QVariant());
    }

    ContainerBase* screen(const QString& name)
    {
        auto* container = new ContainerBase(&desktop);
        container->setObjectName(name);
        container->hide();
        return container;
    }

    /// An entry for a new screen named after its label.
    QPushButton* add(const QString& menu, const QString& subMenu, const QString& label, int priority = 0,
                     int position = 0)
    {
        return bar->addMenuItem(menu, subMenu, label, screen(label), position, priority, nullptr, QString(), 0);
    }

    void openBar()
    {
        if (!bar->isOpen)
            bar->toggle();
    }

    /// Runs what was deleted later, and what that deleted later in turn.
    static void settle()
    {
        for (int round = 0; round < 3; ++round) {
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QCoreApplication::processEvents();
        }
    }

    /// The bar buttons in row order.
    QList<MenuItem*> row() const
    {
        QList<MenuItem*> buttons;
        const QLayout* layout = bar->findChild<ScrollableMenuBarFrame*>()->layout();
        for (int index = 0; index < layout->count(); ++index) {
            if (auto* button = qobject_cast<MenuItem*>(layout->itemAt(index)->widget()))
                buttons.append(button);
        }
        return buttons;
    }

    QWidget desktop;
    MenuBar* bar;
};

/// A finger pressed at \a from, moved to \a to and lifted there; both points in \a widget's
/// coordinates before the press, so that a widget that moves under the finger sees the
/// finger where it really is.
inline void fingerDrag(QWidget* widget, const QPoint& from, const QPoint& to)
{
    const QPoint globalFrom = widget->mapToGlobal(from);
    const QPoint globalTo = widget->mapToGlobal(to);
    auto send = [widget](QEvent::Type type, const QPoint& global, Qt::MouseButtons buttons) {
        QMouseEvent event(type, widget->mapFromGlobal(global), global, Qt::LeftButton, buttons, Qt::NoModifier);
        QApplication::sendEvent(widget, &event);
    };
    send(QEvent::MouseButtonPress, globalFrom, Qt::LeftButton);
    send(QEvent::MouseMove, globalTo, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, globalTo, Qt::NoButton);
}

#endif
