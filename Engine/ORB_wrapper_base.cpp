#include "ORB_wrapper_base.h"

#include <Orvanth.hh>

#include <sstream>

namespace {

[[noreturn]] void notConnected(const std::string& what, const CORBA::Exception& cause)
{
    const std::string text = "naming service unreachable (" + what + "): " + cause._name();
    throw Orvanth::Connection_errors::Not_Connected(text.c_str());
}

} // namespace

ORB_wrapper_base::ORB_wrapper_base() = default;

ORB_wrapper_base::ORB_wrapper_base(const std::vector<std::string>& options)
    : ORB_base(options)
{
}

ORB_wrapper_base::~ORB_wrapper_base() = default;

CosNaming::Name ORB_wrapper_base::toName(const std::string& path)
{
    CosNaming::Name name;
    std::istringstream stream(path);
    std::string component;
    while (std::getline(stream, component, '/')) {
        if (component.empty())
            continue;
        const CORBA::ULong index = name.length();
        name.length(index + 1);
        name[index].id = CORBA::string_dup(component.c_str());
        name[index].kind = CORBA::string_dup("");
    }
    return name;
}

CosNaming::NamingContext_ptr ORB_wrapper_base::rootContext()
{
    if (CORBA::is_nil(m_root)) {
        try {
            CORBA::Object_var object = orb()->resolve_initial_references("NameService");
            m_root = CosNaming::NamingContext::_narrow(object);
        } catch (const CORBA::ORB::InvalidName& e) {
            notConnected("no initial reference NameService", e);
        } catch (const CORBA::SystemException& e) {
            notConnected("resolving NameService", e);
        }
        if (CORBA::is_nil(m_root))
            throw Orvanth::Connection_errors::Not_Connected("NameService is not a naming context");
    }
    return CosNaming::NamingContext::_duplicate(m_root);
}

std::vector<std::string> ORB_wrapper_base::FindChildContext(const std::string& path)
{
    CosNaming::NamingContext_var root = rootContext();
    std::vector<std::string> names;
    try {
        CosNaming::NamingContext_var context = CosNaming::NamingContext::_duplicate(root);
        const CosNaming::Name name = toName(path);
        if (name.length() > 0) {
            CORBA::Object_var object = root->resolve(name);
            context = CosNaming::NamingContext::_narrow(object);
            if (CORBA::is_nil(context))
                return names;
        }
        CosNaming::BindingList_var bindings;
        CosNaming::BindingIterator_var iterator;
        const CORBA::ULong batch = 256;
        context->list(batch, bindings.out(), iterator.out());
        for (;;) {
            for (CORBA::ULong i = 0; i < bindings->length(); ++i) {
                const CosNaming::Name& bound = bindings[i].binding_name;
                if (bound.length() > 0)
                    names.emplace_back(static_cast<const char*>(bound[bound.length() - 1].id));
            }
            if (CORBA::is_nil(iterator) || !iterator->next_n(batch, bindings.out()))
                break;
        }
        if (!CORBA::is_nil(iterator))
            iterator->destroy();
    } catch (const CosNaming::NamingContext::NotFound&) {
        names.clear();
    } catch (const CosNaming::NamingContext::InvalidName&) {
        names.clear();
    } catch (const CORBA::SystemException& e) {
        notConnected("listing " + path, e);
    }
    return names;
}

CORBA::Object_ptr ORB_wrapper_base::ResolveName(const std::string& path)
{
    CosNaming::NamingContext_var root = rootContext();
    try {
        return root->resolve(toName(path));
    } catch (const CosNaming::NamingContext::NotFound&) {
    } catch (const CosNaming::NamingContext::InvalidName&) {
    } catch (const CORBA::SystemException& e) {
        notConnected("resolving " + path, e);
    }
    return CORBA::Object::_nil();
}

void ORB_wrapper_base::BindName(const std::string& path, CORBA::Object_ptr object)
{
    CosNaming::NamingContext_var context = rootContext();
    const CosNaming::Name name = toName(path);
    if (name.length() == 0)
        throw Orvanth::Runtime_errors::Generic("empty naming-service path");
    try {
        for (CORBA::ULong i = 0; i + 1 < name.length(); ++i) {
            CosNaming::Name component;
            component.length(1);
            component[0] = name[i];
            CosNaming::NamingContext_var next;
            try {
                next = context->bind_new_context(component);
            } catch (const CosNaming::NamingContext::AlreadyBound&) {
                CORBA::Object_var existing = context->resolve(component);
                next = CosNaming::NamingContext::_narrow(existing);
            }
            if (CORBA::is_nil(next)) {
                const std::string text = "\"" + path + "\": a component is bound to an object, not a context";
                throw Orvanth::Runtime_errors::Generic(text.c_str());
            }
            context = next;
        }
        CosNaming::Name last;
        last.length(1);
        last[0] = name[name.length() - 1];
        context->rebind(last, object);
    } catch (const CosNaming::NamingContext::NotFound&) {
        throw Orvanth::Runtime_errors::Generic(("cannot bind \"" + path + "\"").c_str());
    } catch (const CosNaming::NamingContext::CannotProceed&) {
        throw Orvanth::Runtime_errors::Generic(("cannot bind \"" + path + "\"").c_str());
    } catch (const CosNaming::NamingContext::InvalidName&) {
        throw Orvanth::Runtime_errors::Generic(("cannot bind \"" + path + "\"").c_str());
    } catch (const CORBA::SystemException& e) {
        notConnected("binding " + path, e);
    }
}

bool ORB_wrapper_base::UnbindName(const std::string& path)
{
    CosNaming::NamingContext_var root = rootContext();
    try {
        root->unbind(toName(path));
        return true;
    } catch (const CosNaming::NamingContext::NotFound&) {
    } catch (const CosNaming::NamingContext::InvalidName&) {
    } catch (const CosNaming::NamingContext::CannotProceed&) {
    } catch (const CORBA::SystemException& e) {
        notConnected("unbinding " + path, e);
    }
    return false;
}

CORBA::Object_ptr ORB_wrapper_base::serve(const std::string& path, PortableServer::ServantBase* servant,
                                          PortableServer::POA_ptr poa)
{
    CORBA::Object_var object = activate(servant, poa);
    BindName(path, object);
    return object._retn();
}

bool ORB_wrapper_base::withdraw(const std::string& path, PortableServer::ServantBase* servant,
                                PortableServer::POA_ptr poa)
{
    bool wasBound = false;
    try {
        wasBound = UnbindName(path);
    } catch (...) {
        deactivate(servant, poa);
        throw;
    }
    deactivate(servant, poa);
    return wasBound;
}
