#ifndef ORVANTH_ORVANTHNAMES_H
#define ORVANTH_ORVANTHNAMES_H

/**
 * Where the engines and the user interface meet: the naming-service paths the engines
 * bind and the DDS topics they publish. The library, the engine simulator and the
 * tests all take the names from here.
 */
namespace Orvanth {
namespace Names {

/// Naming context with one binding per engine GUI module, named by its decimal index.
constexpr const char GuiAbleContext[] = "Lumaro/local/GUI_ABLE";
/// The engines' lock manager.
constexpr const char LockerPath[] = "Lumaro/local/Locker";
/// The user interface's remote GUI manager.
constexpr const char GuiManagerPath[] = "Lumaro/local/GUIManager";

/// Module announcements: "create,<index>" or "destroy,<index>".
constexpr const char GuiAbleTopic[] = "Lumaro/local/GUI_ABLE";
/// Event messages for the status bar and the message log.
constexpr const char EventTopic[] = "Lumaro/local/EVTMSG";
/// Whether mains power is present.
constexpr const char ExternalVoltageTopic[] = "Lumaro/local/ExternalVoltage";
/// Battery readings; the first entry's value is the charge in percent.
constexpr const char BatteryTopic[] = "Lumaro/local/SYSTEM/1/BATTERYSTATUS1";

} // namespace Names
} // namespace Orvanth

#endif
