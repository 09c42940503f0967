#ifndef MENUCONTAINERMANAGER_H
#define MENUCONTAINERMANAGER_H

#include "tzuicomponents_export.h"

#include <QHash>
#include <QString>

class ContainerBase;
class QWidget;

/**
 * A table of containers by name that the host may fill and hand to the registry.
 * The containers are not owned.
 */
class TZUICOMPONENTS_EXPORT MenuContainerManager
{
public:
    MenuContainerManager();

    /// Registers \a container under \a name, replacing an earlier entry of that name.
    void registerContainer(const QString& name, ContainerBase* container);
    /// The container registered under \a name, or null.
    ContainerBase* container(const QString& name) const;
    /// Menu items are accepted for hosts that register them; nothing is kept.
    void registerMenuItem(QWidget* item);

private:
    QHash<QString, ContainerBase*> m_containers;
};

#endif
