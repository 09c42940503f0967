#ifndef SIMULATEDATTRIBUTES_H
#define SIMULATEDATTRIBUTES_H

#include "AttributeServant.h"
#include "TopicPublisher.h"

#include <OrvanthTopicsPubSubTypes.h>

#include <memory>
#include <mutex>
#include <string>

class ORB_base;
class SimulatorOptions;

namespace Orvanth {
class GuiAbleServant;
class LockManagerServant;
} // namespace Orvanth

/**
 * The engine attributes the simulator serves: the action RUNACTION1, the enums
 * DISPLAYMODE1 and REFOSCILLATOR1 and the long MenuBarTimeout1.
 *
 * Each publishes its value on its data topic "Lumaro/local/ATTR/<name>" when it changes
 * (a void sample for the action) and a void sample on its lock topic
 * "Lumaro/local/LOCK/<name>" whenever its lock is taken or given back. What reaches an
 * attribute is announced on standard output ("SET name value", "ACTION name",
 * "LOCK name held|free").
 */
class SimulatedAttributes
{
public:
    static constexpr const char* ActionName = "RUNACTION1";
    static constexpr const char* DisplayModeName = "DISPLAYMODE1";
    static constexpr const char* MenuBarTimeoutName = "MenuBarTimeout1";
    static constexpr const char* RefOscillatorName = "REFOSCILLATOR1";

    /// Throws Orvanth::Connection_errors::Not_Connected when DDS is not running.
    explicit SimulatedAttributes(const SimulatorOptions& options);
    ~SimulatedAttributes();

    SimulatedAttributes(const SimulatedAttributes&) = delete;
    SimulatedAttributes& operator=(const SimulatedAttributes&) = delete;

    /// Activates the attributes in the root POA (once) and makes them findable by name
    /// through \a module.
    void addTo(const ORB_base& orb, Orvanth::GuiAbleServant& module);

    /// Takes the attributes out of \a module: its FindAttribute finds none of them.
    void withdrawFrom(Orvanth::GuiAbleServant& module);

    /// Deactivates every attribute; calls on them fail from now on. addTo() activates
    /// them again, under new references.
    void deactivate(const ORB_base& orb);

    /// Publishes the current values again, for readers that joined since the last change.
    void publishValues();

    /// Takes the action attribute's lock as the engine's own locker, or gives it back.
    void toggleEngineLock(Orvanth::LockManagerServant& manager);

private:
    using LockTopic = Orvanth::TopicPublisher<Orvanth::TKWW_DDS::ATTR_VOIDPubSubType>;
    using LongTopic = Orvanth::TopicPublisher<Orvanth::TKWW_DDS::ATTR_LONGPubSubType>;

    template <class Servant>
    struct ValueAttribute
    {
        Servant* servant = nullptr;
        std::unique_ptr<LongTopic> data;
        std::unique_ptr<LockTopic> lock;
    };

    template <class Servant>
    void makeValueAttribute(ValueAttribute<Servant>& attribute, const std::string& name, const std::string& typeName,
                            CORBA::Long initial);
    template <class Servant>
    void publishValue(const ValueAttribute<Servant>& attribute);
    template <class Servant>
    void watchLock(Servant* servant, LockTopic* lockTopic, const std::string& name);

    static std::string dataTopic(const std::string& name);
    static std::string lockTopic(const std::string& name);

    Orvanth::VoidAttributeServant* m_action = nullptr;
    std::unique_ptr<LockTopic> m_actionData;
    std::unique_ptr<LockTopic> m_actionLock;
    ValueAttribute<Orvanth::EnumAttributeServant> m_displayMode;
    ValueAttribute<Orvanth::EnumAttributeServant> m_refOscillator;
    ValueAttribute<Orvanth::LongAttributeServant> m_menuBarTimeout;

    std::mutex m_engineLockMutex;
    bool m_engineHoldsLock = false;
    CORBA::Long m_engineLockHandle = 0;
    bool m_activated = false;
};

#endif
