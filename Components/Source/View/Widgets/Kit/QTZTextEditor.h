#ifndef QTZTEXTEDITOR_H
#define QTZTEXTEDITOR_H

#include "tzuicomponents_export.h"

#include <QPlainTextEdit>

class QPaintEvent;
class QRect;
class QResizeEvent;
class QTZTextLineNumberArea;

/**
 * A plain-text editor with line numbers in a gutter at its left and the cursor's line
 * highlighted while the text can be edited.
 */
class TZUICOMPONENTS_EXPORT QTZTextEditor : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit QTZTextEditor(QWidget* parent = nullptr);

    /// Wide enough for the highest line number, in the editor's font, plus a margin.
    int lineNumberAreaWidth() const;
    /// Paints the line numbers of the visible lines into the gutter.
    void lineNumberAreaPaintEvent(QPaintEvent* event);

protected:
    void resizeEvent(QResizeEvent* event) override;

private slots:
    void updateLineNumberAreaWidth(int newBlockCount);
    void highlightCurrentLine();
    void updateLineNumberArea(const QRect& rect, int dy);

private:
    QTZTextLineNumberArea* lineNumberArea;
};

#endif
