#include "EventFeed.h"

#include "DDS_Subscriber.h"
#include "OrvanthNames.h"

#include <utility>

EventFeed::EventFeed(Receiver receiver)
    : m_subscriber(std::make_unique<Orvanth::DDS_Subscriber<Orvanth::Event::Message>>(
          Orvanth::Names::EventTopic,
          [receiver = std::move(receiver)](const char* topic, Orvanth::Event::Message message) {
              receiver(topic, std::move(message));
          },
          0, 0, eprosima::fastdds::dds::VOLATILE_DURABILITY_QOS))
{
    m_subscriber->setClassMask(Orvanth::DDS_Subscriber<Orvanth::Event::Message>::AllEventClasses);
}

EventFeed::~EventFeed() = default;
