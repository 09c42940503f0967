#ifndef CHILDPROCESS_H
#define CHILDPROCESS_H

#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>

/**
 * A program a test or a benchmark starts and stops: waits (bounded) for a line the
 * program prints when it is ready, and is stopped with SIGTERM (then SIGKILL) when the
 * object goes.
 */
class ChildProcess
{
public:
    ~ChildProcess() { stop(); }

    /// Whether output() and the ready text include standard error (for a program that
    /// logs there); otherwise standard error goes to the test's own. Set before start().
    void setOutputIncludesErrors(bool included) { m_outputIncludesErrors = included; }

    /// Starts \a program and waits until a line of its standard output contains \a readyText
    /// (an empty one: until it has started).
    bool start(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment,
               const QString& readyText = QStringLiteral("READY"), int timeoutMs = 20000);
    /// SIGTERM, then SIGKILL after \a graceMs; returns the exit code (-1 when killed).
    int stop(int graceMs = 5000);
    /// Waits (bounded) until the program ends by itself; its exit code, or -1 when it
    /// crashed or still runs.
    int wait(int timeoutMs);

    qint64 pid() const { return m_process.processId(); }
    bool isRunning() const { return m_process.state() == QProcess::Running; }
    /// Everything the program printed on standard output so far.
    QString output();

    /// Runs this test program again for its test function \a function alone, with
    /// \a variables ("NAME=value") added to its environment: for a case that needs a
    /// process of its own. Whether it passed; its output joins this one's.
    static bool rerunTest(const QString& function, const QStringList& variables);

private:
    QProcess m_process;
    QByteArray m_output;
    bool m_outputIncludesErrors = false;
};

#endif
