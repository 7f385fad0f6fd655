#include "modules.h"

#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <new>
#include <set>
#include <thread>

using namespace tests;

static std::atomic<int> allocations = 0;
static bool memoryIsShort = false;

// What the modules ask memory of. Inlined, g++ takes their malloc and free for each other's mismatch.
[[gnu::noinline]] VANTLE_API void* operator new(std::size_t size) {
    ++allocations;
    if (memoryIsShort) throw std::bad_alloc();
    if (void* const memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] VANTLE_API void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size);
}
[[gnu::noinline]] VANTLE_API void* operator new[](std::size_t size) { return ::operator new(size); }
[[gnu::noinline]] VANTLE_API void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] VANTLE_API void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
[[gnu::noinline]] VANTLE_API void operator delete[](void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] VANTLE_API void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

static constexpr double infinity = std::numeric_limits<double>::infinity();
static constexpr double positions[] = {0, 0.1, 0.37, 0.5, 0.73, 0.999, 1};
// Multiples of 8 and not; some narrower than anything that is drawn on them.
static constexpr Size sizes[] = {{1, 1}, {2, 3}, {61, 37}, {96, 54}, {131, 90}};

TEST(Modules, AreOneForEachTransitionAndSayWhatTheyAre) {
    std::set<std::string> files, expected, titles;
    for (const auto& file : std::filesystem::directory_iterator(MODULE_FOLDER))
        files.insert(file.path().filename());
    for (const auto& module : modules()) {
        SCOPED_TRACE(module->name);
        expected.insert(module->name + ".so");
        f0r_plugin_info_t info{};
        module->find<decltype(f0r_get_plugin_info)>("f0r_get_plugin_info")(&info);
        titles.insert(info.name);
        if (*module->row.name != '\0') {
            EXPECT_EQ(info.name, "vantle: " + std::string(module->row.name));
        }
        EXPECT_EQ(info.plugin_type, F0R_PLUGIN_TYPE_MIXER2);
        EXPECT_EQ(info.color_model, F0R_COLOR_MODEL_RGBA8888);
        EXPECT_EQ(info.frei0r_version, 1);
        EXPECT_EQ(info.num_params, 1);
        EXPECT_EQ(info.major_version, 1);
        const std::string sentence = info.explanation;
        EXPECT_TRUE(std::isupper(sentence.front()) && sentence.back() == '.') << sentence;
        EXPECT_EQ(sentence.find("family"), std::string::npos) << "has no sentence of its own";
        f0r_param_info_t position{};
        module->find<decltype(f0r_get_param_info)>("f0r_get_param_info")(&position, 0);
        EXPECT_STREQ(position.name, "position");
        EXPECT_EQ(position.type, F0R_PARAM_DOUBLE);
    }
    EXPECT_EQ(files, expected);
    EXPECT_EQ(titles.size(), std::size(vantle::transitionRows));
    EXPECT_TRUE(titles.contains("vantle: Cirque_zoom_in") && titles.contains("vantle: Cross_split_2"));
}

TEST(Modules, ExportTheInterfaceOnlyAndNeedNothingOfTheHost) {
    const auto outputOf = [](const std::string& command) {
        std::string output;
        FILE* const pipe = popen(command.c_str(), "r");
        for (int c = 0; (c = std::fgetc(pipe)) != EOF;) output += static_cast<char>(c);
        pclose(pipe);
        return output;
    };
    EXPECT_EQ(
        outputOf(NM " -D --defined-only " MODULE_FOLDER "/*.so | grep -Ev '^$|\\.so:$| T f0r_[a-z0-9_]+$'"),
        "");
    EXPECT_EQ(outputOf(READELF " -d " MODULE_FOLDER "/*.so | grep -E 'NEEDED.*(Brix|Qelt)|RPATH|RUNPATH'"),
              "");
}

