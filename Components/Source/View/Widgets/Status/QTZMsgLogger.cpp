#include "QTZMsgLogger.h"

QTZMsgLogger::QTZMsgLogger(QWidget* parent, const QPoint& anchor)
    : MsgLogger(parent, anchor, QStringLiteral("QTZMsgLogger"))
{
}

void QTZMsgLogger::setPoint(const QPoint& anchor)
{
    closeAt(anchor);
}
