#ifndef HOSTOPTIONS_H
#define HOSTOPTIONS_H

#include "ApplicationOptions.h"

#include <QSize>
#include <QStringList>

/**
 * The demo host's command line: the library's application options, read by the
 * library's parser, and the host's own "-debug" (diagnostics on from the start) and
 * "-quit-after MS" (close the desktop after MS milliseconds). Unknown arguments and a
 * malformed delay are logged and left out. Without "-systype" the demo is a benchtop.
 */
class HostOptions
{
public:
    /// \a arguments as QCoreApplication::arguments() gives them, program name first.
    explicit HostOptions(const QStringList& arguments);

    /// Sets the application options as properties of \a application.
    void apply(QCoreApplication* application) const;

    const ApplicationOptions::Parsed& applicationOptions() const { return m_parsed; }
    bool debugOutput() const { return m_debugOutput; }
    /// Milliseconds until the desktop closes itself; negative when it stays open.
    int quitAfterMs() const { return m_quitAfterMs; }

private:
    ApplicationOptions::Parsed m_parsed;
    bool m_debugOutput = false;
    int m_quitAfterMs = -1;
};

#endif
