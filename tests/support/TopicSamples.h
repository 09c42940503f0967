#ifndef TOPICSAMPLES_H
#define TOPICSAMPLES_H

#include <OrvanthTopics.h>

#include <string>

/// One known sample of each topic type and the topic it travels on, shared by the
/// publishing test engine and the reading tests. Texts carry non-ASCII characters.
namespace TopicSamples {

constexpr const char* VoidTopic = "Test/VOID";
constexpr const char* BooleanTopic = "Test/BOOLEAN";
constexpr const char* LongTopic = "Test/LONG";
constexpr const char* StringTopic = "Test/STRING";
constexpr const char* EventTopic = "Test/EVTMSG";
constexpr const char* ReadingTopic = "Test/BATTERY";

// "Ωhm Prüfung – 測試" in UTF-8
constexpr const char* UnicodeText = "\xce\xa9hm Pr\xc3\xbc" "fung \xe2\x80\x93 \xe6\xb8\xac\xe8\xa9\xa6";

inline Orvanth::TKWW_DDS::ATTR_VOID voidSample()
{
    Orvanth::TKWW_DDS::ATTR_VOID sample;
    sample.sequence_number(7);
    return sample;
}

inline Orvanth::TKWW_DDS::ATTR_BOOLEAN booleanSample()
{
    Orvanth::TKWW_DDS::ATTR_BOOLEAN sample;
    sample.value(true);
    return sample;
}

inline Orvanth::TKWW_DDS::ATTR_LONG longSample()
{
    Orvanth::TKWW_DDS::ATTR_LONG sample;
    sample.value(-2147483647);
    return sample;
}

inline Orvanth::TKWW_DDS::ATTR_STRING stringSample()
{
    Orvanth::TKWW_DDS::ATTR_STRING sample;
    sample.value(UnicodeText);
    return sample;
}

inline Orvanth::TKWW_DDS::ATTR_EVENT eventSample()
{
    Orvanth::Event::Message message;
    message.source("engine 1");
    message.code(42);
    message.text(UnicodeText);
    message.classification(Orvanth::Event::EVENT_WARNING);
    message.parameter1(-1);
    message.parameter2(65536);
    message.timestamp(4102444800LL); // 2100-01-01: needs all 64 bits
    Orvanth::TKWW_DDS::ATTR_EVENT sample;
    sample.value(message);
    return sample;
}

inline Orvanth::TKWW_DDS::ATTR_METER_READING readingSample()
{
    Orvanth::MeterReading::ReadingEntry first;
    first.name("BATTERYSTATUS1");
    first.timestamp(1700000000LL);
    first.value(87.25);
    Orvanth::MeterReading::ReadingEntry second;
    second.name("spare");
    second.value(-0.5);
    Orvanth::MeterReading::Reading reading;
    reading.readings().push_back(first);
    reading.readings().push_back(second);
    reading.status(3);
    Orvanth::TKWW_DDS::ATTR_METER_READING sample;
    sample.value(reading);
    return sample;
}

} // namespace TopicSamples

#endif
