#include "StopSignalNotifier.h"

#include <QDebug>
#include <QSocketNotifier>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int signalSockets[2] = {-1, -1};
constexpr int stopSignals[] = {SIGTERM, SIGINT, SIGHUP};

void writeSignal(int signal)
{
    const unsigned char number = static_cast<unsigned char>(signal);
    // Nothing to do if the pipe is full: a stop is already on its way.
    [[maybe_unused]] const ssize_t written = ::write(signalSockets[0], &number, 1);
}

} // namespace

StopSignalNotifier::StopSignalNotifier(QObject* parent)
    : QObject(parent)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, signalSockets) != 0) {
        qWarning() << "UserInterface - Demo host - no stop signals: socketpair failed";
        return;
    }
    m_notifier = new QSocketNotifier(signalSockets[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &StopSignalNotifier::readSignal);

    struct sigaction action = {};
    action.sa_handler = writeSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signal : stopSignals)
        ::sigaction(signal, &action, nullptr);
}

StopSignalNotifier::~StopSignalNotifier()
{
    for (const int signal : stopSignals)
        std::signal(signal, SIG_DFL);
    delete m_notifier;
    for (int& socket : signalSockets) {
        if (socket >= 0)
            ::close(socket);
        socket = -1;
    }
}

void StopSignalNotifier::readSignal()
{
    unsigned char number = 0;
    if (::read(signalSockets[1], &number, 1) == 1) {
        qDebug() << "UserInterface - Demo host - stopping on signal" << int(number);
        emit stopRequested(number);
    }
}
