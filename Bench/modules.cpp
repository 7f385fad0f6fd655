#include "modules.h"

#include <dlfcn.h>

#include "Host/error.h"

namespace bench {

std::function<void(double, const std::uint8_t*, const std::uint8_t*, std::uint8_t*)> Module::instance(
    std::int32_t width, std::int32_t height) const {
    void* const library = dlopen(file.c_str(), RTLD_NOW);  // to the end of the program
    if (library == nullptr) throw vantle::Error(dlerror());
    const auto construct =
        reinterpret_cast<void* (*)(unsigned width, unsigned height)>(dlsym(library, "f0r_construct"));
    const auto set =
        reinterpret_cast<void (*)(void* made, void* value, int index)>(dlsym(library, "f0r_set_param_value"));
    const auto update =
        reinterpret_cast<void (*)(void* made, double time, const void* from, const void* to, const void* none,
                                  void* out)>(dlsym(library, "f0r_update2"));
    void* const made = construct(static_cast<unsigned>(width), static_cast<unsigned>(height));
    return [=](double position, const std::uint8_t* from, const std::uint8_t* to, std::uint8_t* out) {
        set(made, &position, 0);
        update(made, 0, from, to, nullptr, out);
    };
}

std::vector<Module> allModules() {
    return {
#if __has_include("module_files.inc")  // made with the modules
#include "module_files.inc"
#endif
    };
}

}  // namespace bench
