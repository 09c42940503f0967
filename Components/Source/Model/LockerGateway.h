#ifndef LOCKERGATEWAY_H
#define LOCKERGATEWAY_H

#include "tzuicomponents_export.h"

#include <Orvanth.hh>

#include <memory>
#include <mutex>

namespace Orvanth {
class Locker;
}

/**
 * The process's one way to the engine locker: builds it on first use, answers its id
 * and authority to callers on any thread, and lets it go at shutdown.
 *
 * Widgets ask for the lock id from DDS threads while the GUI thread may be replacing
 * the locker or shutting down. Every call takes a counted reference to the locker under
 * a short lock and makes the remote call without it, so a locker released meanwhile is
 * deleted only when the last call on it returns, and no thread waits behind a remote
 * call to reach the pointer.
 */
class TZUICOMPONENTS_EXPORT LockerGateway
{
public:
    LockerGateway();
    /// Deletes the locker it owns, once no call uses it any more.
    ~LockerGateway();

    LockerGateway(const LockerGateway&) = delete;
    LockerGateway& operator=(const LockerGateway&) = delete;

    /// Builds the locker if there is none and the gateway is open; a failure is logged
    /// and retried at the next call.
    void verifyLockerCreated();
    /// The locker, built on first use; null when no lock manager could be reached or
    /// after close(). Valid until the locker is replaced or the gateway closed.
    Orvanth::Locker* getLocker();
    /// Replaces the locker and owns \a locker from now on. The previous one is not
    /// deleted: it belongs to whoever took it through getLocker().
    void setLocker(Orvanth::Locker* locker);
    /// The locker's current authority, asked anew each time; empty on a transient
    /// failure, without a locker and after close(). Other CORBA exceptions reach the
    /// caller.
    Orvanth::Lock_Authority getLockAuthority();
    /// The locker's id, asked anew each time; all zero when it cannot be had.
    Orvanth::LockerID getLockerID();

    /// Lets the locker go (a call under way keeps it until it returns) and builds no
    /// other: from now on the id is zero and the authority empty, without remote calls.
    void close();
    bool isClosed() const;

private:
    class OwnedLocker;

    /// A counted reference to the locker for one call, built first if need be; null
    /// when there is none. \a operation names the call in the line logged after close().
    std::shared_ptr<Orvanth::Locker> lockerForCall(const char* operation);

    // Held while a locker is built, which makes remote calls: a second thread that
    // needs a locker waits for the first one's instead of building its own.
    std::mutex m_creationMutex;
    // Guards m_locker and m_closed; never held across a remote call.
    mutable std::mutex m_mutex;
    std::shared_ptr<OwnedLocker> m_locker;
    bool m_closed = false;
};

#endif
