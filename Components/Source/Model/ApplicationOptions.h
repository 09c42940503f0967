#ifndef APPLICATIONOPTIONS_H
#define APPLICATIONOPTIONS_H

#include "tzuicomponents_export.h"

#include <QList>
#include <QPair>
#include <QSize>
#include <QString>
#include <QStringList>

class QCoreApplication;

/**
 * The application options: properties the host sets on the application object before it
 * builds the library's objects, normally from its command line. The library reads them
 * here, typed, and never writes them; an option that is absent or malformed reads as its
 * default (the "absent" column of table()).
 *
 * Hosts parse their command line with parse() and set the result with apply().
 */
class TZUICOMPONENTS_EXPORT ApplicationOptions
{
public:
    enum Option {
        SystemTypeOption,
        ResolutionOption,
        ScreenSizeOption,
        GridOption,
        FullScreenOption,
        AnimationOption,
        NoTransparencyOption,
        MenuBarLocationOption,
        CurrentLanguageOption,
        OrbInitRefOption,
        StateOption,
    };

    /// One row of the option table.
    struct Description
    {
        Option option;
        const char* name;   ///< the property name, as on the command line: "-res"
        bool isSwitch;      ///< "true" when given without a value
        const char* values; ///< what the library compares against, for help texts
        const char* absent; ///< what an absent option means
    };

    /// Every option the library reads, in a fixed order.
    static const QList<Description>& table();
    /// The property name of \a option ("-systype", "currentLanguage", ...).
    static const char* name(Option option);
    /// The option's text as set, empty when absent.
    static QString text(Option option);

    enum class SystemType { Unspecified, Handheld, Benchtop };
    enum class ScreenSize { Unspecified, Landscape, SmallPortrait };
    enum class MenuBarLocation { Unspecified, Left, Top };

    /// "-systype": "handheld" or "benchtop"; anything else is neither.
    static SystemType systemType();
    static bool isHandheld() { return systemType() == SystemType::Handheld; }
    static bool isBenchtop() { return systemType() == SystemType::Benchtop; }

    /// "-res" as a size, or an invalid size when absent or malformed.
    static QSize resolution();
    /// "-res", or \a fallback when absent or malformed.
    static QSize resolutionOr(const QSize& fallback);
    /// "-res" reads "480x800": the portrait layout.
    static bool isPortraitResolution();

    /// "-size": "landscape" or "small_portrait"; anything else is neither.
    static ScreenSize screenSize();

    /// "-grid" as rows and columns (width = columns, height = rows), or an invalid size.
    static QSize grid();

    /// "-fullscreen" reads "true".
    static bool fullScreen();
    /// "-animation" reads "true": opening animations run only then.
    static bool animationSwitchedOn();
    /// "-animation" reads "false": resize animations run unless then.
    static bool animationSwitchedOff();
    /// "-notransparency" reads "true".
    static bool noTransparency();
    /// "-menubarlocation": "left" or "top"; anything else is neither.
    static MenuBarLocation menuBarLocation();
    /// "currentLanguage" reads "zh_tw" or "zh_cn".
    static bool isChineseLanguage();
    /// "-ORBInitRef", empty when absent.
    static QString orbInitRef();
    /// "state" reads "initializing".
    static bool isInitializing();

    /// A parsed command line: the options in command-line order (a repeated option once,
    /// with its last value), and the arguments that are no application option.
    struct Parsed
    {
        QList<QPair<QString, QString>> values;
        QStringList rest;
    };

    /**
     * Reads the application options from \a arguments (program name first, as
     * QCoreApplication::arguments() gives them). Each value option takes the next
     * argument; a switch takes a following "true" or "false" and is "true" without one.
     * A value option without a value, and a malformed "-res" or "-grid", are logged and
     * left out, so they read as absent.
     */
    static Parsed parse(const QStringList& arguments);
    /// Sets \a parsed as properties of \a application.
    static void apply(const Parsed& parsed, QCoreApplication* application);
};

#endif
