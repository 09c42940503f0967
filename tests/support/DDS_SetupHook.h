#ifndef ORVANTH_DDS_SETUPHOOK_H
#define ORVANTH_DDS_SETUPHOOK_H

#include <functional>
#include <mutex>
#include <string>

namespace Orvanth {

/**
 * A process-wide function that a typed subscriber's setup thread calls with the topic
 * name once its data reader exists and before the setup counts as done.
 *
 * Only in tests: subscribers compiled with ORVANTH_DDS_SETUP_HOOK_HEADER call it, so a
 * test can hold a setup in the window where samples may already arrive but must not
 * reach the callback yet.
 */
class DDS_SetupHook
{
public:
    static void set(std::function<void(const std::string& topic)> hook)
    {
        std::lock_guard<std::mutex> lock(s_mutex);
        s_hook = std::move(hook);
    }

    static void clear() { set({}); }

    /// Calls the hook, if any, on the calling (setup) thread; without the lock, so that a
    /// hook may block without blocking other setups.
    static void run(const std::string& topic)
    {
        std::unique_lock<std::mutex> lock(s_mutex);
        const std::function<void(const std::string&)> hook = s_hook;
        lock.unlock();
        if (hook)
            hook(topic);
    }

private:
    static inline std::mutex s_mutex;
    static inline std::function<void(const std::string&)> s_hook;
};

} // namespace Orvanth

#endif
