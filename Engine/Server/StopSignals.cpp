#include "StopSignals.h"

#include <pthread.h>

namespace Orvanth {

StopSignals::StopSignals(std::initializer_list<int> more)
{
    sigemptyset(&m_signals);
    sigaddset(&m_signals, SIGTERM);
    sigaddset(&m_signals, SIGINT);
    sigaddset(&m_signals, SIGHUP);
    for (const int signal : more)
        sigaddset(&m_signals, signal);
    pthread_sigmask(SIG_BLOCK, &m_signals, nullptr);
}

bool StopSignals::isStop(int signal)
{
    return signal == SIGTERM || signal == SIGINT || signal == SIGHUP;
}

int StopSignals::wait() const
{
    int signal = 0;
    sigwait(&m_signals, &signal);
    return signal;
}

} // namespace Orvanth
