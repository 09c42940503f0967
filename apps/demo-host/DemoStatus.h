#ifndef DEMOSTATUS_H
#define DEMOSTATUS_H

#include "QTZStatusBar.h"

#include <QObject>
#include <QPointer>

class DesktopImpl;

/**
 * The demo's status bar: at the bottom of the desktop, registered in the registry, with a
 * battery indicator on every system, so the engine simulator's event messages, battery
 * drain and mains changes show as they come. Alerts the bar sends are logged; those held
 * back while the host initialises go out when it is done.
 */
class DemoStatus : public QObject
{
    Q_OBJECT

public:
    /// How long the demo counts as initialising when started with "state initializing".
    static constexpr int InitializingMs = 3000;

    /// Lives on \a desktop, which deletes it together with the bar.
    explicit DemoStatus(DesktopImpl* desktop);

    QTZStatusBar* statusBar() const { return m_statusBar; }

private:
    QPointer<QTZStatusBar> m_statusBar;
};

#endif
