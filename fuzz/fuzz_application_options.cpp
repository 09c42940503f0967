// The host's command line as the library's application options take it (one argument a
// line): parsed, set on the application object and read back through the typed
// readers; with "-res" and "-grid" both set, a registry is built, which lays its snap
// points over the screen.

#include "FuzzDesktop.h"

#include "ApplicationOptions.h"
#include "GlobalImpl.h"

#include <QCoreApplication>
#include <QDebug>
#include <QRect>
#include <QVariant>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    initializeFuzzApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QStringList arguments{QStringLiteral("tz-fuzz")};
    arguments += QString::fromUtf8(reinterpret_cast<const char*>(data), int(size)).split(QLatin1Char('\n'));
    QCoreApplication* application = QCoreApplication::instance();
    ApplicationOptions::apply(ApplicationOptions::parse(arguments), application);

    ApplicationOptions::systemType();
    ApplicationOptions::screenSize();
    ApplicationOptions::menuBarLocation();
    ApplicationOptions::isPortraitResolution();
    const QSize resolution = ApplicationOptions::resolutionOr(QSize(1280, 800));
    const QSize grid = ApplicationOptions::grid();
    if (ApplicationOptions::resolution().isValid() && grid.isValid()) {
        GlobalImpl registry(nullptr);
        // Every snap point lies on the screen, one per cell.
        const QRect screen(QPoint(0, 0), resolution);
        for (const QPoint& point : registry.gridPoints) {
            if (!screen.contains(point)) {
                qWarning() << "snap point" << point << "off the screen" << resolution;
                std::abort();
            }
        }
        if (!registry.gridPoints.isEmpty() && registry.gridPoints.size() != grid.width() * grid.height()) {
            qWarning() << registry.gridPoints.size() << "snap points for a grid of" << grid;
            std::abort();
        }
    }

    for (const auto& option : ApplicationOptions::table())
        application->setProperty(option.name, QVariant());
    return 0;
}
