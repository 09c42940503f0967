#ifndef DEMOREMOTE_H
#define DEMOREMOTE_H

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

class ContainerDialog;
class ContainerImpl;
class DesktopImpl;
class GUIManagerServer;
class QWidget;

namespace Lumaro {
namespace gui {
class GUIManagerImpl;
}
} // namespace Lumaro

/**
 * The demo's side of the remote GUI service: the receiver of the servant's signals, in
 * the GUI thread. It shows, hides, moves, resizes and stacks registered screens, and
 * opens the alerts and dialogs the engines ask for as container dialogs, handing every
 * answer back through retResponse. A dialog is named by its title.
 *
 * A screen request may carry an extra word ("name,extra"): "front" shows the screen on
 * top of the others, "back" behind them; with a hide request "back" sends the screen
 * behind the others instead of hiding it.
 */
class DemoRemote : public QObject
{
    Q_OBJECT

public:
    /// Starts the service over \a desktop when the host has a naming service (the
    /// option "-ORBInitRef" or the ORBInitRef environment variable). The server is a
    /// child of \a desktop and registered in the registry; null when not started.
    static GUIManagerServer* serve(DesktopImpl* desktop);

    /// Dialogs open over \a desktop. The server owns the receiver.
    explicit DemoRemote(DesktopImpl* desktop);
    ~DemoRemote() override;

    /// Connects every signal of \a manager to its slot here; those whose call waits for
    /// the answer with a blocking queued connection.
    void connectTo(Lumaro::gui::GUIManagerImpl* manager);

    /// The open dialogs, oldest first.
    QList<ContainerDialog*> dialogs() const;

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

private:
    // What a dialog shows; one builder makes every kind from it.
    struct Request
    {
        enum Kind { Message, DataEntry, FileSelect };
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
    void open(const Request& request, bool wait);
    ContainerDialog* build(const Request& request);
    // Hands the answer of \a dialog back, with its entry text or file selection.
    void answer(ContainerDialog* dialog, long code);
    void forget(ContainerDialog* dialog);
    // Whether \a screen is still a registered screen: a pointer from another thread is
    // compared, never followed, until then.
    static bool isRegisteredScreen(QWidget* screen);

    QPointer<DesktopImpl> m_desktop;
    QList<QPointer<ContainerDialog>> m_dialogs;
};

#endif
