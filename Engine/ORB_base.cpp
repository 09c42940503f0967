#include "ORB_base.h"

#include "HostAddress.h"

#include <omniORB4/IIOP.h>
#include <omniORB4/omniIOR.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <iostream>
#include <limits>
#include <map>
#include <mutex>
#include <set>
#include <unistd.h>

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

// The endpoint every process listens on and publishes: its own address, any free port.
std::string ownEndpoint(const HostAddress& address)
{
    return "giop:tcp:" + address.own() + ":";
}

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

const char callTimeoutOption[] = "-ORBclientCallTimeOutPeriod";
const char connectTimeoutOption[] = "-ORBclientConnectTimeOutPeriod";
const char initRefOption[] = "-ORBInitRef";

bool startsWith(const char* text, const char* prefix)
{
    return text && std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

// The process-wide call time-out from ORVANTH_CALL_TIMEOUT_MS; \a warning says why the
// variable was not taken.
int callTimeoutMs(std::string* warning)
{
    if (const char* text = std::getenv("ORVANTH_CALL_TIMEOUT_MS")) {
        char* end = nullptr;
        const long value = std::strtol(text, &end, 10);
        if (end != text && *end == '\0' && value > 0 && value < 3600 * 1000)
            return int(value);
        if (warning)
            *warning = std::string("Orvanth ORB - ignoring ORVANTH_CALL_TIMEOUT_MS \"") + text + "\"";
    }
    return ORB_base::DefaultCallTimeoutMs;
}

// Whether the caller or the environment names the naming service already.
bool namesNamingService(const std::vector<std::string>& options)
{
    for (std::size_t i = 0; i + 1 < options.size(); ++i) {
        if ((options[i] == initRefOption && startsWith(options[i + 1].c_str(), "NameService="))
            || options[i] == "-ORBDefaultInitRef")
            return true;
    }
    return startsWith(std::getenv("ORBInitRef"), "NameService=") || std::getenv("ORBDefaultInitRef");
}

std::vector<std::string> sanitize(const std::vector<std::string>& options, const HostAddress& address,
                                  std::vector<std::string>* dropped, std::string* timeoutWarning)
{
    const std::string endpoint = ownEndpoint(address);
    std::vector<std::string> kept;
    bool hasEndpoint = false;
    bool hasCallTimeout = false;
    bool hasConnectTimeout = false;
    for (std::size_t i = 0; i < options.size(); ++i) {
        const std::string& option = options[i];
        const bool foreign = isForeign(option);
        // An endpoint elsewhere would be listened on, and one published first in every
        // reference: a peer on another host would dial that address, its own loopback.
        const bool strayEndpoint = isEndpointOption(option)
            && !(option == "-ORBendPoint" && takesValue(options, i) && options[i + 1].rfind(endpoint, 0) == 0);
        if (foreign || strayEndpoint) {
            std::string text = option;
            if (takesValue(options, i))
                text += " " + options[++i];
            if (dropped)
                dropped->push_back(text);
            continue;
        }
        hasEndpoint = hasEndpoint || isEndpointOption(option);
        hasCallTimeout = hasCallTimeout || option == callTimeoutOption;
        hasConnectTimeout = hasConnectTimeout || option == connectTimeoutOption;
        kept.push_back(option);
    }
    if (!hasEndpoint) {
        kept.push_back("-ORBendPoint");
        kept.push_back(endpoint);
    }
    if (!hasCallTimeout) {
        kept.push_back(callTimeoutOption);
        kept.push_back(std::to_string(callTimeoutMs(timeoutWarning)));
    }
    if (address.isRemote()) {
        if (!namesNamingService(kept)) {
            kept.push_back(initRefOption);
            kept.push_back("NameService=" + address.namingService());
        }
        // Without it a connection to a host whose packets are dropped waits for the
        // kernel's SYN retries, over two minutes.
        if (!hasConnectTimeout && !std::getenv("ORBclientConnectTimeOutPeriod")) {
            kept.push_back(connectTimeoutOption);
            kept.push_back(std::to_string(ORB_base::DefaultConnectTimeoutMs));
        }
    }
    return kept;
}

// omniORB adds the endpoints of ORBendPoint... environment variables to those of its
// options: the ones not on our own address are taken out of the environment before it
// starts (child processes do not get them either). Returns what was taken out.
std::vector<std::string> removeStrayEndpointVariables(const HostAddress& address)
{
    const std::string endpoint = ownEndpoint(address);
    std::vector<std::string> names;
    for (char** entry = environ; entry && *entry; ++entry) {
        const std::string text = *entry;
        const auto equals = text.find('=');
        if (text.rfind("ORBendPoint", 0) != 0 || equals == std::string::npos)
            continue;
        if (text.compare(0, equals, "ORBendPoint") == 0 && text.compare(equals + 1, endpoint.size(), endpoint) == 0)
            continue;
        names.push_back(text);
    }
    for (const std::string& text : names)
        ::unsetenv(text.substr(0, text.find('=')).c_str());
    return names;
}

// omniORB adds the endpoints of its configuration file as well. While it lives, and the
// file has any, OMNIORB_CONFIG names a copy without them; the variable is put back and
// the copy removed afterwards, as omniORB reads the file in ORB_init only.
class ConfigurationWithoutEndpoints
{
public:
    explicit ConfigurationWithoutEndpoints(std::vector<std::string>* dropped)
    {
        const char* given = std::getenv("OMNIORB_CONFIG");
        m_path = given ? given : "/etc/omniORB.cfg";
        std::ifstream file(m_path);
        std::string kept;
        std::string line;
        bool inEndpoint = false;
        while (std::getline(file, line)) {
            const std::size_t start = line.find_first_not_of(" \t");
            const std::string text = start == std::string::npos ? std::string() : line.substr(start);
            // "= value" on a line of its own adds a value to the parameter above it.
            if (!text.empty() && text[0] != '#' && text[0] != '=')
                inEndpoint = text.rfind("endPoint", 0) == 0;
            if (inEndpoint && !text.empty() && text[0] != '#')
                dropped->push_back(text);
            else
                kept += line + "\n";
        }
        if (dropped->empty())
            return;
        char name[] = "/tmp/orvanth-omniORB-XXXXXX";
        const int fd = ::mkstemp(name);
        if (fd < 0)
            return;
        m_copy = name;
        const bool written = ::write(fd, kept.data(), kept.size()) == ssize_t(kept.size());
        ::close(fd);
        if (!written) {
            ::unlink(m_copy.c_str());
            m_copy.clear();
            return;
        }
        m_hadVariable = given != nullptr;
        ::setenv("OMNIORB_CONFIG", m_copy.c_str(), 1);
    }

    ~ConfigurationWithoutEndpoints()
    {
        if (m_copy.empty())
            return;
        if (m_hadVariable)
            ::setenv("OMNIORB_CONFIG", m_path.c_str(), 1);
        else
            ::unsetenv("OMNIORB_CONFIG");
        ::unlink(m_copy.c_str());
    }

    ConfigurationWithoutEndpoints(const ConfigurationWithoutEndpoints&) = delete;
    ConfigurationWithoutEndpoints& operator=(const ConfigurationWithoutEndpoints&) = delete;

    const std::string& path() const { return m_path; }
    /// Whether the ORB starts on the copy; false when the file has no endpoints or no
    /// copy could be written.
    bool isCopied() const { return !m_copy.empty(); }

private:
    std::string m_path;
    std::string m_copy;
    bool m_hadVariable = false;
};

// "host:port" of the first IIOP profile of \a object's reference; empty when it has none.
std::string peerAddress(CORBA::Object_ptr object)
{
    if (CORBA::is_nil(object) || !object->_PR_getobj())
        return std::string();
    omniIOR* ior = object->_PR_getobj()->_getIOR();
    std::string peer;
    const IOP::TaggedProfileList& profiles = ior->iopProfiles();
    for (CORBA::ULong i = 0; i < profiles.length() && peer.empty(); ++i) {
        if (profiles[i].tag != IOP::TAG_INTERNET_IOP)
            continue;
        try {
            IIOP::ProfileBody body;
            IIOP::unmarshalProfile(profiles[i], body);
            peer = std::string(body.address.host.in()) + ":" + std::to_string(body.address.port);
        } catch (...) {
        }
    }
    ior->release();
    return peer;
}

// Off loopback a peer that stops answering is most often a host gone from the network:
// the ORB says which one, at most once in a while for each peer, as its callers know
// only which call failed.
constexpr std::chrono::seconds silentPeerReportInterval{5};
std::mutex silentPeersMutex;
std::map<std::string, std::chrono::steady_clock::time_point> silentPeersReported;

void reportSilentPeer(CORBA::Object_ptr object, const char* operation, const CORBA::SystemException& failure,
                      const char* what)
{
    const std::string peer = peerAddress(object);
    const auto now = std::chrono::steady_clock::now();
    {
        std::lock_guard<std::mutex> lock(silentPeersMutex);
        const auto last = silentPeersReported.find(peer);
        if (last != silentPeersReported.end() && now - last->second < silentPeerReportInterval)
            return;
        silentPeersReported[peer] = now;
    }
    const char* minor = failure.NP_minorString();
    ORB_base::report(std::string("Orvanth ORB - ") + what + " " + (peer.empty() ? "a peer" : peer) + " ("
                     + (operation ? operation : "?") + "): " + failure._name() + (minor ? std::string(" ") + minor : ""));
}

// Both hand the exception on to the caller, as omniORB does without a handler.
CORBA::Boolean onTimeout(void*, CORBA::ULong, const CORBA::TIMEOUT& failure, CORBA::Object_ptr object,
                         const char* operation)
{
    reportSilentPeer(object, operation, failure, "no answer from");
    return false;
}

CORBA::Boolean onCommFailure(void*, CORBA::ULong, const CORBA::COMM_FAILURE& failure, CORBA::Object_ptr object,
                             const char* operation)
{
    reportSilentPeer(object, operation, failure, "connection lost to");
    return false;
}

// A peer that refuses connections has ended: the caller hears so at once, where omniORB
// would try again until the call's time-out and so report a dead engine as a hung one.
// Other transient failures (a connection the peer closed while idle) are tried again.
CORBA::Boolean onTransient(void*, CORBA::ULong retries, const CORBA::TRANSIENT& failure, CORBA::Object_ptr,
                           const char*)
{
    return failure.minor() != omni::TRANSIENT_ConnectFailed && retries < 3;
}

std::string joined(const std::vector<std::string>& options)
{
    std::string text;
    for (const std::string& option : options)
        text += (text.empty() ? "" : " ") + option;
    return text;
}

std::mutex orbMutex;
CORBA::ORB_var processOrbRef;
PortableServer::POA_var rootPoaRef;
// What the running ORB was started with, and the other options already reported as ignored.
std::vector<std::string> startOptions;
std::set<std::vector<std::string>> reportedOptions;
std::chrono::milliseconds runningCallTimeout{0};

std::mutex sinkMutex;
ORB_base::DiagnosticSink diagnosticSink;

// Starts the ORB; orbMutex is held. Diagnostic lines are collected, not reported, so
// that no sink runs under the lock.
void initialise(const std::vector<std::string>& given, const HostAddress& address, std::vector<std::string>* lines)
{
    std::vector<std::string> dropped;
    std::string timeoutWarning;
    const std::vector<std::string> options = sanitize(given, address, &dropped, &timeoutWarning);
    if (!timeoutWarning.empty())
        lines->push_back(timeoutWarning);
    for (const std::string& text : dropped) {
        if (address.isRemote() && isEndpointOption(text.substr(0, text.find(' '))))
            lines->push_back("Orvanth ORB - dropped option \"" + text + "\": the ORB listens on "
                             + ownEndpoint(address) + " only");
        else
            lines->push_back("Orvanth ORB - dropped option \"" + text
                             + "\": not an omniORB option or not a loopback endpoint");
    }
    for (const std::string& variable : removeStrayEndpointVariables(address))
        lines->push_back("Orvanth ORB - removed the environment variable \"" + variable + "\": the ORB listens on "
                         + ownEndpoint(address) + " only");
    std::vector<std::string> configured;
    const ConfigurationWithoutEndpoints configuration(&configured);
    for (const std::string& line : configured) {
        if (configuration.isCopied())
            lines->push_back("Orvanth ORB - ignoring \"" + line + "\" of the configuration file "
                             + configuration.path() + ": the ORB listens on " + ownEndpoint(address) + " only");
        else
            lines->push_back("Orvanth ORB - cannot leave out \"" + line + "\" of the configuration file "
                             + configuration.path() + " (no copy in /tmp): the ORB listens there too");
    }

    // ORB_init takes argv by pointer and removes what it consumes; keep our own copies.
    std::vector<std::string> storage{"orvanth"};
    storage.insert(storage.end(), options.begin(), options.end());
    std::vector<char*> arguments;
    for (std::string& text : storage)
        arguments.push_back(&text[0]);
    arguments.push_back(nullptr);
    int argc = int(storage.size());
    processOrbRef = CORBA::ORB_init(argc, arguments.data(), "omniORB4");
    omniORB::installTransientExceptionHandlerExt(nullptr, onTransient);
    if (address.isRemote()) {
        omniORB::installTimeoutExceptionHandlerExt(nullptr, onTimeout);
        omniORB::installCommFailureExceptionHandlerExt(nullptr, onCommFailure);
    }

    startOptions = given;
    reportedOptions.clear();
    const auto timeout = std::find(options.begin(), options.end(), callTimeoutOption);
    const bool valued = timeout != options.end() && timeout + 1 != options.end();
    runningCallTimeout = std::chrono::milliseconds(valued ? std::strtol((timeout + 1)->c_str(), nullptr, 10) : 0);
}

PortableServer::POA_ptr rootPoaLocked()
{
    if (CORBA::is_nil(processOrbRef))
        throw CORBA::BAD_INV_ORDER();
    if (CORBA::is_nil(rootPoaRef)) {
        CORBA::Object_var object = processOrbRef->resolve_initial_references("RootPOA");
        rootPoaRef = PortableServer::POA::_narrow(object);
        PortableServer::POAManager_var manager = rootPoaRef->the_POAManager();
        manager->activate();
    }
    return rootPoaRef.in();
}

} // namespace

