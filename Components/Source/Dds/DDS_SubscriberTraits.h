#ifndef ORVANTH_DDS_SUBSCRIBERTRAITS_H
#define ORVANTH_DDS_SUBSCRIBERTRAITS_H

#include "DDS_VoidMessage.h"

#include <Orvanth.hh>
#include <OrvanthTopicsPubSubTypes.h>

#include <boost/function.hpp>

#include <cstdint>
#include <iostream>
#include <string>

namespace Orvanth {

/**
 * What a typed subscriber needs to know about its payload \c T: the topic type and its
 * type support, the callback signature, how the value is handed from a sample to the
 * callback, and how the payload and callback are spelled in diagnostics.
 *
 * deliver() returns false when the sample was dropped instead of handed on.
 */
template <class T>
struct DDS_SubscriberTraits;

/// Traits of the payloads that are the sample's value() converted to \a Value.
template <class Topic, class PubSub, class Value>
struct DDS_ValuePayloadTraits
{
    using TopicType = Topic;
    using PubSubType = PubSub;
    using Callback = void(const char*, Value);

    static bool deliver(const boost::function<Callback>& callback, const char* topic, const TopicType& sample,
                        std::uint32_t /*classMask*/)
    {
        callback(topic, Value(sample.value()));
        return true;
    }
};

template <>
struct DDS_SubscriberTraits<DDS_VoidMessage>
{
    using TopicType = TKWW_DDS::ATTR_VOID;
    using PubSubType = TKWW_DDS::ATTR_VOIDPubSubType;
    using Callback = void(const char*);
    static constexpr const char* payloadName = "Orvanth::DDS_VoidMessage";
    static constexpr const char* callbackName = "void(const char*)";

    static bool deliver(const boost::function<Callback>& callback, const char* topic, const TopicType&,
                        std::uint32_t)
    {
        callback(topic);
        return true;
    }
};

template <>
struct DDS_SubscriberTraits<bool>
    : DDS_ValuePayloadTraits<TKWW_DDS::ATTR_BOOLEAN, TKWW_DDS::ATTR_BOOLEANPubSubType, CORBA::Boolean>
{
    static constexpr const char* payloadName = "bool";
    static constexpr const char* callbackName = "void(const char*, CORBA::Boolean)";
};

template <>
struct DDS_SubscriberTraits<int>
    : DDS_ValuePayloadTraits<TKWW_DDS::ATTR_LONG, TKWW_DDS::ATTR_LONGPubSubType, CORBA::Long>
{
    static constexpr const char* payloadName = "int";
    static constexpr const char* callbackName = "void(const char*, CORBA::Long)";
};

template <>
struct DDS_SubscriberTraits<std::string>
    : DDS_ValuePayloadTraits<TKWW_DDS::ATTR_STRING, TKWW_DDS::ATTR_STRINGPubSubType, std::string>
{
    static constexpr const char* payloadName = "std::string";
    static constexpr const char* callbackName = "void(const char*, std::string)";
};

template <>
struct DDS_SubscriberTraits<MeterReading::Reading>
    : DDS_ValuePayloadTraits<TKWW_DDS::ATTR_METER_READING, TKWW_DDS::ATTR_METER_READINGPubSubType,
                             MeterReading::Reading>
{
    static constexpr const char* payloadName = "Orvanth::MeterReading::Reading";
    static constexpr const char* callbackName = "void(const char*, Orvanth::MeterReading::Reading)";
};

/// Event messages pass only when their class's bit (1 << class) is set in the class mask.
template <>
struct DDS_SubscriberTraits<Event::Message>
{
    using TopicType = TKWW_DDS::ATTR_EVENT;
    using PubSubType = TKWW_DDS::ATTR_EVENTPubSubType;
    using Callback = void(const char*, Event::Message);
    static constexpr const char* payloadName = "Orvanth::Event::Message";
    static constexpr const char* callbackName = "void(const char*, Orvanth::Event::Message)";

    static constexpr std::uint32_t HighestClass = 5;

    static bool deliver(const boost::function<Callback>& callback, const char* topic, const TopicType& sample,
                        std::uint32_t classMask)
    {
        const std::uint32_t eventClass = std::uint32_t(sample.value().classification());
        if (eventClass > HighestClass) {
            std::cerr << "ERROR: unknown classification " << std::endl;
            return false;
        }
        if (!(classMask & (1u << eventClass)))
            return false;
        callback(topic, sample.value());
        return true;
    }
};

} // namespace Orvanth

#endif
