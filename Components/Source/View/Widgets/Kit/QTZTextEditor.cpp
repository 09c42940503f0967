#include "QTZTextEditor.h"

#include "QTZTextLineNumberArea.h"

#include <QList>
#include <QPaintEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QTextBlock>

#include <algorithm>

QTZTextEditor::QTZTextEditor(QWidget* parent)
    : QPlainTextEdit(parent)
    , lineNumberArea(new QTZTextLineNumberArea(this))
{
    connect(this, &QPlainTextEdit::blockCountChanged, this, &QTZTextEditor::updateLineNumberAreaWidth);
    connect(this, &QPlainTextEdit::updateRequest, this, &QTZTextEditor::updateLineNumberArea);
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, &QTZTextEditor::highlightCurrentLine);

    updateLineNumberAreaWidth(0);
    highlightCurrentLine();
}

int QTZTextEditor::lineNumberAreaWidth() const
{
    int digits = 1;
    for (int lines = std::max(1, blockCount()); lines >= 10; lines /= 10)
        ++digits;
    return 10 + digits * fontMetrics().horizontalAdvance(QLatin1Char('9'));
}

void QTZTextEditor::updateLineNumberAreaWidth(int)
{
    // Resizing the viewport comes back through resizeEvent(), which fits the gutter.
    setViewportMargins(lineNumberAreaWidth(), 0, 0, 0);
}

void QTZTextEditor::updateLineNumberArea(const QRect& rect, int dy)
{
    if (dy != 0)
        lineNumberArea->scroll(0, dy);
    else
        lineNumberArea->update(0, rect.y(), lineNumberArea->width(), rect.height());

    if (rect.contains(viewport()->rect()))
        updateLineNumberAreaWidth(0);
}

void QTZTextEditor::resizeEvent(QResizeEvent* event)
{
    QPlainTextEdit::resizeEvent(event);

    const QRect contents = contentsRect();
    lineNumberArea->setGeometry(QRect(contents.left(), contents.top(), lineNumberAreaWidth(), contents.height()));
}

void QTZTextEditor::lineNumberAreaPaintEvent(QPaintEvent* event)
{
    QPainter painter(lineNumberArea);
    painter.setPen(Qt::black);

    QTextBlock block = firstVisibleBlock();
    int top = int(blockBoundingGeometry(block).translated(contentOffset()).top());
    int bottom = top + int(blockBoundingRect(block).height());
    const int lineHeight = fontMetrics().height();

    while (block.isValid() && top <= event->rect().bottom()) {
        if (block.isVisible() && bottom >= event->rect().top()) {
            painter.drawText(0, top, lineNumberArea->width() - 5, lineHeight, Qt::AlignRight,
                             QString::number(block.blockNumber() + 1));
        }
        block = block.next();
        top = bottom;
        bottom = top + int(blockBoundingRect(block).height());
    }
}

void QTZTextEditor::highlightCurrentLine()
{
    QList<QTextEdit::ExtraSelection> selections;

    if (!isReadOnly()) {
        QTextEdit::ExtraSelection selection;
        selection.format.setBackground(QColor(Qt::yellow).lighter(160));
        selection.format.setProperty(QTextFormat::FullWidthSelection, true);
        selection.cursor = textCursor();
        selection.cursor.clearSelection();
        selections.append(selection);
    }

    setExtraSelections(selections);
}