std::vector<std::string> ORB_base::sanitizedOptions(const std::vector<std::string>& options,
                                                    std::vector<std::string>* dropped)
{
    return sanitize(options, HostAddress::process(), dropped, nullptr);
}

std::vector<std::string> ORB_base::sanitizedOptions(const std::vector<std::string>& options,
                                                    const HostAddress& address, std::vector<std::string>* dropped)
{
    return sanitize(options, address, dropped, nullptr);
}

CORBA::ORB_ptr ORB_base::start(const std::vector<std::string>& options)
{
    // Outside the lock: the first call reports through the sink.
    const HostAddress& address = HostAddress::process();
    std::vector<std::string> lines;
    std::exception_ptr failure;
    CORBA::ORB_ptr orb = CORBA::ORB::_nil();
    {
        std::lock_guard<std::mutex> lock(orbMutex);
        if (CORBA::is_nil(processOrbRef)) {
            try {
                initialise(options, address, &lines);
            } catch (...) {
                // Reported first: what was dropped may be why ORB_init refused the rest.
                failure = std::current_exception();
            }
        } else if (!options.empty() && options != startOptions && reportedOptions.insert(options).second) {
            lines.push_back("Orvanth ORB - the process ORB is already running; ignoring the options \""
                            + joined(options) + "\"");
        }
        orb = processOrbRef.in();
    }
    for (const std::string& line : lines)
        report(line);
    if (failure)
        std::rethrow_exception(failure);
    return orb;
}

