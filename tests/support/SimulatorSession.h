#ifndef SIMULATORSESSION_H
#define SIMULATORSESSION_H

#include "ChildProcess.h"
#include "NamingServiceProcess.h"

#include "DDS_Subscriber.h"
#include "GlobalImpl.h"
#include "NamingServiceImpl.h"
#include "ORB_base.h"
#include "OrvanthNames.h"

#include <QElapsedTimer>
#include <QThreadPool>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <memory>
#include <sys/types.h>

/**
 * The engine simulator serving one test case: started on the test's naming service with
 * its modules loaded by a module discovery registered in the registry. When it goes it
 * waits for the pool's engine calls, deletes the registry (whose locker speaks to this
 * simulator's lock manager) and stops the simulator. Build it before the widgets of the
 * case, so that they go first.
 *
 * start() returns once a sample of the simulator has arrived here over DDS: the two
 * processes have found each other, so a reader made after it is matched with the
 * simulator's writers at once instead of after the participants' discovery.
 *
 * Needs TZ_ENGINE_SIMULATOR, and the process ORB started on \a naming.
 */
class SimulatorSession
{
public:
    ~SimulatorSession()
    {
        resume();
        QThreadPool::globalInstance()->waitForDone();
        delete GlobalImpl::existingInstance();
        m_discovery.reset();
        m_simulator.stop();
    }

    bool start(const NamingServiceProcess& naming, const QStringList& arguments = {})
    {
        m_arguments = QStringList{"--modules", "1", "--events-per-second", "0", "--battery-period-ms", "100"} + arguments;
        m_environment = naming.childEnvironment();
        if (!restart())
            return false;
        // The subscriber lives while the test waits for its first sample.
        std::atomic<bool> heard{false};
        const bool found = (Orvanth::DDS_Subscriber<bool>(
                                Orvanth::Names::ExternalVoltageTopic, [&heard](const char*, CORBA::Boolean) { heard = true; },
                                0, 0, eprosima::fastdds::dds::VOLATILE_DURABILITY_QOS),
                            QTest::qWaitFor([&heard] { return heard.load(); }, 10000));
        if (!found)
            return false;
        m_discovery = std::make_unique<NamingServiceImpl>();
        m_discovery->initialize();
        GlobalImpl::getInstance()->setNamingService(m_discovery.get());
        return m_discovery->guiAbleLoaded() >= 1;
    }

    /// Stops the simulator (SIGTERM) if it runs and starts a new one as start() did;
    /// the discovery and the registry stay.
    bool restart()
    {
        m_suspended = false;
        m_simulator.stop();
        return m_simulator.start(QStringLiteral(TZ_ENGINE_SIMULATOR), m_arguments, m_environment);
    }
    /// SIGTERM, and the simulator's exit code.
    int stop() { return m_simulator.stop(); }
    qint64 pid() const { return m_simulator.pid(); }

    NamingServiceImpl& discovery() { return *m_discovery; }

    /// The simulator's attribute \a name as a lockable attribute, or nil.
    Orvanth::EngineAttribBase_var attribute(const QString& name)
    {
        const QList<Orvanth::EngineReadingBase_var> found = m_discovery->findAttribute(name);
        return found.isEmpty() ? Orvanth::EngineAttribBase::_nil() : Orvanth::EngineAttribBase::_narrow(found[0].in());
    }

    /// How often the simulator has printed the line \a line so far.
    int count(const QString& line) { return m_simulator.output().split(QLatin1Char('\n')).count(line); }

    /// Waits (bounded) until the simulator has printed \a line \a times times.
    bool waitForLine(const QString& line, int times = 1, int timeoutMs = 5000)
    {
        return QTest::qWaitFor([&] { return count(line) >= times; }, timeoutMs);
    }

    /// SIGUSR1: the highest module goes, or comes back, at once.
    void churnModule() { ::kill(pid_t(m_simulator.pid()), SIGUSR1); }
    /// SIGKILL: the engine is gone without unbinding anything.
    void kill()
    {
        m_suspended = false;
        ::kill(pid_t(m_simulator.pid()), SIGKILL);
    }
    /// SIGSTOP: the engine takes calls and answers none until resume(). Returns once
    /// every thread has stopped: until then a thread woken by a request may still
    /// answer it.
    bool suspend()
    {
        m_suspended = ::kill(pid_t(m_simulator.pid()), SIGSTOP) == 0;
        const QDir tasks(QStringLiteral("/proc/%1/task").arg(m_simulator.pid()));
        return m_suspended && QTest::qWaitFor([&tasks] {
            const QStringList threads = tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
            return std::all_of(threads.begin(), threads.end(), [&tasks](const QString& thread) {
                QFile file(tasks.filePath(thread + QStringLiteral("/stat")));
                // "PID (NAME) STATE ...": the state follows the name's last closing bracket.
                const QByteArray stat = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
                return stat.mid(stat.lastIndexOf(')') + 1).trimmed().startsWith('T');
            });
        }, 5000);
    }
    void resume() { std::exchange(m_suspended, false) && ::kill(pid_t(m_simulator.pid()), SIGCONT); }

private:
    ChildProcess m_simulator;
    std::unique_ptr<NamingServiceImpl> m_discovery;
    QStringList m_arguments;
    QProcessEnvironment m_environment;
    bool m_suspended = false;
};

#endif
