#ifndef DEMOSCREENS_H
#define DEMOSCREENS_H

#include "ContainerBase.h"
#include "FSContainer.h"

#include <QList>
#include <QPointer>

class DesktopImpl;
class QWidget;

/**
 * The demo's module screens: a few standard containers with simple contents, placed by
 * the desktop manager when they are first shown, one full-screen container that a
 * button on the desktop opens, and the device control screen that engines open. Each
 * screen is registered in the registry's screen table. A handheld opens the first
 * screen only and shows one at a time.
 */
class DemoScreens
{
public:
    explicit DemoScreens(DesktopImpl* desktop);

    /// The standard containers, in the order they were opened.
    const QList<QPointer<ContainerBase>>& containers() const { return m_containers; }
    FSContainer* fullScreen() const { return m_fullScreen; }

private:
    void addContainer(const QString& title, int instance, QWidget* contents);
    void addFullScreen();
    // The system screen "DCS", which the remote OpenDCS shows.
    void addDeviceControl();

    DesktopImpl* m_desktop;
    QList<QPointer<ContainerBase>> m_containers;
    QPointer<FSContainer> m_fullScreen;
};

#endif