bool ORB_base::isRunning()
{
    std::lock_guard<std::mutex> lock(orbMutex);
    return !CORBA::is_nil(processOrbRef);
}

void ORB_base::destroyProcessOrb()
{
    std::string failure;
    {
        std::lock_guard<std::mutex> lock(orbMutex);
        if (CORBA::is_nil(processOrbRef))
            return;
        rootPoaRef = PortableServer::POA::_nil();
        try {
            processOrbRef->destroy();
        } catch (const CORBA::Exception& e) {
            failure = std::string("Orvanth ORB - destroy failed: ") + e._name();
        }
        processOrbRef = CORBA::ORB::_nil();
        startOptions.clear();
        reportedOptions.clear();
    }
    if (!failure.empty())
        report(failure);
}

ORB_base::ORB_base()
{
    start();
}

ORB_base::ORB_base(const std::vector<std::string>& options)
{
    start(options);
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
    return rootPoaLocked();
}

PortableServer::POA_ptr ORB_base::singleThreadPoa(const std::string& name) const
{
    PortableServer::POA_ptr root = rootPoa();
    try {
        return root->find_POA(name.c_str(), false);
    } catch (const PortableServer::POA::AdapterNonExistent&) {
    }
    PortableServer::POAManager_var manager = root->the_POAManager();
    CORBA::PolicyList policies;
    policies.length(1);
    policies[0] = root->create_thread_policy(PortableServer::SINGLE_THREAD_MODEL);
    PortableServer::POA_var poa;
    try {
        poa = root->create_POA(name.c_str(), manager, policies);
    } catch (const PortableServer::POA::AdapterAlreadyExists&) {
        // Another thread created it in the meantime.
        poa = root->find_POA(name.c_str(), false);
    } catch (...) {
        policies[0]->destroy();
        throw;
    }
    policies[0]->destroy();
    return poa._retn();
}

