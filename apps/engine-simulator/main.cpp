// tz-engine-simulator: plays the instrument's engines for the demo desktop and the tests.
// See SimulatorOptions::usage() (--help) for what it does and how it is steered.

#include "SimulatedEngine.h"
#include "SimulatorOptions.h"

#include "DDS_BaseObj.h"
#include "StopSignals.h"
#include "ORB_base.h"

#include <csignal>
#include <iostream>
#include <memory>

int main(int argc, char* argv[])
{
    // SIGUSR1: the highest module goes or comes back at once.
    const Orvanth::StopSignals stopSignals({SIGUSR1});

    SimulatorOptions options;
    std::string error;
    if (!options.parse(argc, argv, &error)) {
        std::cerr << "tz-engine-simulator: " << error << "\n\n" << SimulatorOptions::usage();
        return 2;
    }
    if (options.help) {
        std::cout << SimulatorOptions::usage();
        return 0;
    }
    if (options.version) {
        std::cout << "tz-engine-simulator " << TZ_VERSION << "\n";
        return 0;
    }

    int status = 0;
    {
        std::unique_ptr<SimulatedEngine> engine;
        try {
            // The one start of the process ORB; everything after it takes the running ORB.
            ORB_base::start(options.orbOptions);
            engine = std::make_unique<SimulatedEngine>(options);
            engine->start();
        } catch (const Orvanth::Connection_errors::Not_Connected& e) {
            std::cerr << "tz-engine-simulator: " << e.message.in() << std::endl;
            status = 2;
        } catch (const CORBA::Exception& e) {
            std::cerr << "tz-engine-simulator: cannot serve: " << e._name() << std::endl;
            status = 2;
        }
        if (status == 0) {
            std::cout << "READY" << std::endl;
            while (!Orvanth::StopSignals::isStop(stopSignals.wait()))
                engine->churnModuleNow();
            std::cout << "STOPPING" << std::endl;
            engine->stop();
        }
    }
    ORB_base::destroyProcessOrb();
    Orvanth::DDS_BaseObj::shutdownDds();
    return status;
}
