#include "MsgLogger.h"

#include "ApplicationOptions.h"
#include "CSS.h"
#include "VerticalScrollBarImpl.h"

#include <QDebug>
#include <QEvent>
#include <QFile>
#include <QPlainTextEdit>
#include <QPropertyAnimation>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
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
    , m_text(new QPlainTextEdit(this))
{
    setObjectName(objectName);
    m_animation->setDuration(250);
    connect(m_animation, &QPropertyAnimation::finished, this, &MsgLogger::animationFinished);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_text);
    m_text->setReadOnly(true);
    m_text->setVerticalScrollBar(new Lumaro::gui::VerticalScrollBarImpl(m_text));
    // The log is a record, not an editor: an undo stack would only keep every
    // overwritten line alive.
    m_text->setUndoRedoEnabled(false);
    m_text->viewport()->installEventFilter(this);
    connect(m_text, &QPlainTextEdit::copyAvailable, this, &MsgLogger::deselect);

    m_format = m_text->currentCharFormat();
    m_format.setForeground(QColor(Qt::black));

    setAlertStyle(false);
    closeAt(anchor);
}

void MsgLogger::addMessage(const QString& line, bool append)
{
    const QString text = oneLine(line);
    QTextDocument* document = m_text->document();
    QTextCursor cursor(document);
    // Inside an edit block a cursor does not lay out the line it stands on (to know its x),
    // so no line is laid out before it is painted.
    cursor.beginEditBlock();
    if (m_lineCount == 0) {
        cursor.insertText(text, m_format);
        m_lineCount = 1;
    } else if (append && m_lineCount < MaximumLines) {
        cursor.movePosition(QTextCursor::End);
        cursor.insertBlock();
        cursor.insertText(text, m_format);
        ++m_lineCount;
    } else {
        replaceLine(cursor, m_overwriteLine, text);
        m_overwriteLine = (m_overwriteLine + 1) % m_lineCount;
    }
    cursor.endEditBlock();

    if (m_logToFile)
        saveToFile(line);
}

void MsgLogger::replaceLine(QTextCursor& cursor, int number, const QString& text)
{
    const QTextBlock block = m_text->document()->findBlockByNumber(number);
    const QChar separator(QChar::ParagraphSeparator);
    // The edit takes in the separator to a neighbouring line: the layout then only forgets
    // the lines it touches, where a change inside one line would lay it out at once.
    if (block.next().isValid()) {
        cursor.setPosition(block.position());
        cursor.setPosition(block.next().position(), QTextCursor::KeepAnchor);
        cursor.insertText(text + separator, m_format);
    } else if (block.previous().isValid()) {
        cursor.setPosition(block.position() - 1);
        cursor.setPosition(block.position() + block.length() - 1, QTextCursor::KeepAnchor);
        cursor.insertText(separator + text, m_format);
    } else {
        cursor.setPosition(block.position());
        cursor.setPosition(block.position() + block.length() - 1, QTextCursor::KeepAnchor);
        cursor.insertText(text, m_format);
    }
}

void MsgLogger::setTextColor(const QColor& colour)
{
    m_format.setForeground(colour);
}

void MsgLogger::setTextCursorStart()
{
    m_overwriteLine = 0;
    clearSelection();
}

void MsgLogger::setAlertStyle(bool alert)
{
    const QString border = alert ? QStringLiteral("#f00") : CSS::border();
    // The selector is the panel's object name: "QFrame#QTZMsgLogger" or "QFrame#MsgLogger";
    // the text area's rule names its class, QPlainTextEdit.
    QString sheet = QStringLiteral("QFrame#") + objectName()
                    + QStringLiteral(" {    background-color: rgb(63,63,63);    border: 2px solid ") + border
                    + QStringLiteral(";    border-radius: 18px;}QPlainTextEdit {    background-color: rgb(153,153,153);"
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

QColor MsgLogger::lineColour(int number) const
{
    const QTextBlock block = m_text->document()->findBlockByNumber(number);
    if (!block.isValid() || number >= m_lineCount || block.begin().atEnd())
        return QColor();
    return block.begin().fragment().charFormat().foreground().color();
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
