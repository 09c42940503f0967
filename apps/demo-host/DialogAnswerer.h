#ifndef DIALOGANSWERER_H
#define DIALOGANSWERER_H

#include <QObject>
#include <QPointer>
#include <QTimer>

class QWidget;

/**
 * A test hook of the demo host ("-answer-dialogs MS"): every dialog that opens on the
 * desktop is answered MS milliseconds later with a click on its first button, as a touch
 * would answer it. For tests that run the host without a display; never on otherwise.
 */
class DialogAnswerer : public QObject
{
    Q_OBJECT

public:
    /// Watches \a desktop, which owns this object.
    DialogAnswerer(QWidget* desktop, int delayMs);

private:
    void lookForDialogs();

    QPointer<QWidget> m_desktop;
    int m_delayMs;
    // Dialogs open in nested event loops, where a timer still runs.
    QTimer m_look;
};

#endif
