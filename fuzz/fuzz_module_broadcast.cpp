// The payload of the module broadcast ("create,4", "destroy,4"), handed to module
// discovery as the string subscriber delivers it. No naming service runs, so every
// module that is announced fails to load, as one whose engine died does.

#include "FuzzDesktop.h"

#include "DDS_SubscriberTraits.h"
#include "NamingServiceImpl.h"
#include "OrvanthNames.h"

#include <cstdint>
#include <string>

namespace {

NamingServiceImpl* discovery = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    initializeFuzzApplication();
    discovery = new NamingServiceImpl;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Orvanth::TKWW_DDS::ATTR_STRING sample;
    sample.value(std::string(reinterpret_cast<const char*>(data), size));
    const boost::function<void(const char*, std::string)> callback = [](const char* topic, std::string payload) {
        discovery->dds_callback(topic, payload);
    };
    Orvanth::DDS_SubscriberTraits<std::string>::deliver(callback, Orvanth::Names::GuiAbleTopic, sample, 0);
    return 0;
}
