#ifndef GLOBALIMPL_H
#define GLOBALIMPL_H

#include "tzuicomponents_export.h"

#include <Orvanth.hh>

#include <QHash>
#include <QList>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <QThread>
#include <QWidget>

#include <memory>
#include <mutex>

class DesktopImpl;
class DesktopManagerImpl;
class GUIManagerServer;
class MenuBar;
class MenuContainerManager;
class ModuleManagerImpl;
class NamingServiceImpl;
class QScriptEngine;
class QTZMessageOutputControl;
class QTZStatusBar;
class SystemModule;

namespace Orvanth {
class Locker;
}

/**
 * The process-wide registry through which every part of the library finds its peers.
 *
 * The host registers the shared objects it builds (desktop, desktop manager, navigation
 * bar, status bar, ...) through the setters and keeps owning them. The registry owns
 * what it creates itself: the system-module table, the diagnostic output switch, the
 * process launcher, a script engine and the engine locker, which is built on first use.
 * It lives as a child of the application object, named "GlobalImpl".
 */
class TZUICOMPONENTS_EXPORT GlobalImpl : public QObject
{
    Q_OBJECT

public:
    /// The registry, built on first use. The application object must exist.
    static GlobalImpl* getInstance();

    /// For a host that builds the registry itself with the application object as parent.
    explicit GlobalImpl(QObject* parent);
    ~GlobalImpl() override;

    DesktopImpl* desktop() const { return m_desktop; }
    void setDesktop(DesktopImpl* desktop) { m_desktop = desktop; }
    DesktopManagerImpl* desktopManager() const { return m_desktopManager; }
    void setDesktopManager(DesktopManagerImpl* manager) { m_desktopManager = manager; }
    MenuContainerManager* menuContainerManager() const { return m_menuContainerManager; }
    void setMenuContainerManager(MenuContainerManager* manager) { m_menuContainerManager = manager; }
    /// Kept for the host only; the library never uses it.
    ModuleManagerImpl* moduleManager() const { return m_moduleManager; }
    void setModuleManager(ModuleManagerImpl* manager) { m_moduleManager = manager; }
    NamingServiceImpl* namingService() const { return m_namingService; }
    void setNamingService(NamingServiceImpl* namingService) { m_namingService = namingService; }
    MenuBar* topNavMenu() const { return m_topNavMenu; }
    void setTopNavMenu(MenuBar* menuBar) { m_topNavMenu = menuBar; }
    SystemModule* systemModule() const { return m_systemModule; }
    void setSystemModule(SystemModule* systemModule) { m_systemModule = systemModule; }
    QTZStatusBar* statusBar() const { return m_statusBar; }
    void setStatusBar(QTZStatusBar* statusBar) { m_statusBar = statusBar; }
    GUIManagerServer* guiManagerServer() const { return m_guiManagerServer; }
    void setGUIManagerServer(GUIManagerServer* server) { m_guiManagerServer = server; }
    QPoint dialogLastPosition() const { return m_dialogLastPosition; }
    void setDialogLastPosition(const QPoint& position) { m_dialogLastPosition = position; }
    QScriptEngine* scriptEngine() const { return m_scriptEngine.get(); }

    /// Data entry belongs to one widget at a time: the first claimant keeps it until
    /// it releases it.
    void setEntryMechanism(QWidget* widget);
    void releaseEntryMechanism(QWidget* widget);
    QWidget* entryMechanism() const { return m_entryMechanism; }

    /// Registers \a widget as the screen \a name (case-sensitive), replacing an earlier one.
    void addScreen(const QString& name, QWidget* widget);
    /// The screen registered as \a name, or null; an unknown name is entered with a
    /// null screen and listed from then on.
    QWidget* getScreen(const QString& name);
    bool removeScreen(const QString& name);
    /// All registered names, in no defined order.
    QList<QString> getScreenList() const;
    /// Registers \a replacement under the name of \a registered; nothing happens when
    /// \a registered is not a registered screen.
    void swapMenuItems(QWidget* registered, QWidget* replacement);

    /// The nearest ancestor of \a widget (not \a widget itself) named "TopContainerObject".
    static QWidget* getParentWindow(QWidget* widget);
    /// The title of the window that holds \a widget (\a widget included); empty if none.
    static QString getParentWindowName(QWidget* widget);

    /// The host hands over threads that must stop when the registry goes; they are
    /// asked to quit, not waited for or deleted.
    void storeSubscriberThread(QThread* thread);

    /// Builds the engine locker if there is none yet; a failure is logged and retried
    /// at the next call.
    void verifyLockerCreated();
    /// The engine locker, or null when no lock manager could be reached.
    Orvanth::Locker* getLocker();
    /// Replaces the locker; the previous one is not deleted.
    void setLocker(Orvanth::Locker* locker);
    /// The locker's current authority, asked anew each time; empty on a transient
    /// failure or without a locker. Other CORBA exceptions reach the caller.
    Orvanth::Lock_Authority getLockAuthority();
    /// The locker's id, asked anew each time; all zero when it cannot be had.
    Orvanth::LockerID getLockerID();

    /// The snap points of the desktop grid, row by row; computed once from the
    /// application options "-res" and "-grid".
    QList<QPoint> gridPoints;
    /// Set by the host; while true, lockable containers cannot be dragged.
    bool layoutLocked = false;

private:
    void computeGridPoints();

    static GlobalImpl* single;
    static bool instanceFlag;

    DesktopImpl* m_desktop = nullptr;
    DesktopManagerImpl* m_desktopManager = nullptr;
    MenuContainerManager* m_menuContainerManager = nullptr;
    ModuleManagerImpl* m_moduleManager = nullptr;
    NamingServiceImpl* m_namingService = nullptr;
    MenuBar* m_topNavMenu = nullptr;
    QPointer<QWidget> m_entryMechanism;
    SystemModule* m_systemModule = nullptr;
    GUIManagerServer* m_guiManagerServer = nullptr;
    QTZStatusBar* m_statusBar = nullptr;
    QTZMessageOutputControl* m_messageOutputControl = nullptr;
    std::unique_ptr<Orvanth::Locker> m_locker;
    // Widgets may take the locker from DDS threads; its first construction is guarded.
    std::mutex m_lockerMutex;
    QList<QPointer<QThread>> m_subscriberThreads;
    std::unique_ptr<QScriptEngine> m_scriptEngine;
    QPoint m_dialogLastPosition;
    QHash<QString, QPointer<QWidget>> m_screens;
};

#endif
