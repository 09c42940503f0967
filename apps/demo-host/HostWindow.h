#ifndef HOSTWINDOW_H
#define HOSTWINDOW_H

#include <QPointer>
#include <QWidget>

class DesktopImpl;

/**
 * The demo host's main window ("MainWindow"): a window of the chosen screen size that
 * holds the desktop and a small exit menu sliding in from the left edge. Closing the
 * window closes the desktop first, which deletes the registry.
 */
class HostWindow : public QWidget
{
    Q_OBJECT

public:
    explicit HostWindow(const QSize& screenSize);

    /// Builds the desktop over this window and registers both with the registry.
    DesktopImpl* buildDesktop();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildExitMenu();

    QPointer<DesktopImpl> m_desktop;
};

#endif
