#ifndef NAMINGSERVICEPROCESS_H
#define NAMINGSERVICEPROCESS_H

#include "ChildProcess.h"
#include "NetworkNamespaces.h"

#include <QTcpServer>
#include <QTemporaryDir>

#include <string>
#include <vector>

/**
 * A real omniNames for one test or benchmark: listens on a free 127.0.0.1 port (or on
 * a given address and port inside a network namespace), keeps its data in a temporary
 * directory and is stopped by PID when the object goes.
 */
class NamingServiceProcess
{
public:
    /// Starts omniNames and waits (bounded) until it accepts connections.
    bool start(int timeoutMs = 10000);
    /// The same at \a address:\a port inside the namespace \a side of \a network: the
    /// naming service of an instrument with engines on other hosts.
    bool start(const NetworkNamespaces& network, NetworkNamespaces::Side side, const QString& address, quint16 port,
               int timeoutMs = 10000);
    void stop() { m_process.stop(); }
    /// Starts the stopped omniNames again on the same address, port and data directory:
    /// it comes back with the names bound before.
    bool restart(int timeoutMs = 10000) { return launch(nullptr, NetworkNamespaces::Instrument, timeoutMs, false); }

    quint16 port() const { return m_port; }
    qint64 pid() const { return m_process.pid(); }
    /// "corbaname::127.0.0.1:PORT"
    QString corbaname() const { return QStringLiteral("corbaname::%1:%2").arg(m_address).arg(m_port); }
    /// {"-ORBInitRef", "NameService=corbaname::127.0.0.1:PORT"}
    std::vector<std::string> orbOptions() const { return {"-ORBInitRef", "NameService=" + corbaname().toStdString()}; }
    /// The same options as text, for a child program's command line.
    QStringList orbArguments() const { return {QStringLiteral("-ORBInitRef"), "NameService=" + corbaname()}; }
    /// The system environment plus ORBInitRef, which omniORB reads in a child process.
    QProcessEnvironment childEnvironment() const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ORBInitRef"), "NameService=" + corbaname());
        return environment;
    }

    /// A free TCP port on 127.0.0.1 at the time of the call.
    static quint16 freeLoopbackPort()
    {
        QTcpServer server;
        return server.listen(QHostAddress::LocalHost, 0) ? server.serverPort() : 0;
    }

private:
    bool launch(const NetworkNamespaces* network, NetworkNamespaces::Side side, int timeoutMs, bool firstTime = true);

    QTemporaryDir m_dataDir;
    ChildProcess m_process;
    QString m_address = QStringLiteral("127.0.0.1");
    quint16 m_port = 0;
};

#endif
