#ifndef ORVANTH_DDS_SUBSCRIBER_OBJECT_H
#define ORVANTH_DDS_SUBSCRIBER_OBJECT_H

#include "DDS_BaseObj.h"

#include <array>
#include <cstdint>

namespace Orvanth {

/**
 * How a widget keeps one of its subscriptions: a kind code and one subscriber slot per
 * kind, of which only the slot of the record's own kind is set. The owner calls
 * destroy() for each record when it goes.
 */
struct DDS_Subscriber_Object
{
    /// The kind codes 0 to 12; the widget base creates void subscriptions only.
    enum Kind : std::int32_t {
        BooleanKind = 0,
        LongKind = 1,
        StringKind = 2,
        EventKind = 3,
        ReadingKind = 4,
        VoidKind = 8,
        KindCount = 13
    };

    std::int32_t kind = VoidKind;
    std::array<DDS_BaseObj*, KindCount> subscribers{};

    /// A record of \a kind holding \a subscriber (owned from now on).
    static DDS_Subscriber_Object make(Kind kind, DDS_BaseObj* subscriber)
    {
        DDS_Subscriber_Object record;
        record.kind = kind;
        record.subscribers[std::size_t(kind)] = subscriber;
        return record;
    }

    /// The subscriber of the record's kind, or null.
    DDS_BaseObj* subscriber() const
    {
        return kind >= 0 && kind < KindCount ? subscribers[std::size_t(kind)] : nullptr;
    }

    /// Deletes the subscriber of the record's kind, when the kind is valid and it is set.
    void destroy()
    {
        if (kind < 0 || kind >= KindCount)
            return;
        delete subscribers[std::size_t(kind)];
        subscribers[std::size_t(kind)] = nullptr;
    }
};

} // namespace Orvanth

#endif
