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

    QStringList lines() const;
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
