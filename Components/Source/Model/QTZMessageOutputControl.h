#ifndef QTZMESSAGEOUTPUTCONTROL_H
#define QTZMESSAGEOUTPUTCONTROL_H

#include "tzuicomponents_export.h"

#include <QObject>
#include <QString>

#include <atomic>

/**
 * The run-time switch that decides whether the process's diagnostic lines reach
 * standard error. Building one installs messageOutput() as the Qt message handler;
 * the desktop flips m_output on a right click.
 */
class TZUICOMPONENTS_EXPORT QTZMessageOutputControl : public QObject
{
    Q_OBJECT

public:
    explicit QTZMessageOutputControl(QObject* parent);

    /// Writes \a message and a line end to standard error while m_output is set (a
    /// fatal message then aborts); discards it otherwise.
    static void messageOutput(QtMsgType type, const QMessageLogContext& context, const QString& message);

    /// Off at start. Atomic because DDS and ORB threads log too.
    static std::atomic<bool> m_output;
};

#endif
