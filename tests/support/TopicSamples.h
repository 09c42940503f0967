#ifndef TOPICSAMPLES_H
#define TOPICSAMPLES_H

#include <OrvanthTopics.h>

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

// A topic sample holding \a value.
template <class Sample, class Value>
Sample sample(const Value& value)
{
    Sample sample;
    sample.value(value);
    return sample;
}

inline Orvanth::TKWW_DDS::ATTR_VOID voidSample() { return Orvanth::TKWW_DDS::ATTR_VOID(); }

inline Orvanth::TKWW_DDS::ATTR_BOOLEAN booleanSample() { return sample<Orvanth::TKWW_DDS::ATTR_BOOLEAN>(true); }
inline Orvanth::TKWW_DDS::ATTR_LONG longSample() { return sample<Orvanth::TKWW_DDS::ATTR_LONG>(-2147483647); }
inline Orvanth::TKWW_DDS::ATTR_STRING stringSample() { return sample<Orvanth::TKWW_DDS::ATTR_STRING>(std::string(UnicodeText)); }

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
    return sample<Orvanth::TKWW_DDS::ATTR_EVENT>(message);
}

inline Orvanth::TKWW_DDS::ATTR_METER_READING readingSample()
{
    Orvanth::MeterReading::Reading reading;
    reading.readings().resize(2);
    reading.readings()[0].name("BATTERYSTATUS1");
    reading.readings()[0].timestamp(1700000000LL);
    reading.readings()[0].value(87.25);
    reading.readings()[1].name("spare");
    reading.readings()[1].value(-0.5);
    reading.status(3);
    return sample<Orvanth::TKWW_DDS::ATTR_METER_READING>(reading);
}

} // namespace TopicSamples

#endif
