#ifndef ATTRIBUTEFEED_H
#define ATTRIBUTEFEED_H

#include "tzuicomponents_export.h"

#include <Orvanth.hh>

#include <QObject>
#include <QPointer>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>

class NamingServiceImpl;
namespace Orvanth {
class DDS_BaseObj;
}

/**
 * One bound engine attribute as a widget sees it: finds and narrows the attribute,
 * follows its lock notices, asks MayAccess, takes and gives back the engine's control
 * lock and sends a void attribute's Set. It hands plain outcomes to the GUI thread
 * through its signals, so the widget that owns it knows no transport.
 *
 * Every remote call runs on the global thread pool, one call of a feed after the other;
 * lock notices arrive on DDS threads, which only hand them on. Each binding starts a new
 * epoch: outcomes of calls started before it are dropped. Lives in the GUI thread.
 *
 * A feed whose engine is lost keeps what it was bound to and binds again by itself when
 * module discovery announces a module: by name, or by reference (the same reference when
 * its engine answers it again, otherwise the attribute of that name). While a module
 * goes, every bound feed asks its lock state once more, which finds a lost engine.
 */
class TZUICOMPONENTS_EXPORT AttributeFeed : public QObject
{
    Q_OBJECT

public:
    /// How long one call on a bound attribute may take before it fails with
    /// CORBA::TIMEOUT: a hung engine holds a pool thread no longer than this.
    static constexpr std::chrono::milliseconds CallTimeout{2000};

    class Link;

    /**
     * What work on another thread may use of the feed: its engine references as they
     * are when it runs, its attribute name, and ways back into the GUI thread that do
     * nothing once the feed is gone or bound anew. Cheap to copy.
     */
    class TZUICOMPONENTS_EXPORT CallHandle
    {
    public:
        Orvanth::EngineReadingBase_var reading() const;
        QString attributeName() const;
        /// engineLost(\a reason) in the GUI thread, unless the binding has changed.
        void reportDisconnect(const QString& reason) const;
        /// exceptionMessage(\a message) from the GUI thread.
        void reportException(const QString& message) const;

    private:
        friend class AttributeFeed;
        CallHandle(std::shared_ptr<Link> link, quint64 generation);

        std::shared_ptr<Link> m_link;
        quint64 m_generation;
    };

    /// Binds a reading the feed found by name; the owner sets it to its own (virtual)
    /// binding so that found and given readings take the same way.
    using Binder = std::function<void(Orvanth::EngineReadingBase_ptr reading)>;

    explicit AttributeFeed(QObject* parent = nullptr);
    /// Gives back nothing (the owner releases its lock first) and ends the lock
    /// subscriptions, waiting for a notice being handled; waits for no engine.
    ~AttributeFeed() override;

    QString attributeName() const;
    void setAttributeName(const QString& name);
    void setBinder(Binder binder);

    /**
     * Binds \a reading (nil unbinds): narrows it to a lockable attribute, subscribes to
     * its lock topic with \a updateDelayMs as minimum separation and asks its lock state.
     * bindingFinished() follows; a nil reading emits it before this returns. Each binding
     * adds a subscription that stays until the feed goes.
     */
    void bind(Orvanth::EngineReadingBase_ptr reading, int updateDelayMs);
    /**
     * Finds the attribute name among the modules module discovery has loaded and binds
     * the first match through the binder. A name no module has ends in
     * attributeNotFound(); the feed then tries again whenever discovery announces a
     * module, as it does after a lost engine.
     */
    void bindByName();
    /// Starts a new epoch with no reading; its subscriptions stay.
    void unbind();
    /// Starts a new epoch with no reading, keeps the lost one and binds again once module
    /// discovery announces a module that may have brought the engine back.
    void loseEngine();

    bool hasReading() const;
    bool isBound() const;
    /// Whether the engine was lost and the feed has not been bound since.
    bool isLost() const { return m_lost; }
    Orvanth::EngineReadingBase_var reading() const;
    /// The index of the engine module the attribute was found in, empty when not known
    /// (a reading given by reference).
    QString moduleIndex() const { return m_moduleIndex; }

    /// Takes the engine lock with the registry's authority: lockTaken() or lockRefused().
    void acquireLock();
    /// Gives back the engine lock a touch took, if any.
    void releaseLock();
    /// Asks MayAccess once more; any number of asks before it runs make one question.
    void requestLockQuery();

    /// Checks that the bound reading is a void attribute, and logs it when not.
    void checkActionType();
    /// Sends a void attribute's Set on the pool, beside the feed's queued calls.
    void sendAction();
    /// Sends a void attribute's Set on the calling thread.
    static void sendAction(const CallHandle& engine);

    CallHandle callHandle() const;
    /// Runs \a call on the pool after the feed's calls already queued.
    void runCall(std::function<void(const CallHandle&)> call);

signals:
    /// A binding attempt has ended; \a locked is the attribute's lock state when bound.
    void bindingFinished(bool bound, bool locked);
    /// No module has the attribute name (only after bindByName()).
    void attributeNotFound();
    /// A lock notice or a question brought a new lock state.
    void lockChanged(bool locked);
    /// A call of the current binding found the engine gone (\a reason names the CORBA
    /// failure). Every failing call reports it; the owner tells a loss from the next.
    void engineLost(const QString& reason);
    /// A touch's lock call ended: \a taken with its \a handle, or not taken because the
    /// feed was unbound meanwhile.
    void lockTaken(bool taken, qint32 handle);
    /// The engine refused the lock; \a reason describes its exception.
    void lockRefused(const QString& reason);
    /// A failure meant for the status bar's message list.
    void exceptionMessage(const QString& message);

private:
    class LockStateApplier;

    void followDiscovery(NamingServiceImpl* discovery);
    void adoptSubscription(Orvanth::DDS_BaseObj* subscriber);
    void finishBinding(quint64 generation, bool bound, bool locked);
    void notFound(quint64 generation);
    void applyPendingLockAnswer();
    void lose(quint64 generation, const QString& reason);
    quint64 renewGeneration();
    void moduleAnnounced();
    void moduleGone();
    /// Looks for the lost attribute off the GUI thread and binds what answers.
    void recover();
    void recoveryEnded();

    // The engine references, shared with work on the pool and with DDS callbacks.
    std::shared_ptr<Link> m_link;
    struct Subscriptions;
    std::unique_ptr<Subscriptions> m_subscriptions;
    Binder m_binder;
    quint64 m_generation = 0;
    int m_updateDelayMs = 0;
    bool m_bindByName = false;
    QPointer<NamingServiceImpl> m_followedDiscovery;
    bool m_lost = false;
    // Whether a lock was asked for since the last release: a widget that never took
    // one gives nothing back, and queues nothing when it goes.
    bool m_lockAsked = false;
    // What a lost binding held, tried first when the feed was bound by reference.
    Orvanth::EngineReadingBase_var m_lostReading;
    QString m_moduleIndex;
    // One recovery at a time; an announcement during one asks for another after it.
    bool m_recovering = false;
    bool m_recoverAgain = false;
};

#endif
