#include "CorbaFailure.h"

#include <Orvanth.hh>

#include <QDebug>

QString CorbaFailure::describe(const CORBA::Exception& exception)
{
    return QString::fromLatin1(exception._name()) + QLatin1Char(' ') + info(exception);
}

QString CorbaFailure::info(const CORBA::Exception& exception)
{
    if (const auto* system = CORBA::SystemException::_downcast(&exception)) {
        const char* minorName = system->NP_minorString();
        const QString minor = QStringLiteral("minor %1").arg(system->minor());
        return minorName ? minor + QStringLiteral(" (%1)").arg(QLatin1String(minorName)) : minor;
    }
    if (const auto* generic = Orvanth::Runtime_errors::Generic::_downcast(&exception))
        return QString::fromUtf8(generic->message);
    if (const auto* notConnected = Orvanth::Connection_errors::Not_Connected::_downcast(&exception))
        return QString::fromUtf8(notConnected->message);
    return QString::fromLatin1(exception._rep_id());
}

void CorbaFailure::logException(const char* sourceFile, const char* operation, int line)
{
    QDebug log = qDebug().noquote();
    log << "UserInterface - Exception" << sourceFile;
    if (operation && *operation)
        log << operation;
    log << line;
}

void CorbaFailure::logAtPosition(const CORBA::Exception& exception, const char* sourceFile, int line)
{
    // The position is one word, which log readers search for as it stands.
    qDebug().noquote() << "UserInterface -" << QStringLiteral("%1:%2").arg(QLatin1String(sourceFile)).arg(line);
    qDebug().noquote() << QStringLiteral("               ") + describe(exception);
}
