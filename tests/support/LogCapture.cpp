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

QStringList LogCapture::lines() const
{
    std::lock_guard<std::mutex> locker(m_mutex);
    // Shared with m_lines, the copy would be released here while the handler grows m_lines
    // on another thread, ordered by Qt's reference count alone, which sanitizers miss.
    QStringList copy = m_lines;
    copy.detach();
    return copy;
}

void LogCapture::clear()
{
    std::lock_guard<std::mutex> locker(m_mutex);
    m_lines.clear();
}
