#ifndef DEMOWIDGETS_H
#define DEMOWIDGETS_H

class ContainerImpl;
class DesktopImpl;

/**
 * The demo's engine controls: a module screen with push buttons bound to the engine
 * simulator's action RUNACTION1 through module discovery, one in the standard and one in
 * the critical look. The padlock shows while the engine's own locker holds the action
 * (tz-engine-simulator --lock-toggle SECONDS).
 */
class DemoWidgets
{
public:
    DemoWidgets() = delete;

    /// Builds the screen on \a desktop, which owns it, registers it as "Engine Controls"
    /// and shows it (on a handheld it opens from the navigation bar). The buttons bind
    /// once module discovery has found an engine.
    static ContainerImpl* addTo(DesktopImpl* desktop);
};

#endif
