#include "SimulatorOptions.h"

#include "OrvanthNames.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>

namespace {

struct OptionEntry
{
    const char* name;
    const char* argument; // empty: a flag without value
    std::string help;
    std::function<bool(SimulatorOptions&, const std::string&)> apply;
};

bool toDouble(const std::string& text, double minimum, double maximum, double* value)
{
    if (text.empty())
        return false;
    char* end = nullptr;
    errno = 0;
    const double parsed = std::strtod(text.c_str(), &end);
    if (errno != 0 || *end != '\0' || !(parsed >= minimum && parsed <= maximum))
        return false;
    *value = parsed;
    return true;
}

bool toInt(const std::string& text, long minimum, long maximum, int* value)
{
    if (text.empty())
        return false;
    char* end = nullptr;
    errno = 0;
    const long parsed = std::strtol(text.c_str(), &end, 10);
    if (errno != 0 || *end != '\0' || parsed < minimum || parsed > maximum)
        return false;
    *value = int(parsed);
    return true;
}

bool toSwitch(const std::string& text, bool* value)
{
    if (text == "on" || text == "true" || text == "1") {
        *value = true;
        return true;
    }
    if (text == "off" || text == "false" || text == "0") {
        *value = false;
        return true;
    }
    return false;
}

bool toClassList(const std::string& text, std::vector<std::uint32_t>* classes)
{
    std::vector<std::uint32_t> parsed;
    std::stringstream stream(text);
    std::string item;
    while (std::getline(stream, item, ',')) {
        char* end = nullptr;
        errno = 0;
        const unsigned long value = std::strtoul(item.c_str(), &end, 10);
        if (item.empty() || errno != 0 || *end != '\0' || value > 0xFFFFFFFFul)
            return false;
        parsed.push_back(std::uint32_t(value));
    }
    if (parsed.empty())
        return false;
    *classes = parsed;
    return true;
}

const std::vector<OptionEntry>& optionTable()
{
    static const std::vector<OptionEntry> table{
        {"events-per-second", "RATE",
         std::string("event messages per second on ") + Orvanth::Names::EventTopic + "; 0: none (default 0.2)",
         [](SimulatorOptions& o, const std::string& v) { return toDouble(v, 0.0, 10000.0, &o.eventsPerSecond); }},
        {"events-total", "N",
         "send N event messages in all, the first once an event reader has matched, then print "
         "\"EVENTS N sent\"; 0: no end (default 0)",
         [](SimulatorOptions& o, const std::string& v) { return toInt(v, 0, 100000000, &o.eventsTotal); }},
        {"event-classes", "LIST",
         "comma-separated event classes the messages cycle through (default 0,1,2,3,4,5; above 5 is no known class)",
         [](SimulatorOptions& o, const std::string& v) { return toClassList(v, &o.eventClasses); }},
        {"battery-period-ms", "MS", "time between battery readings and power reports (default 2000)",
         [](SimulatorOptions& o, const std::string& v) { return toInt(v, 10, 3600000, &o.batteryPeriodMs); }},
        {"battery-start", "PERCENT", "battery level at start (default 100)",
         [](SimulatorOptions& o, const std::string& v) { return toDouble(v, 0.0, 100.0, &o.batteryStart); }},
        {"battery-drain", "PERCENT_PER_MINUTE",
         "how fast the battery drains on battery power and charges on mains; 0 keeps the level (default 1)",
         [](SimulatorOptions& o, const std::string& v) { return toDouble(v, 0.0, 100000.0, &o.batteryDrain); }},
        {"battery-floor", "PERCENT", "level at which mains power comes back and charging starts (default 5)",
         [](SimulatorOptions& o, const std::string& v) { return toDouble(v, 0.0, 100.0, &o.batteryFloor); }},
        {"external-power", "on|off", "mains power present at start (default off)",
         [](SimulatorOptions& o, const std::string& v) { return toSwitch(v, &o.externalPower); }},
        {"modules", "N", std::string("GUI modules bound as ") + Orvanth::Names::GuiAbleContext + "/1 .. N (default 2)",
         [](SimulatorOptions& o, const std::string& v) { return toInt(v, 0, 1000, &o.modules); }},
        {"module-churn", "SECONDS",
         "every SECONDS the highest module goes (destroy,N) or comes back (create,N); the last module "
         "takes the attributes along and brings them back under new references; 0: never (default 0)",
         [](SimulatorOptions& o, const std::string& v) { return toDouble(v, 0.0, 86400.0, &o.moduleChurnSeconds); }},
        {"value-period-ms", "MS", "how often attribute values are published again besides on change (default 5000)",
         [](SimulatorOptions& o, const std::string& v) { return toInt(v, 10, 3600000, &o.valuePeriodMs); }},
        {"ref-oscillator", "1|2", "initial REFOSCILLATOR1 value: 1 internal, 2 external (default 1)",
         [](SimulatorOptions& o, const std::string& v) { return toInt(v, 1, 2, &o.refOscillator); }},
        {"menubar-timeout", "SECONDS", "value of MenuBarTimeout1; 60 keeps the menu bar open (default 10)",
         [](SimulatorOptions& o, const std::string& v) { return toInt(v, 0, 3600, &o.menuBarTimeout); }},
        {"lock-toggle", "SECONDS",
         "every SECONDS the engine's own locker takes or gives back RUNACTION1; 0: never (default 0)",
         [](SimulatorOptions& o, const std::string& v) { return toDouble(v, 0.0, 86400.0, &o.lockToggleSeconds); }},
        {"scenario", "FILE", "read settings from FILE, one \"name value\" per line, # for comments",
         // Read by set() itself, which reports the file's own errors.
         [](SimulatorOptions&, const std::string&) { return true; }},
        {"help", "", "show this text and exit",
         [](SimulatorOptions& o, const std::string&) {
             o.help = true;
             return true;
         }},
        {"version", "", "show the version and exit",
         [](SimulatorOptions& o, const std::string&) {
             o.version = true;
             return true;
         }},
    };
    return table;
}

const OptionEntry* findOption(const std::string& name)
{
    for (const OptionEntry& entry : optionTable()) {
        if (name == entry.name)
            return &entry;
    }
    return nullptr;
}

std::string trimmed(const std::string& text)
{
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos)
        return std::string();
    const auto last = text.find_last_not_of(" \t\r");
    return text.substr(first, last - first + 1);
}

} // namespace

