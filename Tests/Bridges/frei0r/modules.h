/// The modules for editors, loaded as an editor does it.
#pragma once

#include <dlfcn.h>
#include <frei0r.h>

#include <cctype>
#include <memory>
#include <string>
#include <vector>

#include "frames.h"

namespace tests {

inline std::string moduleName(const vantle::TransitionRow& row) {
    const std::string function = row.function;
    if (function == "TrCrossSplit2") return "vantle_cross_split_2";
    if (function == "TrRoundZoomIn2") return "vantle_round_zoom_in_2";
    if (function == "TrCirqueZoomIn") return "vantle_cirque_zoom_in";
    std::string name = "vantle_";
    for (const char c : std::string_view(row.name)) {
        if (std::isalnum(c))
            name += static_cast<char>(std::tolower(c));
        else if (name.back() != '_')
            name += '_';
    }
    return name;
}

class Module {
   public:
    explicit Module(const vantle::TransitionRow& transition)
        : row(transition),
          name(moduleName(row)),
          library_(dlopen((MODULE_FOLDER "/" + name + ".so").c_str(), RTLD_NOW | RTLD_LOCAL)) {
        if (library_ == nullptr) throw std::runtime_error(dlerror());
        if (init() == 0) throw std::runtime_error(name + " does not start");
    }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;
    ~Module() {
        if (library_ == nullptr) return;
        find<decltype(f0r_deinit)>("f0r_deinit")();
        dlclose(library_);
    }

    template <typename Function>
    Function* find(const char* symbol) const {
        return reinterpret_cast<Function*>(dlsym(library_, symbol));
    }

    const vantle::TransitionRow& row;
    const std::string name;

   private:
    int init() const { return find<decltype(f0r_init)>("f0r_init")(); }

    void* library_;

   public:
    decltype(f0r_construct)* const construct = find<decltype(f0r_construct)>("f0r_construct");
    decltype(f0r_destruct)* const destruct = find<decltype(f0r_destruct)>("f0r_destruct");
    decltype(f0r_set_param_value)* const set = find<decltype(f0r_set_param_value)>("f0r_set_param_value");
    decltype(f0r_get_param_value)* const get = find<decltype(f0r_get_param_value)>("f0r_get_param_value");
    decltype(f0r_update2)* const update = find<decltype(f0r_update2)>("f0r_update2");
};

/// All modules, in the order of the table.
inline const std::vector<std::unique_ptr<Module>>& modules() {
    static const auto loaded = [] {
        std::vector<std::unique_ptr<Module>> all;
        for (const vantle::TransitionRow& row : vantle::transitionRows)
            all.push_back(std::make_unique<Module>(row));
        return all;
    }();
    return loaded;
}

inline const Module& module(const std::string& function) {
    return **std::ranges::find_if(modules(),
                                  [&](const auto& each) { return each->row.function == function; });
}

/// The size of a module's frames, whose rows come from the top one on and have no padding.
struct Size {
    int width, height;
    Geometry geometry() const { return {width, height, 4 * width}; }
    /// The rows of a frame in the opposite order.
    Bytes turned(const Bytes& frame) const {
        Bytes rows;
        const std::ptrdiff_t pitch = 4 * width;
        for (auto end = frame.end(); end != frame.begin(); end -= pitch)
            rows.insert(rows.end(), end - pitch, end);
        return rows;
    }
};

/// An instance with an output of its own, in pages where one byte too far is a fault.
class Instance {
   public:
    Instance(const Module& module, const Size& size, const Bytes& from, const Bytes& to)
        : module_(module),
          size_(from.size()),
          from_(guarded(from, Guard::after, PROT_READ)),
          to_(guarded(to, Guard::before, PROT_READ)),
          out_(guarded(Bytes(size_), Guard::after, PROT_READ | PROT_WRITE)),
          instance_(module.construct(static_cast<unsigned>(size.width), static_cast<unsigned>(size.height))) {
    }
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;
    ~Instance() { module_.destruct(instance_); }

    /// Draws over an output full of `before`.
    Bytes draw(double position, std::uint8_t before = 0xA5) {
        std::fill_n(out_.get(), size_, before);
        redraw(position);
        return {out_.get(), out_.get() + size_};
    }

    void redraw(double position) {
        module_.set(instance_, &position, 0);
        module_.update(instance_, 12.5, words(from_), words(to_), nullptr,
                       reinterpret_cast<uint32_t*>(out_.get()));
    }

    double position() {
        double position = -7;
        module_.get(instance_, &position, 0);
        return position;
    }

   private:
    static const uint32_t* words(const std::shared_ptr<std::uint8_t>& bytes) {
        return reinterpret_cast<const uint32_t*>(bytes.get());
    }

    const Module& module_;
    const std::size_t size_;
    const std::shared_ptr<std::uint8_t> from_, to_, out_;
    const f0r_instance_t instance_;
};

}  // namespace tests
