#include "EventMessageFormat.h"

#include <QDateTime>
#include <QDebug>

void EventMessageFormat::registerMetaTypes()
{
    // Function-local statics: registered once, thread-safely, on the first call.
    static const int eventClassType = qRegisterMetaType<Orvanth::Event::EventClass>("Orvanth::Event::EventClass");
    static const int messageType = qRegisterMetaType<Orvanth::Event::Message>("Orvanth::Event::Message");
    Q_UNUSED(eventClassType)
    Q_UNUSED(messageType)
}

QString EventMessageFormat::classText(Orvanth::Event::EventClass eventClass)
{
    switch (quint32(eventClass)) {
    case 1:
        return QStringLiteral("CRITICAL");
    case 2:
        return QStringLiteral("FAILURE");
    case 3:
        return QStringLiteral("WARNING");
    case 4:
        return QStringLiteral("ALERT");
    default:
        return QStringLiteral("INFO");
    }
}

bool EventMessageFormat::isAlertClass(Orvanth::Event::EventClass eventClass)
{
    return quint32(eventClass) == 3 || quint32(eventClass) == 4;
}

QString EventMessageFormat::formatTimeStamp(qint64 secondsSince1970)
{
    // Beyond this range the conversion to local time is no longer defined (and the
    // milliseconds overflow); an engine clock that says so is worth a line.
    if (secondsSince1970 <= 0 || secondsSince1970 > LatestTimeStamp) {
        qDebug().nospace() << "UserInterface - EventMessage TimeStamp out of range: " << secondsSince1970;
        return QString::number(secondsSince1970);
    }
    return QDateTime::fromSecsSinceEpoch(secondsSince1970).toString(QStringLiteral("MM-dd-yy, hh:mm:ss"));
}

QString EventMessageFormat::line(const QString& dateTime, Orvanth::Event::EventClass eventClass,
                                 const QString& description)
{
    return dateTime + QLatin1Char(' ') + classText(eventClass) + QLatin1String(": ") + description;
}

void EventMessageFormat::logReceived(const Orvanth::Event::Message& message)
{
    qDebug() << "UserInterface - EventMessage Received:";
    qDebug().nospace() << "    message received: " << QString::fromStdString(message.text());
    qDebug().nospace() << "    Classification: " << quint32(message.classification());
    qDebug().nospace() << "    TimeStamp: " << qint64(message.timestamp());
}
