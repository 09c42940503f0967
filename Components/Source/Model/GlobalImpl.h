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

#include <atomic>
#include <memory>
#include <mutex>

class DesktopImpl;
class DesktopManagerImpl;
class GUIManagerServer;
class LanguageSwitch;
class LockerGateway;
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
 * bar, status bar, ...) through the setters and keeps owning them; the registry forgets
 * one that is destroyed. The registry owns what it creates itself: the system-module
 * table, the diagnostic output switch, the process launcher, a script engine and the
 * gateway to the engine locker. It lives as a child of the application object, named
 * "GlobalImpl", and is built and deleted in the GUI thread.
 */
class TZUICOMPONENTS_EXPORT GlobalImpl : public QObject
{
    Q_OBJECT

public:
    /// The registry, built on first use in the GUI thread; the application object must
    /// exist. Safe from any thread, but another thread gets null (and a log line) while
    /// there is no registry: one built there would have its parent in the GUI thread.
    static GlobalImpl* getInstance();
    /// The registry if there is one, never building one: for code that runs at or after
    /// shutdown. Like getInstance(), only the GUI thread searches the application
    /// object's children for a registry not yet known.
    static GlobalImpl* existingInstance();
    /// The locker gateway of the current registry, or null when there is none. For
    /// threads other than the GUI thread: the gateway stays valid for as long as it is
    /// held, even when the registry is deleted meanwhile (it then answers zero ids and
    /// empty authorities without remote calls), which a registry pointer does not.
    static std::shared_ptr<LockerGateway> currentLockerGateway();

    /// For a host that builds the registry itself with the application object as parent;
    /// getInstance() returns that one.
    explicit GlobalImpl(QObject* parent);
    /// Stops the subscriber threads (asks them to quit, waits a bounded time) before it
    /// lets the locker go, so that their last callbacks still reach the engine.
    ~GlobalImpl() override;

    // Peers held by the host. Each setter takes the peer's pointer (or what converts to
    // one, such as a QPointer, or nullptr); they are templates only so that this header
    // gets by with declarations of the peers' classes: include the peer's header where
    // you call one.
    DesktopImpl* desktop() const { return m_desktop.get(); }
    template <class DesktopPointer>
    void setDesktop(const DesktopPointer& desktop) { m_desktop.set(desktop); }
    DesktopManagerImpl* desktopManager() const { return m_desktopManager.get(); }
    template <class ManagerPointer>
    void setDesktopManager(const ManagerPointer& manager) { m_desktopManager.set(manager); }
    MenuContainerManager* menuContainerManager() const { return m_menuContainerManager.get(); }
    template <class ManagerPointer>
    void setMenuContainerManager(const ManagerPointer& manager) { m_menuContainerManager.set(manager); }
    /// Kept for the host only; the library never uses it, nor knows whether it is a QObject.
    ModuleManagerImpl* moduleManager() const { return m_moduleManager; }
    void setModuleManager(ModuleManagerImpl* manager) { m_moduleManager = manager; }
    NamingServiceImpl* namingService() const { return m_namingService.get(); }
    template <class DiscoveryPointer>
    void setNamingService(const DiscoveryPointer& namingService) { m_namingService.set(namingService); }
    MenuBar* topNavMenu() const { return m_topNavMenu.get(); }
    template <class BarPointer>
    void setTopNavMenu(const BarPointer& menuBar) { m_topNavMenu.set(menuBar); }
    SystemModule* systemModule() const { return m_systemModule.get(); }
    template <class ModulePointer>
    void setSystemModule(const ModulePointer& systemModule) { m_systemModule.set(systemModule); }
    QTZStatusBar* statusBar() const { return m_statusBar.get(); }
    template <class BarPointer>
    void setStatusBar(const BarPointer& statusBar) { m_statusBar.set(statusBar); }
    GUIManagerServer* guiManagerServer() const { return m_guiManagerServer.get(); }
    template <class ServerPointer>
    void setGUIManagerServer(const ServerPointer& server) { m_guiManagerServer.set(server); }
    QPoint dialogLastPosition() const { return m_dialogLastPosition; }
    void setDialogLastPosition(const QPoint& position) { m_dialogLastPosition = position; }
    /// The host's script engine, made on first use in the registry's thread.
    QScriptEngine* scriptEngine() const;
    /// The switch that follows the option "currentLanguage"; hosts add their catalogs to it.
    LanguageSwitch* languageSwitch() const { return m_languageSwitch; }

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
    /// The screen registered as \a name, or null; unlike getScreen(), an unknown name
    /// is not entered (for names from outside, which must not grow the table).
    QWidget* findScreen(const QString& name) const;
    /// Whether \a widget is registered under some name.
    bool isScreen(const QWidget* widget) const;
    bool removeScreen(const QString& name);
    /// All registered names, in no defined order.
    QList<QString> getScreenList() const;
    /// The same names, from any thread and without waiting for the GUI thread; empty
    /// once the registry is gone.
    static QList<QString> screenNamesFromAnyThread();
    /// The screen registered as \a name when it is a \a type, or null; from any thread and
    /// without waiting for the GUI thread. Only to hand on: the widget may be going while
    /// the caller holds it, so it is used in the GUI thread after isScreen() says yes.
    static QWidget* screenFromAnyThread(const QString& name, const QMetaObject& type = QWidget::staticMetaObject);
    /// Registers \a replacement under the name of \a registered; nothing happens when
    /// \a registered is not a registered screen.
    void swapMenuItems(QWidget* registered, QWidget* replacement);

