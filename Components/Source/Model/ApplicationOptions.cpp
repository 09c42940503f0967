#include "ApplicationOptions.h"

#include "QTZUtil.h"

#include <QCoreApplication>
#include <QDebug>
#include <QVariant>

const QList<ApplicationOptions::Description>& ApplicationOptions::table()
{
    static const QList<Description> options{
        {SystemTypeOption, "-systype", false, "handheld | benchtop", "neither system type"},
        {ResolutionOption, "-res", false, "WIDTHxHEIGHT in pixels", "landscape sizes, no snap points"},
        {ScreenSizeOption, "-size", false, "landscape | small_portrait", "neither"},
        {GridOption, "-grid", false, "ROWSxCOLUMNS", "no snap points"},
        {FullScreenOption, "-fullscreen", true, "true | false", "shown normally"},
        {AnimationOption, "-animation", true, "true | false",
         "resizes animated, openings and the navigation bar not"},
        {NoTransparencyOption, "-notransparency", true, "true | false", "translucent containers"},
        {MenuBarLocationOption, "-menubarlocation", false, "left | top", "neither"},
        {CurrentLanguageOption, "currentLanguage", false, "zh_tw | zh_cn | other", "other languages"},
        {OrbInitRefOption, "-ORBInitRef", false, "NameService=corbaname::HOST:PORT", "not passed on"},
        {StateOption, "state", false, "initializing", "not initialising"},
    };
    return options;
}

const char* ApplicationOptions::name(Option option)
{
    return table().at(int(option)).name;
}

QString ApplicationOptions::text(Option option)
{
    const QCoreApplication* application = QCoreApplication::instance();
    return application ? application->property(name(option)).toString() : QString();
}

namespace {

bool reads(ApplicationOptions::Option option, const char* value)
{
    return ApplicationOptions::text(option) == QLatin1String(value);
}

QSize dimensions(ApplicationOptions::Option option)
{
    int first = 0;
    int second = 0;
    if (!QTZUtil::parseDimensions(ApplicationOptions::text(option), &first, &second))
        return QSize();
    return QSize(first, second);
}

} // namespace

ApplicationOptions::SystemType ApplicationOptions::systemType()
{
    const QString type = text(SystemTypeOption);
    if (type == QLatin1String("handheld"))
        return SystemType::Handheld;
    if (type == QLatin1String("benchtop"))
        return SystemType::Benchtop;
    return SystemType::Unspecified;
}

QSize ApplicationOptions::resolution()
{
    return dimensions(ResolutionOption);
}

QSize ApplicationOptions::resolutionOr(const QSize& fallback)
{
    const QSize size = resolution();
    return size.isValid() ? size : fallback;
}

bool ApplicationOptions::isPortraitResolution()
{
    return reads(ResolutionOption, "480x800");
}

ApplicationOptions::ScreenSize ApplicationOptions::screenSize()
{
    const QString size = text(ScreenSizeOption);
    if (size == QLatin1String("landscape"))
        return ScreenSize::Landscape;
    if (size == QLatin1String("small_portrait"))
        return ScreenSize::SmallPortrait;
    return ScreenSize::Unspecified;
}

QSize ApplicationOptions::grid()
{
    const QSize rowsByColumns = dimensions(GridOption);
    return rowsByColumns.isValid() ? rowsByColumns.transposed() : QSize();
}

bool ApplicationOptions::fullScreen()
{
    return reads(FullScreenOption, "true");
}

bool ApplicationOptions::animationSwitchedOn()
{
    return reads(AnimationOption, "true");
}

bool ApplicationOptions::animationSwitchedOff()
{
    return reads(AnimationOption, "false");
}

bool ApplicationOptions::noTransparency()
{
    return reads(NoTransparencyOption, "true");
}

ApplicationOptions::MenuBarLocation ApplicationOptions::menuBarLocation()
{
    const QString location = text(MenuBarLocationOption);
    if (location == QLatin1String("left"))
        return MenuBarLocation::Left;
    if (location == QLatin1String("top"))
        return MenuBarLocation::Top;
    return MenuBarLocation::Unspecified;
}

bool ApplicationOptions::isChineseLanguage()
{
    return reads(CurrentLanguageOption, "zh_tw") || reads(CurrentLanguageOption, "zh_cn");
}

QString ApplicationOptions::orbInitRef()
{
    return text(OrbInitRefOption);
}

bool ApplicationOptions::isInitializing()
{
    return reads(StateOption, "initializing");
}

ApplicationOptions::Parsed ApplicationOptions::parse(const QStringList& arguments)
{
    Parsed parsed;
    const auto set = [&parsed](const QString& name, const QString& value) {
        const bool dimensional = name == QLatin1String("-res") || name == QLatin1String("-grid");
        int first = 0;
        int second = 0;
        if (dimensional && !QTZUtil::parseDimensions(value, &first, &second)) {
            qDebug() << "UserInterface - ApplicationOptions - ignoring malformed option" << name << value;
            return;
        }
        for (auto& entry : parsed.values) {
            if (entry.first == name) {
                entry.second = value;
                return;
            }
        }
        parsed.values.append({name, value});
    };

    for (int i = 1; i < arguments.size(); ++i) {
        const QString& argument = arguments.at(i);
        const auto described = std::find_if(table().cbegin(), table().cend(), [&](const Description& d) {
            return argument == QLatin1String(d.name);
        });
        if (described == table().cend()) {
            parsed.rest.append(argument);
            continue;
        }
        const bool hasNext = i + 1 < arguments.size();
        const QString next = hasNext ? arguments.at(i + 1) : QString();
        if (described->isSwitch) {
            const bool explicitValue = next == QLatin1String("true") || next == QLatin1String("false");
            set(argument, explicitValue ? arguments.at(++i) : QStringLiteral("true"));
        } else if (hasNext) {
            set(argument, arguments.at(++i));
        } else {
            qDebug() << "UserInterface - ApplicationOptions - option without a value:" << argument;
        }
    }
    return parsed;
}

void ApplicationOptions::apply(const Parsed& parsed, QCoreApplication* application)
{
    for (const auto& entry : parsed.values)
        application->setProperty(entry.first.toUtf8().constData(), entry.second);
}
