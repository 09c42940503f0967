#include "NetworkNamespaces.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QThread>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace {

const char instrumentPrefix[] = "tz-instrument-";
const char enginePrefix[] = "tz-engine-";

// What a process that dies early still undoes: the namespaces' names, as paths, taken
// away with system calls only (the kernel ends the processes inside, through their
// parent-death signal). Fixed buffers, so that a signal handler can read them.
char namePaths[2][128];
struct sigaction previousActions[NSIG];
std::terminate_handler previousTerminate = nullptr;
const int fatalSignals[] = {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTERM, SIGINT};

void unmountNames()
{
    for (char* path : namePaths) {
        if (path[0]) {
            ::umount2(path, MNT_DETACH);
            ::unlink(path);
            path[0] = '\0';
        }
    }
}

void onFatalSignal(int signal)
{
    unmountNames();
    ::sigaction(signal, &previousActions[signal], nullptr);
    ::raise(signal);
}

void onTerminate()
{
    unmountNames();
    std::abort();
}

void guardNames(const QStringList& names)
{
    for (int i = 0; i < 2; ++i)
        qstrncpy(namePaths[i], QFile::encodeName(QStringLiteral("/run/netns/") + names.value(i)).constData(),
                 sizeof namePaths[i]);
    struct sigaction action{};
    action.sa_handler = onFatalSignal;
    ::sigemptyset(&action.sa_mask);
    for (const int signal : fatalSignals)
        ::sigaction(signal, &action, &previousActions[signal]);
    previousTerminate = std::set_terminate(onTerminate);
}

void releaseNames()
{
    for (const int signal : fatalSignals)
        ::sigaction(signal, &previousActions[signal], nullptr);
    std::set_terminate(previousTerminate);
    namePaths[0][0] = namePaths[1][0] = '\0';
}

QString ipProgram()
{
    const QString found = QStandardPaths::findExecutable(QStringLiteral("ip"), {"/usr/sbin", "/sbin", "/usr/bin", "/bin"});
    return found.isEmpty() ? QStringLiteral("ip") : found;
}

} // namespace

NetworkNamespaces::NetworkNamespaces()
    : m_suffix(QString::number(QCoreApplication::applicationPid()))
{
}

NetworkNamespaces::~NetworkNamespaces()
{
    remove();
}

QString NetworkNamespaces::name(Side side) const
{
    return QLatin1String(side == Instrument ? instrumentPrefix : enginePrefix) + m_suffix;
}

QString NetworkNamespaces::address(Side side) const
{
    return side == Instrument ? QStringLiteral("10.251.0.1") : QStringLiteral("10.251.0.2");
}

QString NetworkNamespaces::link(Side side) const
{
    // Interface names have at most 15 characters.
    return (side == Instrument ? QStringLiteral("tzi") : QStringLiteral("tze")) + m_suffix;
}

