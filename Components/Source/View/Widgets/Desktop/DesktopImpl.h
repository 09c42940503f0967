#ifndef DESKTOPIMPL_H
#define DESKTOPIMPL_H

#include "tzuicomponents_export.h"

#include <QFrame>

class QCloseEvent;
class QMouseEvent;

/**
 * The top-level window of the touch interface: a black frame that fills its parent and
 * carries the containers, the navigation bar and the status bar. A right click switches
 * diagnostic output on and off; closing it deletes the registry.
 */
class TZUICOMPONENTS_EXPORT DesktopImpl : public QFrame
{
    Q_OBJECT

public:
    /// Builds the desktop over the whole of \a parent and shows it (full-screen when
    /// the application option "-fullscreen" reads "true").
    explicit DesktopImpl(QWidget* parent);

public slots:
    // Reached through the host's connections: the sender is a button of the host's
    // exit menu, and the menu is that button's parent.
    void toggleExitMenu();
    void shutdownSlot();
    void updateMessageOutput();

protected:
    void closeEvent(QCloseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
};

#endif
