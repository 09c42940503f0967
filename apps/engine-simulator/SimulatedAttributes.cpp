#include "SimulatedAttributes.h"

#include "SimulatorConsole.h"
#include "SimulatorOptions.h"

#include "GuiAbleServant.h"
#include "LockManagerServant.h"
#include "ORB_base.h"

using namespace Orvanth;
using namespace Orvanth::TKWW_DDS;

namespace {
constexpr const char* EngineLockerName = "tz-engine-simulator";
} // namespace

std::string SimulatedAttributes::dataTopic(const std::string& name)
{
    return "Lumaro/local/ATTR/" + name;
}

std::string SimulatedAttributes::lockTopic(const std::string& name)
{
    return "Lumaro/local/LOCK/" + name;
}

template <class Servant>
void SimulatedAttributes::watchLock(Servant* servant, LockTopic* lockTopic, const std::string& name)
{
    // Runs on the ORB thread of the Lock or Unlock call (or the worker for the engine's own lock).
    servant->setLockObserver([servant, lockTopic, name] {
        announce("LOCK " + name + (servant->isLocked() ? " held" : " free"));
        lockTopic->publish(ATTR_VOID());
    });
}

template <class Servant>
void SimulatedAttributes::makeValueAttribute(ValueAttribute<Servant>& attribute, const std::string& name,
                                             const std::string& typeName, CORBA::Long initial)
{
    attribute.data = std::make_unique<LongTopic>(dataTopic(name));
    attribute.lock = std::make_unique<LockTopic>(lockTopic(name));
    attribute.servant = new Servant(name, typeName, dataTopic(name), lockTopic(name), initial);
    LongTopic* data = attribute.data.get();
    attribute.servant->setValueObserver([data, name](CORBA::Long value) {
        announce("SET " + name + " " + std::to_string(value));
        ATTR_LONG sample;
        sample.value(value);
        data->publish(sample);
    });
    watchLock(attribute.servant, attribute.lock.get(), name);
}

SimulatedAttributes::SimulatedAttributes(const SimulatorOptions& options)
{
    m_actionData = std::make_unique<LockTopic>(dataTopic(ActionName));
    m_actionLock = std::make_unique<LockTopic>(lockTopic(ActionName));
    m_action = new VoidAttributeServant(ActionName, dataTopic(ActionName), lockTopic(ActionName));
    LockTopic* actionData = m_actionData.get();
    m_action->setActionObserver([actionData] {
        announce(std::string("ACTION ") + ActionName);
        actionData->publish(ATTR_VOID());
    });
    watchLock(m_action, m_actionLock.get(), ActionName);

    makeValueAttribute(m_displayMode, DisplayModeName, "EngineAttribEnum", 0);
    makeValueAttribute(m_refOscillator, RefOscillatorName, "EngineAttribEnum", options.refOscillator);
    makeValueAttribute(m_menuBarTimeout, MenuBarTimeoutName, "EngineAttribLong", options.menuBarTimeout);
}

SimulatedAttributes::~SimulatedAttributes()
{
    // The POA holds its own count while a servant is active; ours goes here.
    m_action->_remove_ref();
    m_displayMode.servant->_remove_ref();
    m_refOscillator.servant->_remove_ref();
    m_menuBarTimeout.servant->_remove_ref();
}

void SimulatedAttributes::addTo(const ORB_base& orb, GuiAbleServant& module)
{
    const auto add = [&](const char* name, PortableServer::ServantBase* servant) {
        CORBA::Object_var object = orb.activate(servant);
        EngineReadingBase_var reading = EngineReadingBase::_narrow(object);
        module.addAttribute(name, reading);
    };
    add(ActionName, m_action);
    add(DisplayModeName, m_displayMode.servant);
    add(RefOscillatorName, m_refOscillator.servant);
    add(MenuBarTimeoutName, m_menuBarTimeout.servant);
    m_activated = true;
}

void SimulatedAttributes::withdrawFrom(GuiAbleServant& module)
{
    for (const char* name : {ActionName, DisplayModeName, RefOscillatorName, MenuBarTimeoutName})
        module.removeAttribute(name);
}

void SimulatedAttributes::deactivate(const ORB_base& orb)
{
    if (!m_activated)
        return;
    orb.deactivate(m_action);
    orb.deactivate(m_displayMode.servant);
    orb.deactivate(m_refOscillator.servant);
    orb.deactivate(m_menuBarTimeout.servant);
    m_activated = false;
}

template <class Servant>
void SimulatedAttributes::publishValue(const ValueAttribute<Servant>& attribute)
{
    ATTR_LONG sample;
    sample.value(attribute.servant->Get());
    attribute.data->publish(sample);
}

void SimulatedAttributes::publishValues()
{
    publishValue(m_displayMode);
    publishValue(m_refOscillator);
    publishValue(m_menuBarTimeout);
}

void SimulatedAttributes::toggleEngineLock(LockManagerServant& manager)
{
    std::lock_guard<std::mutex> lock(m_engineLockMutex);
    const LockerID id = manager.LockerIdentity(EngineLockerName);
    try {
        if (m_engineHoldsLock) {
            m_action->Unlock(id, m_engineLockHandle);
            m_engineHoldsLock = false;
        } else {
            Lock_Authority_var authority = manager.Authority(id);
            m_engineLockHandle = m_action->Lock(authority.in());
            m_engineHoldsLock = true;
        }
    } catch (const Runtime_errors::Generic& e) {
        // Another locker holds it now; try again at the next toggle.
        announce(std::string("LOCK ") + ActionName + " refused: " + e.message.in());
    }
}
