#ifndef ORVANTH_LOCKMANAGERSERVANT_H
#define ORVANTH_LOCKMANAGERSERVANT_H

#include <Orvanth.hh>

#include <map>
#include <mutex>
#include <string>

namespace Orvanth {

/// The engine's lock manager: gives each locker (named by its owner text) an id and
/// the authority that attributes accept from it.
class LockManagerServant : public virtual POA_Orvanth::LockManager
{
public:
    LockManagerServant();

    LockerID LockerIdentity(const char* owner) override;
    Lock_Authority* Authority(const LockerID& id) override;

    /// How many lockers have registered.
    std::size_t lockerCount() const;

private:
    mutable std::mutex m_mutex;
    CORBA::ULongLong m_session;
    std::map<std::string, LockerID> m_lockers;
};

} // namespace Orvanth

#endif
