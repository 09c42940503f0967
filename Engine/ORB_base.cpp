#include "ORB_base.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <mutex>

namespace {

// Options of other ORBs that omniORB rejects with BAD_PARAM. Each takes one value.
const char* const foreignOptions[] = {
    "-ORBSvcConf", "-ORBSvcConfDirective", "-ORBDottedDecimalAddresses", "-ORBListenEndpoints",
    "-ORBDebugLevel", "-ORBDebug", "-ORBLogFile", "-ORBObjRefStyle", "-ORBUseSharedProfile",
    "-ORBNegotiateCodesets", "-ORBPreferIPV6Interfaces", "-ORBConnectIPV6Only",
    "-ORBUseIPV6LinkLocal", "-ORBCollocation", "-ORBCollocationStrategy", "-ORBGestalt",
    "-ORBDaemon", "-ORBNoProprietaryActivation", "-ORBStdProfileComponents",
    "-ORBEnforcePreferredInterfaces", "-ORBPreferredInterfaces", "-ORBKeepalive",
    "-ORBDontLinger", "-ORBAcceptErrorDelay", "-ORBNodelay", "-ORBSingleReadOptimization",
    "-ORBUseParallelConnects", "-ORBParallelConnectDelay", "-ORBServerId",
    "-ORBForwardInvocationOnObjectNotExist", "-ORBIPHopLimit", "-ORBIPMulticastLoop",
    "-ORBUseLocalMemoryPool", "-ORBMuxedConnectionMax", "-ORBEndpoint", "-ORBId",
};

const char loopbackEndpoint[] = "giop:tcp:127.0.0.1:";

bool isForeign(const std::string& option)
{
    return std::any_of(std::begin(foreignOptions), std::end(foreignOptions),
                       [&](const char* name) { return option == name; });
}

bool isEndpointOption(const std::string& option)
{
    return option.rfind("-ORBendPoint", 0) == 0;
}

bool takesValue(const std::vector<std::string>& options, std::size_t index)
{
    return index + 1 < options.size() && options[index + 1].rfind("-", 0) != 0;
}

int callTimeoutMs()
{
    if (const char* text = std::getenv("ORVANTH_CALL_TIMEOUT_MS")) {
        char* end = nullptr;
        const long value = std::strtol(text, &end, 10);
        if (end != text && *end == '\0' && value > 0 && value < 3600 * 1000)
            return int(value);
        std::cerr << "Orvanth ORB - ignoring ORVANTH_CALL_TIMEOUT_MS \"" << text << "\"" << std::endl;
    }
    return ORB_base::DefaultCallTimeoutMs;
}

std::mutex orbMutex;
CORBA::ORB_var processOrbRef;
PortableServer::POA_var rootPoaRef;

} // namespace

std::vector<std::string> ORB_base::sanitizedOptions(const std::vector<std::string>& options,
                                                    std::vector<std::string>* dropped)
{
    std::vector<std::string> kept;
    bool hasEndpoint = false;
    bool hasCallTimeout = false;
    for (std::size_t i = 0; i < options.size(); ++i) {
        const std::string& option = options[i];
        const bool foreign = isForeign(option);
        const bool wideEndpoint = isEndpointOption(option)
            && !(takesValue(options, i) && options[i + 1].rfind(loopbackEndpoint, 0) == 0);
        if (foreign || wideEndpoint) {
            std::string text = option;
            if (takesValue(options, i))
                text += " " + options[++i];
            if (dropped)
                dropped->push_back(text);
            continue;
        }
        hasEndpoint = hasEndpoint || isEndpointOption(option);
        hasCallTimeout = hasCallTimeout || option == "-ORBclientCallTimeOutPeriod";
        kept.push_back(option);
    }
    if (!hasEndpoint) {
        kept.push_back("-ORBendPoint");
        kept.push_back(loopbackEndpoint);
    }
    if (!hasCallTimeout) {
        kept.push_back("-ORBclientCallTimeOutPeriod");
        kept.push_back(std::to_string(callTimeoutMs()));
    }
    return kept;
}

CORBA::ORB_ptr ORB_base::processOrb(const std::vector<std::string>& argv)
{
    std::lock_guard<std::mutex> lock(orbMutex);
    if (!CORBA::is_nil(processOrbRef)) {
        if (argv.size() > 1)
            std::cerr << "Orvanth ORB - the process ORB is already running; "
                      << argv.size() - 1 << " option(s) of a later initialisation are ignored" << std::endl;
        return processOrbRef.in();
    }

    std::vector<std::string> dropped;
    const std::vector<std::string> options = sanitizedOptions(
        std::vector<std::string>(argv.size() > 1 ? argv.begin() + 1 : argv.end(), argv.end()), &dropped);
    for (const std::string& text : dropped)
        std::cerr << "Orvanth ORB - dropped option \"" << text
                  << "\": not an omniORB option or not a loopback endpoint" << std::endl;

    // ORB_init takes argv by pointer and removes what it consumes; keep our own copies.
    std::vector<std::string> storage;
    storage.push_back(argv.empty() ? std::string("orvanth") : argv.front());
    storage.insert(storage.end(), options.begin(), options.end());
    std::vector<char*> arguments;
    for (std::string& text : storage)
        arguments.push_back(&text[0]);
    arguments.push_back(nullptr);
    int argc = int(storage.size());
    processOrbRef = CORBA::ORB_init(argc, arguments.data(), "omniORB4");
    return processOrbRef.in();
}

void ORB_base::destroyProcessOrb()
{
    std::lock_guard<std::mutex> lock(orbMutex);
    if (CORBA::is_nil(processOrbRef))
        return;
    rootPoaRef = PortableServer::POA::_nil();
    try {
        processOrbRef->destroy();
    } catch (const CORBA::Exception& e) {
        std::cerr << "Orvanth ORB - destroy failed: " << e._name() << std::endl;
    }
    processOrbRef = CORBA::ORB::_nil();
}

ORB_base::ORB_base(const std::vector<std::string>& options)
{
    std::vector<std::string> argv{"orvanth"};
    argv.insert(argv.end(), options.begin(), options.end());
    processOrb(argv);
}

ORB_base::~ORB_base() = default;

CORBA::ORB_ptr ORB_base::orb() const
{
    std::lock_guard<std::mutex> lock(orbMutex);
    return processOrbRef.in();
}

PortableServer::POA_ptr ORB_base::rootPoa() const
{
    std::lock_guard<std::mutex> lock(orbMutex);
    if (CORBA::is_nil(rootPoaRef)) {
        CORBA::Object_var object = processOrbRef->resolve_initial_references("RootPOA");
        rootPoaRef = PortableServer::POA::_narrow(object);
        PortableServer::POAManager_var manager = rootPoaRef->the_POAManager();
        manager->activate();
    }
    return rootPoaRef.in();
}
