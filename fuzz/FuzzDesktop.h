#ifndef FUZZDESKTOP_H
#define FUZZDESKTOP_H

#include <QPointer>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <memory>

class ContainerImpl;
class DesktopImpl;
class DesktopManagerImpl;
class FSContainer;
class GUIManagerReceiver;
class QWidget;
class ScreenStateManager;
namespace Lumaro { namespace gui { class GUIManagerImpl; } }

/**
 * The desktop a fuzz target feeds its input to, built once per process as a host builds
 * it: application object (offscreen, without DDS), registry, main window and desktop,
 * desktop manager, two containers ("Scope" with a drawer, "Power Meter"), a full-screen
 * container ("Overview"), a launcher button ("Launcher") that opens a third container,
 * the layout store, and the remote GUI servant with its receiver, called directly as
 * the ORB thread would. The library's log lines are dropped unless TZ_FUZZ_LOG is set.
 */
class FuzzDesktop
{
public:
    /// Builds the desktop on the first call; later calls return the same one.
    static FuzzDesktop& instance();

    QWidget* mainWindow() const { return m_window.get(); }
    DesktopImpl* desktop() const { return m_desktop; }
    Lumaro::gui::GUIManagerImpl* servant() const { return m_servant.get(); }

    /// Runs what the input queued (moves, animations) and puts the screens back where
    /// they started, so that each input meets the same desktop.
    void settle();
    /// Whether the desktop paints while the next input is applied. Painting a desktop of
    /// translucent containers costs more than applying most inputs, so the targets
    /// paint one input in eight, chosen by the input itself so that a crash repeats.
    void setPainting(bool painting);
    static bool paints(const std::uint8_t* data, std::size_t size) { return size > 0 && data[0] % 8 == 0; }

private:
    FuzzDesktop();
    ContainerImpl* addContainer(const QString& name, int place);

    std::unique_ptr<QWidget> m_window;
    DesktopImpl* m_desktop = nullptr;
    std::unique_ptr<DesktopManagerImpl> m_desktopManager;
    QPointer<ScreenStateManager> m_screenStates;
    std::unique_ptr<Lumaro::gui::GUIManagerImpl> m_servant;
    QPointer<GUIManagerReceiver> m_receiver;
    QPointer<FSContainer> m_fullScreen;
};

/// Makes the application object a fuzz target needs; call from LLVMFuzzerInitialize.
void initializeFuzzApplication();

#endif
