// A small engine process for the ORB and DDS layer tests.
//
//   tz-test-engine [--bind PATH]... [--locker] [--ping-delay-ms N] [--publish-samples]
//                  [ORB options]
//
// Binds one GUI module under each PATH (pings answer after N ms), optionally a lock
// manager under Orvanth::Names::LockerPath, and with --publish-samples publishes one sample of
// each topic type every 50 ms while readers are matched (the texts are in TopicSamples.h). Prints
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
#include <chrono>
#include <iostream>
#include <thread>

using namespace Orvanth;
using namespace Orvanth::TKWW_DDS;

namespace {

std::atomic<bool> stopping{false};

// Writes \a sample when a reader has matched; true when written.
template <class PubSubType>
bool publishIfMatched(TopicPublisher<PubSubType>& publisher, const typename PubSubType::type& sample)
{
    return publisher.matchedSubscribers() > 0 && publisher.publish(sample);
}

// Writes one sample of each topic every 50 ms until stopped. A writer knows a reader
// before the reader knows the writer, and a best-effort reader drops what comes from a
// writer it does not know yet, so one write is not enough. Prints PUBLISHED once every
// topic has been written to a matched reader.
void publishSamples()
{
    TopicPublisher<ATTR_VOIDPubSubType> voids(TopicSamples::VoidTopic);
    TopicPublisher<ATTR_BOOLEANPubSubType> booleans(TopicSamples::BooleanTopic);
    TopicPublisher<ATTR_LONGPubSubType> longs(TopicSamples::LongTopic);
    TopicPublisher<ATTR_STRINGPubSubType> strings(TopicSamples::StringTopic);
    TopicPublisher<ATTR_EVENTPubSubType> events(TopicSamples::EventTopic);
    TopicPublisher<ATTR_METER_READINGPubSubType> readings(TopicSamples::ReadingTopic);
    for (bool announced = false; !stopping; std::this_thread::sleep_for(std::chrono::milliseconds(50))) {
        const bool all = publishIfMatched(voids, TopicSamples::voidSample())
            & publishIfMatched(booleans, TopicSamples::booleanSample()) & publishIfMatched(longs, TopicSamples::longSample())
            & publishIfMatched(strings, TopicSamples::stringSample()) & publishIfMatched(events, TopicSamples::eventSample())
            & publishIfMatched(readings, TopicSamples::readingSample());
        if (all && !announced)
            std::cout << "PUBLISHED" << std::endl;
        announced = announced || all;
    }
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
