#include "ChildProcess.h"

#include <QElapsedTimer>

ChildProcess::ChildProcess() = default;

ChildProcess::~ChildProcess()
{
    stop();
}

bool ChildProcess::start(const QString& program, const QStringList& arguments,
                         const QProcessEnvironment& environment, const QString& readyText, int timeoutMs)
{
    m_process.setProcessEnvironment(environment);
    m_process.setReadChannel(QProcess::StandardOutput);
    // The child's diagnostics go where the test's go, so a failing test shows them.
    m_process.setProcessChannelMode(m_outputIncludesErrors ? QProcess::MergedChannels
                                                           : QProcess::ForwardedErrorChannel);
    m_process.start(program, arguments);
    if (!m_process.waitForStarted(timeoutMs))
        return false;
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < timeoutMs) {
        m_process.waitForReadyRead(100);
        m_output += m_process.readAllStandardOutput();
        if (m_output.contains(readyText.toUtf8()))
            return true;
        if (m_process.state() != QProcess::Running)
            return false;
    }
    return false;
}

int ChildProcess::stop(int graceMs)
{
    if (m_process.state() == QProcess::NotRunning)
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    m_process.terminate();
    if (!m_process.waitForFinished(graceMs)) {
        m_process.kill();
        m_process.waitForFinished(graceMs);
        return -1;
    }
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

QString ChildProcess::output()
{
    m_output += m_process.readAllStandardOutput();
    return QString::fromUtf8(m_output);
}
