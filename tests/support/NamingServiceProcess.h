#ifndef NAMINGSERVICEPROCESS_H
#define NAMINGSERVICEPROCESS_H

#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

#include <string>
#include <vector>

/**
 * A real omniNames for one test: listens on a free 127.0.0.1 port, keeps its data in a
 * temporary directory and is stopped by PID when the object goes.
 */
class NamingServiceProcess
{
public:
    NamingServiceProcess();
    ~NamingServiceProcess();

    /// Starts omniNames and waits (bounded) until it accepts connections.
    bool start(int timeoutMs = 10000);
    void stop();

    quint16 port() const { return m_port; }
    qint64 pid() const { return m_process.processId(); }
    /// "corbaname::127.0.0.1:PORT"
    QString corbaname() const;
    /// {"-ORBInitRef", "NameService=corbaname::127.0.0.1:PORT"}
    std::vector<std::string> orbOptions() const;
    /// The same options as text, for a child program's command line.
    QStringList orbArguments() const;
    /// The system environment plus ORBInitRef, which omniORB reads in a child process.
    QProcessEnvironment childEnvironment() const;

    /// A free TCP port on 127.0.0.1 at the time of the call.
    static quint16 freeLoopbackPort();

private:
    QTemporaryDir m_dataDir;
    QProcess m_process;
    quint16 m_port = 0;
};

#endif
