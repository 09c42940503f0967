#include "MenuContainerManager.h"

MenuContainerManager::MenuContainerManager() = default;

void MenuContainerManager::registerContainer(const QString& name, ContainerBase* container)
{
    m_containers.insert(name, container);
}

ContainerBase* MenuContainerManager::container(const QString& name) const
{
    return m_containers.value(name);
}

void MenuContainerManager::registerMenuItem(QWidget*)
{
}
