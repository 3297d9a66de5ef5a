#include "MediaModule.h"
#include "MediaOperations.h"

#include <cstdio>
#include <cstdlib>

#include <dlfcn.h>

namespace velmora {
namespace {

/// As when a library that is linked in cannot be found: the program is not installed as a whole.
[[noreturn]] void endWithoutMedia() {
    std::fprintf(stderr, "velmora: %s\n", dlerror());
    std::_Exit(127);
}

/// The module stays loaded until the process ends. It is found by the program's run path.
MediaOperations& load() {
    void* const module = dlopen(VELMORA_MEDIA_MODULE, RTLD_LAZY | RTLD_LOCAL);
    if (module == nullptr) {
        endWithoutMedia();
    }
    void* const entry = dlsym(module, "velmoraMediaOperations");
    if (entry == nullptr) {
        endWithoutMedia();
    }
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): a symbol has no type
    return *reinterpret_cast<decltype(&velmoraMediaOperations)>(entry)();
}

} // namespace

MediaOperations& mediaOperations() {
    // NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): there is one module
    static MediaOperations& operations = load();
    return operations;
}

} // namespace velmora
