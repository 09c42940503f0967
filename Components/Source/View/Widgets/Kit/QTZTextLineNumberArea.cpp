#include "QTZTextLineNumberArea.h"

#include "QTZTextEditor.h"

QTZTextLineNumberArea::QTZTextLineNumberArea(QTZTextEditor* editor)
    : QFrame(editor)
    , editor(editor)
    , styleSheetText(QStringLiteral("QFrame#TextLineNumberArea {    background-color: rgb(204,204,204);    "
                                    "border-top-left-radius: 12px;    border-bottom-left-radius: 12px;    "
                                    "border: none;}"))
{
    setObjectName(QStringLiteral("TextLineNumberArea"));
    setStyleSheet(styleSheetText);
}

QSize QTZTextLineNumberArea::sizeHint() const
{
    return QSize(editor->lineNumberAreaWidth(), 0);
}

void QTZTextLineNumberArea::paintEvent(QPaintEvent* event)
{
    // The grey background is drawn by the style sheet before this is called.
    editor->lineNumberAreaPaintEvent(event);
}
