#include "Locker.h"

#include "ORB_wrapper_base.h"

#include <atomic>
#include <unistd.h>

namespace Orvanth {

namespace {
std::atomic<int> lockerSerial{0};
}

Locker::Locker()
    : m_orb(std::make_unique<ORB_wrapper_base>())
{
    char host[256] = {};
    gethostname(host, sizeof host - 1);
    m_owner = std::string(host) + ":" + std::to_string(getpid()) + ":" + std::to_string(++lockerSerial);

    CORBA::Object_var object = m_orb->ResolveName(ManagerPath);
    if (CORBA::is_nil(object))
        throw Connection_errors::Not_Connected((std::string("no lock manager bound as ") + ManagerPath).c_str());
    try {
        m_manager = LockManager::_narrow(object);
    } catch (const CORBA::SystemException& e) {
        throw Connection_errors::Not_Connected((std::string("lock manager unreachable: ") + e._name()).c_str());
    }
    if (CORBA::is_nil(m_manager))
        throw Connection_errors::Not_Connected((std::string(ManagerPath) + " is not a lock manager").c_str());
    // Registers this process; a dead manager throws here, so a Locker that exists has spoken to one.
    m_manager->LockerIdentity(m_owner.c_str());
}

Locker::~Locker() = default;

Lock_Authority* Locker::LockAuthority()
{
    const LockerID id = m_manager->LockerIdentity(m_owner.c_str());
    return m_manager->Authority(id);
}

LockerID Locker::MyLockerID()
{
    return m_manager->LockerIdentity(m_owner.c_str());
}

} // namespace Orvanth
