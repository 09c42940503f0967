// tz-test-guihost: a desktop that serves the remote GUI service and nothing more, for the
// tests that need the service in a process of its own. Its arguments are application
// options ("-ORBInitRef NameService=..."); every log line goes to standard output, and
// SIGTERM closes the desktop as a user does.

#include "ApplicationOptions.h"
#include "DesktopImpl.h"
#include "GUIManagerReceiver.h"
#include "GlobalImpl.h"
#include "QTZMessageOutputControl.h"

#include <QApplication>
#include <QTimer>

#include <csignal>
#include <cstdio>

namespace {

volatile std::sig_atomic_t terminating = 0;

void logToStandardOutput(QtMsgType, const QMessageLogContext&, const QString& message)
{
    std::fprintf(stdout, "%s\n", message.toUtf8().constData());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    ApplicationOptions::apply(ApplicationOptions::parse(app.arguments()), &app);
    GlobalImpl::getInstance();
    QTZMessageOutputControl::m_output = true;
    qInstallMessageHandler(&logToStandardOutput);

    QWidget window;
    window.resize(800, 480);
    auto* desktop = new DesktopImpl(&window);
    GlobalImpl::getInstance()->setDesktop(desktop);
    window.show();

    // Looked at from a timer, which also runs while a dialog waits for its answer; set up
    // before the service announces itself.
    std::signal(SIGTERM, [](int) { terminating = 1; });
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [desktop] {
        if (terminating && desktop->close())
            QCoreApplication::quit();
    });
    watch.start(20);
    GUIManagerReceiver::serve(desktop);
    return app.exec();
}
