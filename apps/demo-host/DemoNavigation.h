#ifndef DEMONAVIGATION_H
#define DEMONAVIGATION_H

#include "MenuBar.h"

#include <QFutureWatcher>
#include <QHash>
#include <QObject>
#include <QPointer>

#include <memory>

class ContainerBase;
class DesktopImpl;
class NamingServiceImpl;

/**
 * The demo's navigation bar and module discovery: the bar slides out from the top of the
 * desktop with the registered screens under a few categories, and one entry per engine
 * module that discovery finds, each with a small screen of its own, added and removed
 * as the engines come and go.
 */
class DemoNavigation : public QObject
{
    Q_OBJECT

public:
    explicit DemoNavigation(DesktopImpl* desktop);
    ~DemoNavigation() override;

    MenuBar* menuBar() const { return m_menuBar; }
    /// The engine modules in the bar, by module index.
    QStringList moduleButtons() const { return m_modules.keys(); }

    /// Adds an entry that shows the registered screen \a name, under its category.
    void addScreenButton(const QString& name);

private:
    void addModuleButton(const QString& index);
    void removeModuleButton(const QString& index);

    DesktopImpl* m_desktop;
    QPointer<MenuBar> m_menuBar;
    std::unique_ptr<NamingServiceImpl> m_discovery;
    QFutureWatcher<void> m_startUp;
    // The screen of each engine module; its entry goes with it.
    QHash<QString, QPointer<ContainerBase>> m_modules;
};

#endif
