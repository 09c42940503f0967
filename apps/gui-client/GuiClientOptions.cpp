#include "GuiClientOptions.h"

#include <cerrno>
#include <cstdlib>
#include <limits>

namespace {

struct CommandOption
{
    const char* name;
    GuiClientOptions::Command command;
    int operands;
};

const CommandOption commandOptions[] = {
    {"--alert", GuiClientOptions::Command::Alert, 1},
    {"--dialog", GuiClientOptions::Command::Dialog, 3},
    {"--image", GuiClientOptions::Command::Image, 4},
    {"--data-entry", GuiClientOptions::Command::DataEntry, 3},
    {"--file-select", GuiClientOptions::Command::FileSelect, 2},
    {"--close-dialog", GuiClientOptions::Command::CloseDialog, 1},
    {"--close-all", GuiClientOptions::Command::CloseAll, 0},
    {"--active", GuiClientOptions::Command::IsActive, 1},
    {"--dcs", GuiClientOptions::Command::OpenDcs, 0},
    {"--screens", GuiClientOptions::Command::Screens, 0},
    {"--show", GuiClientOptions::Command::Show, 1},
    {"--hide", GuiClientOptions::Command::Hide, 1},
    {"--move", GuiClientOptions::Command::Move, 3},
    {"--size", GuiClientOptions::Command::Size, 2},
    {"--save-state", GuiClientOptions::Command::SaveState, 1},
    {"--restore-state", GuiClientOptions::Command::RestoreState, 1},
    {"--menubar", GuiClientOptions::Command::MenuBar, 1},
};

bool isInteger(const std::string& text, long minimum, long maximum)
{
    if (text.empty())
        return false;
    char* end = nullptr;
    errno = 0;
    const long value = std::strtol(text.c_str(), &end, 10);
    return errno == 0 && *end == '\0' && value >= minimum && value <= maximum;
}

} // namespace

bool GuiClientOptions::parse(int argc, char** argv, std::string* error)
{
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--help" || argument == "-h") {
            help = true;
            continue;
        }
        if (argument == "--version") {
            version = true;
            continue;
        }
        if (argument.rfind("-ORB", 0) == 0) {
            orbOptions.push_back(argument);
            if (i + 1 < argc)
                orbOptions.emplace_back(argv[++i]);
            continue;
        }
        if (argument == "--no-wait") {
            wait = false;
            continue;
        }
        if (argument == "--param") {
            if (i + 1 >= argc) {
                *error = "--param needs a value";
                return false;
            }
            parameters.emplace_back(argv[++i]);
            continue;
        }
        if (argument == "--timeout") {
            if (i + 1 >= argc || !isInteger(argv[i + 1], 1, 24L * 3600)) {
                *error = "--timeout needs a number of seconds from 1 to 86400";
                return false;
            }
            timeoutMs = std::strtol(argv[++i], nullptr, 10) * 1000;
            continue;
        }
        const CommandOption* found = nullptr;
        for (const CommandOption& option : commandOptions) {
            if (argument == option.name)
                found = &option;
        }
        if (!found) {
            *error = "unknown argument \"" + argument + "\"";
            return false;
        }
        if (command != Command::None) {
            *error = "one command at a time: \"" + argument + "\" follows another";
            return false;
        }
        if (i + found->operands >= argc) {
            *error = argument + " needs " + std::to_string(found->operands) + " value(s)";
            return false;
        }
        command = found->command;
        // Operands are taken as they stand, so a negative coordinate is no option.
        for (int k = 0; k < found->operands; ++k)
            operands.emplace_back(argv[++i]);
    }
    if (help || version)
        return true;
    if (command == Command::None) {
        *error = "no command given";
        return false;
    }
    if (command == Command::Move) {
        const long limit = std::numeric_limits<int>::max();
        if (!isInteger(operands[1], -limit, limit) || !isInteger(operands[2], -limit, limit)) {
            *error = "--move needs whole numbers for X and Y";
            return false;
        }
    }
    if (command == Command::MenuBar && operands[0] != "on" && operands[0] != "off") {
        *error = "--menubar takes on or off";
        return false;
    }
    if (!parameters.empty() && command != Command::Dialog) {
        *error = "--param belongs to --dialog";
        return false;
    }
    return true;
}

bool GuiClientOptions::waitsForUser() const
{
    switch (command) {
    case Command::Alert:
    case Command::FileSelect:
        return true;
    case Command::Dialog:
    case Command::Image:
    case Command::DataEntry:
        return wait;
    default:
        return false;
    }
}

int GuiClientOptions::exitStatusFor(long code)
{
    if (code >= 0 && code <= 199)
        return int(code);
    return code == -999 ? 200 : 201;
}

std::string GuiClientOptions::usage()
{
    return R"(tz-gui-client: calls the desktop's remote GUI service (Lumaro/local/GUIManager).

Usage: tz-gui-client [-ORBInitRef NameService=corbaname::127.0.0.1:PORT] COMMAND [--timeout S]
       tz-gui-client --help | --version

The naming service comes from -ORBInitRef or the ORBInitRef environment variable, or
is the instrument's (port 2809) when ORVANTH_INSTRUMENT_HOST names the instrument.

Commands that ask the user; the answer code is printed on the first line:
  --alert MSG                       an alert; waits until it is answered
  --dialog TITLE MSG BUTTONS        a dialog; BUTTONS is "label,code|label,code", for
       [--param P]... [--no-wait]   example "Yes,1|No,0"; --param adds a line of text
  --image TITLE MSG FILE BUTTONS    a dialog showing the image FILE
       [--no-wait]
  --data-entry TITLE MSG BUTTONS    a dialog with an entry field; the entered text is
       [--no-wait]                  printed on the second line
  --file-select TITLE ROOTPATH      a file selection under ROOTPATH; the path and the
                                    file name are printed on the second and third line
  With --no-wait the dialog is shown and the call returns at once, with the code of the
  previous answer.

Dialogs and screens:
  --close-dialog NAME               closes the dialog titled NAME
  --close-all                       closes every dialog
  --active NAME                     prints true or false: whether dialog NAME is open
  --dcs                             opens the DCS screen
  --screens                         prints the registered screen names, one a line
  --show SCREEN, --hide SCREEN      SCREEN is a name or "name,extra"
  --move SCREEN X Y                 moves the screen's top-left corner to X, Y
  --size SCREEN Min|Max|Thumb       changes a container's size state
  --save-state FILE                 writes the screen layout to FILE
  --restore-state FILE              applies the screen layout in FILE
  --menubar on|off                  shows or hides the navigation bar

Calls that wait for the user have no time-out unless --timeout S (seconds) bounds
them; the others end after the ORB's call time-out (ORVANTH_CALL_TIMEOUT_MS, 5 s),
or after --timeout S when given.

Exit status:
  0-199  the answer code of a dialog or an alert (0 for other commands that succeed;
         for --active 0 when the dialog is open and 1 when it is not)
  200    the dialog was cancelled (code -999)
  201    an answer code outside 0-199 (it is printed)
  250    a wrong command line
  251    the naming service or the GUI manager cannot be found
  252    the call failed (the desktop went away, ...)
  253    the call did not return within its time-out
)";
}
