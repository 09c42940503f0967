#include "GUIManagerServer.h"

#include "ApplicationOrb.h"
#include "CorbaFailure.h"
#include "GUIManagerImpl.h"
#include "GlobalImpl.h"
#include "ORB_wrapper_base.h"
#include "OrvanthNames.h"

#include <omniORB4/Naming.hh>

#include <QDebug>

namespace {

// Attempts at each binding step before the server gives up on the naming service.
constexpr int bindAttempts = 4;

const char poaName[] = "myPOA";

QString servicePath()
{
    return QString::fromLatin1(Orvanth::Names::GuiManagerPath);
}

} // namespace

GUIManagerServer::GUIManagerServer(QObject* parent)
    : QThread(parent)
{
    setObjectName(QStringLiteral("GUIManagerServer"));
    try {
        m_orb = CORBA::ORB::_duplicate(ApplicationOrb::start());
        const ORB_base orb;
        m_poa = orb.singleThreadPoa(poaName);
        m_manager = new Lumaro::gui::GUIManagerImpl(nullptr);
        m_reference = orb.activate(m_manager, m_poa);
    } catch (const CORBA::Exception& exception) {
        qDebug() << "CORBA exception raised!";
        qDebug().noquote() << "UserInterface - GUIManagerServer -" << CorbaFailure::describe(exception);
    } catch (...) {
        qDebug() << "CORBA exception raised!";
    }
    // The service ends with the registry the host closes the desktop with.
    if (GlobalImpl* registry = GlobalImpl::existingInstance())
        connect(registry, &QObject::destroyed, this, &GUIManagerServer::stop);
}

GUIManagerServer::~GUIManagerServer()
{
    stop();
    delete m_responseSource.data();
    // The POA drops its own reference once no call is inside the servant any more.
    if (m_manager)
        m_manager->_remove_ref();
    m_manager = nullptr;
}

void GUIManagerServer::setResponseSource(QObject* source)
{
    m_responseSource = source;
}

void GUIManagerServer::initialize()
{
    if (!m_manager) {
        qDebug() << "UserInterface - GUIManagerServer - no servant, nothing to initialize";
        return;
    }
    // The source is the host's class: its signals are found by name.
    connect(m_responseSource, SIGNAL(retResponse(const long&)), m_manager, SLOT(getResponse(const long&)));
    connect(m_responseSource, SIGNAL(retResponse(const long&, const QString&)), m_manager,
            SLOT(getResponse(const long&, const QString&)));
    connect(m_responseSource, SIGNAL(retResponse(const long&, const QString&, const QString&)), m_manager,
            SLOT(getResponse(const long&, const QString&, const QString&)));
    m_manager->initialize();
}

void GUIManagerServer::run()
{
    try {
        bindName();
        // Calls are served on the ORB's own threads; this one waits to withdraw the service.
        if (!isInterruptionRequested())
            exec();
    } catch (...) {
        qDebug() << "UserInterface - ERROR!!!!!!!! Orb event loop died, exception caught.";
    }
    withdrawName();
}

void GUIManagerServer::bindName()
{
    if (CORBA::is_nil(m_reference))
        return;
    ORB_wrapper_base naming;
    CosNaming::NamingContext_var root;
    try {
        root = naming.rootContext();
        if (CORBA::is_nil(root))
            qDebug() << "Got a NIL root naming context";
    } catch (...) {
        qDebug() << "Can't get to the naming service";
    }
    if (CORBA::is_nil(root))
        return;

    const std::string path(Orvanth::Names::GuiManagerPath);
    const CosNaming::Name fullName = ORB_wrapper_base::toName(path);
    // Each context on the way, then the reference itself.
    for (CORBA::ULong depth = 1; depth < fullName.length(); ++depth) {
        CosNaming::Name contextName = fullName;
        contextName.length(depth);
        bool done = false;
        for (int attempt = 0; attempt < bindAttempts && !done && !isInterruptionRequested(); ++attempt) {
            try {
                CosNaming::NamingContext_var context = root->bind_new_context(contextName);
                done = true;
            } catch (const CosNaming::NamingContext::AlreadyBound&) {
                qDebug() << "Naming context already bound";
                done = true;
            } catch (...) {
            }
        }
        if (!done)
            qDebug() << "Can't bind new context";
    }

    bool rebind = false;
    for (int attempt = 0; attempt < bindAttempts && !isInterruptionRequested(); ++attempt) {
        try {
            if (rebind) {
                root->rebind(fullName, m_reference);
            } else {
                try {
                    root->bind(fullName, m_reference);
                } catch (const CosNaming::NamingContext::AlreadyBound&) {
                    // Left by an earlier run: this run takes the name over.
                    qDebug() << "Object already bound.  Will force a rebind";
                    rebind = true;
                    root->rebind(fullName, m_reference);
                }
            }
            m_bound.store(true);
            qDebug() << "UserInterface - GUIManagerServer - bound" << servicePath();
            return;
        } catch (...) {
        }
    }
    qDebug() << "Failed to register object with naming service!";
}

void GUIManagerServer::withdrawName()
{
    if (m_withdrawn.exchange(true) || !m_manager)
        return;
    ORB_wrapper_base naming;
    if (m_bound.load()) {
        try {
            // Only while the name still leads here: a newer host may have taken it over.
            CORBA::Object_var bound = naming.ResolveName(Orvanth::Names::GuiManagerPath);
            if (!CORBA::is_nil(bound) && bound->_is_equivalent(m_reference)) {
                naming.UnbindName(Orvanth::Names::GuiManagerPath);
                qDebug() << "UserInterface - GUIManagerServer - unbound" << servicePath();
            }
        } catch (const CORBA::Exception& exception) {
            qDebug().noquote() << "UserInterface - GUIManagerServer - cannot unbind" << ('"' + servicePath() + '"')
                               << CorbaFailure::describe(exception);
        }
    }
    try {
        naming.deactivate(m_manager, m_poa);
    } catch (const CORBA::Exception& exception) {
        qDebug().noquote() << "UserInterface - GUIManagerServer - cannot deactivate the servant"
                           << CorbaFailure::describe(exception);
    }
}

void GUIManagerServer::stop()
{
    if (m_stopped)
        return;
    m_stopped = true;
    if (m_manager)
        m_manager->shutdown();
    requestInterruption();
    quit();
    if (isRunning())
        wait();
    // Never started: nothing was bound, but the servant is active.
    withdrawName();
}
