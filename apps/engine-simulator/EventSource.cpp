#include "EventSource.h"

#include <string>
#include <utility>

namespace {

const char* textForClass(std::uint32_t eventClass, std::int32_t code)
{
    static const char* const info[] = {"Measurement started", "Trace saved", "Sweep complete"};
    static const char* const critical[] = {"Synthesizer unlocked", "Input overload: RF attenuator set to 30 dB"};
    static const char* const failure[] = {"Self test failed: IF path", "Calibration data missing"};
    static const char* const warning[] = {"Input level high", "Internal temperature 58 \xc2\xb0" "C"};
    static const char* const alert[] = {"Fan speed low", "Reference signal lost"};
    static const char* const status[] = {"GPS locked", "Remote session connected"};
    const std::size_t pick = std::size_t(code);
    switch (eventClass) {
    case 0: return info[pick % 3];
    case 1: return critical[pick % 2];
    case 2: return failure[pick % 2];
    case 3: return warning[pick % 2];
    case 4: return alert[pick % 2];
    case 5: return status[pick % 2];
    default: return "Unclassified engine event";
    }
}

} // namespace

EventSource::EventSource(std::vector<std::uint32_t> classes) : m_classes(std::move(classes))
{
    if (m_classes.empty())
        m_classes.push_back(0);
}

Orvanth::Event::Message EventSource::next(std::int64_t secondsSince1970)
{
    const std::uint32_t eventClass = m_classes[m_position];
    m_position = (m_position + 1) % m_classes.size();
    const std::int32_t code = ++m_code;

    Orvanth::Event::Message message;
    message.source("Engine 1");
    message.code(code);
    message.text(textForClass(eventClass, code));
    message.classification(Orvanth::Event::EventClass(eventClass));
    message.parameter1(0);
    message.parameter2(0);
    message.timestamp(secondsSince1970);
    return message;
}
