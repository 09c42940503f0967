#include "LogCapture.h"

LogCapture* LogCapture::s_current = nullptr;

LogCapture::LogCapture()
{
    s_current = this;
    m_previous = qInstallMessageHandler(&LogCapture::record);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_previous);
    s_current = nullptr;
}

void LogCapture::record(QtMsgType, const QMessageLogContext&, const QString& message)
{
    if (LogCapture* capture = s_current) {
        QMutexLocker locker(&capture->m_mutex);
        capture->m_lines.append(message);
    }
}

QStringList LogCapture::lines() const
{
    QMutexLocker locker(&m_mutex);
    return m_lines;
}

QStringList LogCapture::linesContaining(const QString& text) const
{
    QMutexLocker locker(&m_mutex);
    QStringList found;
    for (const QString& line : m_lines) {
        if (line.contains(text))
            found.append(line);
    }
    return found;
}

void LogCapture::clear()
{
    QMutexLocker locker(&m_mutex);
    m_lines.clear();
}
