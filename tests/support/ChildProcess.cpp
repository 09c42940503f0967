#include "ChildProcess.h"

#include <QCoreApplication>
#include <QElapsedTimer>

bool ChildProcess::start(const QString& program, const QStringList& arguments,
                         const QProcessEnvironment& environment, const QString& readyText, int timeoutMs)
{
    m_process.setProcessEnvironment(environment);
    m_process.setReadChannel(QProcess::StandardOutput);
    // The child's diagnostics go where the test's go, so a failing test shows them.
    m_process.setProcessChannelMode(m_outputIncludesErrors ? QProcess::MergedChannels
                                                           : QProcess::ForwardedErrorChannel);
    m_process.start(program, arguments);
    QElapsedTimer timer;
    timer.start();
    if (!m_process.waitForStarted(timeoutMs))
        return false;
    while (!readyText.isEmpty() && timer.elapsed() < timeoutMs && isRunning() && !output().contains(readyText))
        m_process.waitForReadyRead(100);
    return readyText.isEmpty() || output().contains(readyText);
}

int ChildProcess::stop(int graceMs)
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.terminate();
        if (!m_process.waitForFinished(graceMs)) {
            m_process.kill();
            m_process.waitForFinished(graceMs);
            return -1;
        }
    }
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

int ChildProcess::wait(int timeoutMs)
{
    m_process.waitForFinished(timeoutMs);
    return isRunning() || m_process.exitStatus() != QProcess::NormalExit ? -1 : m_process.exitCode();
}

QString ChildProcess::output()
{
    // Reads what the pipe holds even where no event loop runs, so that it never fills.
    if (m_process.state() == QProcess::Running)
        m_process.waitForReadyRead(0);
    m_output += m_process.readAllStandardOutput();
    return QString::fromUtf8(m_output);
}

bool ChildProcess::rerunTest(const QString& function, const QStringList& variables)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString& variable : variables)
        environment.insert(variable.section(QLatin1Char('='), 0, 0), variable.section(QLatin1Char('='), 1));
    QProcess test;
    test.setProcessEnvironment(environment);
    test.setProcessChannelMode(QProcess::ForwardedChannels);
    test.start(QCoreApplication::applicationFilePath(), {function});
    return test.waitForFinished(60000) && test.exitStatus() == QProcess::NormalExit && test.exitCode() == 0;
}
