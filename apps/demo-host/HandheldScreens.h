#ifndef HANDHELDSCREENS_H
#define HANDHELDSCREENS_H

class ContainerBase;

/**
 * A handheld shows one module screen at a time: every container places itself at the
 * same spot there, so the demo's screens would lie on top of each other. A screen that
 * follows this rule hides the other followers on the same desktop when it opens (from
 * the navigation bar, a remote request or a recalled layout). On other system types
 * nothing changes.
 */
class HandheldScreens
{
public:
    HandheldScreens() = delete;

    /// Whether the demo opens \a container at start: on a handheld only the first screen.
    static bool opensAtStart(bool firstScreen);
    /// Makes \a container one of the screens shown one at a time (handheld only).
    static void follow(ContainerBase* container);
};

#endif
