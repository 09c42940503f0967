#include "DDS_SetupHook.h"

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>

namespace Orvanth {

namespace {
boost::mutex hookMutex;
boost::function<void(const std::string&)> setupHook;
} // namespace

void DDS_SetupHook::set(boost::function<void(const std::string&)> hook)
{
    boost::lock_guard<boost::mutex> lock(hookMutex);
    setupHook = hook;
}

void DDS_SetupHook::clear()
{
    set(boost::function<void(const std::string&)>());
}

void DDS_SetupHook::run(const std::string& topic)
{
    boost::function<void(const std::string&)> hook;
    {
        boost::lock_guard<boost::mutex> lock(hookMutex);
        hook = setupHook;
    }
    // Called without the lock, so a hook may block without blocking other setups' lookups.
    if (hook)
        hook(topic);
}

} // namespace Orvanth
