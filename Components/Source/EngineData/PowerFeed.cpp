#include "PowerFeed.h"

#include "DDS_Subscriber.h"
#include "OrvanthNames.h"

#include <utility>

PowerFeed::PowerFeed(MainsReceiver mains, BatteryReceiver battery)
{
    using eprosima::fastdds::dds::VOLATILE_DURABILITY_QOS;
    m_mains = std::make_unique<Orvanth::DDS_Subscriber<bool>>(
        Orvanth::Names::ExternalVoltageTopic,
        [mains = std::move(mains)](const char* topic, CORBA::Boolean present) { mains(topic, present); }, 0, 0,
        VOLATILE_DURABILITY_QOS);
    m_battery = std::make_unique<Orvanth::DDS_Subscriber<Orvanth::MeterReading::Reading>>(
        Orvanth::Names::BatteryTopic,
        [battery = std::move(battery)](const char* topic, Orvanth::MeterReading::Reading reading) {
            battery(topic, std::move(reading));
        },
        0, 0, VOLATILE_DURABILITY_QOS);
}

PowerFeed::~PowerFeed()
{
    m_battery.reset();
    m_mains.reset();
}
