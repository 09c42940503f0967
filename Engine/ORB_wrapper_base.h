#ifndef ORVANTH_ORB_WRAPPER_BASE_H
#define ORVANTH_ORB_WRAPPER_BASE_H

#include "ORB_base.h"

#include <omniORB4/Naming.hh>

#include <string>
#include <vector>

/**
 * Naming-service client over the process ORB, and the binding of served objects.
 *
 * Paths are written with "/" between the components ("Lumaro/local/GUI_ABLE"); every
 * component has the empty kind. The root context is found through the initial
 * reference "NameService" of the process ORB (-ORBInitRef when the ORB was started, or
 * the ORBInitRef environment variable).
 */
class ORB_wrapper_base : public ORB_base
{
public:
    /// Uses the running process ORB; starts it without options only if none runs.
    ORB_wrapper_base();
    /// ORB_base::start(options), then uses the process ORB.
    explicit ORB_wrapper_base(const std::vector<std::string>& options);
    ~ORB_wrapper_base() override;

    /// The names bound directly under the context \a path, in the naming service's
    /// order; empty when the context does not exist. Throws
    /// Orvanth::Connection_errors::Not_Connected when the naming service cannot be reached.
    std::vector<std::string> FindChildContext(const std::string& path);

    /// The object bound under \a path, or nil when nothing is bound there. Throws
    /// Orvanth::Connection_errors::Not_Connected when the naming service cannot be reached.
    CORBA::Object_ptr ResolveName(const std::string& path);

    /// Binds \a object under \a path, replacing an existing binding and creating the
    /// contexts on the way.
    void BindName(const std::string& path, CORBA::Object_ptr object);

    /// Removes the binding \a path; returns false when there was none.
    bool UnbindName(const std::string& path);

    /// Activates \a servant in \a poa (the root POA when nil) unless it is active there,
    /// binds it under \a path as BindName() does and returns a new reference to it.
    CORBA::Object_ptr serve(const std::string& path, PortableServer::ServantBase* servant,
                            PortableServer::POA_ptr poa = PortableServer::POA::_nil());

    /// Unbinds \a path and deactivates \a servant in \a poa (the root POA when nil);
    /// the servant is deactivated also when the naming service cannot be reached, and
    /// Orvanth::Connection_errors::Not_Connected is thrown then. Returns false when
    /// nothing was bound under \a path.
    bool withdraw(const std::string& path, PortableServer::ServantBase* servant,
                  PortableServer::POA_ptr poa = PortableServer::POA::_nil());

    /// The root naming context (duplicated; the caller releases it). Throws
    /// Orvanth::Connection_errors::Not_Connected when the naming service cannot be reached.
    CosNaming::NamingContext_ptr rootContext();

    /// "a/b/c" as a naming-service name of three components with empty kinds.
    static CosNaming::Name toName(const std::string& path);

private:
    CosNaming::NamingContext_var m_root;
};

#endif
