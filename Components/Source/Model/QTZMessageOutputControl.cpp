#include "QTZMessageOutputControl.h"

#include <cstdio>
#include <cstdlib>

std::atomic<bool> QTZMessageOutputControl::m_output{false};

QTZMessageOutputControl::QTZMessageOutputControl(QObject* parent)
    : QObject(parent)
{
    qInstallMessageHandler(&QTZMessageOutputControl::messageOutput);
}

void QTZMessageOutputControl::messageOutput(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (!m_output)
        return;
    const QByteArray text = message.toLocal8Bit();
    std::fprintf(stderr, "%s\n", text.constData());
    std::fflush(stderr);
    if (type == QtFatalMsg)
        std::abort();
}
