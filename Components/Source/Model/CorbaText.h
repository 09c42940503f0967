#ifndef CORBATEXT_H
#define CORBATEXT_H

#include "tzuicomponents_export.h"

#include <omniORB4/CORBA.h>

#include <QString>

/**
 * The one place where text crosses between Qt and CORBA.
 *
 * Every process keeps omniORB's default code sets, which pass string bytes through
 * unchanged between peers of the same set, so text travels as UTF-8 bytes and is
 * converted here on both sides.
 */
class TZUICOMPONENTS_EXPORT CorbaText
{
public:
    /// A new CORBA string holding \a text as UTF-8 (owned by the caller or a _var).
    static char* toCorba(const QString& text);
    /// \a text read as UTF-8 when it is well-formed UTF-8, otherwise as Latin-1 (as older
    /// engines send it); a null pointer gives an empty text.
    static QString fromCorba(const char* text);
};

#endif
