// The layout text a remote engine gives RestoreState, applied to a desktop with two
// containers, a full-screen container and a launcher; then the layout stored from the
// result, which must be read back to the same arrangement.

#include "FuzzDesktop.h"

#include "GUIManagerImpl.h"

#include <QDebug>
#include <QDomDocument>
#include <QMap>
#include <QMultiMap>
#include <QStringList>

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

// The arrangement a stored layout describes: its screens by name, each with its place,
// state and rank in the stacking order. The stored z_index counts hidden containers
// too, which a restore moves below the ones it raises, so only the order is compared.
QString arrangement(const char* text)
{
    QDomDocument document;
    document.setContent(QString::fromUtf8(text));
    QMap<QString, QStringList> screens;
    QMultiMap<int, QString> stacking;
    for (QDomElement screen = document.documentElement().firstChildElement(QStringLiteral("screen")); !screen.isNull();
         screen = screen.nextSiblingElement(QStringLiteral("screen"))) {
        const QString name = screen.attribute(QStringLiteral("name"));
        QStringList values;
        for (const char* attribute : {"pos", "state", "min_geometry", "visible"})
            values << screen.attribute(QLatin1String(attribute));
        screens.insert(name, values);
        stacking.insert(screen.attribute(QStringLiteral("z_index")).toInt(), name);
    }
    QStringList lines;
    for (auto screen = screens.cbegin(); screen != screens.cend(); ++screen)
        lines << screen.key() + QLatin1Char(' ') + screen.value().join(QLatin1Char(' '));
    lines << QStringLiteral("stacked: ") + stacking.values().join(QLatin1Char('|'));
    return lines.join(QLatin1Char('\n'));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    FuzzDesktop::instance();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzDesktop& desktop = FuzzDesktop::instance();
    desktop.setPainting(FuzzDesktop::paints(data, size));
    // A CORBA string ends at its first NUL.
    const std::string text(reinterpret_cast<const char*>(data), size);
    desktop.servant()->RestoreState(text.c_str());
    desktop.settle();

    CORBA::String_var stored = desktop.servant()->SaveState();
    desktop.servant()->RestoreState(stored.in());
    desktop.settle();
    CORBA::String_var again = desktop.servant()->SaveState();
    // What the desktop stores, it restores to the same arrangement.
    if (arrangement(stored.in()) != arrangement(again.in())) {
        qWarning().noquote() << "stored:" << stored.in() << "\nafter restoring it:" << again.in();
        std::abort();
    }
    return 0;
}
