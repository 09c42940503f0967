#include "ApplicationOrb.h"

#include "ApplicationOptions.h"
#include "ORB_base.h"


std::vector<std::string> ApplicationOrb::arguments()
{
    std::vector<std::string> argv{"PlaceHolder"};
    const QString initRef = ApplicationOptions::orbInitRef();
    if (!initRef.isEmpty()) {
        argv.emplace_back("-ORBInitRef");
        argv.emplace_back(initRef.toStdString());
    }
    return argv;
}

CORBA::ORB_ptr ApplicationOrb::start()
{
    return ORB_base::processOrb(arguments());
}
