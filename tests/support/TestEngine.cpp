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

#include <algorithm>
#include <atomic>
#include <iostream>
#include <thread>

using namespace Orvanth;
using namespace Orvanth::TKWW_DDS;

namespace {

std::atomic<bool> stopping{false};

// Publishes \a sample once a reader has matched; false when stopped first.
template <class PubSubType>
bool publishWhenMatched(const std::string& topic, const typename PubSubType::type& sample)
{
    TopicPublisher<PubSubType> publisher(topic);
    while (!stopping && !publisher.waitForSubscribers(1, std::chrono::milliseconds(100)))
        continue;
    if (!stopping && (!publisher.publish(sample) || !publisher.waitForAcknowledgments(std::chrono::seconds(10))))
        std::cerr << "tz-test-engine: " << topic << " was not delivered" << std::endl;
    return !stopping;
}

void publishSamples()
{
    if (publishWhenMatched<ATTR_VOIDPubSubType>(TopicSamples::VoidTopic, TopicSamples::voidSample())
        && publishWhenMatched<ATTR_BOOLEANPubSubType>(TopicSamples::BooleanTopic, TopicSamples::booleanSample())
        && publishWhenMatched<ATTR_LONGPubSubType>(TopicSamples::LongTopic, TopicSamples::longSample())
        && publishWhenMatched<ATTR_STRINGPubSubType>(TopicSamples::StringTopic, TopicSamples::stringSample())
        && publishWhenMatched<ATTR_EVENTPubSubType>(TopicSamples::EventTopic, TopicSamples::eventSample())
        && publishWhenMatched<ATTR_METER_READINGPubSubType>(TopicSamples::ReadingTopic, TopicSamples::readingSample()))
        std::cout << "PUBLISHED" << std::endl;
}

} // namespace

int main(int argc, char* argv[])
{
    const Orvanth::StopSignals stopSignals;
    std::vector<std::string> paths, orbOptions;
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    auto* module = new GuiAbleServant;
    auto* manager = new LockManagerServant;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--bind" && i + 1 < arguments.size())
            paths.push_back(arguments[++i]);
        else if (arguments[i] == "--ping-delay-ms" && i + 1 < arguments.size())
            module->setPingDelay(std::stoi(arguments[++i]));
        else if (arguments[i] == "--locker")
            paths.push_back(Names::LockerPath);
        else if (arguments[i] != "--publish-samples")
            orbOptions.push_back(arguments[i]);
    }
    const bool publish = std::find(arguments.begin(), arguments.end(), "--publish-samples") != arguments.end();
    try {
        ORB_base::start(orbOptions);
        ORB_wrapper_base server;
        for (const std::string& path : paths)
            CORBA::Object_var bound = path == Names::LockerPath ? server.serve(path, manager) : server.serve(path, module);
    } catch (const CORBA::Exception& e) {
        std::cerr << "tz-test-engine: cannot serve: " << e._name() << std::endl;
        return 2;
    }
    if (publish && !DDS_BaseObj::DdsBase().participant)
        return std::cerr << "tz-test-engine: DDS is not running" << std::endl, 2;
    std::cout << "READY" << std::endl;
    std::thread publisher(publish ? publishSamples : [] {});
    stopSignals.wait();
    stopping = true;
    publisher.join();
    module->_remove_ref();
    manager->_remove_ref();
    ORB_base::destroyProcessOrb();
    DDS_BaseObj::shutdownDds();
    return 0;
}
