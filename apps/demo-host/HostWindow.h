#ifndef HOSTWINDOW_H
#define HOSTWINDOW_H

#include <QPointer>
#include <QWidget>

#include <memory>

class DemoNavigation;
class DemoScreens;
class DemoStatus;
class DesktopImpl;
class DesktopManagerImpl;
class ScreenStateManager;

/**
 * The demo host's main window ("MainWindow"): a window of the chosen screen size that
 * holds the desktop, a small exit menu sliding in from the left edge and the demo's
 * buttons at the bottom right (save and restore the layout of the screens, open the
 * full-screen module). Closing the window closes the desktop first, which deletes the
 * registry.
 */
class HostWindow : public QWidget
{
    Q_OBJECT

public:
    explicit HostWindow(const QSize& screenSize);
    ~HostWindow() override;

    /// Builds the desktop over this window, its desktop manager and the demo screens,
    /// and registers them with the registry.
    DesktopImpl* buildDesktop();

    /// Copies every message of the status bar to \a fileName as it arrives.
    void copyMessagesTo(const QString& fileName);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildExitMenu();
    void buildDesktopButtons();
    // Serves the remote GUI service when the host has a naming service.
    void serveRemote();

    QPointer<DesktopImpl> m_desktop;
    // The manager has no parent: it outlives the containers, which release their
    // cells as the desktop deletes them.
    std::unique_ptr<DesktopManagerImpl> m_desktopManager;
    std::unique_ptr<DemoScreens> m_screens;
    std::unique_ptr<DemoNavigation> m_navigation;
    QPointer<DemoStatus> m_status;
    QPointer<ScreenStateManager> m_screenStates;
    // The layout "Save layout" stored last; "Restore layout" recalls it.
    QString m_savedLayout;
};

#endif