CORBA::Object_ptr ORB_base::activate(PortableServer::ServantBase* servant, PortableServer::POA_ptr poa) const
{
    PortableServer::POA_ptr target = CORBA::is_nil(poa) ? rootPoa() : poa;
    try {
        // The root POA activates implicitly here; other POAs say the servant is not active.
        PortableServer::ObjectId_var id = target->servant_to_id(servant);
        return target->id_to_reference(id);
    } catch (const PortableServer::POA::ServantNotActive&) {
        PortableServer::ObjectId_var id = target->activate_object(servant);
        return target->id_to_reference(id);
    }
}

void ORB_base::deactivate(PortableServer::ServantBase* servant, PortableServer::POA_ptr poa) const
{
    PortableServer::POA_ptr target = CORBA::is_nil(poa) ? rootPoa() : poa;
    try {
        PortableServer::ObjectId_var id = target->servant_to_id(servant);
        target->deactivate_object(id);
    } catch (const PortableServer::POA::ServantNotActive&) {
    } catch (const PortableServer::POA::ObjectNotActive&) {
    }
}

std::chrono::milliseconds ORB_base::defaultCallTimeout()
{
    {
        std::lock_guard<std::mutex> lock(orbMutex);
        if (!CORBA::is_nil(processOrbRef))
            return runningCallTimeout;
    }
    return std::chrono::milliseconds(callTimeoutMs(nullptr));
}

