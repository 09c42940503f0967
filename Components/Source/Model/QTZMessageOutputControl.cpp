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
    // UTF-8 whatever the locale: engine texts are UTF-8 and must not turn into question marks.
    const QByteArray text = message.toUtf8();
    std::fprintf(stderr, "%s\n", text.constData());
    std::fflush(stderr);
    if (type == QtFatalMsg)
        std::abort();
}
