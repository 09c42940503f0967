#include "HostOptions.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDebug>

#include <algorithm>

namespace {

// What the usage text says of the host's own options, after the library's.
const char* const hostOptionsHelp =
    "Demo host options:\n"
    "  -debug                diagnostic lines on standard error from the start (a right\n"
    "                        click on the desktop toggles them)\n"
    "  -quit-after MS        close the desktop after MS milliseconds\n"
    "  -first-frame          write \"FIRST FRAME\" and the monotonic clock in ns on\n"
    "                        standard output once the first frame is painted\n"
    "  -message-log FILE     copy every status bar message to FILE as it arrives\n"
    "  -answer-dialogs MS    for tests without a display: answer every dialog with its\n"
    "                        first button MS milliseconds after it opens";

QString description()
{
    QString text = QStringLiteral(
        "\nThe demo desktop: module screens placed by the desktop manager, the navigation bar,\n"
        "the status bar with the engine simulator's events and battery and, with a naming\n"
        "service, the remote GUI service that tz-gui-client calls. scripts/run-demo starts it\n"
        "with omniNames and tz-engine-simulator. Without -systype the demo is a benchtop.\n\n"
        "Application options (one dash, as the library reads them; a switch takes an\n"
        "optional true or false):\n");
    for (const ApplicationOptions::Description& option : ApplicationOptions::table()) {
        QString head = QStringLiteral("  %1 %2").arg(QLatin1String(option.name), QLatin1String(option.values));
        if (option.isSwitch)
            head = QStringLiteral("  %1 [%2]").arg(QLatin1String(option.name), QLatin1String(option.values));
        text += head.leftJustified(47) + QStringLiteral(" absent: %1\n").arg(QLatin1String(option.absent));
    }
    return text + QLatin1Char('\n') + QLatin1String(hostOptionsHelp);
}

// A whole number from 0 up, from the argument after \a i; -1 when there is none.
int milliseconds(const QStringList& rest, int i)
{
    bool ok = false;
    const int ms = i + 1 < rest.size() ? rest.at(i + 1).toInt(&ok) : -1;
    return ok && ms >= 0 ? ms : -1;
}

} // namespace

HostOptions::HostOptions(const QStringList& arguments)
    : m_parsed(ApplicationOptions::parse(arguments))
{
    // The demo plays a bench instrument unless told otherwise.
    const bool typed = std::any_of(m_parsed.values.cbegin(), m_parsed.values.cend(),
                                   [](const QPair<QString, QString>& value) { return value.first == QLatin1String("-systype"); });
    if (!typed)
        m_parsed.values.append({QStringLiteral("-systype"), QStringLiteral("benchtop")});
    const QStringList& rest = m_parsed.rest;
    for (int i = 0; i < rest.size(); ++i) {
        const QString& name = rest.at(i);
        if (name == QLatin1String("-debug")) {
            m_debugOutput = true;
        } else if (name == QLatin1String("-first-frame")) {
            m_firstFrame = true;
        } else if (name == QLatin1String("-quit-after") || name == QLatin1String("-answer-dialogs")) {
            const int ms = milliseconds(rest, i);
            if (ms < 0) {
                qDebug() << "UserInterface - Demo host - ignoring malformed option" << name;
                continue;
            }
            (name == QLatin1String("-quit-after") ? m_quitAfterMs : m_answerDialogsAfterMs) = ms;
            ++i;
        } else if (name == QLatin1String("-message-log")) {
            if (i + 1 < rest.size() && !rest.at(i + 1).isEmpty())
                m_messageLogFile = rest.at(++i);
            else
                qDebug() << "UserInterface - Demo host - ignoring malformed option" << name;
        } else {
            qDebug() << "UserInterface - Demo host - ignoring unknown argument" << name;
        }
    }
}

int HostOptions::answerHelpOrVersion(int argc, char* argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    // Only --help and --version matter here: the library's parser reads the rest, whose
    // single-dash words would be unknown options to this one.
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    parser.parse(arguments);
    if (!parser.isSet(help) && !parser.isSet(version))
        return -1;

    // A core application names the program and the version without a display.
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(TZ_VERSION));
    parser.setApplicationDescription(description());
    if (parser.isSet(version))
        parser.showVersion();
    parser.showHelp(0);
    return 0;
}

void HostOptions::apply(QCoreApplication* application) const
{
    ApplicationOptions::apply(m_parsed, application);
}
