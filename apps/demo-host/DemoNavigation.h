#ifndef DEMONAVIGATION_H
#define DEMONAVIGATION_H

#include "MenuBar.h"

#include <QFutureWatcher>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QPushButton>

#include <memory>

class DesktopImpl;
class NamingServiceImpl;

/**
 * The demo's navigation bar and module discovery: the bar slides out from the top of the
 * desktop with one button per registered screen, and one per engine module that
 * discovery finds, added and removed as the engines come and go.
 */
class DemoNavigation : public QObject
{
    Q_OBJECT

public:
    explicit DemoNavigation(DesktopImpl* desktop);
    ~DemoNavigation() override;

    MenuBar* menuBar() const { return m_menuBar; }
    /// Buttons of the engine modules, by module index.
    QStringList moduleButtons() const { return m_moduleButtons.keys(); }

    /// Adds a button that shows the registered screen \a name.
    void addScreenButton(const QString& name);

private:
    void addModuleButton(const QString& index);
    void removeModuleButton(const QString& index);
    QPushButton* addButton(const QString& text, const QString& objectName);

    QPointer<MenuBar> m_menuBar;
    std::unique_ptr<NamingServiceImpl> m_discovery;
    QFutureWatcher<void> m_startUp;
    QHash<QString, QPointer<QPushButton>> m_moduleButtons;
};

#endif
