// The modules for editors, loaded as an editor does it.
#include <dlfcn.h>
#include <frei0r.h>

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

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
[[gnu::noinline]] VANTLE_API void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] VANTLE_API void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

static std::string moduleName(const vantle::TransitionRow& row) {
    const std::string function = row.function;
    if (function == "TrCrossSplit2") return "vantle_cross_split_2";
    if (function == "TrRoundZoomIn2") return "vantle_round_zoom_in_2";
    if (function == "TrCirqueZoomIn") return "vantle_cirque_zoom_in";
    std::string name = "vantle_";
    for (const char c : std::string_view(row.name))
        if (std::isalnum(c) || name.back() != '_')
            name += std::isalnum(c) ? static_cast<char>(std::tolower(c)) : '_';
    return name;
}

struct Module {
    Module(const vantle::TransitionRow& transition) : row(transition) {
        if (library == nullptr) throw std::runtime_error(dlerror());
        if (find<decltype(f0r_init)>("f0r_init")() == 0) throw std::runtime_error(name + " does not start");
    }

    template <typename Function>
    Function* find(const char* symbol) const {
        return reinterpret_cast<Function*>(dlsym(library, symbol));
    }

    const vantle::TransitionRow& row;
    const std::string name = moduleName(row);
    void* const library = dlopen((MODULE_FOLDER "/" + name + ".so").c_str(), RTLD_NOW | RTLD_LOCAL);
    decltype(f0r_construct)* const construct = find<decltype(f0r_construct)>("f0r_construct");
    decltype(f0r_destruct)* const destruct = find<decltype(f0r_destruct)>("f0r_destruct");
    decltype(f0r_set_param_value)* const set = find<decltype(f0r_set_param_value)>("f0r_set_param_value");
    decltype(f0r_get_param_value)* const get = find<decltype(f0r_get_param_value)>("f0r_get_param_value");
    decltype(f0r_update2)* const update = find<decltype(f0r_update2)>("f0r_update2");
};

