// The layout text a remote engine gives RestoreState, applied to a desktop with two
// containers, a full-screen container and a launcher; then the layout stored from the
// result, which must be read back without a complaint.

#include "FuzzDesktop.h"

#include "GUIManagerImpl.h"

#include <QDebug>

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    FuzzDesktop::instance();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzDesktop& desktop = FuzzDesktop::instance();
    // A CORBA string ends at its first NUL.
    const std::string text(reinterpret_cast<const char*>(data), size);
    desktop.servant()->RestoreState(text.c_str());
    desktop.settle();

    CORBA::String_var stored = desktop.servant()->SaveState();
    desktop.servant()->RestoreState(stored.in());
    desktop.settle();
    CORBA::String_var again = desktop.servant()->SaveState();
    // What the desktop stores, it restores to the same arrangement.
    if (std::string(stored.in()) != std::string(again.in())) {
        qWarning().noquote() << "stored:" << stored.in() << "\nafter restoring it:" << again.in();
        std::abort();
    }
    return 0;
}
