#ifndef ORVANTH_ENGINESERVER_H
#define ORVANTH_ENGINESERVER_H

#include "ORB_wrapper_base.h"

#include <string>
#include <vector>

namespace Orvanth {

/// Serves engine objects from this process: activates servants in the root POA and
/// binds them in the naming service.
class EngineServer : public ORB_wrapper_base
{
public:
    explicit EngineServer(const std::vector<std::string>& orbOptions = {});

    /// Activates \a servant and returns a new reference to it. The POA takes over the
    /// servant's reference count: drop your own with _remove_ref() when done with it.
    CORBA::Object_ptr activate(PortableServer::ServantBase* servant);

    /// Activates \a servant if needed and binds it under \a path; returns the reference.
    CORBA::Object_ptr serve(const std::string& path, PortableServer::ServantBase* servant);

    /// Deactivates \a servant; calls on its references then fail with OBJECT_NOT_EXIST.
    void deactivate(PortableServer::ServantBase* servant);
};

} // namespace Orvanth

#endif
