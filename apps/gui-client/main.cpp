// tz-gui-client: calls the desktop's remote GUI service from the command line, as an
// engine does. See GuiClientOptions::usage() (--help) for the commands and exit status.

#include "GuiClientCommand.h"
#include "GuiClientOptions.h"

#include "ORB_wrapper_base.h"
#include "OrvanthNames.h"

#include <Orvanth.hh>

#include <chrono>
#include <iostream>

int main(int argc, char* argv[])
{
    GuiClientOptions options;
    std::string error;
    if (!options.parse(argc, argv, &error)) {
        std::cerr << "tz-gui-client: " << error << " (see --help)" << std::endl;
        return GuiClientOptions::UsageError;
    }
    if (options.help) {
        std::cout << GuiClientOptions::usage();
        return 0;
    }
    if (options.version) {
        std::cout << "tz-gui-client " << TZ_VERSION << "\n";
        return 0;
    }

    int status = GuiClientOptions::CallFailed;
    try {
        ORB_wrapper_base naming(options.orbOptions);
        CORBA::Object_var object = naming.ResolveName(Orvanth::Names::GuiManagerPath);
        Lumaro::gui::GUIManager_var manager = Lumaro::gui::GUIManager::_narrow(object);
        if (CORBA::is_nil(manager)) {
            std::cerr << "tz-gui-client: no GUI manager bound under " << Orvanth::Names::GuiManagerPath << std::endl;
            status = GuiClientOptions::NotFound;
        } else {
            if (options.timeoutMs > 0)
                ORB_base::setCallTimeout(manager, std::chrono::milliseconds(options.timeoutMs));
            else if (options.waitsForUser())
                ORB_base::setCallTimeout(manager, ORB_base::NoCallTimeout);
            status = GuiClientCommand(options).run(manager, std::cout, std::cerr);
        }
    } catch (const Orvanth::Connection_errors::Not_Connected& e) {
        std::cerr << "tz-gui-client: " << e.message.in() << std::endl;
        status = GuiClientOptions::NotFound;
    } catch (const CORBA::TIMEOUT&) {
        std::cerr << "tz-gui-client: the call timed out" << std::endl;
        status = GuiClientOptions::TimedOut;
    } catch (const CORBA::Exception& e) {
        std::cerr << "tz-gui-client: the call failed: " << e._name() << std::endl;
        status = GuiClientOptions::CallFailed;
    }
    std::cout.flush();
    ORB_base::destroyProcessOrb();
    return status;
}
