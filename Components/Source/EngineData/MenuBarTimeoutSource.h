#ifndef MENUBARTIMEOUTSOURCE_H
#define MENUBARTIMEOUTSOURCE_H

#include "tzuicomponents_export.h"

#include <functional>
#include <optional>

/**
 * The navigation bar's time-out as the engines give it: the long attribute
 * "MenuBarTimeout1", found through module discovery.
 */
class TZUICOMPONENTS_EXPORT MenuBarTimeoutSource
{
public:
    /// Reads the time-out in seconds, or nothing when no engine serves it or the call
    /// fails (logged). Blocks for up to the call time-out: not for the GUI thread.
    using Read = std::function<std::optional<int>()>;

    /// A reader that asks the registry's module discovery; empty when there is none.
    static Read fromEngines();
};

#endif
