#include "HostOptions.h"

#include <QDebug>

#include <algorithm>

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
        } else if (name == QLatin1String("-quit-after")) {
            bool ok = false;
            const int ms = i + 1 < rest.size() ? rest.at(i + 1).toInt(&ok) : -1;
            if (ok && ms >= 0) {
                m_quitAfterMs = ms;
                ++i;
            } else {
                qDebug() << "UserInterface - Demo host - ignoring malformed option" << name;
            }
        } else {
            qDebug() << "UserInterface - Demo host - ignoring unknown argument" << name;
        }
    }
}

void HostOptions::apply(QCoreApplication* application) const
{
    ApplicationOptions::apply(m_parsed, application);
}
