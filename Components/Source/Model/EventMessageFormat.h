#ifndef EVENTMESSAGEFORMAT_H
#define EVENTMESSAGEFORMAT_H

#include "tzuicomponents_export.h"

#include <OrvanthTopics.h>

#include <QMetaType>
#include <QString>
#include <QtGlobal>

// Declared here, once, so that every signal carrying them (the status bars' updateMessage,
// the message log) queues them under the same names.
Q_DECLARE_METATYPE(Orvanth::Event::EventClass)
Q_DECLARE_METATYPE(Orvanth::Event::Message)

/**
 * How an engine event message becomes a line of the status bar and the message log:
 * the texts of the event classes, the date and time of a time stamp, the line itself and
 * the diagnostic lines written when a message arrives.
 */
class TZUICOMPONENTS_EXPORT EventMessageFormat
{
public:
    /// The newest time stamp shown as a date: the last second of the year 9999.
    static constexpr qint64 LatestTimeStamp = 253402300799;

    /// Registers Orvanth::Event::EventClass and Orvanth::Event::Message with the meta-type
    /// system under those names, for queued connections; any thread, any number of times.
    static void registerMetaTypes();

    /// 1 "CRITICAL", 2 "FAILURE", 3 "WARNING", 4 "ALERT", every other value "INFO".
    static QString classText(Orvanth::Event::EventClass eventClass);
    /// Warnings and alerts: written in red, and they put the status bar in its alert state.
    static bool isAlertClass(Orvanth::Event::EventClass eventClass);

    /**
     * The local date and time of \a secondsSince1970 as "MM-dd-yy, hh:mm:ss". A time stamp
     * of 0 or less, or past LatestTimeStamp, is logged and comes back as its decimal
     * number, so the message still shows what it carried.
     */
    static QString formatTimeStamp(qint64 secondsSince1970);

    /// The log line: \a dateTime, a space, the class text, ": " and \a description.
    static QString line(const QString& dateTime, Orvanth::Event::EventClass eventClass, const QString& description);

    /// The four diagnostic lines of an arriving message: its text, class and time stamp.
    static void logReceived(const Orvanth::Event::Message& message);
};

#endif
