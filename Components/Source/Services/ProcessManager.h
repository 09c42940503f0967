#ifndef PROCESSMANAGER_H
#define PROCESSMANAGER_H

#include "tzuicomponents_export.h"

#include <QHash>
#include <QObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>

/**
 * Starts external programs (engine tools, scripts) with an environment prepared for
 * the instrument's software tree, and reports their start and end. The registry
 * registers one as the module "ProcessManager"; scripts reach it through its
 * invokable operations. GUI thread only.
 */
class TZUICOMPONENTS_EXPORT ProcessManager : public QObject
{
    Q_OBJECT

public:
    explicit ProcessManager(QObject* parent);

    /// Starts \a command (program and arguments, double quotes grouping words).
    Q_INVOKABLE void startProcess(QString command);
    /// Sets a variable for programs started from now on.
    Q_INVOKABLE void addEnvVar(QString varName, QString varValue);
    /// The variable's value for started programs, or a null string when it is unset.
    Q_INVOKABLE QString getEnvVarValue(QString var);

signals:
    /// A program started by this object has started.
    void started();
    /// A program started by this object has ended.
    void finished(int exitCode);

private slots:
    void done(int code, QProcess::ExitStatus status);
    void failed(QProcess::ProcessError error);

private:
    QProcessEnvironment m_environment;
    QHash<QProcess*, QString> m_runningProcesses;
};

#endif
