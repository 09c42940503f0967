#ifndef GUIMANAGERRECEIVER_H
#define GUIMANAGERRECEIVER_H

#include "tzuicomponents_export.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <memory>

class ContainerDialog;
class ContainerImpl;
class GUIManagerServer;
class OpenDialogRecord;
class QLabel;
class QWidget;

namespace Lumaro {
namespace gui {
class GUIManagerImpl;
}
} // namespace Lumaro

/**
 * The receiver of the remote GUI service's signals, in the GUI thread: it shows, hides,
 * moves, resizes and stacks registered screens, and opens the alerts and dialogs that
 * engines ask for as container dialogs over the desktop, handing every answer back to
 * the servant through retResponse. A dialog is named by its title.
 *
 * Alerts share one box: while it is open, a further alert (from an engine or from the
 * status bar) shows its text there and counts it, and the box's one answer answers every
 * alert it holds. A desktop that receives alerts faster than anyone reads them thus
 * shows one box, not thousands.
 *
 * A screen request may carry an extra word ("name,extra"): "front" shows the screen on
 * top of the others, "back" behind them; with a hide request "back" sends the screen
 * behind the others instead of hiding it.
 *
 * What an engine sends (titles, messages, button labels) is shown as it came; the
 * receiver's own texts (the alert box's title and button, the file selection's message
 * and buttons, captions) follow the language, also in a dialog that is open.
 *
 * A host installs it with install(); a host with its own receiver connects the servant's
 * signals itself and hands it to GUIManagerServer::setResponseSource().
 */
class TZUICOMPONENTS_EXPORT GUIManagerReceiver : public QObject
{
    Q_OBJECT

public:
    /// Serves the remote GUI service with a receiver whose dialogs open over \a desktop:
    /// builds the server as a child of \a desktop, installs the receiver, registers the
    /// server in the registry and starts it. The server owns the receiver.
    static GUIManagerServer* serve(QWidget* desktop);
    /// Gives \a server a receiver whose dialogs open over \a desktop, connected to its
    /// servant, and initialises the server; the host then starts it.
    static GUIManagerReceiver* install(GUIManagerServer* server, QWidget* desktop);

    explicit GUIManagerReceiver(QWidget* desktop);
    ~GUIManagerReceiver() override;

    /// Connects every signal of \a manager to its slot here; those whose call waits for
    /// the answer with a blocking queued connection. \a manager answers IsDialogActive
    /// from this receiver's record of open dialogs from then on.
    void connectTo(Lumaro::gui::GUIManagerImpl* manager);
    /// The titles of the open dialogs, for any thread.
    std::shared_ptr<const OpenDialogRecord> openDialogRecord() const;

    /// The open dialogs, oldest first; the alert box among them.
    QList<ContainerDialog*> dialogs() const;
    /// The open alert box, or null.
    ContainerDialog* alertBox() const;
    /// How many alerts the open alert box holds (0 when none is open).
    int alertCount() const;

signals:
    void retResponse(const long& code);
    void retResponse(const long& code, const QString& data);
    void retResponse(const long& code, const QString& path, const QString& filename);

public slots:
    void showAlert(const QString& msg, bool modal);
    void showSimpleDialog(const QString& title, const QString& msg, const QString& button, bool modal, bool waiting);
    void showImageDialog(const QString& title, const QString& msg, const QString& imageFile, const QString& button,
                         bool modal, bool waiting);
    void showDialogWithParams(const QString& title, const QString& msg, const QStringList& params,
                              const QString& button, bool modal, bool waiting);
    void showDataEntryDialog(const QString& title, const QString& msg, const QString& button, const QString& data,
                             bool modal, bool waiting);
    void showSimpleDialogBlocking(const QString& title, const QString& msg, const QString& button, bool modal);
    void showImageDialogBlocking(const QString& title, const QString& msg, const QString& imageFile,
                                 const QString& button, bool modal);
    void showDialogWithParamsBlocking(const QString& title, const QString& msg, const QStringList& params,
                                      const QString& button, bool modal);
    void showDataEntryDialogBlocking(const QString& title, const QString& msg, const QString& button,
                                     const QString& data, bool modal);
    void showFileSelectDialog(const QString& title, const QString& rootpath, const QString& path,
                              const QString& filename);
    /// A null \a dialog closes every dialog.
    void closeDialog(const QString& dialog);
    void isDialogActive(const QString& dialog);

    void showScreen(QWidget* screen);
    void hideScreen(QWidget* screen);
    void showScreenExtra(QWidget* screen, const QString& extra);
    void hideScreenExtra(QWidget* screen, const QString& extra);
    void moveScreen(QWidget* screen, int x, int y);
    void setScreenState(ContainerImpl* container, const QString& size);
    void showMenuBar(bool visible);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // What a dialog shows; one builder makes every kind from it.
    struct Request
    {
        enum Kind { Message, Alert, DataEntry, FileSelect };
        Kind kind = Message;
        QString title;
        QString message;
        QString buttons;
        QString imageFile;
        QStringList parameters;
        QString entry;
        QString rootPath;
        QString filename;
    };

    static Request message(const QString& title, const QString& msg, const QString& buttons);
    static Request dataEntry(const QString& title, const QString& msg, const QString& buttons, const QString& offered);
    // The dialog left open when nobody waits for it; null otherwise.
    ContainerDialog* open(const Request& request, bool wait);
    ContainerDialog* build(const Request& request);
    // Hands the answer of \a dialog back, with its entry text or file selection.
    void answer(ContainerDialog* dialog, long code);
    void forget(ContainerDialog* dialog);
    void addToAlertBox(const QString& msg);
    static QString alertCountText(int count);
    // Shows this receiver's own texts in \a dialog in the current language.
    void showOwnTexts(ContainerDialog* dialog);
    // Whether \a screen is still a registered screen: a pointer from another thread is
    // compared, never followed, until then.
    static bool isRegisteredScreen(QWidget* screen);

    QPointer<QWidget> m_desktop;
    QList<QPointer<ContainerDialog>> m_dialogs;
    std::shared_ptr<OpenDialogRecord> m_record;
    QPointer<ContainerDialog> m_alertBox;
    int m_alertCount = 0;
};

#endif
