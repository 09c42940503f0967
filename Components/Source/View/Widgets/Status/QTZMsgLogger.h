#ifndef QTZMSGLOGGER_H
#define QTZMSGLOGGER_H

#include "MsgLogger.h"

#include "tzuicomponents_export.h"

/**
 * The message log of QTZStatusBar: the MsgLogger panel, whose anchor follows the bar as
 * it grows, shrinks and gains icons.
 */
class TZUICOMPONENTS_EXPORT QTZMsgLogger : public MsgLogger
{
    Q_OBJECT

public:
    QTZMsgLogger(QWidget* parent, const QPoint& anchor);

    /// Moves the anchor to \a anchor and closes the panel there.
    void setPoint(const QPoint& anchor);
};

#endif
