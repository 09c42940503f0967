#include "LockerGateway.h"

#include "ApplicationOrb.h"
#include "CorbaFailure.h"
#include "Locker.h"

#include <QDebug>

#include <atomic>

// A locker and whether the gateway still deletes it. One replaced through setLocker
// goes back to whoever took it, even while a call on another thread still holds it.
class LockerGateway::OwnedLocker
{
public:
    explicit OwnedLocker(Orvanth::Locker* locker)
        : locker(locker)
    {
    }
    ~OwnedLocker()
    {
        if (owned)
            delete locker;
    }

    Orvanth::Locker* const locker;
    std::atomic<bool> owned{true};
};

LockerGateway::LockerGateway() = default;

LockerGateway::~LockerGateway() = default;

void LockerGateway::verifyLockerCreated()
{
    {
        std::lock_guard<std::mutex> guard(m_mutex);
        if (m_locker || m_closed)
            return;
    }
    std::lock_guard<std::mutex> creation(m_creationMutex);
    {
        std::lock_guard<std::mutex> guard(m_mutex);
        if (m_locker || m_closed)
            return;
    }
    std::unique_ptr<Orvanth::Locker> built;
    try {
        ApplicationOrb::start();
        built = std::make_unique<Orvanth::Locker>();
    } catch (...) {
        qDebug() << "Failed to instantiate UI Locker";
        return;
    }
    std::lock_guard<std::mutex> guard(m_mutex);
    // Closed or handed a locker while this one was being built: this one is not needed
    // and goes when the function returns, after the guard.
    if (!m_locker && !m_closed)
        m_locker = std::make_shared<OwnedLocker>(built.release());
}

Orvanth::Locker* LockerGateway::getLocker()
{
    verifyLockerCreated();
    std::lock_guard<std::mutex> guard(m_mutex);
    return m_locker ? m_locker->locker : nullptr;
}

void LockerGateway::setLocker(Orvanth::Locker* locker)
{
    std::shared_ptr<OwnedLocker> previous;
    std::lock_guard<std::mutex> guard(m_mutex);
    previous = std::move(m_locker);
    if (previous)
        previous->owned = false;
    if (locker)
        m_locker = std::make_shared<OwnedLocker>(locker);
}

void LockerGateway::close()
{
    std::shared_ptr<OwnedLocker> released;
    std::lock_guard<std::mutex> guard(m_mutex);
    m_closed = true;
    // Deleted after the guard is let go, unless a call under way still holds it.
    released = std::move(m_locker);
}

bool LockerGateway::isClosed() const
{
    std::lock_guard<std::mutex> guard(m_mutex);
    return m_closed;
}

std::shared_ptr<Orvanth::Locker> LockerGateway::lockerForCall(const char* operation)
{
    verifyLockerCreated();
    std::shared_ptr<OwnedLocker> owned;
    bool closed = false;
    {
        std::lock_guard<std::mutex> guard(m_mutex);
        owned = m_locker;
        closed = m_closed;
    }
    if (closed)
        qDebug() << "UserInterface - Locker released at shutdown, not calling" << operation;
    if (!owned)
        return nullptr;
    // Shares the count of the owning record, which deletes the locker.
    return std::shared_ptr<Orvanth::Locker>(owned, owned->locker);
}

Orvanth::Lock_Authority LockerGateway::getLockAuthority()
{
    Orvanth::Lock_Authority authority;
    const std::shared_ptr<Orvanth::Locker> locker = lockerForCall("LockAuthority");
    if (!locker)
        return authority;
    try {
        Orvanth::Lock_Authority_var current = locker->LockAuthority();
        authority = current.in();
    } catch (const CORBA::TRANSIENT&) {
        qDebug() << "UserInterface - Failed to get locking authority";
    }
    return authority;
}

Orvanth::LockerID LockerGateway::getLockerID()
{
    Orvanth::LockerID id{};
    const std::shared_ptr<Orvanth::Locker> locker = lockerForCall("MyLockerID");
    if (!locker)
        return id;
    try {
        id = locker->MyLockerID();
    } catch (const CORBA::TRANSIENT&) {
        qDebug() << "UserInterface - Failed to acquire lock id, CORBA::TRANSIENT when requesting Orvanth::Locker::MyLockerID";
    } catch (const CORBA::Exception& exception) {
        // The registry's historic position, which log readers search for.
        CorbaFailure::logAtPosition(exception, "Components/Source/Model/GlobalImpl", 285);
    }
    return id;
}
