#ifndef SIMULATORCONSOLE_H
#define SIMULATORCONSOLE_H

#include <string>

/// Writes one line to standard output at once, from any thread (ORB threads report what
/// reached the engine, the worker what it published). Tests read these lines.
void announce(const std::string& line);

#endif