bool NetworkNamespaces::ip(const QStringList& arguments, QString* why, QString* output)
{
    QProcess process;
    process.start(ipProgram(), arguments);
    const bool finished = process.waitForStarted(5000) && process.waitForFinished(10000);
    if (!finished) {
        process.kill();
        process.waitForFinished(1000);
    }
    const QString errors = QString::fromLocal8Bit(process.readAllStandardError()).trimmed();
    if (output)
        *output = QString::fromLocal8Bit(process.readAllStandardOutput());
    if (finished && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
        return true;
    if (why)
        *why = QStringLiteral("\"ip %1\" failed: %2")
                   .arg(arguments.join(QLatin1Char(' ')), errors.isEmpty() ? process.errorString() : errors);
    return false;
}

bool NetworkNamespaces::create(QString* why)
{
    removeStale();
    const QString instrument = name(Instrument);
    const QString engine = name(Engine);
    guardNames({instrument, engine});
    if (!ip({"netns", "add", instrument}, why)) {
        releaseNames();
        return false;
    }
    m_created = true;
    const QString disableIPv6 = QStringLiteral("net.ipv6.conf.default.disable_ipv6=1");
    const QString prefix = QStringLiteral("/30");
    const bool made = ip({"netns", "add", engine}, why)
        && ip({"-n", instrument, "link", "set", "lo", "up"}, why) && ip({"-n", engine, "link", "set", "lo", "up"}, why)
        // Set before the link is made, so that both of its ends are made without IPv6.
        && ip({"netns", "exec", instrument, "sysctl", "-qw", disableIPv6}, why)
        && ip({"netns", "exec", engine, "sysctl", "-qw", disableIPv6}, why)
        && ip({"-n", instrument, "link", "add", link(Instrument), "type", "veth", "peer", "name", link(Engine), "netns",
               engine},
              why)
        && ip({"-n", instrument, "addr", "add", address(Instrument) + prefix, "dev", link(Instrument)}, why)
        && ip({"-n", engine, "addr", "add", address(Engine) + prefix, "dev", link(Engine)}, why)
        && setLinkUp(Instrument, true, why) && setLinkUp(Engine, true, why) && waitUntilRunning(why);
    if (!made)
        remove();
    return made;
}

bool NetworkNamespaces::setLinkUp(Side side, bool up, QString* why)
{
    return ip({"-n", name(side), "link", "set", link(side), up ? "up" : "down"}, why);
}

bool NetworkNamespaces::waitUntilRunning(QString* why)
{
    // A veth end set up runs only once the kernel has seen its peer up too, a moment
    // later; Fast DDS leaves out interfaces that do not run yet.
    QElapsedTimer clock;
    clock.start();
    QString state;
    while (clock.elapsed() < 5000) {
        bool running = true;
        for (const Side side : {Instrument, Engine}) {
            running = running && ip({"-n", name(side), "-o", "link", "show", "dev", link(side)}, why, &state)
                && state.contains(QLatin1String("LOWER_UP")) && state.contains(QLatin1String("state UP"));
        }
        if (running)
            return true;
        QThread::msleep(50);
    }
    if (why)
        *why = QStringLiteral("the link does not run: ") + state.trimmed();
    return false;
}

bool NetworkNamespaces::enter(Side side, QString* why)
{
    const QByteArray path = QFile::encodeName(QStringLiteral("/run/netns/") + name(side));
    const int fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    const bool entered = fd >= 0 && ::setns(fd, CLONE_NEWNET) == 0;
    if (!entered && why)
        *why = QStringLiteral("cannot enter %1: %2").arg(name(side), QString::fromLocal8Bit(strerror(errno)));
    if (fd >= 0)
        ::close(fd);
    return entered;
}

QString NetworkNamespaces::wrapperProgram() const
{
    return ipProgram();
}

QStringList NetworkNamespaces::wrapperArguments(Side side, const QString& program, const QStringList& arguments) const
{
    // ip and setpriv both replace themselves with what they start, so the PID stays; the
    // parent-death signal is kept across the exec.
    return QStringList{"netns", "exec", name(side), "setpriv", "--pdeathsig", "KILL", "--", program} + arguments;
}

void NetworkNamespaces::removeNamespace(const QString& name)
{
    QString pids;
    if (ip({"netns", "pids", name}, nullptr, &pids)) {
        for (const QString& pid : pids.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            // This process may have entered the namespace itself.
            if (pid.toLongLong() > 0 && pid.toLongLong() != QCoreApplication::applicationPid())
                ::kill(pid_t(pid.toLongLong()), SIGKILL);
        }
    }
    ip({"netns", "del", name}, nullptr);
}

void NetworkNamespaces::remove()
{
    if (!m_created)
        return;
    m_created = false;
    removeNamespace(name(Engine));
    removeNamespace(name(Instrument));
    releaseNames();
}

void NetworkNamespaces::removeStale()
{
    const QRegularExpression ours(QStringLiteral("^(%1|%2)(\\d+)$").arg(instrumentPrefix, enginePrefix));
    const QStringList names = QDir(QStringLiteral("/run/netns")).entryList(QDir::Files | QDir::System);
    for (const QString& entry : names) {
        const QRegularExpressionMatch match = ours.match(entry);
        if (match.hasMatch() && !QFile::exists(QStringLiteral("/proc/") + match.captured(2)))
            removeNamespace(entry);
    }
}
