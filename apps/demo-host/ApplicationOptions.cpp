#include "ApplicationOptions.h"

#include "QTZUtil.h"

#include <QCoreApplication>
#include <QDebug>
#include <QVariant>

namespace {

const QStringList valueOptions{QStringLiteral("-systype"),  QStringLiteral("-res"),
                               QStringLiteral("-size"),     QStringLiteral("-grid"),
                               QStringLiteral("-menubarlocation"), QStringLiteral("currentLanguage"),
                               QStringLiteral("-ORBInitRef"), QStringLiteral("state")};
const QStringList switchOptions{QStringLiteral("-fullscreen"), QStringLiteral("-animation"),
                                QStringLiteral("-notransparency")};

} // namespace

ApplicationOptions::ApplicationOptions(const QStringList& arguments)
{
    for (int i = 1; i < arguments.size(); ++i) {
        const QString& name = arguments.at(i);
        const bool hasNext = i + 1 < arguments.size();
        const QString next = hasNext ? arguments.at(i + 1) : QString();
        if (switchOptions.contains(name)) {
            if (next == QLatin1String("true") || next == QLatin1String("false"))
                set(name, arguments.at(++i));
            else
                set(name, QStringLiteral("true"));
        } else if (valueOptions.contains(name)) {
            if (hasNext)
                set(name, arguments.at(++i));
            else
                qDebug() << "UserInterface - Demo host - option without a value:" << name;
        } else if (name == QLatin1String("-debug")) {
            m_debugOutput = true;
        } else if (name == QLatin1String("-quit-after")) {
            bool ok = false;
            const int ms = next.toInt(&ok);
            if (ok && ms >= 0) {
                m_quitAfterMs = ms;
                ++i;
            } else {
                qDebug() << "UserInterface - Demo host - ignoring malformed option" << name << next;
            }
        } else {
            qDebug() << "UserInterface - Demo host - ignoring unknown argument" << name;
        }
    }
}

void ApplicationOptions::set(const QString& name, const QString& value)
{
    int first = 0;
    int second = 0;
    const bool dimensions = name == QLatin1String("-res") || name == QLatin1String("-grid");
    if (dimensions && !QTZUtil::parseDimensions(value, &first, &second)) {
        qDebug() << "UserInterface - Demo host - ignoring malformed option" << name << value;
        return;
    }
    if (name == QLatin1String("-res"))
        m_resolution = QSize(first, second);

    // A repeated option counts once, with its last value.
    for (auto& property : m_properties) {
        if (property.first == name) {
            property.second = value;
            return;
        }
    }
    m_properties.append({name, value});
}

void ApplicationOptions::apply(QCoreApplication* application) const
{
    for (const auto& property : m_properties)
        application->setProperty(property.first.toUtf8().constData(), property.second);
}
