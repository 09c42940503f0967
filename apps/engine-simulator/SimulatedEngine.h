#ifndef SIMULATEDENGINE_H
#define SIMULATEDENGINE_H

#include "BatteryModel.h"
#include "EventSource.h"
#include "SimulatedAttributes.h"
#include "SimulatorOptions.h"

#include "GuiAbleServant.h"
#include "LockManagerServant.h"
#include "ORB_wrapper_base.h"
#include "TopicPublisher.h"

#include <OrvanthTopicsPubSubTypes.h>

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

/**
 * The instrument's engines as the user interface sees them: GUI modules bound under
 * Names::GuiAbleContext, the lock manager bound as Names::LockerPath, the attributes,
 * and a worker thread that publishes event messages, battery readings, mains power and
 * module announcements at the rates the options give.
 */
class SimulatedEngine
{
public:
    /// Serves from the running process ORB and creates the publishers; throws
    /// Orvanth::Connection_errors::Not_Connected when DDS is unavailable.
    explicit SimulatedEngine(const SimulatorOptions& options);
    ~SimulatedEngine();

    SimulatedEngine(const SimulatedEngine&) = delete;
    SimulatedEngine& operator=(const SimulatedEngine&) = delete;

    /// Binds the lock manager and the modules, announces the modules and starts publishing.
    void start();
    /// Stops publishing, unbinds and announces the end of every module, unbinds the manager.
    void stop();
    /// The highest module goes or comes back now, as on a --module-churn period.
    void churnModuleNow();

private:
    using Clock = std::chrono::steady_clock;

    void run();
    void bindModule(int index);
    void unbindModule(int index);
    void publishEvent();
    void publishBattery(int elapsedMs);
    void churnModule();
    /// "create" once more for every bound module, without a console line.
    void reannounceModules();
    /// Whether the next message of a counted run (eventsTotal) may go now.
    bool countedEventDue(Clock::time_point now);

    const SimulatorOptions m_options;
    ORB_wrapper_base m_orb;
    Orvanth::LockManagerServant* m_lockManager;
    SimulatedAttributes m_attributes;
    std::map<int, Orvanth::GuiAbleServant*> m_modules; // index -> servant, bound or not
    std::map<int, bool> m_bound;

    Orvanth::TopicPublisher<Orvanth::TKWW_DDS::ATTR_STRINGPubSubType> m_moduleTopic;
    Orvanth::TopicPublisher<Orvanth::TKWW_DDS::ATTR_EVENTPubSubType> m_eventTopic;
    Orvanth::TopicPublisher<Orvanth::TKWW_DDS::ATTR_BOOLEANPubSubType> m_powerTopic;
    Orvanth::TopicPublisher<Orvanth::TKWW_DDS::ATTR_METER_READINGPubSubType> m_batteryTopic;

    EventSource m_events;
    int m_eventsSent = 0; // with eventsTotal
    int m_moduleReaders = 0;
    std::optional<Clock::time_point> m_readerMatchedAt;
    BatteryModel m_battery;

    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_stopping = false;
    bool m_churnAsked = false;
    std::thread m_worker;
};

#endif
