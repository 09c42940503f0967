// tz-example-engine: the skeleton of an engine process. It serves one GUI module under
// Lumaro/local/GUI_ABLE/<index> with one lockable action attribute, announces the module
// over DDS so that the desktop's module discovery finds it, and asks the user through
// the desktop's GUI-manager service whether to run the action. It stops on SIGTERM or
// SIGINT and takes its module away again.
//   tz-example-engine [--index N] [--attribute NAME] [--no-wait]
//                     [-ORBInitRef NameService=corbaname::127.0.0.1:PORT]

#include "AttributeServant.h"
#include "EngineServer.h"
#include "GuiAbleServant.h"
#include "LockManagerServant.h"
#include "StopSignals.h"
#include "TopicPublisher.h"

#include "DDS_BaseObj.h"
#include "OrvanthNames.h"

#include <GUIManager.hh>
#include <OrvanthTopicsPubSubTypes.h>

#include <atomic>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace Orvanth;

namespace {

using StringTopic = TopicPublisher<TKWW_DDS::ATTR_STRINGPubSubType>;
using VoidTopic = TopicPublisher<TKWW_DDS::ATTR_VOIDPubSubType>;

struct Options
{
    int index = 50;
    std::string attribute = "EXAMPLEACTION1";
    bool wait = true;
    std::vector<std::string> orbOptions;
};

Options parse(int argc, char* argv[])
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--index" && i + 1 < argc)
            options.index = std::atoi(argv[++i]);
        else if (argument == "--attribute" && i + 1 < argc)
            options.attribute = argv[++i];
        else if (argument == "--no-wait")
            options.wait = false;
        else
            options.orbOptions.push_back(argument); // -ORBInitRef and its value
    }
    return options;
}

void say(const std::string& line)
{
    std::cout << line << std::endl;
}

// A publisher of \a topic, or none when DDS does not run (ORVANTH_DDS_DISABLE=1): the
// module is then found only by a discovery that searches the naming service.
template <class Topic>
std::unique_ptr<Topic> publisher(const std::string& topic)
{
    try {
        return std::make_unique<Topic>(topic);
    } catch (const Connection_errors::Not_Connected& e) {
        say(std::string("no DDS: ") + e.message.in());
        return nullptr;
    }
}

void announce(StringTopic* moduleTopic, const std::string& what, int index)
{
    if (!moduleTopic)
        return;
    TKWW_DDS::ATTR_STRING sample;
    sample.value(what + "," + std::to_string(index));
    moduleTopic->publish(sample);
}

// Asks the desktop whether to run the action; with \a wait the call returns the code of
// the button the user pressed, so it must not be bounded by the ORB's call time-out.
long askUser(EngineServer& orb, const std::string& attribute, bool wait)
{
    CORBA::Object_var object = orb.ResolveName(Names::GuiManagerPath);
    Lumaro::gui::GUIManager_var manager = Lumaro::gui::GUIManager::_narrow(object);
    if (CORBA::is_nil(manager)) {
        say("no desktop: nothing bound under " + std::string(Names::GuiManagerPath));
        return -1;
    }
    if (wait)
        ORB_base::setCallTimeout(manager, ORB_base::NoCallTimeout);
    const std::string message = "The example engine serves " + attribute + ". Run it now?";
    return manager->DisplayDialog("Example engine", message.c_str(), "Run,1|Later,0", wait);
}

} // namespace

int main(int argc, char* argv[])
{
    // Before any ORB or DDS thread exists, so that only the main thread sees the signals.
    const StopSignals stopSignals;
    const Options options = parse(argc, argv);
    const std::string modulePath = std::string(Names::GuiAbleContext) + "/" + std::to_string(options.index);
    int status = 0;

    try {
        ORB_base::start(options.orbOptions);
        EngineServer orb;

        // The attribute: engines publish a void sample on its lock topic whenever its
        // holder changes, and the desktop's widgets show the lock from it.
        const std::string dataTopic = "Lumaro/local/ATTR/" + options.attribute;
        const std::string lockTopic = "Lumaro/local/LOCK/" + options.attribute;
        std::unique_ptr<VoidTopic> lockNotices = publisher<VoidTopic>(lockTopic);
        std::unique_ptr<StringTopic> moduleTopic = publisher<StringTopic>(Names::GuiAbleTopic);

        auto* action = new VoidAttributeServant(options.attribute, dataTopic, lockTopic);
        action->setActionObserver([&options] { say("ACTION " + options.attribute); });
        VoidTopic* notices = lockNotices.get();
        action->setLockObserver([action, notices] {
            say(std::string("LOCK ") + (action->isLocked() ? "held" : "free"));
            if (notices)
                notices->publish(TKWW_DDS::ATTR_VOID());
        });

        // The lockers of the desktop need a lock manager; serve one unless an engine does.
        LockManagerServant* lockManager = nullptr;
        CORBA::Object_var existing = orb.ResolveName(Names::LockerPath);
        if (CORBA::is_nil(existing)) {
            lockManager = new LockManagerServant;
            CORBA::Object_var served = orb.serve(Names::LockerPath, lockManager);
        }

        auto* module = new GuiAbleServant;
        {
            CORBA::Object_var attributeObject = orb.activate(action);
            EngineReadingBase_var reading = EngineReadingBase::_narrow(attributeObject);
            module->addAttribute(options.attribute, reading);
            CORBA::Object_var moduleObject = orb.serve(modulePath, module);
        }
        announce(moduleTopic.get(), "create", options.index);
        say("READY " + modulePath);

        // The question waits for the user: on a thread of its own, so that a stop
        // request is still heard meanwhile.
        std::atomic<bool> answered{false};
        std::thread question([&] {
            try {
                const long code = askUser(orb, options.attribute, options.wait);
                say("ANSWER " + std::to_string(code));
                if (options.wait && code == 1)
                    action->Set(LockerID()); // the user said run: the engine does
            } catch (const CORBA::Exception& e) {
                say(std::string("the dialog failed: ") + e._name());
            }
            answered = true;
        });

        stopSignals.wait();
        say("STOPPING");
        announce(moduleTopic.get(), "destroy", options.index);
        if (moduleTopic)
            moduleTopic->waitForAcknowledgments(std::chrono::seconds(1));
        orb.withdraw(modulePath, module);
        orb.deactivate(action);
        if (lockManager)
            orb.withdraw(Names::LockerPath, lockManager);
        module->_remove_ref();
        action->_remove_ref();
        if (lockManager)
            lockManager->_remove_ref();
        if (!answered) {
            // A call that waits for the user cannot be called off, and the ORB does not
            // end while it runs: the process ends without it. The dialog stays on the
            // desktop until someone answers it.
            say("the dialog is still open on the desktop; leaving without its answer");
            moduleTopic.reset();
            lockNotices.reset();
            DDS_BaseObj::shutdownDds();
            std::_Exit(0);
        }
        question.join();
    } catch (const Connection_errors::Not_Connected& e) {
        std::cerr << "tz-example-engine: " << e.message.in() << std::endl;
        status = 2;
    } catch (const CORBA::Exception& e) {
        std::cerr << "tz-example-engine: " << e._name() << std::endl;
        status = 2;
    }
    ORB_base::destroyProcessOrb();
    DDS_BaseObj::shutdownDds();
    return status;
}
