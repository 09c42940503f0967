#ifndef LOGCAPTURE_H
#define LOGCAPTURE_H

#include <QStringList>

#include <mutex>

/**
 * Records every Qt message of the process while it exists (from any thread), in place
 * of the handler that was installed before, which it puts back when it goes. Build it
 * after anything that installs a handler of its own (the registry does).
 */
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();

    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // A copy of its own: one shared with m_lines would be released while the handler grows
    // m_lines on another thread, ordered by Qt's reference count alone, which sanitizers miss.
    QStringList lines() const { return std::lock_guard<std::mutex>(m_mutex), QStringList(m_lines.begin(), m_lines.end()); }
    /// The lines that contain \a text.
    QStringList linesContaining(const QString& text) const { return lines().filter(text); }
    bool contains(const QString& text) const { return !linesContaining(text).isEmpty(); }
    void clear();

private:
    static LogCapture* s_current;
    QtMessageHandler m_previous;
    mutable std::mutex m_mutex;
    QStringList m_lines;
};

#endif
