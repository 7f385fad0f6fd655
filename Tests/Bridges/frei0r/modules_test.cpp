// The modules for editors, loaded as an editor does it.
#include <dlfcn.h>
#include <frei0r.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <regex>
#include <set>
#include <string>
#include <thread>

#include "frames.h"

using namespace tests;

static thread_local int allocations = 0;
static thread_local bool memoryIsShort = false;

// What the modules ask memory of. Inlined, g++ takes their malloc and free for each other's mismatch.
[[gnu::noinline]] VANTLE_API void* operator new(std::size_t size) {
    ++allocations;
    void* const memory = memoryIsShort ? nullptr : std::malloc(size);
    return memory != nullptr ? memory : throw std::bad_alloc();
}
VANTLE_API void* operator new(size_t size, const std::nothrow_t&) noexcept { return std::malloc(size); }
[[gnu::noinline]] VANTLE_API void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] VANTLE_API void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

struct Module {
    template <typename Function>
    Function* find(const char* symbol) const {
        return reinterpret_cast<Function*>(dlsym(library, symbol));
    }

    std::string function, file;
    void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    decltype(f0r_construct)* construct = find<decltype(f0r_construct)>("f0r_construct");
    decltype(f0r_destruct)* destruct = find<decltype(f0r_destruct)>("f0r_destruct");
    decltype(f0r_set_param_value)* set = find<decltype(f0r_set_param_value)>("f0r_set_param_value");
    decltype(f0r_get_param_value)* get = find<decltype(f0r_get_param_value)>("f0r_get_param_value");
    decltype(f0r_update2)* update = find<decltype(f0r_update2)>("f0r_update2");
};

static const std::vector<Module>& modules() {
    static const std::vector<Module> loaded = {
#include "module_files.inc"
    };
    return loaded;
}

/// An instance for frames whose rows come from the top one on, with an output of its own, in pages where one
/// byte too far is a fault.
struct Instance {
    Instance(const Module& shown, const Geometry& size, const Bytes& fromBytes, const Bytes& toBytes)
        : module(shown),
          from(guarded(fromBytes, Guard::after, PROT_READ)),
          to(guarded(toBytes, Guard::before, PROT_READ)),
          before(fromBytes.size(), 0xA5),
          out(guarded(before, Guard::after, PROT_READ | PROT_WRITE)),
          instance(module.construct(static_cast<unsigned>(size.width), static_cast<unsigned>(size.height)),
                   module.destruct) {}

    Bytes draw(double position) {
        const auto words = [](auto& bytes) { return reinterpret_cast<uint32_t*>(bytes.get()); };
        std::ranges::copy(before, out.get());
        const int allocated = allocations;
        module.set(instance.get(), &position, 0);
        module.update(instance.get(), 12.5, words(from), words(to), nullptr, words(out));
        EXPECT_EQ(allocations, allocated) << "no frame waits for memory";
        return {out.get(), out.get() + before.size()};
    }

    const Module& module;
    const std::shared_ptr<std::uint8_t> from, to;
    const Bytes before;
    const std::shared_ptr<std::uint8_t> out;
    const std::shared_ptr<void> instance;
};

TEST(Modules, AreOneForEachTransitionAndSayWhatTheyAre) {
    std::set<std::string> files, titles;
    for (const auto& file : std::filesystem::directory_iterator(MODULE_FOLDER))
        files.insert(file.path().stem());
    for (const Module& module : modules()) {
        SCOPED_TRACE(module.function);
        ASSERT_EQ(module.find<decltype(f0r_init)>("f0r_init")(), 1);
        f0r_plugin_info_t info{};
        module.find<decltype(f0r_get_plugin_info)>("f0r_get_plugin_info")(&info);
        EXPECT_EQ(std::pair(info.frei0r_version, info.plugin_type), std::pair(1, F0R_PLUGIN_TYPE_MIXER2));
        EXPECT_EQ(info.color_model, F0R_COLOR_MODEL_RGBA8888);
        EXPECT_EQ(std::strstr(info.explanation, "family"), nullptr) << "has no sentence of its own";
        f0r_param_info_t position{};
        module.find<decltype(f0r_get_param_info)>("f0r_get_param_info")(&position, info.num_params - 1);
        EXPECT_TRUE(position.name == std::string("position") && position.type == F0R_PARAM_DOUBLE);
        // Its file and what Kdenlive knows of it are named after its title.
        titles.insert(info.name);
        std::string name = std::regex_replace(info.name, std::regex("[^A-Za-z0-9]+"), "_");
        std::ranges::transform(name, name.begin(), [](unsigned char c) { return std::tolower(c); });
        EXPECT_EQ(files.erase(name), 1U) << name;
        EXPECT_NE(module.file.find('/' + name + ".so"), std::string::npos);
        std::ifstream declaration(KDENLIVE_FOLDER "/" + name + ".xml");
        const std::string xml{std::istreambuf_iterator(declaration), {}};
        const std::string mixer = "=\"frei0r." + name + '"';
        for (const std::string& said : {"tag" + mixer, "id" + mixer, std::string(">") + info.explanation})
            EXPECT_LT(xml.find(said), xml.size()) << said;
    }
    EXPECT_EQ(files, std::set<std::string>()) << "are no transitions";
    for (const vantle::TransitionRow& row : vantle::transitionRows)
        EXPECT_TRUE(*row.name == '\0' || titles.erase("vantle: " + std::string(row.name)) == 1) << row.name;
    EXPECT_EQ(titles, (std::set<std::string>{"vantle: Cirque_zoom_in", "vantle: Cross_split_2",
                                             "vantle: Round_zoom_in_2"}));
    EXPECT_EQ(std::system("! { " NM " -D --defined-only " MODULE_FOLDER
                          "/*.so | grep -Ev '^$|:$| T f0r_[a-z0-9_]+$'; " READELF " -d " MODULE_FOLDER
                          "/*.so | grep -E 'NEEDED.*(Brix|Qelt)|RPATH|RUNPATH'; } | grep ."),
              0);
}

