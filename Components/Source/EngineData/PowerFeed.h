#ifndef POWERFEED_H
#define POWERFEED_H

#include "tzuicomponents_export.h"

#include <OrvanthTopics.h>

#include <functional>
#include <memory>

namespace Orvanth {
template <class T>
class DDS_Subscriber;
}

/**
 * The instrument's power: whether mains power is present, and the battery readings.
 *
 * Both receivers run on DDS threads; they queue what they need into the GUI thread.
 * Deleting the feed ends both subscriptions, the battery readings first: once the
 * destructor has returned, neither receiver is called again.
 */
class TZUICOMPONENTS_EXPORT PowerFeed
{
public:
    using MainsReceiver = std::function<void(const char* topic, bool present)>;
    using BatteryReceiver = std::function<void(const char* topic, Orvanth::MeterReading::Reading reading)>;

    PowerFeed(MainsReceiver mains, BatteryReceiver battery);
    ~PowerFeed();
    PowerFeed(const PowerFeed&) = delete;
    PowerFeed& operator=(const PowerFeed&) = delete;

private:
    std::unique_ptr<Orvanth::DDS_Subscriber<bool>> m_mains;
    std::unique_ptr<Orvanth::DDS_Subscriber<Orvanth::MeterReading::Reading>> m_battery;
};

#endif
