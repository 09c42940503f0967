// The demo host: reads the application options from its command line, builds the
// registry and the desktop at the chosen screen size, and runs until the desktop closes.
//   tz-demo-host [-res 800x480] [-grid 2x4] [-systype handheld|benchtop] [-fullscreen]
//                [-ORBInitRef NameService=corbaname::127.0.0.1:PORT] [-debug] [-quit-after MS] ...
// tz-demo-host --help lists every option.

#include "ApplicationOptions.h"
#include "DesktopImpl.h"
#include "DialogAnswerer.h"
#include "FirstFrameStamp.h"
#include "HostOptions.h"
#include "GlobalImpl.h"
#include "HostWindow.h"
#include "LanguageSwitch.h"
#include "QTZMessageOutputControl.h"
#include "StopSignalNotifier.h"

#include <QApplication>
#include <QDebug>
#include <QPixmapCache>
#include <QTimer>

int main(int argc, char* argv[])
{
    // Answered before QApplication, which needs a display.
    const int informed = HostOptions::answerHelpOrVersion(argc, argv);
    if (informed >= 0)
        return informed;

    QApplication app(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(TZ_VERSION));
    // Each dialog parses its own style sheets into icons of its own, and Qt keeps their
    // renderings in the pixmap cache after the dialog is gone until the cache is full.
    // What the desktop paints at once fits in far less than the default 10 MB.
    QPixmapCache::setCacheLimit(2048);

    // Option problems are reported before the registry takes over the diagnostic
    // output, so they are seen whatever the switch says.
    const HostOptions options(app.arguments());
    options.apply(&app);
    QTZMessageOutputControl::m_output = options.debugOutput();

    GlobalImpl* registry = GlobalImpl::getInstance();
    // The demo's own texts in the language of "currentLanguage", beside the library's.
    registry->languageSwitch()->addCatalog(QStringLiteral("tz-demo-host"), QStringLiteral(":/translations"));
    for (const auto& property : options.applicationOptions().values)
        qDebug() << "UserInterface - Demo host - option" << property.first << property.second;

    HostWindow window(ApplicationOptions::resolutionOr(QSize(800, 480)));
    DesktopImpl* desktop = window.buildDesktop();
    if (!options.messageLogFile().isEmpty())
        window.copyMessagesTo(options.messageLogFile());
    if (options.answerDialogsAfterMs() >= 0)
        new DialogAnswerer(desktop, options.answerDialogsAfterMs());
    qDebug() << "UserInterface - Demo host - desktop" << window.size() << "snap points" << registry->gridPoints.size();
    if (options.firstFrameStamp())
        new FirstFrameStamp(&window);
    if (ApplicationOptions::fullScreen())
        window.showFullScreen();
    else
        window.show();

    // A stop from outside (run-demo, a closing terminal) closes as the exit button does.
    StopSignalNotifier stopSignals;
    QObject::connect(&stopSignals, &StopSignalNotifier::stopRequested, &app, &QCoreApplication::quit);

    if (options.quitAfterMs() >= 0)
        QTimer::singleShot(options.quitAfterMs(), &window, &QWidget::close);

    const int code = app.exec();
    // After the exit button the window is still open: closing it takes the desktop and
    // the registry with it, as a close by the user does.
    if (window.isVisible())
        window.close();
    qDebug() << "UserInterface - Demo host - exit" << code;
    return code;
}
