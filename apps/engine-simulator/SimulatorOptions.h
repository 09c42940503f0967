#ifndef SIMULATOROPTIONS_H
#define SIMULATOROPTIONS_H

#include <cstdint>
#include <string>
#include <vector>

/**
 * What the engine simulator plays: rates, battery behaviour, modules and initial values.
 *
 * Options come from the command line ("--name value") and from scenario files given with
 * "--scenario FILE" (one "name value" or "name = value" per line, "#" starts a comment);
 * later settings override earlier ones. Arguments starting with "-ORB" (and their value)
 * are ORB options and passed on.
 */
class SimulatorOptions
{
public:
    double eventsPerSecond = 0.2;
    int eventsTotal = 0; // 0: no end
    std::vector<std::uint32_t> eventClasses{0, 1, 2, 3, 4, 5};
    int batteryPeriodMs = 2000;
    double batteryStart = 100.0;
    double batteryDrain = 1.0; // percent per minute
    double batteryFloor = 5.0;
    bool externalPower = false;
    int modules = 2;
    double moduleChurnSeconds = 0.0;
    int valuePeriodMs = 5000;
    int refOscillator = 1;
    int menuBarTimeout = 10;
    double lockToggleSeconds = 0.0;
    bool help = false;
    bool version = false;
    std::vector<std::string> orbOptions;

    /// Reads \a argv; false with a message in \a error on a bad option or value.
    bool parse(int argc, char** argv, std::string* error);

    /// Sets the option \a name (without the leading "--") from \a value.
    bool set(const std::string& name, const std::string& value, std::string* error);

    /// Applies every setting of the scenario file \a path.
    bool loadScenario(const std::string& path, std::string* error);

    /// The --help text.
    static std::string usage();
};

#endif
