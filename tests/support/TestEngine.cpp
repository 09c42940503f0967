// A small engine process for the ORB and DDS layer tests.
//
//   tz-test-engine [--bind PATH]... [--locker] [--ping-delay-ms N] [--publish-samples]
//                  [ORB options]
//
// Binds one GUI module under each PATH (pings answer after N ms), optionally a lock
// manager under Orvanth::Names::LockerPath, and with --publish-samples publishes one sample of
// each topic type once a reader has matched (the texts are in TopicSamples.h). Prints
// READY when serving and runs until SIGTERM or SIGINT.

#include "GuiAbleServant.h"
#include "LockManagerServant.h"
#include "ORB_wrapper_base.h"
#include "OrvanthNames.h"
#include "StopSignals.h"
#include "TopicPublisher.h"
#include "TopicSamples.h"

#include <OrvanthTopicsPubSubTypes.h>

#include <atomic>
#include <cstring>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

using namespace Orvanth;
using namespace Orvanth::TKWW_DDS;

namespace {

std::atomic<bool> stopping{false};

template <class PubSubType>
void publishWhenMatched(const std::string& topic, const typename PubSubType::type& sample)
{
    if (stopping)
        return;
    TopicPublisher<PubSubType> publisher(topic);
    while (!publisher.waitForSubscribers(1, std::chrono::milliseconds(100))) {
        if (stopping)
            return;
    }
    if (!publisher.publish(sample) || !publisher.waitForAcknowledgments(std::chrono::seconds(10)))
        std::cerr << "tz-test-engine: " << topic << " was not delivered" << std::endl;
}

void publishSamples()
{
    publishWhenMatched<ATTR_VOIDPubSubType>(TopicSamples::VoidTopic, TopicSamples::voidSample());
    publishWhenMatched<ATTR_BOOLEANPubSubType>(TopicSamples::BooleanTopic, TopicSamples::booleanSample());
    publishWhenMatched<ATTR_LONGPubSubType>(TopicSamples::LongTopic, TopicSamples::longSample());
    publishWhenMatched<ATTR_STRINGPubSubType>(TopicSamples::StringTopic, TopicSamples::stringSample());
    publishWhenMatched<ATTR_EVENTPubSubType>(TopicSamples::EventTopic, TopicSamples::eventSample());
    publishWhenMatched<ATTR_METER_READINGPubSubType>(TopicSamples::ReadingTopic, TopicSamples::readingSample());
    std::cout << "PUBLISHED" << std::endl;
}

} // namespace

int main(int argc, char* argv[])
{
    const Orvanth::StopSignals stopSignals;

    std::vector<std::string> paths;
    std::vector<std::string> orbOptions;
    bool locker = false;
    bool publish = false;
    int pingDelayMs = 0;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--bind" && i + 1 < argc)
            paths.emplace_back(argv[++i]);
        else if (argument == "--ping-delay-ms" && i + 1 < argc)
            pingDelayMs = std::atoi(argv[++i]);
        else if (argument == "--locker")
            locker = true;
        else if (argument == "--publish-samples")
            publish = true;
        else
            orbOptions.push_back(argument);
    }

    GuiAbleServant* module = new GuiAbleServant;
    module->setPingDelay(pingDelayMs);
    LockManagerServant* manager = new LockManagerServant;
    try {
        ORB_base::start(orbOptions);
        ORB_wrapper_base server;
        for (const std::string& path : paths)
            CORBA::Object_var bound = server.serve(path, module);
        if (locker)
            CORBA::Object_var bound = server.serve(Names::LockerPath, manager);
    } catch (const CORBA::Exception& e) {
        std::cerr << "tz-test-engine: cannot serve: " << e._name() << std::endl;
        return 2;
    }
    if (publish && !DDS_BaseObj::DdsBase().participant) {
        std::cerr << "tz-test-engine: DDS is not running" << std::endl;
        return 2;
    }
    std::cout << "READY" << std::endl;

    std::thread publisher;
    if (publish)
        publisher = std::thread(publishSamples);

    stopSignals.wait();
    stopping = true;
    if (publisher.joinable())
        publisher.join();
    module->_remove_ref();
    manager->_remove_ref();
    ORB_base::destroyProcessOrb();
    DDS_BaseObj::shutdownDds();
    return 0;
}
