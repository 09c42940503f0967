#ifndef GUIMANAGERIMPL_H
#define GUIMANAGERIMPL_H

#include "tzuicomponents_export.h"

// The stubs and the skeleton are part of the library's interface (hosts and engines
// linking it call the service through them), whatever visibility the includer builds with.
#pragma GCC visibility push(default)
#include <GUIManager.hh>
#pragma GCC visibility pop

#include <QObject>
#include <QSize>
#include <QString>
#include <QStringList>

#include <atomic>
#include <memory>
#include <mutex>

class ContainerImpl;
class OpenDialogRecord;
class QWidget;

namespace Lumaro {
namespace gui {

/**
 * The servant of the remote GUI service. Remote calls arrive on ORB threads, one at a
 * time; each becomes a signal for the host's receiver, which lives in the GUI thread,
 * shows what is asked and hands the user's answer back through getResponse(). The
 * servant itself never touches a widget.
 *
 * Its life is counted by the ORB: the server holds one reference and the POA another
 * while the servant is active or a call is inside it; the last one deletes it in its
 * own (GUI) thread.
 */
class TZUICOMPONENTS_EXPORT GUIManagerImpl : public QObject, public POA_Lumaro::gui::GUIManager
{
    Q_OBJECT

public:
    /// Texts longer than this (in characters) are cut before they reach the receiver: a
    /// dialog cannot show a megabyte anyway, and laying it out would stall the GUI.
    static constexpr int MaxTextLength = 16 * 1024;
    /// Parameter lists of a dialog are cut to this many entries.
    static constexpr int MaxParameters = 256;

    explicit GUIManagerImpl(QObject* parent = nullptr);
    ~GUIManagerImpl() override;

    /// Status-bar alerts go to the receiver as remote alerts do, and OpenDCS shows the
    /// system screen "DCS". Called once, in the GUI thread.
    void initialize();

    /// The widget registered as screen \a name, or null. Unlike the registry's lookup,
    /// an unknown name is not entered: remote callers must not grow the screen table.
    QWidget* GetScreen(const QString& name);

    /// Ends the service: no further request reaches the receiver, an alert's wait ends,
    /// and the receiver is asked to close every dialog (so a call waiting on one returns).
    /// Called in the GUI thread; a second call does nothing.
    void shutdown();
    bool isShutDown() const { return m_shutDown.load(std::memory_order_acquire); }

    /// Answers IsDialogActive from \a record, on the ORB thread, instead of asking the
    /// receiver through isDialogActive(); null goes back to asking.
    void setDialogRecord(std::shared_ptr<const OpenDialogRecord> record);

    CORBA::Long DisplayAlert(const char* msg) override;
    CORBA::Long DisplayDialog(const char* title, const char* msg, const char* button, CORBA::Boolean wait) override;
    CORBA::Long DisplayDialogWithParams(const char* title, const char* msg, const StringSeq& params,
                                        const char* button, CORBA::Boolean wait) override;
    CORBA::Long DisplayImage(const char* title, const char* msg, const char* imageFile, const char* button,
                             CORBA::Boolean wait) override;
    CORBA::Long DisplayDataEntry(const char* title, const char* msg, const char* button, CORBA::Boolean wait,
                                 CORBA::String_out data) override;
    void CloseDialog(const char* dialog) override;
    void CloseAllDialogs() override;
    CORBA::Boolean IsDialogActive(const char* dialog) override;
    void OpenDCS() override;
    CORBA::Long DisplayFileSelectDialog(const char* title, const char* rootpath, CORBA::String_out path,
                                        CORBA::String_out filename) override;
    StringSeq* GetScreenList() override;
    void ShowScreen(const char* screen) override;
    void HideScreen(const char* screen) override;
    void MoveScreen(const char* screen, CORBA::Long x, CORBA::Long y) override;
    void ChangeSize(const char* screen, const char* size) override;
    void RestoreState(const char* data) override;
    char* SaveState() override;
    void SetMenuBarVisible(CORBA::Boolean visible) override;

