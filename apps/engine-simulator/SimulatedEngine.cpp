#include "SimulatedEngine.h"

#include "SimulatorConsole.h"

#include "OrvanthNames.h"

#include <algorithm>
#include <ctime>
#include <string>
#include <utility>

using namespace Orvanth;
using namespace Orvanth::TKWW_DDS;

namespace {

std::chrono::steady_clock::duration periodOf(double seconds)
{
    return std::chrono::duration_cast<std::chrono::steady_clock::duration>(std::chrono::duration<double>(seconds));
}

std::string modulePath(int index)
{
    return std::string(Names::GuiAbleContext) + "/" + std::to_string(index);
}

} // namespace

SimulatedEngine::SimulatedEngine(const SimulatorOptions& options)
    : m_options(options)
    , m_lockManager(new LockManagerServant)
    , m_attributes(options)
    , m_moduleTopic(Names::GuiAbleTopic)
    , m_eventTopic(Names::EventTopic)
    , m_powerTopic(Names::ExternalVoltageTopic)
    , m_batteryTopic(Names::BatteryTopic)
    , m_events(options.eventClasses)
    , m_battery(options.batteryStart, options.batteryDrain, options.batteryFloor, options.externalPower)
{
}

SimulatedEngine::~SimulatedEngine()
{
    stop();
    for (auto& module : m_modules)
        module.second->_remove_ref();
    m_lockManager->_remove_ref();
}

void SimulatedEngine::start()
{
    CORBA::Object_var manager = m_orb.serve(Names::LockerPath, m_lockManager);
    for (int index = 1; index <= m_options.modules; ++index)
        bindModule(index);
    m_worker = std::thread(&SimulatedEngine::run, this);
}

void SimulatedEngine::churnModuleNow()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_churnAsked = true;
    }
    m_wake.notify_all();
}

void SimulatedEngine::stop()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_stopping)
            return;
        m_stopping = true;
    }
    m_wake.notify_all();
    if (m_worker.joinable())
        m_worker.join();
    std::vector<int> withdrawn;
    for (auto& bound : m_bound) {
        if (bound.second) {
            unbindModule(bound.first);
            withdrawn.push_back(bound.first);
        }
    }
    // The last announcements must reach the readers before this writer goes. Readers are
    // best effort: a sample still in flight when its writer leaves is dropped and never
    // resent, so each is sent once more after a pause, and the writer lingers a little.
    std::this_thread::sleep_for(std::chrono::milliseconds(250));
    for (int index : withdrawn) {
        ATTR_STRING sample;
        sample.value("destroy," + std::to_string(index));
        m_moduleTopic.publish(sample);
    }
    m_moduleTopic.waitForAcknowledgments(std::chrono::seconds(2));
    std::this_thread::sleep_for(std::chrono::milliseconds(250));
    try {
        m_orb.withdraw(Names::LockerPath, m_lockManager);
    } catch (const CORBA::Exception& e) {
        announce(std::string("cannot unbind the lock manager: ") + e._name());
    }
    m_attributes.deactivate(m_orb);
}

void SimulatedEngine::bindModule(int index)
{
    GuiAbleServant*& module = m_modules[index];
    if (!module) {
        module = new GuiAbleServant;
        m_attributes.addTo(m_orb, *module);
    }
    CORBA::Object_var object = m_orb.serve(modulePath(index), module);
    m_bound[index] = true;
    const std::string announcement = "create," + std::to_string(index);
    ATTR_STRING sample;
    sample.value(announcement);
    m_moduleTopic.publish(sample);
    announce("MODULE " + announcement);
}

void SimulatedEngine::unbindModule(int index)
{
    try {
        m_orb.withdraw(modulePath(index), m_modules[index]);
    } catch (const CORBA::Exception& e) {
        announce("cannot unbind " + modulePath(index) + ": " + e._name());
    }
    m_bound[index] = false;
    const std::string announcement = "destroy," + std::to_string(index);
    ATTR_STRING sample;
    sample.value(announcement);
    m_moduleTopic.publish(sample);
    announce("MODULE " + announcement);
}

void SimulatedEngine::reannounceModules()
{
    for (const auto& bound : m_bound) {
        if (!bound.second)
            continue;
        ATTR_STRING sample;
        sample.value("create," + std::to_string(bound.first));
        m_moduleTopic.publish(sample);
    }
}

void SimulatedEngine::publishEvent()
{
    ATTR_EVENT sample;
    sample.value(m_events.next(std::int64_t(std::time(nullptr))));
    m_eventTopic.publish(sample);
}

void SimulatedEngine::publishBattery(int elapsedMs)
{
    if (m_battery.advance(elapsedMs))
        announce(std::string("POWER ") + (m_battery.externalPower() ? "external" : "battery"));
    // Both are sent with every reading: readers are volatile, so one that joins late
    // learns the power state from the next reading instead of waiting for a change.
    ATTR_BOOLEAN power;
    power.value(m_battery.externalPower());
    m_powerTopic.publish(power);

    MeterReading::ReadingEntry entry;
    entry.name("BATTERYSTATUS1");
    entry.timestamp(std::int64_t(std::time(nullptr)));
    entry.value(m_battery.level());
    ATTR_METER_READING reading;
    reading.value().readings().push_back(entry);
    reading.value().status(0);
    m_batteryTopic.publish(reading);
}

