// memmove for test programs under ThreadSanitizer, unseen when QtCore calls it.
//
// QtCore moves the entries of a thread's posted-event list with memmove, under the list's
// QMutex, which the sanitizer does not see (Qt is not built with it): an event posted from
// another thread while the receiving thread took its events looked like a race, with no
// frame of Qt's named in it to suppress. Preloaded, this definition comes before the
// sanitizer's: a move that QtCore makes goes straight to the C library, and every other
// one to the sanitizer as before.

#include <dlfcn.h>
#include <link.h>

#include <cstdint>
#include <cstring>
#include <utility>

namespace {

using Memmove = void* (*)(void*, const void*, size_t);
using CodeRange = std::pair<std::uintptr_t, std::uintptr_t>;

// Looked up at the first call, when the loader has mapped every library a program needs.
CodeRange qtCoreCode()
{
    CodeRange found{0, 0};
    dl_iterate_phdr(
        [](dl_phdr_info* info, size_t, void* range) {
            if (!info->dlpi_name || !std::strstr(info->dlpi_name, "/libQt5Core.so"))
                return 0;
            for (int i = 0; i < info->dlpi_phnum; ++i) {
                const ElfW(Phdr)& segment = info->dlpi_phdr[i];
                const std::uintptr_t begin = info->dlpi_addr + segment.p_vaddr;
                if (segment.p_type == PT_LOAD && (segment.p_flags & PF_X))
                    *static_cast<CodeRange*>(range) = {begin, begin + segment.p_memsz};
            }
            return 1;
        },
        &found);
    return found;
}

} // namespace

extern "C" void* memmove(void* destination, const void* source, size_t size)
{
    // The sanitizer's, or the C library's in a program built without it.
    static const auto next = reinterpret_cast<Memmove>(dlsym(RTLD_NEXT, "memmove"));
    static void* const libc = dlopen("libc.so.6", RTLD_NOW | RTLD_NOLOAD);
    static const auto plain = libc ? reinterpret_cast<Memmove>(dlsym(libc, "memmove")) : nullptr;
    static const CodeRange qtCore = qtCoreCode();
    const auto caller = reinterpret_cast<std::uintptr_t>(__builtin_return_address(0));
    if (plain && caller >= qtCore.first && caller < qtCore.second)
        return plain(destination, source, size);
    return next(destination, source, size);
}
