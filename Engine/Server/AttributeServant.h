#ifndef ORVANTH_ATTRIBUTESERVANT_H
#define ORVANTH_ATTRIBUTESERVANT_H

#include <Orvanth.hh>

#include <atomic>
#include <functional>
#include <mutex>
#include <string>

namespace Orvanth {

/**
 * The part every engine attribute shares: its name, type and topics, and its lock.
 *
 * One locker at a time holds an attribute. A free attribute may be operated by anyone;
 * a held one only by its holder. Every change of the holder is reported to the lock
 * observer (an engine publishes a void sample on the lock topic from there).
 */
template <class Skeleton>
class AttributeServantBase : public virtual Skeleton
{
public:
    AttributeServantBase(std::string name, std::string typeName, std::string dataTopic, std::string lockTopic)
        : m_name(std::move(name)), m_typeName(std::move(typeName))
        , m_dataTopic(std::move(dataTopic)), m_lockTopic(std::move(lockTopic))
    {
    }

    void setLockObserver(std::function<void()> observer)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_lockObserver = std::move(observer);
    }

    char* Name() override { return CORBA::string_dup(m_name.c_str()); }
    char* DataTopic() override { return CORBA::string_dup(m_dataTopic.c_str()); }
    char* LockTopic() override { return CORBA::string_dup(m_lockTopic.c_str()); }

    TypeInfo* GetTypeInfo() override
    {
        TypeInfo_var info = new TypeInfo;
        info->name = CORBA::string_dup(m_typeName.c_str());
        info->description = CORBA::string_dup(m_name.c_str());
        return info._retn();
    }

    CORBA::Long Lock(const Lock_Authority& authority) override
    {
        if (authority.length() == 0)
            throw Runtime_errors::Generic("lock refused: empty authority");
        std::function<void()> observer;
        CORBA::Long handle = 0;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            const LockGrant& grant = authority[0];
            if (m_held && !(m_holderOwner == grant.owner && m_holderSession == grant.session))
                throw Runtime_errors::Generic(("lock refused: " + m_name + " is held by another locker").c_str());
            m_held = true;
            m_holderOwner = grant.owner;
            m_holderSession = grant.session;
            m_handle = ++m_lastHandle;
            handle = m_handle;
            observer = m_lockObserver;
        }
        if (observer)
            observer();
        return handle;
    }

    void Unlock(const LockerID& id, CORBA::Long handle) override
    {
        std::function<void()> observer;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            if (!m_held || handle != m_handle || !holds(id))
                throw Runtime_errors::Generic(("unlock refused: " + m_name + " is not held with that handle").c_str());
            m_held = false;
            observer = m_lockObserver;
        }
        if (observer)
            observer();
    }

    CORBA::Boolean MayAccess(const LockerID& id) override
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return !m_held || holds(id);
    }

    bool isLocked() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_held;
    }

protected:
    /// Throws unless \a id may operate the attribute now.
    void checkAccess(const LockerID& id)
    {
        if (!MayAccess(id))
            throw Runtime_errors::Generic((m_name + " is locked by another locker").c_str());
    }

    const std::string& attributeName() const { return m_name; }

private:
    bool holds(const LockerID& id) const { return id.owner == m_holderOwner && id.session == m_holderSession; }

    const std::string m_name;
    const std::string m_typeName;
    const std::string m_dataTopic;
    const std::string m_lockTopic;
    mutable std::mutex m_mutex;
    std::function<void()> m_lockObserver;
    bool m_held = false;
    CORBA::ULongLong m_holderOwner = 0;
    CORBA::ULongLong m_holderSession = 0;
    CORBA::Long m_handle = 0;
    CORBA::Long m_lastHandle = 0;
};

/// An action attribute: Set performs it and tells the action observer.
class VoidAttributeServant : public AttributeServantBase<POA_Orvanth::EngineAttribVoid>
{
public:
    VoidAttributeServant(const std::string& name, const std::string& dataTopic, const std::string& lockTopic)
        : AttributeServantBase(name, "EngineAttribVoid", dataTopic, lockTopic)
    {
    }

    void setActionObserver(std::function<void()> observer) { m_action = std::move(observer); }

    void Set(const LockerID& id) override
    {
        checkAccess(id);
        if (m_action)
            m_action();
    }

private:
    std::function<void()> m_action;
};

/// An attribute holding one 32-bit value (the enum and long kinds); every Set that is
/// allowed stores the value and tells the value observer.
template <class Skeleton>
class ValueAttributeServant : public AttributeServantBase<Skeleton>
{
public:
    ValueAttributeServant(const std::string& name, const std::string& typeName, const std::string& dataTopic,
                          const std::string& lockTopic, CORBA::Long initial)
        : AttributeServantBase<Skeleton>(name, typeName, dataTopic, lockTopic), m_value(initial)
    {
    }

    void setValueObserver(std::function<void(CORBA::Long)> observer) { m_valueObserver = std::move(observer); }

    void Set(const LockerID& id, CORBA::Long value) override
    {
        this->checkAccess(id);
        m_value = value;
        if (m_valueObserver)
            m_valueObserver(value);
    }

    CORBA::Long Get() override { return m_value; }

private:
    std::atomic<CORBA::Long> m_value;
    std::function<void(CORBA::Long)> m_valueObserver;
};

using EnumAttributeServant = ValueAttributeServant<POA_Orvanth::EngineAttribEnum>;
using LongAttributeServant = ValueAttributeServant<POA_Orvanth::EngineAttribLong>;

} // namespace Orvanth

#endif
