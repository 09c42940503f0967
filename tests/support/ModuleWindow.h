#ifndef MODULEWINDOW_H
#define MODULEWINDOW_H

#include "PushButtonImpl.h"

#include <QSignalSpy>
#include <QtTest/QTest>

// A push button in a module window as bound widgets find it: marked "TopContainerObject",
// with a title.
struct ModuleWindow
{
    explicit ModuleWindow(int updateDelay = 0)
    {
        window.setObjectName(QStringLiteral("TopContainerObject"));
        window.setWindowTitle(QStringLiteral("Sweep"));
        window.resize(300, 200);
        button = new Lumaro::gui::PushButtonImpl(&window);
        button->setGeometry(20, 20, 160, 80);
        button->setUpdateDelay(updateDelay);
        window.show();
    }

    bool bind(const QString& name)
    {
        QSignalSpy finished(button, &WidgetBaseImpl::bindingFinished);
        button->setAttributeName(name);
        button->bindAttributeByName();
        return (!finished.isEmpty() || finished.wait(10000)) && finished.last().at(0).toBool();
    }

    void touch() { QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, QPoint(10, 10)); }

    QWidget window;
    Lumaro::gui::PushButtonImpl* button;
};

#endif
