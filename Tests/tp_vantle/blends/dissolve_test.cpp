#include <dlfcn.h>

#include <cstdlib>
#include <ctime>
#include <new>
#include <numeric>

#include "frames.h"

using namespace tests;

static bool memoryIsShort = false;
static std::vector<long> traffic;  // of arrays: bytes asked for, and 0 for a release

// The library's arrays come from here.
VANTLE_API void* operator new[](std::size_t size) {
    traffic.push_back(static_cast<long>(size));
    if (memoryIsShort) throw std::bad_alloc();
    return ::operator new(size);
}
VANTLE_API void operator delete[](void* array) noexcept {
    if (array != nullptr) traffic.push_back(0);
    ::operator delete(array);
}
VANTLE_API void operator delete[](void* array, std::size_t) noexcept { ::operator delete[](array); }

// An order that cannot be made ends the call before anything is asked about pixels.
VANTLE_API std::uint8_t* DIGetBits(DIImage image) {
    EXPECT_FALSE(memoryIsShort);
    return reinterpret_cast<decltype(&DIGetBits)>(dlsym(RTLD_NEXT, "DIGetBits"))(image);
}

static Scene& dissolved(Scene& scene, double t, double duration = 1) {
    return scene.draw(transition("TrFadeNew"), t * duration, duration);
}

/// The memory places of the pixels that are imgTo's. All others must be imgFrom's.
static std::vector<std::size_t> shown(const Scene& scene) {
    std::vector<std::size_t> places;
    const auto& [width, height, pitch] = scene.geometry;
    for (std::int32_t i = 0; i < width * height; ++i) {
        const std::string source = scene.sourceOf(i / width * pitch + i % width * 4, 4);
        EXPECT_TRUE(source == "t" || source == "f") << i << " is " << source;
        if (source == "t") places.push_back(static_cast<std::size_t>(i));
    }
    return places;
}

// The first N of the pixels shuffled from the end with the remainders of rand(), seeded by the second.
TEST(Dissolve, ShowsTheFirstPixelsOfOneOrderWhateverWasShownBefore) {
    constexpr Geometry g{40, 25, 170};
    std::vector<std::size_t> order(1000);
    Scene scene(g);
    for (std::time_t second = 0; second != std::time(nullptr);) {
        second = std::time(nullptr);
        Scene another({1, 1, 4});
        dissolved(another, 0.5);  // the order of another geometry: this one is drawn anew
        dissolved(scene, 0);
        std::iota(order.begin(), order.end(), 0);
        std::srand(static_cast<unsigned>(second));
        for (int m = 1000; m >= 1; --m)
            std::swap(order[static_cast<std::size_t>(std::rand() % m)],
                      order[static_cast<std::size_t>(m - 1)]);
    }
    std::srand(7);  // the source of random numbers is the host's as well: left alone until a new order is due
    for (const double t : {0.0009, 0.0019, 0.1, 0.9, 0.3, 0.0, 0.5, 0.9999, 1.0}) {
        std::vector<std::size_t> expected(order.begin(), order.begin() + static_cast<int>(1000 * t));
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(shown(dissolved(scene, t, 30)), expected) << t;
        EXPECT_TRUE(scene.row(0).ends_with("|10f"));
    }
    const int next = std::rand();
    EXPECT_EQ((std::srand(7), std::rand()), next);
}

TEST(Dissolve, DrawsANewOrderForAnyOtherGeometry) {
    Scene scene({20, 10, 80});
    dissolved(scene, 0.5);
    for (const Geometry& g :
         {Geometry{20, 10, 100}, {10, 20, 100}, {25, 20, 100}, {0, 20, 100}, {20, 10, 80}}) {
        Scene another(g);
        const auto count = static_cast<std::size_t>(g.width * g.height);
        traffic.clear();
        EXPECT_EQ(shown(dissolved(another, 0.5)).size(), count / 2);
        EXPECT_EQ(traffic, (std::vector{0L, static_cast<long>(4 * count)})) << "replaced";
        EXPECT_EQ(shown(dissolved(another, 1)).size(), count);
    }
}

TEST(Dissolve, HoldsOneArrayAndReplacesItBeforeThePixelsAreRead) {
    using Traffic = std::vector<long>;
    Scene first({20, 10, 80}), second({20, 11, 80}), bad({5, 4, 20});
    const auto trafficOf = [](auto draw) { return traffic.clear(), draw(), std::exchange(traffic, {}); };
    const auto under = [&](const Claim& out, const Claim& to = {}) {
        return trafficOf([&] { bad.drawUnder({out, {}, to}, transition("TrFadeNew")); });
    };
    dissolved(first, 0.5);
    EXPECT_EQ(trafficOf([&] { dissolved(first, 0.7), dissolved(first, 0); }), Traffic{});
    EXPECT_EQ(trafficOf([&] { dissolved(second, 0.5); }), (Traffic{0, 880}));
    memoryIsShort = true;
    EXPECT_EQ(trafficOf([&] { EXPECT_THROW(dissolved(first, 0.5), std::bad_alloc); }), (Traffic{0, 800}));
    EXPECT_EQ(trafficOf([&] { EXPECT_THROW(dissolved(first, 0.5), std::bad_alloc); }), (Traffic{800}));
    EXPECT_TRUE(std::equal(first.before.begin(), first.before.end(), first.buffers[0].get())) << "untouched";
    memoryIsShort = false;
    EXPECT_EQ(trafficOf([&] { EXPECT_EQ(shown(dissolved(first, 0.5)).size(), 100U); }), (Traffic{800}));
    EXPECT_EQ(under({.bits = false}), (Traffic{0, 80}));
    EXPECT_EQ(under({.height = 3, .bitCount = 24}, {.handle = false}), (Traffic{0, 60}));
    for (const Claim& none : {Claim{.handle = false}, {.pitch = 19}, {.height = 1 << 27}})
        EXPECT_EQ(under(none), Traffic{});
}

TEST(Dissolve, CountsByTheProductButShowsAllInTheEnd) {
    Scene part({20, 10, 80}), all({28, 67, 112});
    part.draw(transition("TrFadeNew"), 23, 40);
    EXPECT_EQ(shown(part).size(), 115U) << "200 x (23 / 40) is just below";
    ASSERT_LT(28 * 67 * 0.7 / 0.7, 28 * 67);
    EXPECT_EQ(shown(dissolved(all, 1, 0.7)).size(), 28U * 67U);
}
