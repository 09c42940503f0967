#ifndef CORBAFAILURE_H
#define CORBAFAILURE_H

#include "tzuicomponents_export.h"

#include <omniORB4/CORBA.h>

#include <QString>

/**
 * How the library reports a failed engine or remote call, so that every place that
 * catches one writes the same lines.
 */
class TZUICOMPONENTS_EXPORT CorbaFailure
{
public:
    CorbaFailure() = delete;

    /// The exception's name, a blank and info(): "TRANSIENT minor 1096024066 (...)".
    static QString describe(const CORBA::Exception& exception);

    /// What an exception says beyond its name: the minor code of a system exception
    /// (with omniORB's name for it when it has one), the message of the engine
    /// libraries' exceptions, the repository id of any other.
    static QString info(const CORBA::Exception& exception);

    /// The catch-all line: "UserInterface - Exception", \a sourceFile (the source path
    /// without extension, "Components/Source/Controller/GUIManagerImpl"), \a operation
    /// and \a line, separated by blanks. A null or empty \a operation is left out.
    static void logException(const char* sourceFile, const char* operation, int line);

    /// Two lines: "UserInterface -" with the position "sourceFile:line", then
    /// describe() indented by fifteen blanks.
    static void logAtPosition(const CORBA::Exception& exception, const char* sourceFile, int line);
};

#endif
