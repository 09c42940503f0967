#ifndef APPLICATIONORB_H
#define APPLICATIONORB_H

#include "tzuicomponents_export.h"

#include <omniORB4/CORBA.h>

#include <string>
#include <vector>

/**
 * The library's one way into the process ORB: starts it with the host's application
 * options.
 *
 * The process has one ORB and its first start decides its options, so whatever part of
 * the library reaches the engines first calls start() and so passes the naming service
 * the host chose with "-ORBInitRef". Everything after it (the locker, the naming-service
 * client, the GUI-manager server) takes the running ORB through ORB_base without options.
 * The ORB layer's diagnostic lines then go through the Qt message stream, and so through
 * the diagnostic output switch, instead of straight to standard error.
 */
class TZUICOMPONENTS_EXPORT ApplicationOrb
{
public:
    /// The ORB options the application asks for: "-ORBInitRef" and the option's value
    /// when the application has one, else none.
    static std::vector<std::string> options();

    /// The process ORB, started with options() if it is not running yet (not duplicated).
    /// Calling it again is cheap and silent.
    static CORBA::ORB_ptr start();
};

#endif
