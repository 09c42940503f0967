#include "NamingServiceProcess.h"

#include <QElapsedTimer>
#include <QTcpSocket>
#include <QThread>

#include <atomic>
#include <thread>

bool NamingServiceProcess::start(int timeoutMs)
{
    // Another process may take the port between our probe and omniNames' bind: try a few.
    for (int attempt = 0; attempt < 5; ++attempt) {
        m_port = freeLoopbackPort();
        if (launch(nullptr, NetworkNamespaces::Instrument, timeoutMs))
            return true;
    }
    return false;
}

bool NamingServiceProcess::start(const NetworkNamespaces& network, NetworkNamespaces::Side side,
                                 const QString& address, quint16 port, int timeoutMs)
{
    m_address = address;
    m_port = port;
    return launch(&network, side, timeoutMs);
}

bool NamingServiceProcess::launch(const NetworkNamespaces* network, NetworkNamespaces::Side side, int timeoutMs,
                                  bool firstTime)
{
    const QString port = QString::number(m_port);
    // Started again, omniNames takes its port and names from the log in its data directory.
    const QStringList arguments = (firstTime ? QStringList{"-start", port} : QStringList())
        + QStringList{"-datadir", m_dataDir.path(), "-ORBendPoint", QStringLiteral("giop:tcp:%1:%2").arg(m_address, port)};
    const QString program = QStringLiteral(TZ_OMNINAMES);
    if (!m_dataDir.isValid()
        || !m_process.start(network ? network->wrapperProgram() : program,
                            network ? network->wrapperArguments(side, program, arguments) : arguments,
                            QProcessEnvironment::systemEnvironment(), QString(), timeoutMs))
        return false;
    // Asked from a thread in omniNames' own namespace.
    std::atomic<bool> answers{false};
    std::thread([&] {
        QElapsedTimer clock;
        clock.start();
        if (network && !network->enter(side, nullptr))
            return;
        while (!answers && clock.elapsed() < timeoutMs) {
            QTcpSocket socket;
            socket.connectToHost(m_address, m_port);
            if (!(answers = socket.waitForConnected(200)))
                QThread::msleep(50);
        }
    }).join();
    if (!answers)
        stop();
    return answers;
}