/// All modules, in the order of the table.
static const std::vector<Module>& modules() {
    static const std::vector<Module> loaded(std::begin(vantle::transitionRows),
                                            std::end(vantle::transitionRows));
    return loaded;
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
struct Instance {
    Instance(const Module& shown, const Size& size, const Bytes& fromBytes, const Bytes& toBytes)
        : module(shown),
          from(guarded(fromBytes, Guard::after, PROT_READ)),
          to(guarded(toBytes, Guard::before, PROT_READ)),
          before(fromBytes.size(), 0xA5),
          out(guarded(before, Guard::after, PROT_READ | PROT_WRITE)),
          instance(module.construct(static_cast<unsigned>(size.width), static_cast<unsigned>(size.height))) {}
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;
    ~Instance() { module.destruct(instance); }

    Bytes draw(double position) {
        const auto words = [](auto& bytes) { return reinterpret_cast<uint32_t*>(bytes.get()); };
        std::ranges::copy(before, out.get());
        const int allocated = allocations;
        module.set(instance, &position, 0);
        module.update(instance, 12.5, words(from), words(to), nullptr, words(out));
        EXPECT_EQ(allocations, allocated) << "no frame waits for memory";
        return {out.get(), out.get() + before.size()};
    }

    const Module& module;
    const std::shared_ptr<std::uint8_t> from, to;
    const Bytes before;
    const std::shared_ptr<std::uint8_t> out;
    const f0r_instance_t instance;
};

TEST(Modules, AreOneForEachTransitionAndSayWhatTheyAre) {
    std::set<std::string> files, expected, titles;
    for (const auto& file : std::filesystem::directory_iterator(MODULE_FOLDER))
        files.insert(file.path().filename());
    for (const Module& module : modules()) {
        SCOPED_TRACE(module.name);
        expected.insert(module.name + ".so");
        f0r_plugin_info_t info{};
        module.find<decltype(f0r_get_plugin_info)>("f0r_get_plugin_info")(&info);
        titles.insert(info.name);
        if (*module.row.name != '\0') {
            EXPECT_EQ(info.name, "vantle: " + std::string(module.row.name));
        }
        EXPECT_EQ(info.plugin_type, F0R_PLUGIN_TYPE_MIXER2);
        EXPECT_EQ(info.color_model, F0R_COLOR_MODEL_RGBA8888);
        EXPECT_EQ(std::pair(info.frei0r_version, info.major_version), std::pair(1, 1));
        const std::string sentence = info.explanation;
        EXPECT_TRUE(std::isupper(sentence.front()) && sentence.back() == '.') << sentence;
        EXPECT_EQ(sentence.find("family"), std::string::npos) << "has no sentence of its own";
        f0r_param_info_t position{};
        module.find<decltype(f0r_get_param_info)>("f0r_get_param_info")(&position, info.num_params - 1);
        EXPECT_STREQ(position.name, "position");
        EXPECT_EQ(position.type, F0R_PARAM_DOUBLE);
        std::ifstream declaration(KDENLIVE_FOLDER "/" + module.name + ".xml");
        const std::string xml{std::istreambuf_iterator(declaration), {}};
        for (const std::string& said :
             {"tag=\"frei0r." + module.name + '"', "id=\"frei0r." + module.name + '"', ">" + sentence})
            EXPECT_NE(xml.find(said), std::string::npos) << said;
    }
    EXPECT_EQ(files, expected);
    EXPECT_EQ(titles.size(), std::size(vantle::transitionRows));
    EXPECT_TRUE(titles.contains("vantle: Cirque_zoom_in") && titles.contains("vantle: Cross_split_2"));
    EXPECT_EQ(std::system("! " NM " -D --defined-only " MODULE_FOLDER
                          "/*.so | grep -Ev '^$|\\.so:$| T f0r_[a-z0-9_]+$'"),
              0);
    EXPECT_EQ(
        std::system("! " READELF " -d " MODULE_FOLDER "/*.so | grep -E 'NEEDED.*(Brix|Qelt)|RPATH|RUNPATH'"),
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
        for (const Size& size : {Size{1, 1}, {2, 3}, {61, 37}, {96, 54}, {131, 90}}) {
            Scene scene(size.geometry());
            const Bytes from = size.turned(scene.from), to = size.turned(scene.to);
            Instance instance(module, size, from, to), other(module, size, permuted(from), permuted(to));
            for (const auto& [position, shown] : positions) {
                SCOPED_TRACE(module.name + " " + std::to_string(size.width) + " at " +
                             std::to_string(position));
                const Bytes drawn = instance.draw(position);
                // A byte 3 that the plug-in leaves alone is the outgoing frame's, at the end the incoming
                // one's. The plug-in's dissolve has an order of its own.
                scene.before = shown < 1 ? scene.from : scene.to;
                if (module.name != "vantle_dissolve_2" || shown == 0 || shown == 1) {
                    scene.draw(transition(module.row.function), shown);
                    EXPECT_EQ(drawn, size.turned(scene.out));
                }
                EXPECT_EQ(other.draw(position), permuted(drawn));
                double told = -7;
                module.get(instance.instance, &told, 0);
                EXPECT_TRUE(told == position || std::isnan(position)) << told;
            }
        }
}

TEST(Modules, RefuseSizesThatNoFrameHasAndWhatFindsNoMemory) {
    for (const Module& module : modules()) {
        SCOPED_TRACE(module.name);
        for (const auto& [width, height] : {std::pair{0U, 5U}, {5U, 0U}, {1U << 16, 1U << 13}, {~0U, ~0U}})
            EXPECT_EQ(module.construct(width, height), nullptr) << width << "x" << height;
        memoryIsShort = true;
        const f0r_instance_t none = module.construct(8, 8);
        memoryIsShort = false;
        EXPECT_EQ(none, nullptr);
        // Some hosts go on with it.
        double position = 0.5;
        uint32_t pixel = 0;
        module.set(none, &position, 0);
        module.update(none, 0, &pixel, &pixel, nullptr, &pixel);
        module.destruct(none);
    }
}

TEST(Modules, DissolveInAnOrderThatTheSizeSettles) {
    const Module& dissolve = *std::ranges::find(modules(), "vantle_dissolve_2", &Module::name);
    constexpr Size size{61, 37};
    const Bytes from = filledWith({1, 2, 3, 4}, size.geometry()),
                to = filledWith({5, 6, 7, 8}, size.geometry());
    Instance first(dissolve, size, from, to), another(dissolve, {37, 61}, from, to),
        second(dissolve, size, from, to);
    const auto shown = [](const Bytes& drawn) {
        std::set<std::size_t> places;
        for (std::size_t i = 0; i < drawn.size(); i += 4)
            if (drawn[i] == 5) places.insert(i);
        return places;
    };
    std::set<std::size_t> before;
    for (const double position : {0.1, 0.3, 0.5, 0.7, 0.9}) {
        const std::set<std::size_t> now = shown(first.draw(position));
        EXPECT_EQ(now, shown(second.draw(position))) << position;
        EXPECT_NE(now, shown(another.draw(position))) << position;
        EXPECT_EQ(now.size(), static_cast<std::size_t>(61 * 37 * position));
        EXPECT_TRUE(std::ranges::includes(now, before)) << position;
        before = now;
    }
    // For good: parts of a film may be rendered years apart.
    EXPECT_EQ(shown(first.draw(0.004)),
              (std::set<std::size_t>{1008, 3504, 4588, 5008, 5248, 6244, 6796, 7216, 8804}));
}

TEST(Modules, DrawTheSameInSeveralThreads) {
    std::vector<std::thread> threads;
    for (const Size& size : {Size{61, 37}, {64, 36}, {61, 37}})
        threads.emplace_back([size] {
            const Bytes from = contentOf(size.geometry(), 0), to = contentOf(size.geometry(), 1);
            for (const Module& module : modules()) {
                Instance one(module, size, from, to), another(module, size, from, to);
                const Bytes once = one.draw(0.4);
                another.draw(0.9);
                EXPECT_TRUE(one.draw(0.4) == once && another.draw(0.4) == once) << module.name;
            }
        });
    for (std::thread& thread : threads) thread.join();
}
