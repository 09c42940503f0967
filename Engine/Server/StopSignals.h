#ifndef ORVANTH_STOPSIGNALS_H
#define ORVANTH_STOPSIGNALS_H

#include <csignal>
#include <initializer_list>

namespace Orvanth {

/**
 * SIGTERM, SIGINT and SIGHUP (a closing terminal) as a request to stop, for engine programs,
 * and any \a more signals the program answers itself.
 *
 * Build it first thing in main(), before any ORB or DDS thread exists: it blocks them;
 * the threads started later inherit the mask, so only wait() sees them.
 */
class StopSignals
{
public:
    explicit StopSignals(std::initializer_list<int> more = {});
    /// Whether \a signal asks to stop (one of SIGTERM, SIGINT and SIGHUP).
    static bool isStop(int signal);

    /// Blocks until one of them arrives; returns the signal.
    int wait() const;

private:
    sigset_t m_signals;
};

} // namespace Orvanth

#endif