    /// The window that holds \a widget: its nearest ancestor (not \a widget itself) named
    /// "TopContainerObject", as every standard container and drawer is; null if none.
    static QWidget* getParentWindow(QWidget* widget);
    /// The title of the window that holds \a widget, \a widget included: a container's
    /// untranslated title, or a drawer's caption; empty if there is no window.
    static QString getParentWindowName(QWidget* widget);

    /// The host hands over threads that must stop when the registry goes: they are
    /// asked to quit (their event loop and, for threads without one, an interruption
    /// request) and waited for a bounded time, not deleted.
    void storeSubscriberThread(QThread* thread);

    // The engine locker, through the gateway; see LockerGateway.
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

    /// The most rows, and the most columns, a desktop grid has; a larger "-grid" gives
    /// no snap points.
    static constexpr int MaxGridSide = 64;
    /// The snap points of the desktop grid, row by row; computed once from the
    /// application options "-res" and "-grid".
    QList<QPoint> gridPoints;
    /// Set by the host; while true, lockable containers cannot be dragged.
    bool layoutLocked = false;

private:
    // A peer the host owns, read as null once it is destroyed. The typed pointer is kept
    // beside a guard on its QObject because the guard can only be made where the peer's
    // class is complete: in set(), which is instantiated at the caller.
    template <class Peer>
    class PeerPointer
    {
    public:
        Peer* get() const { return m_object ? m_peer : nullptr; }
        template <class Pointer> void set(const Pointer& pointer)
        {
            Peer* const peer = pointer;
            m_peer = peer;
            m_object = peer;
        }

    private:
        Peer* m_peer = nullptr;
        QPointer<QObject> m_object;
    };

    static GlobalImpl* findOrBuild(bool build);
    static GlobalImpl* publish(GlobalImpl* registry);
    void computeGridPoints();
    void stopSubscriberThreads();
    // Keeps screenNamesFromAnyThread() in line with the table.
    void publishScreenNames(const QObject* going = nullptr);
    void screenDestroyed(QObject* screen);

    // Read without a lock by getInstance() on any thread; written under the instance
    // mutex in GlobalImpl.cpp.
    static std::atomic<GlobalImpl*> single;

    PeerPointer<DesktopImpl> m_desktop;
    PeerPointer<DesktopManagerImpl> m_desktopManager;
    PeerPointer<MenuContainerManager> m_menuContainerManager;
    ModuleManagerImpl* m_moduleManager = nullptr;
    PeerPointer<NamingServiceImpl> m_namingService;
    PeerPointer<MenuBar> m_topNavMenu;
    QPointer<QWidget> m_entryMechanism;
    PeerPointer<SystemModule> m_systemModule;
    PeerPointer<GUIManagerServer> m_guiManagerServer;
    PeerPointer<QTZStatusBar> m_statusBar;
    QTZMessageOutputControl* m_messageOutputControl = nullptr;
    LanguageSwitch* m_languageSwitch = nullptr;
    // Shared with threads that hold it through currentLockerGateway().
    const std::shared_ptr<LockerGateway> m_lockerGateway;
    QList<QPointer<QThread>> m_subscriberThreads;
    mutable std::once_flag m_scriptEngineMade;
    mutable std::unique_ptr<QScriptEngine> m_scriptEngine;
    QPoint m_dialogLastPosition;
    QHash<QString, QPointer<QWidget>> m_screens;
};

#endif
