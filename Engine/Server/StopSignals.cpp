#include "StopSignals.h"

#include <pthread.h>

namespace Orvanth {

StopSignals::StopSignals()
{
    sigemptyset(&m_signals);
    sigaddset(&m_signals, SIGTERM);
    sigaddset(&m_signals, SIGINT);
    sigaddset(&m_signals, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &m_signals, nullptr);
}

int StopSignals::wait() const
{
    int signal = 0;
    sigwait(&m_signals, &signal);
    return signal;
}

} // namespace Orvanth
