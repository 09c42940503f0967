#include "ApplicationOrb.h"

#include "ApplicationOptions.h"
#include "ORB_base.h"

#include <QDebug>

#include <mutex>

std::vector<std::string> ApplicationOrb::options()
{
    std::vector<std::string> options;
    const QString initRef = ApplicationOptions::orbInitRef();
    if (!initRef.isEmpty()) {
        options.emplace_back("-ORBInitRef");
        options.emplace_back(initRef.toStdString());
    }
    return options;
}

CORBA::ORB_ptr ApplicationOrb::start()
{
    static std::once_flag sinkInstalled;
    std::call_once(sinkInstalled, [] {
        ORB_base::setDiagnosticSink(
            [](const std::string& line) { qDebug().noquote() << QString::fromStdString(line); });
    });
    return ORB_base::start(options());
}
