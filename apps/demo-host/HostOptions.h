#ifndef HOSTOPTIONS_H
#define HOSTOPTIONS_H

#include "ApplicationOptions.h"

#include <QSize>
#include <QString>
#include <QStringList>

/**
 * The demo host's command line: the library's application options, read by the
 * library's parser, and the host's own "-debug" (diagnostics on from the start),
 * "-quit-after MS" (close the desktop after MS milliseconds), "-first-frame" (stamp the
 * first painted frame on standard output, for the start-up benchmark), "-message-log FILE" (the
 * status bar's messages copied to FILE) and "-answer-dialogs MS" (a test hook: every
 * dialog is answered with its first button MS milliseconds after it opens). Unknown
 * arguments and a malformed value are logged and left out. Without "-systype" the demo
 * is a benchtop.
 */
class HostOptions
{
public:
    /// \a arguments as QCoreApplication::arguments() gives them, program name first.
    explicit HostOptions(const QStringList& arguments);

    /// When the command line asks for --help or --version: prints the answer on standard
    /// output and returns the exit status. Otherwise -1. Needs no display; call it before
    /// the application object exists.
    static int answerHelpOrVersion(int argc, char* argv[]);

    /// Sets the application options as properties of \a application.
    void apply(QCoreApplication* application) const;

    const ApplicationOptions::Parsed& applicationOptions() const { return m_parsed; }
    bool debugOutput() const { return m_debugOutput; }
    /// Milliseconds until the desktop closes itself; negative when it stays open.
    int quitAfterMs() const { return m_quitAfterMs; }
    /// Whether the first painted frame is stamped on standard output.
    bool firstFrameStamp() const { return m_firstFrame; }
    /// The file the status bar's messages are copied to; empty for none.
    QString messageLogFile() const { return m_messageLogFile; }
    /// Milliseconds after which an open dialog is answered by its first button; negative
    /// when dialogs wait for the user.
    int answerDialogsAfterMs() const { return m_answerDialogsAfterMs; }

private:
    ApplicationOptions::Parsed m_parsed;
    bool m_debugOutput = false;
    int m_quitAfterMs = -1;
    bool m_firstFrame = false;
    QString m_messageLogFile;
    int m_answerDialogsAfterMs = -1;
};

#endif
