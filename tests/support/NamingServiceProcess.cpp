#include "NamingServiceProcess.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

NamingServiceProcess::NamingServiceProcess() = default;

NamingServiceProcess::~NamingServiceProcess()
{
    stop();
}

quint16 NamingServiceProcess::freeLoopbackPort()
{
    QTcpServer server;
    if (!server.listen(QHostAddress::LocalHost, 0))
        return 0;
    return server.serverPort();
}

bool NamingServiceProcess::start(int timeoutMs)
{
    if (!m_dataDir.isValid())
        return false;
    QElapsedTimer timer;
    timer.start();
    // Another process may take the port between our probe and omniNames' bind: try a few.
    for (int attempt = 0; attempt < 5 && timer.elapsed() < timeoutMs; ++attempt) {
        m_port = freeLoopbackPort();
        const QString port = QString::number(m_port);
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.setStandardOutputFile(QProcess::nullDevice());
        m_process.start(QStringLiteral(TZ_OMNINAMES),
                        {QStringLiteral("-start"), port, QStringLiteral("-datadir"), m_dataDir.path(),
                         QStringLiteral("-ORBendPoint"), QStringLiteral("giop:tcp:127.0.0.1:") + port});
        if (!m_process.waitForStarted(timeoutMs))
            return false;
        while (timer.elapsed() < timeoutMs && m_process.state() == QProcess::Running) {
            QTcpSocket socket;
            socket.connectToHost(QHostAddress::LocalHost, m_port);
            if (socket.waitForConnected(200))
                return true;
            QThread::msleep(50);
        }
        stop();
    }
    return false;
}

void NamingServiceProcess::stop()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.terminate();
    if (!m_process.waitForFinished(5000)) {
        m_process.kill();
        m_process.waitForFinished(5000);
    }
}

QString NamingServiceProcess::corbaname() const
{
    return QStringLiteral("corbaname::127.0.0.1:%1").arg(m_port);
}

std::vector<std::string> NamingServiceProcess::orbOptions() const
{
    return {"-ORBInitRef", ("NameService=" + corbaname()).toStdString()};
}

QStringList NamingServiceProcess::orbArguments() const
{
    return {QStringLiteral("-ORBInitRef"), QStringLiteral("NameService=") + corbaname()};
}

QProcessEnvironment NamingServiceProcess::childEnvironment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("ORBInitRef"), QStringLiteral("NameService=") + corbaname());
    return environment;
}
