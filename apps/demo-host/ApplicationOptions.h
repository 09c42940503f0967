#ifndef APPLICATIONOPTIONS_H
#define APPLICATIONOPTIONS_H

#include <QList>
#include <QPair>
#include <QSize>
#include <QString>
#include <QStringList>

class QCoreApplication;

/**
 * The demo host's command line: the library's application options, each followed by
 * its value ("-res 800x480", "currentLanguage zh_tw"; "-fullscreen", "-animation" and
 * "-notransparency" default to "true" when no "true" or "false" follows), and the
 * host's own "-debug" (diagnostics on from the start) and "-quit-after MS" (close the
 * desktop after MS milliseconds). Malformed "-res"/"-grid" values, missing values and
 * unknown arguments are logged and left out, so they behave as absent options.
 */
class ApplicationOptions
{
public:
    /// \a arguments as QCoreApplication::arguments() gives them, program name first.
    explicit ApplicationOptions(const QStringList& arguments);

    /// Sets the parsed options as properties of \a application.
    void apply(QCoreApplication* application) const;

    /// Option name and value, in command-line order.
    const QList<QPair<QString, QString>>& properties() const { return m_properties; }
    /// The screen size from "-res", 800 by 480 without a valid one.
    QSize resolution() const { return m_resolution; }
    bool debugOutput() const { return m_debugOutput; }
    /// Milliseconds until the desktop closes itself; negative when it stays open.
    int quitAfterMs() const { return m_quitAfterMs; }


private:
    void set(const QString& name, const QString& value);

    QList<QPair<QString, QString>> m_properties;
    QSize m_resolution{800, 480};
    bool m_debugOutput = false;
    int m_quitAfterMs = -1;
};

#endif
