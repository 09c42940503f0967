#include "EngineServer.h"

namespace Orvanth {

EngineServer::EngineServer(const std::vector<std::string>& orbOptions)
    : ORB_wrapper_base(orbOptions)
{
}

CORBA::Object_ptr EngineServer::activate(PortableServer::ServantBase* servant)
{
    PortableServer::POA_ptr poa = rootPoa();
    try {
        PortableServer::ObjectId_var id = poa->servant_to_id(servant);
        return poa->id_to_reference(id);
    } catch (const PortableServer::POA::ServantNotActive&) {
        PortableServer::ObjectId_var id = poa->activate_object(servant);
        return poa->id_to_reference(id);
    }
}

CORBA::Object_ptr EngineServer::serve(const std::string& path, PortableServer::ServantBase* servant)
{
    CORBA::Object_var object = activate(servant);
    BindName(path, object);
    return object._retn();
}

void EngineServer::deactivate(PortableServer::ServantBase* servant)
{
    PortableServer::POA_ptr poa = rootPoa();
    try {
        PortableServer::ObjectId_var id = poa->servant_to_id(servant);
        poa->deactivate_object(id);
    } catch (const PortableServer::POA::ServantNotActive&) {
    } catch (const PortableServer::POA::ObjectNotActive&) {
    }
}

} // namespace Orvanth
