#ifndef ORVANTH_ORB_BASE_H
#define ORVANTH_ORB_BASE_H

#include <omniORB4/CORBA.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

class HostAddress;

/**
 * Access to the one ORB of the process, and serving objects from it.
 *
 * omniORB keeps a single ORB per process: a second ORB_init returns the first ORB and
 * ignores its arguments. So the ORB is started once, by start() with the program's
 * options (a host does that through the application's options); everything after it
 * (the locker, naming-service clients, servers) builds an ORB_base without options and
 * uses the running ORB. Options of other ORBs are removed and reported; whatever the
 * caller passes, the ORB listens on the process's own address only (HostAddress:
 * 127.0.0.1 unless ORVANTH_INSTRUMENT_HOST puts the instrument on a network), since a
 * reference whose first address is another one sends a peer on another host to that
 * address; endpoints elsewhere, from options, ORBendPoint variables or omniORB's
 * configuration file, are left out and reported. It keeps omniORB's default code sets
 * (text is UTF-8 on the wire, so the native code set is never set) and bounds every
 * outgoing call with a time-out, so a hung peer surfaces as CORBA::TIMEOUT instead of
 * blocking its caller for ever; off loopback, opening a connection has a time-out of its
 * own as well. A reference whose calls may rightly take long (a dialog that waits for
 * the user) gets its own time-out through setCallTimeout().
 *
 * Off loopback the naming service is the instrument's (corbaname::INSTRUMENT:2809)
 * unless an -ORBInitRef option or the ORBInitRef variable names one, and a peer that
 * gives no answer or drops its connection is named in a diagnostic line.
 *
 * Servants are activated in the root POA (calls run concurrently on ORB worker threads)
 * or in a single-thread POA (one call at a time, so a call that blocks holds back every
 * later call on that POA's servants).
 */
class ORB_base
{
public:
    /// The time-out of every outgoing call unless ORVANTH_CALL_TIMEOUT_MS says otherwise.
    static constexpr int DefaultCallTimeoutMs = 5000;
    /// How long opening a connection to a peer on another host may take.
    static constexpr int DefaultConnectTimeoutMs = 1000;
    /// For setCallTimeout(): calls on the reference wait as long as the peer takes.
    static constexpr std::chrono::milliseconds NoCallTimeout{0};

    /// Where the ORB layer's diagnostic lines go; standard error unless a sink is set.
    using DiagnosticSink = std::function<void(const std::string& line)>;

    /// Uses the running process ORB; starts it without options only if none runs.
    ORB_base();
    /// start(options), then uses the process ORB.
    explicit ORB_base(const std::vector<std::string>& options);
    virtual ~ORB_base();

    ORB_base(const ORB_base&) = delete;
    ORB_base& operator=(const ORB_base&) = delete;

    /// The process ORB (not duplicated: do not release).
    CORBA::ORB_ptr orb() const;

    /// The root POA with its manager active (not duplicated). Its servants take calls
    /// concurrently.
    PortableServer::POA_ptr rootPoa() const;

    /// A child POA of the root POA, named \a name, that hands its servants one call at a
    /// time (SINGLE_THREAD_MODEL) and shares the root POA's active manager; the existing
    /// POA when one of that name exists. Duplicated: keep it in a POA_var.
    PortableServer::POA_ptr singleThreadPoa(const std::string& name) const;

    /// Activates \a servant in \a poa (the root POA when nil) unless it is active there,
    /// and returns a new reference to it. The POA takes its own count on the servant:
    /// drop yours with _remove_ref() when you no longer need the servant.
    CORBA::Object_ptr activate(PortableServer::ServantBase* servant,
                               PortableServer::POA_ptr poa = PortableServer::POA::_nil()) const;

    /// Deactivates \a servant in \a poa (the root POA when nil); calls on its references
    /// then fail with OBJECT_NOT_EXIST. Nothing happens when it is not active.
    void deactivate(PortableServer::ServantBase* servant,
                    PortableServer::POA_ptr poa = PortableServer::POA::_nil()) const;

    /// Starts the process ORB with \a options ("-ORBInitRef", "NameService=...", ...; no
    /// program name) and returns it (not duplicated). When it runs already it is returned
    /// as it is; options other than those it was started with are then reported, once.
    static CORBA::ORB_ptr start(const std::vector<std::string>& options = {});

    /// Whether the process ORB runs.
    static bool isRunning();

    /// Shuts the process ORB down and destroys it; for the end of a program.
    static void destroyProcessOrb();

    /// The options the ORB would be given for \a options: options only another ORB
    /// understands are removed (and listed in \a dropped), endpoints are forced to the
    /// process's own address and the call time-out is added when the caller gave none.
    /// Off loopback the naming service defaults to the instrument's and a connect
    /// time-out is added.
    static std::vector<std::string> sanitizedOptions(const std::vector<std::string>& options,
                                                     std::vector<std::string>* dropped = nullptr);
    /// The same for a process placed at \a address.
    static std::vector<std::string> sanitizedOptions(const std::vector<std::string>& options,
                                                     const HostAddress& address,
                                                     std::vector<std::string>* dropped = nullptr);

    /// The time-out of calls on references without one of their own: the running ORB's,
    /// or the one the next start() gives.
    static std::chrono::milliseconds defaultCallTimeout();

    /// Gives calls through \a object (this reference and its duplicates, not references
    /// narrowed from it later) the time-out \a timeout; NoCallTimeout lets them wait for
    /// ever. Set it on the reference you call through, after _narrow.
    static void setCallTimeout(CORBA::Object_ptr object, std::chrono::milliseconds timeout);

    /// Calls through \a object fall back to defaultCallTimeout().
    static void clearCallTimeout(CORBA::Object_ptr object);

    /// Sends the ORB layer's diagnostic lines to \a sink (from any thread); an empty sink
    /// sends them to standard error again.
    static void setDiagnosticSink(DiagnosticSink sink);

    /// Writes one diagnostic line through the sink.
    static void report(const std::string& line);
};

#endif
