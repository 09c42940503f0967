#ifndef EVENTSOURCE_H
#define EVENTSOURCE_H

#include <OrvanthTopics.h>

#include <cstdint>
#include <vector>

/// Makes the simulator's event messages: cycles through the given classes, each with a
/// text that fits its class, numbered by a running code.
class EventSource
{
public:
    explicit EventSource(std::vector<std::uint32_t> classes);

    /// The next message, stamped \a secondsSince1970.
    Orvanth::Event::Message next(std::int64_t secondsSince1970);

private:
    std::vector<std::uint32_t> m_classes;
    std::size_t m_position = 0;
    std::int32_t m_code = 0;
};

#endif
