#include "SystemModule.h"

SystemModule::SystemModule(QObject* parent)
    : QObject(parent)
{
}

void SystemModule::setSystemScreen(const QString& name, QWidget* screen)
{
    m_systemScreens.insert(name, screen);
}

void SystemModule::setModule(const QString& name, QObject* module)
{
    m_modules.insert(name, module);
}

QWidget* SystemModule::getSystemScreen(QString screenName)
{
    return m_systemScreens[screenName];
}

QObject* SystemModule::getModule(QString moduleName)
{
    return m_modules[moduleName];
}