bool SimulatorOptions::set(const std::string& name, const std::string& value, std::string* error)
{
    const OptionEntry* entry = findOption(name);
    if (!entry) {
        *error = "unknown option \"" + name + "\"";
        return false;
    }
    // The scenario option reports its own, more precise error.
    if (name == "scenario")
        return loadScenario(value, error);
    if (!entry->apply(*this, value)) {
        *error = "bad value \"" + value + "\" for " + name + " (" + entry->argument + ")";
        return false;
    }
    return true;
}

bool SimulatorOptions::loadScenario(const std::string& path, std::string* error)
{
    std::ifstream file(path);
    if (!file) {
        *error = "cannot read the scenario file \"" + path + "\"";
        return false;
    }
    std::string line;
    int number = 0;
    while (std::getline(file, line)) {
        ++number;
        line = trimmed(line.substr(0, line.find('#')));
        if (line.empty())
            continue;
        std::string name;
        std::string value;
        const auto equals = line.find('=');
        if (equals != std::string::npos) {
            name = trimmed(line.substr(0, equals));
            value = trimmed(line.substr(equals + 1));
        } else {
            const auto space = line.find_first_of(" \t");
            name = line.substr(0, space);
            value = space == std::string::npos ? std::string() : trimmed(line.substr(space));
        }
        if (name == "scenario" || name == "help" || name == "version") {
            *error = path + ":" + std::to_string(number) + ": \"" + name + "\" is not allowed in a scenario file";
            return false;
        }
        std::string reason;
        if (!set(name, value, &reason)) {
            *error = path + ":" + std::to_string(number) + ": " + reason;
            return false;
        }
    }
    return true;
}

bool SimulatorOptions::parse(int argc, char** argv, std::string* error)
{
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument.rfind("-ORB", 0) == 0) {
            orbOptions.push_back(argument);
            if (i + 1 < argc && argv[i + 1][0] != '-')
                orbOptions.emplace_back(argv[++i]);
            continue;
        }
        if (argument.rfind("--", 0) != 0) {
            *error = "unexpected argument \"" + argument + "\"";
            return false;
        }
        std::string name = argument.substr(2);
        std::string value;
        bool hasValue = false;
        const auto equals = name.find('=');
        if (equals != std::string::npos) {
            value = name.substr(equals + 1);
            name = name.substr(0, equals);
            hasValue = true;
        }
        const OptionEntry* entry = findOption(name);
        if (!entry) {
            *error = "unknown option \"" + argument + "\"";
            return false;
        }
        if (*entry->argument && !hasValue) {
            if (i + 1 >= argc) {
                *error = "option --" + name + " needs a value (" + entry->argument + ")";
                return false;
            }
            value = argv[++i];
        }
        if (!set(name, value, error))
            return false;
    }
    return true;
}

std::string SimulatorOptions::usage()
{
    std::ostringstream text;
    text << "Usage: tz-engine-simulator [options] [-ORBInitRef NameService=corbaname::127.0.0.1:PORT]\n"
            "\n"
            "Plays the instrument's engines: binds GUI modules under "
         << Orvanth::Names::GuiAbleContext << " and a lock\nmanager as " << Orvanth::Names::LockerPath
         << ", serves the attributes RUNACTION1 (action), DISPLAYMODE1\n"
            "and REFOSCILLATOR1 (enum) and MenuBarTimeout1 (long), and publishes event messages,\n"
            "battery readings, mains power and module announcements over DDS (domain from\n"
            "ORVANTH_DDS_DOMAIN). The naming service comes from -ORBInitRef or the ORBInitRef\n"
            "environment variable, or is the instrument's when ORVANTH_INSTRUMENT_HOST names it.\n"
            "Prints READY when serving; stops on SIGTERM, SIGINT or SIGHUP. SIGUSR1 makes the\n"
            "highest module go or come back at once, as a --module-churn period does.\n"
            "\n"
            "Options:\n";
    for (const OptionEntry& entry : optionTable()) {
        std::string head = std::string("  --") + entry.name;
        if (*entry.argument)
            head += std::string(" ") + entry.argument;
        text << head;
        if (head.size() < 34)
            text << std::string(34 - head.size(), ' ');
        else
            text << "\n" << std::string(34, ' ');
        text << entry.help << "\n";
    }
    return text.str();
}
