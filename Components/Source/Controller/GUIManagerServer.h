#ifndef GUIMANAGERSERVER_H
#define GUIMANAGERSERVER_H

#include "tzuicomponents_export.h"

#include <omniORB4/CORBA.h>

#include <QPointer>
#include <QThread>

#include <atomic>

namespace Lumaro {
namespace gui {
class GUIManagerImpl;
}
} // namespace Lumaro

/**
 * Makes the remote GUI service reachable: serves the servant from the process ORB in a
 * POA that takes one call at a time, and binds it as Lumaro/local/GUIManager in the
 * naming service. The binding, and the unbinding at the end, are made on this thread,
 * so the GUI never waits on the naming service.
 *
 * The host builds it, sets the response source (its receiver of the servant's signals,
 * emitting the retResponse answers), calls initialize() and starts it. It stops by
 * itself when the registry goes, and at the latest when it is destroyed.
 */
class TZUICOMPONENTS_EXPORT GUIManagerServer : public QThread
{
    Q_OBJECT

public:
    /// Builds and activates the servant; failures are logged, never thrown.
    explicit GUIManagerServer(QObject* parent = nullptr);
    /// stop(), then deletes the response source and lets the servant go.
    ~GUIManagerServer() override;

    /// Connects the response source's three retResponse signals to the servant and
    /// initialises the servant. Call once, after setResponseSource() and before start().
    void initialize();

    /// The host's object that emits retResponse; the server deletes it.
    void setResponseSource(QObject* source);
    QObject* responseSource() const { return m_responseSource; }
    /// The servant; null when the ORB could not be reached.
    Lumaro::gui::GUIManagerImpl* manager() const { return m_manager; }

    /// Ends the service: the servant stops answering and closes the receiver's dialogs,
    /// the name is unbound, the servant deactivated and the thread joined. A call still
    /// inside the servant finishes on its own; the servant outlives it. Call in the
    /// thread that built the server; a second call does nothing.
    void stop();

protected:
    void run() override;

private:
    void bindName();
    void withdrawName();

    Lumaro::gui::GUIManagerImpl* m_manager = nullptr;
    QPointer<QObject> m_responseSource;
    CORBA::ORB_var m_orb;
    PortableServer::POA_var m_poa;
    CORBA::Object_var m_reference;
    std::atomic<bool> m_bound{false};
    std::atomic<bool> m_withdrawn{false};
    bool m_stopped = false;
};

#endif
