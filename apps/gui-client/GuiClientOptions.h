#ifndef GUICLIENTOPTIONS_H
#define GUICLIENTOPTIONS_H

#include <string>
#include <vector>

/**
 * The command line of tz-gui-client: one command of the remote GUI service with its
 * operands, the time-out, and ORB options ("-ORB..." with their value), which are passed
 * on to the ORB.
 */
class GuiClientOptions
{
public:
    enum class Command {
        None,
        Alert,
        Dialog,
        Image,
        DataEntry,
        FileSelect,
        CloseDialog,
        CloseAll,
        IsActive,
        OpenDcs,
        Screens,
        Show,
        Hide,
        Move,
        Size,
        SaveState,
        RestoreState,
        MenuBar,
    };

    /// Exit status when the command line is wrong.
    static constexpr int UsageError = 250;
    /// Exit status when the GUI manager cannot be found.
    static constexpr int NotFound = 251;
    /// Exit status when the call fails.
    static constexpr int CallFailed = 252;
    /// Exit status when the call does not return within --timeout.
    static constexpr int TimedOut = 253;

    Command command = Command::None;
    /// The command's operands, in command-line order.
    std::vector<std::string> operands;
    /// Parameters of a dialog (--param, repeatable).
    std::vector<std::string> parameters;
    /// Whether a dialog call waits for the user (--no-wait clears it).
    bool wait = true;
    /// The call time-out in milliseconds; 0 when none was given.
    long timeoutMs = 0;
    bool help = false;
    bool version = false;
    std::vector<std::string> orbOptions;

    /// Reads \a argv; false with a message in \a error on a bad option or operand.
    bool parse(int argc, char** argv, std::string* error);

    /// Whether the call waits for the user, and so must not have the ORB's default
    /// time-out.
    bool waitsForUser() const;

    /// The exit status for the answer \a code of a dialog: the code itself from 0 to 199,
    /// 200 for a cancel (-999), 201 for any other code.
    static int exitStatusFor(long code);

    /// The --help text.
    static std::string usage();
};

#endif
