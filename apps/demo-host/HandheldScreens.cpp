#include "HandheldScreens.h"

#include "ApplicationOptions.h"
#include "ContainerBase.h"

#include <QVariant>
#include <QWidget>

namespace {

// Marks the containers that take turns.
const char* const followerProperty = "demoOneScreenAtATime";

} // namespace

bool HandheldScreens::opensAtStart(bool firstScreen)
{
    return firstScreen || !ApplicationOptions::isHandheld();
}

void HandheldScreens::follow(ContainerBase* container)
{
    if (!ApplicationOptions::isHandheld() || !container)
        return;
    container->setProperty(followerProperty, true);
    QObject::connect(container, &ContainerBase::WindowOpened, container, [container] {
        QWidget* desktop = container->parentWidget();
        if (!desktop)
            return;
        const QList<ContainerBase*> screens = desktop->findChildren<ContainerBase*>(QString(), Qt::FindDirectChildrenOnly);
        for (ContainerBase* other : screens) {
            if (other != container && other->isVisible() && other->property(followerProperty).toBool())
                other->hide();
        }
    });
}
