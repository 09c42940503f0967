#ifndef MENUENTRYWIRING_H
#define MENUENTRYWIRING_H

#include <QEvent>
#include <QString>
#include <QWidget>

class QObject;
class QPushButton;
class QWidget;
class SubMenuBase;

// How the entries of the navigation bar and its pop-ups reach the screens they open.
// Internal to the library.
namespace MenuEntryWiring {

/// Whether opening \a screen takes the whole display, so that the bar has to close: a
/// full-screen container on the portrait screen, or any screen on a handheld.
bool opensFullScreen(const QObject* screen);

/// A tap on \a entry shows \a screen (and raises it when \a raise is set).
void showOnClick(QPushButton* entry, QWidget* screen, bool raise);

/// \a entry's dynamic property "screenSize" follows the size state that \a screen
/// announces ("Min", "Max", "Thumb"), for style sheets and for whoever watches the
/// entry. Screens that are no container announce nothing.
void followScreenSize(QPushButton* entry, QWidget* screen);

/// Wires what a tap on \a entry, an entry of a pop-up, does. With \a screen: shows it,
/// and closes the bar when the screen fills the display (as the options say at the
/// tap), or else raises it and, when \a screenClosesSubMenu is set, closes \a subMenu;
/// the entry follows the screen's size and goes with the screen. Without a screen:
/// closes the bar on a handheld, \a subMenu elsewhere.
void wirePopUpEntry(QPushButton* entry, QWidget* screen, SubMenuBase* subMenu, bool screenClosesSubMenu);

/// Connects \a entry's clicked() to \a slot (a slot signature as SLOT() gives it) of
/// \a receiver; logs a slot that \a receiver does not have.
void connectReceiver(QPushButton* entry, QObject* receiver, const QString& slot);

/// Closes the registry's navigation bar when it is open.
void closeNavigationBar();

/// The text an entry shows for \a label: translated in \a context unless the label
/// is not Latin-1 (then as it is), with " " and \a instNum after it when above 1.
QString entryText(const char* context, const QString& label, int instNum);

/// Delivers \a event to \a entry, a pop-up's entry, through \a toButton (which hands it
/// to QPushButton::event()). A QPushButton lays out its margins through its style when it
/// is made and again on each style change; under a style sheet that computes the sheet's
/// rules for it. An entry is therefore made without a parent and then put under its
/// pop-up, and the style change that brings is held back (\a owed) until the entry is
/// first polished, which a closed pop-up leaves until it opens.
template <class ToButton>
bool deliverEntryEvent(const QWidget* entry, QEvent* event, bool& owed, ToButton toButton)
{
    if (event->type() == QEvent::StyleChange && !entry->testAttribute(Qt::WA_WState_Polished)) {
        owed = true;
        return true;
    }
    const bool handled = toButton(event);
    if (event->type() == QEvent::Polish && owed) {
        owed = false;
        QEvent change(QEvent::StyleChange);
        toButton(&change);
    }
    return handled;
}

} // namespace MenuEntryWiring

#endif
