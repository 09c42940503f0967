#ifndef CONTAINERDIALOG_H
#define CONTAINERDIALOG_H

#include "ContainerImpl.h"

#include <QPoint>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVector>

class QEventLoop;
class QHBoxLayout;

/**
 * The kit's dialog window: a container styled as a message box, opened where the last
 * dialog was left (or centred), with a row of push buttons built from a button
 * description ("Yes,1|No,0"). exec() keeps the GUI's event loop running until a button
 * or a cancel answers; the answer is the pressed button's code, or -999 for a cancel.
 *
 * The owner fills the inner frame with its own widgets; the style sheet addresses them
 * by the names "dialog_text" (the message), "labelText" (a caption above an entry
 * field) and "lineEdit" (the entry field).
 */
class TZUICOMPONENTS_EXPORT ContainerDialog : public ContainerImpl
{
    Q_OBJECT

public:
    /// The answer of a dialog that was closed without a button.
    static constexpr int CancelCode = -999;

    explicit ContainerDialog(QWidget* parent = nullptr);
    /// A dialog deleted while exec() waits ends the wait with a cancel.
    ~ContainerDialog() override;

    /// Shows the dialog and waits, with the GUI running, for an answer; hides it again
    /// and returns the answer. The argument has no effect.
    int exec(bool modal = true);
    /// Ends a wait with \a code.
    void done(int code);
    bool isWaiting() const { return m_waiting; }
    int result() const { return m_resultCode; }
    /// Where the dialog shows itself.
    QPoint position() const { return m_position; }

    /// Puts \a layout on the inner frame as it stands: a dialog has no module form whose
    /// size would set the size of "Min".
    void setLayout(QLayout* layout) override;
    using ContainerImpl::setLayout;
    void updateStyle() override;

    /// The buttons that \a buttons describes, as entries "label,code" separated by "|",
    /// in a row that pushes them to the right; \a count receives how many there are.
    /// An entry that is not exactly two parts is skipped. Buttons made for a dialog
    /// answer it with their code; buttons made for any other parent answer nothing.
    static QHBoxLayout* createButtonLayout(QWidget* parent, const QString& buttons, long& count);

    /// One entry of a button description: the label shown and the code it answers.
    struct Button
    {
        QString label;
        QString code;
    };
    /// The entries of \a buttons that are exactly "label,code"; \a skipped, when given,
    /// receives the others.
    static QVector<Button> parseButtons(const QString& buttons, QStringList* skipped = nullptr);
    /// Whether the buttons show their labels translated or as they came (from an engine).
    enum LabelTranslation { TranslatedLabels, VerbatimLabels };
    /// The row of createButtonLayout() for entries already parsed.
    static QHBoxLayout* createButtonLayout(QWidget* parent, const QVector<Button>& buttons,
                                           LabelTranslation labels = TranslatedLabels);

public slots:
    /// Shows the dialog at its position without waiting.
    virtual void show();
    /// Ends a wait with CancelCode.
    void cancelDialog();
    /// Ends a wait with \a code read as a decimal number (0 when it is none).
    void buttonClicked(const QString& code);

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    bool m_waiting = false;
    int m_resultCode = 0;
    int m_dialogWidth = 660;
    int m_dialogHeight = 400;
    QPoint m_position;
    // The wait of exec(), while it runs.
    QPointer<QEventLoop> m_loop;
};

#endif
