#ifndef EVENTFEED_H
#define EVENTFEED_H

#include "tzuicomponents_export.h"

#include <OrvanthTopics.h>

#include <functional>
#include <memory>

namespace Orvanth {
template <class T>
class DDS_Subscriber;
}

/**
 * The engines' event messages, of every class, as the status bars show them.
 *
 * The receiver runs on a DDS thread for each message; it queues what it needs into the
 * GUI thread. Deleting the feed ends the subscription: once the destructor has
 * returned, the receiver is not called again.
 */
class TZUICOMPONENTS_EXPORT EventFeed
{
public:
    using Receiver = std::function<void(const char* topic, Orvanth::Event::Message message)>;

    explicit EventFeed(Receiver receiver);
    ~EventFeed();
    EventFeed(const EventFeed&) = delete;
    EventFeed& operator=(const EventFeed&) = delete;

private:
    std::unique_ptr<Orvanth::DDS_Subscriber<Orvanth::Event::Message>> m_subscriber;
};

#endif
