#ifndef ORVANTH_DDS_SETUPHOOK_H
#define ORVANTH_DDS_SETUPHOOK_H

#include <boost/function.hpp>

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
    static void set(boost::function<void(const std::string& topic)> hook);
    static void clear();
    /// Calls the hook, if any, on the calling (setup) thread.
    static void run(const std::string& topic);
};

} // namespace Orvanth

#endif
