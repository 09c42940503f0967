#include "MsgLogger.h"

#include "ApplicationOptions.h"
#include "CSS.h"

#include <QDebug>
#include <QEvent>
#include <QFile>
#include <QPropertyAnimation>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>
#include <QVBoxLayout>

namespace {

/**
 * \a line as the text of one log line: every character that QTextDocument would turn
 * into a new block becomes a line break inside the block, so one message is always one
 * line of the ring.
 */
QString oneLine(const QString& line)
{
    QString text = line;
    text.replace(QLatin1String("\r\n"), QString(QChar::LineSeparator));
    for (QChar& character : text) {
        const ushort code = character.unicode();
        if (code == '\n' || code == '\r' || code == QChar::ParagraphSeparator)
            character = QChar::LineSeparator;
        else if (code == 0xFDD0 || code == 0xFDD1) // the document's own frame markers
            character = QChar::ReplacementCharacter;
    }
    return text;
}

} // namespace

MsgLogger::MsgLogger(QWidget* parent, const QPoint& anchor)
    : MsgLogger(parent, anchor, QStringLiteral("MsgLogger"))
{
}

MsgLogger::MsgLogger(QWidget* parent, const QPoint& anchor, const QString& objectName)
    : QFrame(parent)
    , m_anchor(anchor)
    , m_animation(new QPropertyAnimation(this, "geometry", this))
    , m_text(new QTextEdit(this))
{
    setObjectName(objectName);
    m_animation->setDuration(250);
    connect(m_animation, &QPropertyAnimation::finished, this, &MsgLogger::animationFinished);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_text);
    m_text->setReadOnly(true);
    // The log is a record, not an editor: an undo stack would only keep every
    // overwritten line alive.
    m_text->setUndoRedoEnabled(false);
    m_text->viewport()->installEventFilter(this);
    connect(m_text, &QTextEdit::copyAvailable, this, &MsgLogger::deselect);

    m_overwrite = QTextCursor(m_text->document());
    m_format = m_text->currentCharFormat();

    setAlertStyle(false);
    closeAt(anchor);
}

void MsgLogger::addMessage(const QString& line, bool append)
{
    const QString text = oneLine(line);
    QTextDocument* document = m_text->document();
    if (m_lineCount == 0) {
        m_overwrite.insertText(text, m_format);
        m_overwrite.movePosition(QTextCursor::Start);
        m_lineCount = 1;
    } else if (append && m_lineCount < MaximumLines) {
        QTextCursor end(document);
        end.movePosition(QTextCursor::End);
        end.insertBlock();
        end.insertText(text, m_format);
        ++m_lineCount;
    } else {
        // One edit of one block: the document re-lays out that line only.
        m_overwrite.movePosition(QTextCursor::StartOfBlock);
        m_overwrite.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        m_overwrite.insertText(text, m_format);
        if (!m_overwrite.movePosition(QTextCursor::NextBlock))
            m_overwrite.movePosition(QTextCursor::Start);
    }

    if (m_logToFile)
        saveToFile(line);
}

void MsgLogger::setTextColor(const QColor& colour)
{
    m_format.setForeground(colour);
    m_text->setTextColor(colour);
}

void MsgLogger::setTextCursorStart()
{
    m_overwrite.movePosition(QTextCursor::Start);
    clearSelection();
}

void MsgLogger::setAlertStyle(bool alert)
{
    const QString border = alert ? QStringLiteral("#f00") : CSS::border();
    // The selector is the panel's object name: "QFrame#QTZMsgLogger" or "QFrame#MsgLogger".
    QString sheet = QStringLiteral("QFrame#") + objectName()
                    + QStringLiteral(" {    background-color: rgb(63,63,63);    border: 2px solid ") + border
                    + QStringLiteral(";    border-radius: 18px;}QTextEdit {    background-color: rgb(153,153,153);"
                                     "    border: 2px solid ")
                    + border + QStringLiteral(";    border-radius: 14px;");
    if (!alert)
        sheet += QStringLiteral("    padding: 0px 0px -2px 0px;");
    sheet += QLatin1Char('}');
    setStyleSheet(sheet);
}

void MsgLogger::logToFile(bool on)
{
    m_logToFile = on;
}

void MsgLogger::setOutputFile(const QString& fileName)
{
    m_outputFile = fileName;
    m_writeFailureReported = false;
}

void MsgLogger::saveToFile(const QString& line)
{
    QFile file(m_outputFile);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text)) {
        qDebug().nospace().noquote() << "Unable to open file " << '"' << m_outputFile << '"' << ":\n"
                                     << file.errorString();
        return;
    }
    const QByteArray bytes = line.toUtf8();
    // A full disk shows only when the buffer is flushed, so the flush is checked too.
    const bool written = file.write(bytes) == bytes.size() && file.flush();
    if (!written && !m_writeFailureReported) {
        qDebug().nospace().noquote() << "UserInterface - Unable to write to file " << '"' << m_outputFile << '"'
                                     << ": " << file.errorString();
    }
    m_writeFailureReported = !written;
    file.close();
}

QStringList MsgLogger::lines() const
{
    QStringList all;
    if (m_lineCount == 0)
        return all;
    for (QTextBlock block = m_text->document()->begin(); block.isValid(); block = block.next())
        all << block.text();
    return all;
}

void MsgLogger::animate(bool showLog)
{
    const QRect start = geometry();
    QRect end;
    if (showLog) {
        m_animation->setEasingCurve(QEasingCurve::OutBack);
        end = QRect(QPoint(m_anchor.x(), m_anchor.y() - 8 - FullHeight), QPoint(m_anchor.x() + width() - 1,
                                                                               m_anchor.y() - 9));
        show();
        raise();
    } else {
        m_animation->setEasingCurve(QEasingCurve::InBack);
        end = closedGeometry();
    }

    m_animation->stop();
    if (ApplicationOptions::isHandheld()) {
        setGeometry(end);
        animationFinished();
        return;
    }
    m_animation->setStartValue(start);
    m_animation->setEndValue(end);
    m_animation->start();
}

void MsgLogger::closeAt(const QPoint& anchor)
{
    m_anchor = anchor;
    setGeometry(closedGeometry());
}

QRect MsgLogger::closedGeometry() const
{
    // Top one below bottom: a zero-height strip just above the anchor.
    return QRect(QPoint(m_anchor.x(), m_anchor.y() - 8), QPoint(m_anchor.x() + width() - 1, m_anchor.y() - 9));
}

bool MsgLogger::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_text->viewport() && event->type() == QEvent::MouseButtonPress)
        raise();
    return QFrame::eventFilter(watched, event);
}

void MsgLogger::animationFinished()
{
    QScrollBar* bar = m_text->verticalScrollBar();
    bar->setValue(bar->maximum());
    emit finished();
}

void MsgLogger::deselect(bool copyAble)
{
    if (copyAble)
        clearSelection();
}

void MsgLogger::clearSelection()
{
    QTextCursor cursor = m_text->textCursor();
    if (!cursor.hasSelection())
        return;
    cursor.clearSelection();
    m_text->setTextCursor(cursor);
}