    void _add_ref() override;
    void _remove_ref() override;
    CORBA::ULong _refcount_value() override;

signals:
    void showAlert(QString msg, bool modal);
    void showImageDialog(QString title, QString msg, QString imageFile, QString button, bool modal, bool waiting);
    void showSimpleDialog(QString title, QString msg, QString button, bool modal, bool waiting);
    void showDialogWithParams(QString title, QString msg, QStringList params, QString button, bool modal,
                              bool waiting);
    void showDataEntryDialog(QString title, QString msg, QString button, QString data, bool modal, bool waiting);
    void showImageDialogBlocking(QString title, QString msg, QString imageFile, QString button, bool modal);
    void showSimpleDialogBlocking(QString title, QString msg, QString button, bool modal);
    void showDialogWithParamsBlocking(QString title, QString msg, QStringList params, QString button, bool modal);
    void showDataEntryDialogBlocking(QString title, QString msg, QString button, QString data, bool modal);
    /// A null \a dialog means every dialog.
    void closeDialog(QString dialog);
    void isDialogActive(QString dialog);
    void showDCS();
    void showFileSelectDialog(QString title, QString rootpath, QString path, QString filename);
    void showScreen(QWidget* screen);
    void hideScreen(QWidget* screen);
    void showScreenExtra(QWidget* screen, QString extra);
    void hideScreenExtra(QWidget* screen, QString extra);
    void moveScreen(QWidget* screen, int x, int y);
    void setScreenState(ContainerImpl* container, QString size);
    void showMenuBar(bool visible);

private slots:
    // The receiver's answers, in the GUI thread.
    void getResponse(const long& code);
    void getResponse(const long& code, const QString& data);
    void getResponse(const long& code, const QString& path, const QString& filename);

protected:
    // Follows the desktop's size for MoveScreen, which must not ask the GUI thread.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // The desktop's size as last seen, or a bound that allows every position before a
    // desktop exists.
    QSize desktopArea() const;
    // Sleeps in steps of 100 ms until an answer has arrived or the service ends.
    void waitForResponse();
    // Runs \a work in the servant's (GUI) thread and waits for it; false when it could
    // not run because the service has ended.
    template <class Work>
    bool inGuiThread(Work work);
    // \a text from the wire, cut to MaxTextLength with a log line naming \a operation.
    static QString incoming(const char* text, const char* operation);
    // Whether the service still takes requests; logs the refusal of \a operation if not.
    bool serving(const char* operation) const;
    // The registered screen named by the first part of \a screen ("name" or "name,extra").
    QWidget* screenFor(const QString& name, const char* operation);

    CORBA::Long responseCode() const { return m_responseCode.load(std::memory_order_acquire); }
    QString responseData() const;
    QString responsePath() const;
    QString responseFilename() const;

    // A dialog request or close sent to the receiver without waiting for it.
    void noteQueuedRequest();

    mutable std::mutex m_recordMutex;
    std::atomic<int> m_queuedRequests{0};
    std::shared_ptr<const OpenDialogRecord> m_dialogRecord;
    std::atomic<bool> m_responseReceived{false};
    std::atomic<CORBA::Long> m_responseCode{0};
    // The answer texts are written in the GUI thread whenever the user answers a dialog
    // that did not wait, which may be while a later call reads them on an ORB thread.
    // A standard mutex, which ThreadSanitizer sees, unlike Qt 5's futex-based one.
    mutable std::mutex m_responseMutex;
    QString m_responseData = QStringLiteral("");
    QString m_responsePath;
    QString m_responseFilename;

    std::atomic<qint64> m_desktopSize{-1};
    std::atomic<bool> m_shutDown{false};
    std::atomic<CORBA::ULong> m_references{1};
};

} // namespace gui
} // namespace Lumaro

#endif
