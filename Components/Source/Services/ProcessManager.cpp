#include "ProcessManager.h"

#include <QDebug>

ProcessManager::ProcessManager(QObject* parent)
    : QObject(parent)
    , m_environment(QProcessEnvironment::systemEnvironment())
{
    // The instrument's installation tree.
    m_environment.insert(QStringLiteral("LD_LIBRARY_PATH"),
                         QStringLiteral("/space/tz/x86/ACE_wrappers/lib:/space/tz/x86/DDS/lib:"
                                        "/space/tz/x86/boost/lib:/space/tz/x86/pgsql/lib:/space/tz/x86/qt/lib:"
                                        "/space/tz/target/X86/engines/lib:/space/tz/target/X86/UI/plugins/designer:"
                                        "/space/tz/x86/omniOrb/lib:/space/tz/target/X86/UI"));
    m_environment.insert(QStringLiteral("PYTHONPATH"),
                         QStringLiteral("/space/tz/x86/pyomniORB/lib/python2.6/site-packages/"));
    m_environment.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral("/space/tz/target/X86/UI/plugins"));
    m_environment.insert(QStringLiteral("PATH"),
                         m_environment.value(QStringLiteral("PATH")) + QStringLiteral(":/space/tz/target/X86/UI"));
}

void ProcessManager::startProcess(QString command)
{
    qDebug() << "UserInterface - ProcessManager::startProcess -" << command;

    QStringList arguments = QProcess::splitCommand(command);
    if (arguments.isEmpty() || arguments.first().isEmpty()) {
        qDebug() << "UserInterface - ProcessManager::startProcess - nothing to start in" << command;
        return;
    }
    const QString program = arguments.takeFirst();

    auto* process = new QProcess(this);
    connect(process, &QProcess::started, this, &ProcessManager::started);
    connect(process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this, &ProcessManager::done);
    connect(process, &QProcess::errorOccurred, this, &ProcessManager::failed);
    process->setProcessEnvironment(m_environment);
    m_runningProcesses.insert(process, command);
    process->start(program, arguments, QIODevice::ReadWrite);
}

void ProcessManager::addEnvVar(QString varName, QString varValue)
{
    m_environment.insert(varName, varValue);
}

QString ProcessManager::getEnvVarValue(QString var)
{
    return m_environment.value(var);
}

void ProcessManager::done(int code, QProcess::ExitStatus status)
{
    if (auto* process = qobject_cast<QProcess*>(sender())) {
        qDebug() << "UserInterface - ProcessManager completed execution:" << m_runningProcesses.value(process)
                 << "| finish code:" << code << "| Exit status:" << int(status);
        m_runningProcesses.remove(process);
        process->deleteLater();
    }
    emit finished(code);
}

void ProcessManager::failed(QProcess::ProcessError error)
{
    auto* process = qobject_cast<QProcess*>(sender());
    // Only a failed start needs handling here; a crash or an I/O error ends in done().
    if (!process || error != QProcess::FailedToStart)
        return;
    qDebug() << "UserInterface - ProcessManager could not start" << m_runningProcesses.value(process) << "-"
             << process->errorString();
    m_runningProcesses.remove(process);
    process->deleteLater();
}
