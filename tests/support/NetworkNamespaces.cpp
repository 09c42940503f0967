#include "NetworkNamespaces.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QThread>

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

static QString ipProgram()
{
    const QString found = QStandardPaths::findExecutable(QStringLiteral("ip"), {"/usr/sbin", "/sbin", "/usr/bin", "/bin"});
    return found.isEmpty() ? QStringLiteral("ip") : found;
}

NetworkNamespaces::NetworkNamespaces()
    : m_suffix(QString::number(QCoreApplication::applicationPid()))
{
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

bool NetworkNamespaces::ip(const QStringList& arguments, QString* why, QString* output)
{
    QProcess process;
    process.start(ipProgram(), arguments);
    const bool finished = process.waitForStarted(5000) && process.waitForFinished(10000);
    if (output)
        *output = QString::fromLocal8Bit(process.readAllStandardOutput());
    const bool succeeded = finished && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    if (!succeeded && why)
        *why = QStringLiteral("\"ip %1\" failed: %2")
                   .arg(arguments.join(QLatin1Char(' ')), QString::fromLocal8Bit(process.readAllStandardError()).trimmed());
    return succeeded;
}

bool NetworkNamespaces::create(QString* why)
{
    // What runs whose PID is gone left behind.
    const QRegularExpression ours(QStringLiteral("^tz-(instrument|engine)-(\\d+)$"));
    for (const QString& entry : QDir(QStringLiteral("/run/netns")).entryList(QDir::Files | QDir::System)) {
        const QRegularExpressionMatch match = ours.match(entry);
        if (match.hasMatch() && !QDir(QStringLiteral("/proc/") + match.captured(2)).exists())
            removeNamespace(entry);
    }
    const QString instrument = name(Instrument);
    const QString engine = name(Engine);
    if (!ip({"netns", "add", instrument}, why))
        return false;
    m_created = true;
    const QString noIPv6 = QStringLiteral("net.ipv6.conf.default.disable_ipv6=1");
    const bool made = ip({"netns", "add", engine}, why) && ip({"-n", instrument, "link", "set", "lo", "up"}, why)
        && ip({"-n", engine, "link", "set", "lo", "up"}, why)
        // Set before the link is made, so that both of its ends are made without IPv6.
        && ip({"netns", "exec", instrument, "sysctl", "-qw", noIPv6}, why)
        && ip({"netns", "exec", engine, "sysctl", "-qw", noIPv6}, why)
        && ip({"-n", instrument, "link", "add", link(Instrument), "type", "veth", "peer", "name", link(Engine), "netns", engine}, why)
        && ip({"-n", instrument, "addr", "add", address(Instrument) + "/30", "dev", link(Instrument)}, why)
        && ip({"-n", engine, "addr", "add", address(Engine) + "/30", "dev", link(Engine)}, why)
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
    QString state;
    const auto runs = [&](Side side) {
        return ip({"-n", name(side), "-o", "link", "show", "dev", link(side)}, why, &state)
            && state.contains(QLatin1String("LOWER_UP")) && state.contains(QLatin1String("state UP"));
    };
    for (int tries = 0; tries < 100; ++tries, QThread::msleep(50))
        if (runs(Instrument) && runs(Engine))
            return true;
    if (why)
        *why = QStringLiteral("the link does not run: ") + state.trimmed();
    return false;
}

bool NetworkNamespaces::enter(Side side, QString* why) const
{
    const int fd = ::open(QFile::encodeName(QStringLiteral("/run/netns/") + name(side)).constData(), O_RDONLY | O_CLOEXEC);
    const bool entered = fd >= 0 && ::setns(fd, CLONE_NEWNET) == 0;
    if (!entered && why)
        *why = QStringLiteral("cannot enter %1: %2").arg(name(side), QString::fromLocal8Bit(strerror(errno)));
    if (fd >= 0)
        ::close(fd);
    return entered;
}

void NetworkNamespaces::removeNamespace(const QString& name)
{
    QString pids;
    if (ip({"netns", "pids", name}, nullptr, &pids)) {
        // This process may have entered the namespace itself.
        for (const QString& pid : pids.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
            if (pid.toLongLong() > 0 && pid.toLongLong() != QCoreApplication::applicationPid())
                ::kill(pid_t(pid.toLongLong()), SIGKILL);
    }
    ip({"netns", "del", name}, nullptr);
}

void NetworkNamespaces::remove()
{
    if (std::exchange(m_created, false)) {
        removeNamespace(name(Engine));
        removeNamespace(name(Instrument));
    }
}
