#ifndef ORVANTH_STOPSIGNALS_H
#define ORVANTH_STOPSIGNALS_H

#include <csignal>

namespace Orvanth {

/**
 * SIGTERM and SIGINT as a request to stop, for engine programs.
 *
 * Build it first thing in main(), before any ORB or DDS thread exists: it blocks both
 * signals, the threads started later inherit the mask, and so only wait() sees them.
 */
class StopSignals
{
public:
    StopSignals();

    /// Blocks until SIGTERM or SIGINT arrives; returns the signal.
    int wait() const;

private:
    sigset_t m_signals;
};

} // namespace Orvanth

#endif
