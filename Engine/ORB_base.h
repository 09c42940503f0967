#ifndef ORVANTH_ORB_BASE_H
#define ORVANTH_ORB_BASE_H

#include <omniORB4/CORBA.h>

#include <string>
#include <vector>

/**
 * Access to the one ORB of the process.
 *
 * omniORB keeps a single ORB per process: a second ORB_init returns the first ORB and
 * ignores its arguments. The first ORB_base to be built therefore decides the options;
 * options of later ones are only checked and reported. Whatever the caller passes, the
 * ORB listens on 127.0.0.1 only and bounds every outgoing call with a time-out, so a
 * hung peer surfaces as CORBA::TIMEOUT instead of blocking its caller for ever.
 */
class ORB_base
{
public:
    /// The time-out of every outgoing call unless ORVANTH_CALL_TIMEOUT_MS says otherwise.
    static constexpr int DefaultCallTimeoutMs = 5000;

    /// \a options are ORB command-line options ("-ORBInitRef", "NameService=...", ...);
    /// a leading program name is not expected.
    explicit ORB_base(const std::vector<std::string>& options = {});
    virtual ~ORB_base();

    ORB_base(const ORB_base&) = delete;
    ORB_base& operator=(const ORB_base&) = delete;

    /// The process ORB (not duplicated: do not release).
    CORBA::ORB_ptr orb() const;

    /// The root POA with its manager active, for serving objects (not duplicated).
    PortableServer::POA_ptr rootPoa() const;

    /// Initialises the process ORB from an argv-like vector if it is not running yet,
    /// and returns it (not duplicated). The vector's first entry is the program name.
    static CORBA::ORB_ptr processOrb(const std::vector<std::string>& argv);

    /// The options the ORB would be given for \a options: options only another ORB
    /// understands are removed (and listed in \a dropped), endpoints are forced to
    /// 127.0.0.1 and the call time-out is added when the caller gave none.
    static std::vector<std::string> sanitizedOptions(const std::vector<std::string>& options,
                                                     std::vector<std::string>* dropped = nullptr);

    /// Shuts the process ORB down and destroys it; for the end of a program.
    static void destroyProcessOrb();
};

#endif
