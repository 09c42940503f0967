#ifndef ORVANTH_LOCKER_H
#define ORVANTH_LOCKER_H

#include "OrvanthNames.h"

#include <Orvanth.hh>

#include <memory>
#include <string>

class ORB_wrapper_base;

namespace Orvanth {

/**
 * This process's locker: its identity towards engine attributes and the authority it
 * hands to their Lock calls.
 *
 * Construction finds the engine's lock manager (bound as Names::LockerPath) through the
 * running process ORB and registers this process with it; it throws
 * Connection_errors::Not_Connected when the manager cannot be reached. Neither the id nor the authority is cached: each call
 * asks the manager, so a restarted engine is noticed at the next call.
 */
class Locker
{
public:
    static constexpr const char* ManagerPath = Names::LockerPath;

    Locker();
    ~Locker();

    Locker(const Locker&) = delete;
    Locker& operator=(const Locker&) = delete;

    /// The authority this locker hands to EngineAttribBase::Lock (remote call).
    Lock_Authority* LockAuthority();

    /// This process's locker id (remote call).
    LockerID MyLockerID();

    /// The name under which this locker registered with the manager.
    const std::string& ownerName() const { return m_owner; }

private:
    std::unique_ptr<ORB_wrapper_base> m_orb;
    LockManager_var m_manager;
    std::string m_owner;
};

} // namespace Orvanth

#endif