TEST(Modules, DrawWhatThePluginDrawsWithItsRowsTurned) {
    for (const auto& module : modules()) {
        if (module->name == "vantle_dissolve_2") continue;
        for (const Size& size : sizes) {
            Scene scene(size.geometry());
            Instance instance(*module, size, size.turned(scene.from), size.turned(scene.to));
            for (const double position : positions) {
                // A byte 3 that the plug-in leaves alone is the outgoing frame's, at the end the incoming
                // one's.
                scene.before = position < 1 ? scene.from : scene.to;
                scene.draw(transition(module->row.function), position);
                EXPECT_EQ(instance.draw(position), size.turned(scene.out))
                    << module->name << " " << size.width << "x" << size.height << " at " << position;
                EXPECT_EQ(instance.position(), position);
            }
        }
    }
}

TEST(Modules, TreatBytes0To2AlikeSoThatTheirOrderIsTheHosts) {
    constexpr Size size{61, 37};
    const auto permuted = [](Bytes bytes) {
        for (std::size_t i = 0; i < bytes.size(); i += 4)
            std::rotate(&bytes[i], &bytes[i + 1], &bytes[i + 3]);
        return bytes;
    };
    const Bytes from = contentOf(size.geometry(), 0), to = contentOf(size.geometry(), 1);
    for (const auto& module : modules()) {
        Instance plain(*module, size, from, to), another(*module, size, permuted(from), permuted(to));
        for (const double position : positions)
            EXPECT_EQ(another.draw(position), permuted(plain.draw(position)))
                << module->name << " at " << position;
    }
}

TEST(Modules, DrawTheNearestEndForAnyOtherPositionAndNeverAskForMemory) {
    constexpr Size size{61, 37};
    const Bytes from = contentOf(size.geometry(), 0), to = contentOf(size.geometry(), 1);
    for (const auto& module : modules()) {
        SCOPED_TRACE(module->name);
        Instance instance(*module, size, from, to);
        const Bytes first = instance.draw(0), last = instance.draw(1);
        for (const double position : {-0.001, -infinity, std::nan("")})
            EXPECT_EQ(instance.draw(position), first);
        for (const double position : {1.001, 1e300, infinity}) EXPECT_EQ(instance.draw(position), last);
        const int before = allocations;
        for (const double position : positions) instance.redraw(position);
        EXPECT_EQ(allocations, before);
    }
}

TEST(Modules, RefuseSizesThatNoFrameHasAndWhatFindsNoMemory) {
    for (const auto& module : modules()) {
        SCOPED_TRACE(module->name);
        for (const auto& [width, height] : {std::pair{0U, 5U}, {5U, 0U}, {1U << 16, 1U << 13}, {~0U, ~0U}})
            EXPECT_EQ(module->construct(width, height), nullptr) << width << "x" << height;
        memoryIsShort = true;
        const f0r_instance_t none = module->construct(8, 8);
        memoryIsShort = false;
        EXPECT_EQ(none, nullptr);
        // Some hosts go on with it.
        double position = 0.5;
        uint32_t pixel = 0;
        module->set(none, &position, 0);
        module->update(none, 0, &pixel, &pixel, nullptr, &pixel);
        module->destruct(none);
    }
}

TEST(Modules, DissolveInAnOrderThatTheSizeSettles) {
    const Module& dissolve = module("TrFadeNew");
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
    EXPECT_EQ(first.draw(0), from);
    EXPECT_EQ(first.draw(1), to);
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
    std::atomic<int> changed = 0;
    for (const Size& size : {Size{61, 37}, {64, 36}, {61, 37}})
        threads.emplace_back([&changed, size] {
            Scene scene(size.geometry());
            for (const auto& module : modules()) {
                Instance instance(*module, size, size.turned(scene.from), size.turned(scene.to));
                const Bytes once = instance.draw(0.4);
                Instance again(*module, size, size.turned(scene.from), size.turned(scene.to));
                for (const double position : {0.9, 0.4})
                    if (again.draw(position) != once && position == 0.4) ++changed;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(changed, 0);
}
