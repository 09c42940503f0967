#include "LockManagerServant.h"

#include <chrono>

namespace Orvanth {

LockManagerServant::LockManagerServant()
    // A new session per manager, so that ids of a previous engine run are not mistaken for current ones.
    : m_session(CORBA::ULongLong(std::chrono::system_clock::now().time_since_epoch().count()))
{
}

LockerID LockManagerServant::LockerIdentity(const char* owner)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    auto found = m_lockers.find(owner);
    if (found == m_lockers.end()) {
        LockerID id;
        id.owner = m_lockers.size() + 1;
        id.session = m_session;
        id.serial = 0;
        found = m_lockers.emplace(owner, id).first;
    }
    return found->second;
}

Lock_Authority* LockManagerServant::Authority(const LockerID& id)
{
    if (id.session != m_session)
        throw Runtime_errors::Generic("authority refused: locker id of another session");
    Lock_Authority_var authority = new Lock_Authority;
    authority->length(1);
    authority[0].owner = id.owner;
    authority[0].session = id.session;
    authority[0].rights = 1;
    return authority._retn();
}

std::size_t LockManagerServant::lockerCount() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_lockers.size();
}

} // namespace Orvanth
