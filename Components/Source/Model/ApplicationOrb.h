#ifndef APPLICATIONORB_H
#define APPLICATIONORB_H

#include "tzuicomponents_export.h"

#include <omniORB4/CORBA.h>

#include <string>
#include <vector>

/**
 * Starts the process ORB with the host's application options.
 *
 * The process has one ORB and its first initialisation decides its options, so whatever
 * part of the library reaches the engines first must already pass the naming service
 * the host chose with "-ORBInitRef". Later initialisations get the same ORB.
 */
class TZUICOMPONENTS_EXPORT ApplicationOrb
{
public:
    /// The ORB's argument vector: a program name, then "-ORBInitRef" and the option's
    /// value when the application has one.
    static std::vector<std::string> arguments();

    /// The process ORB, started with arguments() if it is not running yet (not duplicated).
    static CORBA::ORB_ptr start();
};

#endif
