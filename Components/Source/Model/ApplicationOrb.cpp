#include "ApplicationOrb.h"

#include "ORB_base.h"

#include <QCoreApplication>
#include <QVariant>

std::vector<std::string> ApplicationOrb::arguments()
{
    std::vector<std::string> argv{"PlaceHolder"};
    if (const QCoreApplication* application = QCoreApplication::instance()) {
        const QString initRef = application->property("-ORBInitRef").toString();
        if (!initRef.isEmpty()) {
            argv.emplace_back("-ORBInitRef");
            argv.emplace_back(initRef.toStdString());
        }
    }
    return argv;
}

CORBA::ORB_ptr ApplicationOrb::start()
{
    return ORB_base::processOrb(arguments());
}
