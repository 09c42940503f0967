#ifndef QTZTEXTLINENUMBERAREA_H
#define QTZTEXTLINENUMBERAREA_H

#include "tzuicomponents_export.h"

#include <QFrame>
#include <QString>

class QTZTextEditor;

/**
 * The grey gutter at the left of a QTZTextEditor. It owns no state of its own: its width
 * and its numbers come from the editor it serves.
 */
class TZUICOMPONENTS_EXPORT QTZTextLineNumberArea : public QFrame
{
    Q_OBJECT

public:
    /// Built as a child of \a editor, whose viewport margin leaves room for it.
    explicit QTZTextLineNumberArea(QTZTextEditor* editor);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QTZTextEditor* editor;
    QString styleSheetText;
};

#endif
