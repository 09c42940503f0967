// What the status area is fed: event messages (text, class, time stamp) as the event
// subscriber passes them on, battery readings (any number of entries, any value) and
// mains power as the power subscribers pass them on, mixed with the user's taps on the
// battery indicator and the end of the application's initialisation.

#include "FuzzDesktop.h"

#include "DDS_SubscriberTraits.h"
#include "DesktopImpl.h"
#include "OrvanthNames.h"
#include "QTZBatteryStatus.h"
#include "QTZLowBatteryAlert.h"
#include "QTZStatusBar.h"

#include <QCoreApplication>
#include <QVariant>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

QTZStatusBar* statusBar = nullptr;
QTZBatteryStatus* battery = nullptr;

void deliverEvent(FuzzedDataProvider& input)
{
    Orvanth::Event::Message message;
    message.text(input.ConsumeRandomLengthString(300));
    message.source(input.ConsumeRandomLengthString(16));
    // Mostly the classes a sender means, sometimes any 32-bit value.
    const std::uint32_t eventClass =
        input.ConsumeBool() ? input.ConsumeIntegralInRange<std::uint32_t>(0, 6) : input.ConsumeIntegral<std::uint32_t>();
    message.classification(Orvanth::Event::EventClass(eventClass));
    message.timestamp(input.ConsumeBool() ? input.ConsumeIntegralInRange<std::int64_t>(0, 4102444800)
                                          : input.ConsumeIntegral<std::int64_t>());
    Orvanth::TKWW_DDS::ATTR_EVENT sample;
    sample.value(message);
    const boost::function<void(const char*, Orvanth::Event::Message)> callback =
        [](const char* topic, Orvanth::Event::Message delivered) { statusBar->dds_callback(topic, delivered); };
    Orvanth::DDS_SubscriberTraits<Orvanth::Event::Message>::deliver(callback, Orvanth::Names::EventTopic, sample, 0x3f);
}

double readingValue(FuzzedDataProvider& input)
{
    switch (input.ConsumeIntegralInRange<int>(0, 3)) {
    case 0:
        return input.ConsumeFloatingPointInRange<double>(-5.0, 105.0);
    case 1:
        return double(input.ConsumeIntegralInRange<int>(-1, 101));
    case 2:
        return input.PickValueInArray({std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                                       -std::numeric_limits<double>::infinity(), 1e300, -1e300, 2147483648.0});
    default:
        return input.ConsumeFloatingPoint<double>();
    }
}

void deliverBatteryReading(FuzzedDataProvider& input)
{
    Orvanth::MeterReading::Reading reading;
    const int entries = input.ConsumeIntegralInRange<int>(0, 3);
    for (int i = 0; i < entries; ++i) {
        Orvanth::MeterReading::ReadingEntry entry;
        entry.value(readingValue(input));
        reading.readings().push_back(entry);
    }
    Orvanth::TKWW_DDS::ATTR_METER_READING sample;
    sample.value(reading);
    const boost::function<void(const char*, Orvanth::MeterReading::Reading)> callback =
        [](const char* topic, Orvanth::MeterReading::Reading delivered) { battery->getBatteryStatus(topic, delivered); };
    Orvanth::DDS_SubscriberTraits<Orvanth::MeterReading::Reading>::deliver(callback, Orvanth::Names::BatteryTopic,
                                                                          sample, 0);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    FuzzDesktop& desktop = FuzzDesktop::instance();
    statusBar = new QTZStatusBar(desktop.desktop());
    statusBar->show();
    battery = new QTZBatteryStatus(desktop.desktop());
    battery->show();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    // A few deliveries an input: the indicators keep their state from one input to the next.
    for (int step = 0; step < 4 && input.remaining_bytes() > 0; ++step) {
        switch (input.ConsumeIntegralInRange<int>(0, 5)) {
        case 0:
        case 1:
            deliverEvent(input);
            break;
        case 2:
            deliverBatteryReading(input);
            break;
        case 3:
            battery->dds_callback_ac_power(Orvanth::Names::ExternalVoltageTopic, input.ConsumeBool());
            break;
        case 4:
            input.ConsumeBool() ? battery->showBattery() : battery->hideBattery();
            break;
        default:
            // The host holds alerts back while it initialises and sends them when done.
            if (input.ConsumeBool()) {
                QCoreApplication::instance()->setProperty("state", QStringLiteral("initializing"));
            } else {
                QCoreApplication::instance()->setProperty("state", QVariant());
                statusBar->sendAllAlertMessages();
            }
            break;
        }
        if (input.ConsumeBool())
            QCoreApplication::processEvents();
    }
    QCoreApplication::processEvents();
    // Stopped slides delete themselves later, which outside an event loop means here.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return 0;
}
