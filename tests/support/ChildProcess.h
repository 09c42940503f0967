#ifndef CHILDPROCESS_H
#define CHILDPROCESS_H

#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>

/**
 * A program the test starts and stops: waits (bounded) for a line the program prints
 * when it is ready, and is stopped with SIGTERM (then SIGKILL) when the object goes.
 */
class ChildProcess
{
public:
    ChildProcess();
    ~ChildProcess();

    /// Whether output() and the ready text include standard error (for a program that
    /// logs there); otherwise standard error goes to the test's own. Set before start().
    void setOutputIncludesErrors(bool included) { m_outputIncludesErrors = included; }

    /// Starts \a program and waits until a line of its standard output contains \a readyText.
    bool start(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment,
               const QString& readyText = QStringLiteral("READY"), int timeoutMs = 20000);
    /// SIGTERM, then SIGKILL after \a graceMs; returns the exit code (-1 when killed).
    int stop(int graceMs = 5000);

    qint64 pid() const { return m_process.processId(); }
    bool isRunning() const { return m_process.state() == QProcess::Running; }
    /// Everything the program printed on standard output so far.
    QString output();

private:
    QProcess m_process;
    QByteArray m_output;
    bool m_outputIncludesErrors = false;
};

#endif