void ORB_base::setCallTimeout(CORBA::Object_ptr object, std::chrono::milliseconds timeout)
{
    if (CORBA::is_nil(object))
        return;
    // omniORB reads 0 on a reference as "no time-out of its own": the longest it can
    // express (49 days) stands for none.
    constexpr auto longest = std::numeric_limits<CORBA::ULong>::max();
    const std::chrono::milliseconds::rep milliseconds = timeout.count();
    const bool none = milliseconds <= 0 || milliseconds >= std::chrono::milliseconds::rep(longest);
    omniORB::setClientCallTimeout(object, none ? longest : CORBA::ULong(milliseconds));
}

void ORB_base::clearCallTimeout(CORBA::Object_ptr object)
{
    if (!CORBA::is_nil(object))
        omniORB::setClientCallTimeout(object, 0);
}

void ORB_base::setDiagnosticSink(DiagnosticSink sink)
{
    std::lock_guard<std::mutex> lock(sinkMutex);
    diagnosticSink = std::move(sink);
}

void ORB_base::report(const std::string& line)
{
    DiagnosticSink sink;
    {
        std::lock_guard<std::mutex> lock(sinkMutex);
        sink = diagnosticSink;
    }
    if (sink)
        sink(line);
    else
        std::cerr << line << std::endl;
}
