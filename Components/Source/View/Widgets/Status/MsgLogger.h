#ifndef MSGLOGGER_H
#define MSGLOGGER_H

#include "tzuicomponents_export.h"

#include <QColor>
#include <QFrame>
#include <QPoint>
#include <QString>
#include <QStringList>
#include <QTextCharFormat>

class QEvent;
class QPropertyAnimation;
class QTextCursor;
class QPlainTextEdit;

/**
 * The message log panel of the status bar: slides up from an anchor point above the bar
 * and lists the bar's messages one line each, keeping at most MaximumLines by writing
 * each new line over the oldest. Each line can be copied to a file as well.
 *
 * The status bar appends its first MaximumLines lines, then calls setTextCursorStart()
 * at every multiple of MaximumLines and adds the rest in overwrite mode; the log also
 * keeps to the ring on its own, so appending never grows it past MaximumLines.
 *
 * The text area is a read-only QPlainTextEdit: its layout handles a changed line on its
 * own, where a QTextEdit lays out again every line below it, which at thousands of
 * messages a second stalls the GUI thread.
 */
class TZUICOMPONENTS_EXPORT MsgLogger : public QFrame
{
    Q_OBJECT

public:
    static constexpr int MaximumLines = 1000;
    /// The open panel's height in pixels.
    static constexpr int FullHeight = 500;

    MsgLogger(QWidget* parent, const QPoint& anchor);

    /**
     * Adds \a line: as a new last line when \a append is true (and the log is not full),
     * otherwise over the line at the overwrite position, which then moves to the next
     * line (from the last back to the first). Line breaks inside \a line are kept as
     * breaks within its one log line. With logging to file on, the line goes to the file
     * too, unchanged.
     */
    void addMessage(const QString& line, bool append);
    /// The colour of the lines added from now on.
    void setTextColor(const QColor& colour);
    /// Moves the overwrite position back to the first line.
    void setTextCursorStart();
    /// A red border (the status bar's alert state) or the palette's.
    void setAlertStyle(bool alert);
    void logToFile(bool on);
    void setOutputFile(const QString& fileName);
    /**
     * Appends \a line to the output file as it is, without a line end. A file that cannot
     * be opened is logged for each line; a failed write is logged once until a write
     * succeeds again. The line stays in the panel either way.
     */
    void saveToFile(const QString& line);

    /// The log's lines from the first to the last (in overwrite mode the newest line is
    /// the one before the overwrite position).
    QStringList lines() const;
    /// The colour line \a number (from 0) is written in; invalid for an empty or missing line.
    QColor lineColour(int number) const;
    QPoint anchor() const { return m_anchor; }
    QString outputFile() const { return m_outputFile; }
    bool isLoggingToFile() const { return m_logToFile; }

signals:
    /// The panel has finished opening or closing.
    void finished();

public slots:
    /// Opens the panel above the anchor (true) or closes it to zero height at the anchor
    /// (false); connected to the status bar's showMessageLog(bool). Jumps without an
    /// animation on a handheld system.
    void animate(bool showLog);

protected:
    /// For panels of another object name (which selects their style sheet).
    MsgLogger(QWidget* parent, const QPoint& anchor, const QString& objectName);

    /// Stores \a anchor and closes the panel there at zero height.
    void closeAt(const QPoint& anchor);

    bool eventFilter(QObject* watched, QEvent* event) override;

private slots:
    void animationFinished();
    void deselect(bool copyAble);

private:
    QRect closedGeometry() const;
    void replaceLine(QTextCursor& cursor, int number, const QString& text);
    /// Cancels a selection in the text: the log cannot be selected or copied.
    void clearSelection();

    QPoint m_anchor;
    QString m_outputFile;
    bool m_logToFile = false;
    // Set after a failed write, so a full disk is reported once and not for every line.
    bool m_writeFailureReported = false;
    QPropertyAnimation* m_animation;
    QPlainTextEdit* m_text;
    QTextCharFormat m_format;
    int m_lineCount = 0;
    // The line the next message overwrites; apart from the text area's own cursor, so
    // neither a selection nor a scroll moves it.
    int m_overwriteLine = 0;
};

#endif
