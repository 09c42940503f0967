#ifndef NAMINGSERVICEIMPL_H
#define NAMINGSERVICEIMPL_H

#include "tzuicomponents_export.h"

#include <Orvanth.hh>
#include <omniORB4/Naming.hh>

#include <QFuture>
#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

class ORB_wrapper_base;
class QTimer;

namespace Orvanth {
template <class T>
class DDS_Subscriber;
}

/**
 * Module discovery: keeps the engine GUI modules this user interface has loaded, found in
 * the naming service under Lumaro/local/GUI_ABLE and followed through the module
 * broadcast, and announces arrivals and departures to the host.
 *
 * The host builds one, registers it in the registry, calls initialize() (silent start-up
 * search) and postInit() (follow the broadcast), and connects the signals. Broadcasts are
 * handled on a DDS thread, so the signals come from that thread too: connect GUI-thread
 * receivers with an automatic connection. The module list is guarded by one mutex that is
 * never held during a remote call or an emission.
 *
 * When the naming service cannot be reached the failure is logged and a retry every
 * RetryInterval lists the modules again until it answers; modules found then are loaded
 * and announced with NewGUIAble.
 */
class TZUICOMPONENTS_EXPORT NamingServiceImpl : public QObject
{
    Q_OBJECT

public:
    /// How long a ping (and every later call through a module's reference) may take
    /// before the engine counts as dead.
    static constexpr std::chrono::milliseconds PingTimeout{1500};
    /// Time between attempts to reach the naming service after it failed.
    static constexpr std::chrono::milliseconds RetryInterval{2000};

    /// Starts the process ORB with the application's "-ORBInitRef" if it is not running
    /// and looks up the naming service's root context (a failure is logged; the lookup
    /// is repeated on first use).
    explicit NamingServiceImpl(QObject* parent = nullptr);
    /// Stops the broadcast subscription and waits for background work to end.
    ~NamingServiceImpl() override;

    /// Start-up search: loads every module listed in the naming service, in ascending
    /// index order, without announcing them (read them with getModuleList()). Each ping
    /// takes at most PingTimeout.
    Q_INVOKABLE void initialize();
    /// Starts following the module broadcast; a second call does nothing.
    Q_INVOKABLE void postInit();

    /// Loads the module \a idx if it is not loaded and announces it with NewGUIAble.
    Q_INVOKABLE void processGUIAble(const QString& idx);
    /// Processes the index after the one processed last time (starting at 1).
    Q_INVOKABLE void processNextGUIAble();
    /// Loads every listed module that is not loaded yet and emits NewGUIAble for each,
    /// also for one that failed to load. A binding whose name is not a module index
    /// makes it throw std::invalid_argument.
    Q_INVOKABLE void processReadyGUIAble();
    /// Loads the module \a idx without announcing it: resolve, narrow, ping.
    void fetchGUIAble(const QString& idx);
    /// The indices bound under Lumaro/local/GUI_ABLE. Throws
    /// Orvanth::Connection_errors::Not_Connected when the naming service cannot be
    /// reached and std::invalid_argument for a binding whose name is not a module index.
    QSet<int> fetchGUIableList();
    /// The listed indices that are not loaded; emits guiableListChanged(number listed)
    /// when there are any. Throws as fetchGUIableList().
    QList<int> fetchUnLoadedGUIableList();

    /// Pings every loaded module; those that do not answer within PingTimeout are
    /// dropped and announced with destroy(). Returns their indices.
    Q_INVOKABLE QStringList pingModules();
    /// Runs pingModules() off the calling thread every \a milliseconds; 0 stops it.
    void setPingInterval(int milliseconds);

    /// The loaded module \a idx, or nil. A new reference the caller's _var owns, so a
    /// module dropped meanwhile on another thread stays valid for the caller.
    Orvanth::GUI_Able_var getModule(const QString& idx) const;
    /// The indices of the loaded modules, in no defined order.
    QList<QString> getModuleList() const;
    /// The number of loaded modules.
    int guiAbleLoaded() const;

    /// The attribute \a name of every loaded module that has one. A module that fails
    /// is logged and skipped. The references are owned by the list's _vars: the caller
    /// has nothing to release.
    QList<Orvanth::EngineReadingBase_var> findAttribute(const QString& name);

    /// The object bound under \a name in the naming service's root context (the
    /// caller owns it), or nil when nothing is bound there or the service cannot be
    /// reached (logged).
    CORBA::Object_ptr resolve(const CosNaming::Name& name);

    /// The broadcast callback: "create,<index>" loads and announces a module,
    /// "destroy,<index>" drops it and emits destroy(). Anything else is logged and
    /// ignored. Public so that a payload can be handed over without DDS.
    void dds_callback(const char* topic, std::string payload);

signals:
    /// The module \a idx has been loaded.
    void NewGUIAble(QString idx);
    /// The module \a gui_able has gone.
    void destroy(QString gui_able);
    /// The naming service lists modules that are not loaded yet; \a listed is the
    /// number of modules it lists.
    void guiableListChanged(int listed);

private:
    /// Loads \a idx; true when this call stored it (not when it was there already).
    bool loadModule(const QString& idx);
    /// Drops a loaded module whose index names another object now: its engine ended
    /// without a word and bound the index again when it came back.
    void dropIfBoundAnew(const QString& idx);
    bool isLoaded(const QString& idx) const;
    /// FindChildContext of the module context; a naming failure arms the retry.
    std::vector<std::string> listModuleNames();
    /// Runs \a call on the naming client, one caller at a time (the client is not
    /// made for concurrent use).
    template <class Call>
    auto withNamingClient(Call call) -> decltype(call(std::declval<ORB_wrapper_base&>()));
    void noteNamingOutage(const QString& reason);
    void retryAfterOutage();
    void recoverModules();

    // Guards m_moduleList and m_nextIndex; never held across a remote call or an emission.
    // A standard mutex, which ThreadSanitizer sees, unlike Qt 5's futex-based one.
    mutable std::mutex m_mutex;
    QHash<QString, Orvanth::GUI_Able_var> m_moduleList;
    int m_nextIndex = 0;

    std::mutex m_namingMutex;
    std::unique_ptr<ORB_wrapper_base> m_orbWrapper;
    std::unique_ptr<Orvanth::DDS_Subscriber<std::string>> m_subscriber;

    std::atomic<bool> m_namingOutage{false};
    QTimer* m_retryTimer;
    QTimer* m_pingTimer;
    // Background runs, started and waited for in this object's thread only.
    QFuture<void> m_recovery;
    QFuture<void> m_pings;
};

#endif