void SimulatedEngine::churnModule()
{
    const int index = m_options.modules;
    if (index < 1)
        return;
    // The attributes are served while a module is: with the last module they go too,
    // before it is announced gone, so calls on them fail from then on, and they come back
    // with it under new references.
    const bool last = std::count_if(m_bound.begin(), m_bound.end(), [](const auto& bound) { return bound.second; })
                      == (m_bound[index] ? 1 : 0);
    try {
        if (m_bound[index]) {
            if (last) {
                for (auto& module : m_modules)
                    m_attributes.withdrawFrom(*module.second);
                m_attributes.deactivate(m_orb);
            }
            unbindModule(index);
        } else {
            if (last) {
                for (auto& module : m_modules)
                    m_attributes.addTo(m_orb, *module.second);
            }
            bindModule(index);
        }
    } catch (const CORBA::Exception& e) {
        announce("module " + std::to_string(index) + " churn failed: " + e._name());
    }
}

bool SimulatedEngine::countedEventDue(Clock::time_point now)
{
    if (m_eventsSent == m_options.eventsTotal)
        return false;
    // The writer sees the reader before the reader sees the writer, and a best-effort
    // reader drops what comes from a writer it does not know yet: the first message
    // waits a second after the match, so that a reader can count them all.
    if (m_eventTopic.matchedSubscribers() == 0)
        m_readerMatchedAt.reset();
    else if (!m_readerMatchedAt)
        m_readerMatchedAt = now;
    return m_eventsSent > 0 || (m_readerMatchedAt && now - *m_readerMatchedAt >= std::chrono::seconds(1));
}

void SimulatedEngine::run()
{
    const Clock::time_point begin = Clock::now();
    const Clock::time_point never = Clock::time_point::max();
    const bool events = m_options.eventsPerSecond > 0.0;
    const bool churn = m_options.moduleChurnSeconds > 0.0;
    const bool lockToggle = m_options.lockToggleSeconds > 0.0;
    const Clock::duration eventPeriod = events ? periodOf(1.0 / m_options.eventsPerSecond) : Clock::duration::zero();
    const Clock::duration batteryPeriod = std::chrono::milliseconds(m_options.batteryPeriodMs);
    const Clock::duration valuePeriod = std::chrono::milliseconds(m_options.valuePeriodMs);
    const Clock::duration churnPeriod = periodOf(m_options.moduleChurnSeconds);
    const Clock::duration lockPeriod = periodOf(m_options.lockToggleSeconds);

    // What is switched off is due never.
    Clock::time_point nextEvent = events ? begin + eventPeriod : never;
    Clock::time_point nextBattery = begin;
    Clock::time_point lastBattery = begin;
    Clock::time_point nextValues = begin;
    Clock::time_point nextChurn = churn ? begin + churnPeriod : never;
    Clock::time_point nextLock = lockToggle ? begin + lockPeriod : never;
    Clock::time_point nextReannouncement = never;

    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_stopping) {
        const bool churnAsked = std::exchange(m_churnAsked, false);
        lock.unlock();
        const Clock::time_point now = Clock::now();
        if (now >= nextEvent && m_options.eventsTotal > 0 && !countedEventDue(now)) {
            nextEvent = m_eventsSent == m_options.eventsTotal ? never : now + eventPeriod;
        } else if (now >= nextEvent) {
            publishEvent();
            if (++m_eventsSent == m_options.eventsTotal)
                announce("EVENTS " + std::to_string(m_eventsSent) + " sent");
            nextEvent += eventPeriod;
            // After a stall, go on at the rate instead of sending the backlog at once.
            if (now - nextEvent > std::chrono::seconds(1))
                nextEvent = now + eventPeriod;
        }
        if (now >= nextBattery) {
            publishBattery(int(std::chrono::duration_cast<std::chrono::milliseconds>(now - lastBattery).count()));
            lastBattery = now;
            nextBattery = now + batteryPeriod;
        }
        if (now >= nextValues) {
            m_attributes.publishValues();
            nextValues = now + valuePeriod;
        }
        if (churnAsked)
            churnModule();
        if (now >= nextChurn) {
            churnModule();
            nextChurn = now + churnPeriod;
        }
        // A reader that matched after the modules were announced has missed them: they
        // are announced again a second later, once that reader knows this writer too.
        const int moduleReaders = m_moduleTopic.matchedSubscribers();
        if (moduleReaders > m_moduleReaders && nextReannouncement == never)
            nextReannouncement = now + std::chrono::seconds(1);
        m_moduleReaders = moduleReaders;
        if (now >= nextReannouncement) {
            reannounceModules();
            nextReannouncement = never;
        }
        if (now >= nextLock) {
            m_attributes.toggleEngineLock(*m_lockManager);
            nextLock = now + lockPeriod;
        }
        const Clock::time_point wakeAt = std::min({nextEvent, nextBattery, nextValues, nextChurn, nextLock, nextReannouncement,
                                                     now + std::chrono::milliseconds(100)});
        lock.lock();
        m_wake.wait_until(lock, wakeAt, [this] { return m_stopping || m_churnAsked; });
    }
}
