#include "HostOptions.h"

#include <QDebug>

HostOptions::HostOptions(const QStringList& arguments)
    : m_parsed(ApplicationOptions::parse(arguments))
{
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
