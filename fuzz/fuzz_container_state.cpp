// The screen and state parameters of the remote calls that arrange containers:
// ChangeSize (screen, size name), MoveScreen (screen, x, y), ShowScreen and HideScreen
// ("name" or "name,extra"), in any order and number, applied by the host's receiver.

#include "FuzzDesktop.h"

#include "GUIManagerImpl.h"

#include <QCoreApplication>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <string>

namespace {

// Mostly names and sizes the desktop knows, so that calls reach the containers.
std::string screenName(FuzzedDataProvider& input)
{
    static const char* const known[] = {"Scope", "Power Meter", "Overview", "Launcher", "Scope,front",
                                        "Scope,back", "Power Meter,back", "Overview,front", ""};
    if (input.ConsumeBool())
        return input.PickValueInArray(known);
    return input.ConsumeRandomLengthString(64);
}

std::string sizeName(FuzzedDataProvider& input)
{
    static const char* const known[] = {"Min", "Max", "Thumb", "min", "FullScreen", ""};
    if (input.ConsumeBool())
        return input.PickValueInArray(known);
    return input.ConsumeRandomLengthString(16);
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
    Lumaro::gui::GUIManagerImpl* servant = desktop.servant();
    FuzzedDataProvider input(data, size);
    for (int call = 0; call < 8 && input.remaining_bytes() > 0; ++call) {
        switch (input.ConsumeIntegralInRange<int>(0, 3)) {
        case 0: {
            const std::string screen = screenName(input);
            servant->ChangeSize(screen.c_str(), sizeName(input).c_str());
            break;
        }
        case 1: {
            const std::string screen = screenName(input);
            const auto x = input.ConsumeIntegral<CORBA::Long>();
            servant->MoveScreen(screen.c_str(), x, input.ConsumeIntegral<CORBA::Long>());
            break;
        }
        case 2:
            servant->ShowScreen(screenName(input).c_str());
            break;
        default:
            servant->HideScreen(screenName(input).c_str());
            break;
        }
        if (input.ConsumeBool())
            QCoreApplication::processEvents();
    }
    desktop.settle();
    return 0;
}
