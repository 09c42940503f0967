#include "DemoWidgets.h"

#include "ApplicationOptions.h"
#include "ContainerImpl.h"
#include "DemoLanguage.h"
#include "DesktopImpl.h"
#include "DesktopManagerImpl.h"
#include "GlobalImpl.h"
#include "HandheldScreens.h"
#include "NamingServiceImpl.h"
#include "PushButtonImpl.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

using Lumaro::gui::PushButtonImpl;

namespace {

const char* const actionName = "RUNACTION1";
const char* const title = QT_TRANSLATE_NOOP("QObject", "Engine Controls");

// How often the screen looks for an engine while a button is still unbound.
constexpr int bindRetryMs = 1000;

PushButtonImpl* actionButton(const QString& text, const QString& objectName, QWidget* parent)
{
    auto* button = new PushButtonImpl(parent);
    button->setButtonText(text);
    button->setButtonObjectName(objectName);
    button->setAttributeName(QString::fromLatin1(actionName));
    // A lock the engine takes and gives back at once shows once, not as a flicker.
    button->setUpdateDelay(250);
    return button;
}

} // namespace

ContainerImpl* DemoWidgets::addTo(DesktopImpl* desktop)
{
    auto* form = new QFrame;
    form->setObjectName(QStringLiteral("ContainerFrame"));
    form->setMinimumSize(ApplicationOptions::isPortraitResolution() ? QSize(390, 150) : QSize(240, 140));
    form->setStyleSheet(QStringLiteral("QLabel#PressCount { color: white; }"));
    auto* column = new QVBoxLayout(form);
    auto* row = new QHBoxLayout;
    column->addLayout(row);

    // The kit's buttons translate their texts themselves, in the button's context.
    PushButtonImpl* run = actionButton(QStringLiteral(QT_TRANSLATE_NOOP("Lumaro::gui::PushButtonImpl", "Run")),
                                       QStringLiteral("RunButton"), form);
    PushButtonImpl* abort = actionButton(QStringLiteral(QT_TRANSLATE_NOOP("Lumaro::gui::PushButtonImpl", "Run now")),
                                         QStringLiteral("RunNowButton"), form);
    abort->setCriticalStyle();
    row->addWidget(run);
    row->addWidget(abort);

    auto* presses = new QLabel(form);
    presses->setObjectName(QStringLiteral("PressCount"));
    column->addWidget(presses);
    auto count = std::make_shared<int>(0);
    auto lastButton = std::make_shared<QString>();
    const auto showCount = [presses, count, lastButton] {
        presses->setText(*count == 0 ? QCoreApplication::translate("DemoWidgets", "No action sent")
                                     : QCoreApplication::translate("DemoWidgets", "%1 sent %n action(s)", nullptr, *count)
                                           .arg(*lastButton));
    };
    DemoLanguage::follow(presses, showCount);
    for (PushButtonImpl* button : {run, abort}) {
        QObject::connect(button, &PushButtonImpl::buttonPressed, presses, [count, lastButton, showCount](const QString& name) {
            ++*count;
            *lastButton = name;
            showCount();
        });
    }

    auto* container = new ContainerImpl(desktop);
    container->setWindowTitle(QLatin1String(title), 0);
    auto* layout = new QVBoxLayout;
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(form);
    container->setLayout(layout);
    container->init();

    // Module discovery starts after the screens and searches off the GUI thread: the
    // buttons bind once it knows an engine; later engines come back to them by themselves.
    auto* binder = new QTimer(container);
    binder->setInterval(bindRetryMs);
    QObject::connect(binder, &QTimer::timeout, container, [binder, run, abort] {
        NamingServiceImpl* discovery = GlobalImpl::getInstance()->namingService();
        if (!discovery || discovery->guiAbleLoaded() == 0)
            return;
        for (PushButtonImpl* button : {run, abort})
            button->bindAttributeByName();
        binder->stop();
    });
    binder->start();

    GlobalImpl* registry = GlobalImpl::getInstance();
    registry->addScreen(QLatin1String(title), container);
    if (DesktopManagerImpl* manager = registry->desktopManager())
        manager->registerModule(container);
    HandheldScreens::follow(container);
    container->setVisible(HandheldScreens::opensAtStart(false));
    qDebug() << "UserInterface - Demo host - engine controls bound to" << actionName;
    return container;
}
