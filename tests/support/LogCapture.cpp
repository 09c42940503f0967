#include "LogCapture.h"

LogCapture* LogCapture::s_current = nullptr;

LogCapture::LogCapture()
{
    s_current = this;
    m_previous = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) {
        if (LogCapture* capture = s_current) {
            std::lock_guard<std::mutex> locker(capture->m_mutex);
            capture->m_lines.append(message);
        }
    });
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_previous);
    s_current = nullptr;
}

void LogCapture::clear()
{
    std::lock_guard<std::mutex> locker(m_mutex);
    m_lines.clear();
}