TEST(Modules, DrawWhatThePluginDrawsWithItsRowsTurnedInWhicheverOrderOfColours) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    // What a host sets and what is drawn.
    const std::pair<double, double> positions[] = {
        {0, 0},        {-0.001, 0},  {-infinity, 0}, {std::nan(""), 0}, {0.1, 0.1}, {0.37, 0.37},
        {0.5, 0.5},    {0.73, 0.73}, {1, 1},         {1.001, 1},        {1e300, 1}, {infinity, 1},
        {0.999, 0.999}};
    const auto permuted = [](Bytes bytes) {
        for (std::size_t i = 0; i < bytes.size(); i += 4)
            std::rotate(&bytes[i], &bytes[i + 1], &bytes[i + 3]);
        return bytes;
    };
    for (const Module& module : modules())
        // Multiples of 8 and not; some narrower than anything that is drawn on them.
        for (const Geometry& size :
             {Geometry{1, 1, 4}, {2, 3, 8}, {61, 37, 244}, {96, 54, 384}, {131, 90, 524}}) {
            Scene scene(size);
            const Bytes from = turnedOver(scene.from, size.pitch), to = turnedOver(scene.to, size.pitch);
            Instance instance(module, size, from, to), recoloured(module, size, permuted(from), permuted(to));
            for (const auto& [position, shown] : positions) {
                SCOPED_TRACE(module.function + " " + std::to_string(size.width) + " at " +
                             std::to_string(position));
                const Bytes drawn = instance.draw(position);
                // A byte 3 that the plug-in leaves alone is the outgoing frame's, at the end the incoming
                // one's. The plug-in's dissolve has an order of its own.
                scene.before = shown < 1 ? scene.from : scene.to;
                if (module.function != "TrFadeNew" || shown == 0 || shown == 1) {
                    scene.draw(transition(module.function), shown);
                    EXPECT_EQ(drawn, turnedOver(scene.out, size.pitch));
                }
                EXPECT_EQ(recoloured.draw(position), permuted(drawn));
            }
            // Each has its own position.
            recoloured.draw(0);
            double told = -7;
            module.get(instance.instance.get(), &told, 0);
            EXPECT_EQ(told, 0.999);
        }
}

TEST(Modules, RefuseSizesThatNoFrameHasAndWhatFindsNoMemory) {
    for (const Module& module : modules()) {
        SCOPED_TRACE(module.function);
        for (const auto& [width, height] : {std::pair{0U, 5U}, {5U, 0U}, {1U << 16, 1U << 13}, {~0U, ~0U}})
            EXPECT_EQ(module.construct(width, height), nullptr) << width << "x" << height;
        memoryIsShort = true;
        const f0r_instance_t none = module.construct(8, 8);
        memoryIsShort = false;
        EXPECT_EQ(none, nullptr);
        // Some hosts go on with it.
        module.set(none, nullptr, 0);
        module.update(none, 0, nullptr, nullptr, nullptr, nullptr);
        module.destruct(none);
    }
}

TEST(Modules, DissolveInAnOrderThatTheSizeSettles) {
    const Module& dissolve = *std::ranges::find(modules(), "TrFadeNew", &Module::function);
    constexpr Geometry size{61, 37, 244};
    const Bytes from = filledWith({1, 2, 3, 4}, size), to = filledWith({5, 6, 7, 8}, size);
    Instance first(dissolve, size, from, to), another(dissolve, {37, 61, 148}, from, to),
        second(dissolve, size, from, to);
    EXPECT_EQ(first.draw(0.5), second.draw(0.5));
    EXPECT_NE(first.draw(0.5), another.draw(0.5));
    // For good: parts of a film may be rendered years apart.
    std::set<std::size_t> shown;
    for (std::size_t i = 0; const std::uint8_t byte : first.draw(0.004))
        if (++i; byte == 5) shown.insert(i - 1);
    EXPECT_EQ(shown, (std::set<std::size_t>{1008, 3504, 4588, 5008, 5248, 6244, 6796, 7216, 8804}));
}

TEST(Modules, DrawTheSameInSeveralThreads) {
    std::vector<std::jthread> threads;
    for (const Geometry& size : {Geometry{61, 37, 244}, {64, 36, 256}, {61, 37, 244}})
        threads.emplace_back([size] {
            const Bytes from = contentOf(size, 0), to = contentOf(size, 1);
            for (const Module& module : modules()) {
                Instance one(module, size, from, to), another(module, size, from, to);
                const Bytes once = one.draw(0.4);
                another.draw(0.9);
                EXPECT_TRUE(one.draw(0.4) == once && another.draw(0.4) == once) << module.function;
            }
        });
}
