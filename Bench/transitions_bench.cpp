// What each transition costs, in milliseconds of a thread per frame and in copies: how many times as long as
// copying the frame it takes, on average and where it takes longest. A copy is timed before every drawing, so
// that a busy machine slows both down alike, and the median of the ratios is kept. With --against PLUGIN
// another build of the plug-in draws the same frames, in turn, and a last column tells how many times as long
// as that one this one takes. With --modules it is told of the modules for other editors and the plug-in,
// whose own copies are another column.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Host/image.h"
#include "Host/plugin.h"
#include "modules.h"

namespace {

constexpr double positions[] = {0.1, 0.25, 0.505, 0.75, 0.9};
// Of drawing alone, a frame of all that are drawn: the whole takes 50 to 100 times that.
constexpr double secondsPerBenchmark = 0.02;

struct Size {
    std::int32_t width, height;
    std::string text() const { return std::to_string(width) + "x" + std::to_string(height); }
};
constexpr Size sizes[] = {{1920, 1080}, {3840, 2160}};

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Seconds that this thread has run.
double threadTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

template <typename Work>
double secondsFor(Work work) {
    const double start = threadTime();
    work();
    benchmark::ClobberMemory();
    return threadTime() - start;
}

vantle::Image noise(const Size& size, std::uint32_t seed) {
    vantle::Image image = vantle::makeImage(size.width, size.height);
    std::uint8_t* const bits = DIGetBits(image.get());
    const std::int32_t bytes = DIGetPitch(image.get()) * size.height;
    for (std::int32_t i = 0; i < bytes; ++i)
        bits[i] = static_cast<std::uint8_t>((seed = seed * 1664525 + 1013904223) >> 24);
    return image;
}

/// The frames of one size; the same for all transitions.
struct Frames {
    explicit Frames(const Size& size) : out(noise(size, 0)), inputs{noise(size, 1), noise(size, 2)} {}

    /// Copies either input, as a transition reads both.
    void copy(std::size_t input) const {
        const DIImage source = inputs[input].get();
        const auto bytes =
            static_cast<std::size_t>(DIGetPitch(source)) * static_cast<std::size_t>(DIGetHeight(source));
        std::memcpy(DIGetBits(out.get()), DIGetBits(source), bytes);
    }

    vantle::Image out;
    vantle::Image inputs[2];
};

/// Draws a frame at a position 0 to 1.
using Draw = std::function<void(const Frames& frames, double position)>;

Draw drawing(TransFunc* transition) {
    return [transition](const Frames& frames, double position) {
        TransParam param{};
        param.dDuration = 1.0;
        param.dPosition = position;
        transition(frames.out.get(), frames.inputs[0].get(), frames.inputs[1].get(), &param);
    };
}

Draw drawing(const bench::Module& module, const Size& size) {
    return [instance = module.instance(size.width, size.height)](const Frames& frames, double position) {
        instance(position, DIGetBits(frames.inputs[0].get()), DIGetBits(frames.inputs[1].get()),
                 DIGetBits(frames.out.get()));
    };
}

/// How many copies each of some drawings takes, by position and all together.
struct Ratios {
    std::vector<double> atPosition[std::size(positions)], means;
};

/// Draws at all positions with one transition, some frames at each as in a film. The first is not counted:
/// what another has left in the cache is not its own. Returns the seconds per frame.
double drawAll(Ratios& ratios, const Draw& draw, const Frames& frames) {
    constexpr std::size_t framesAtEach = 2;
    double copying = 0.0, drawing = 0.0;
    for (std::size_t i = 0; i < std::size(positions); ++i) {
        double copies = 0.0, drawings = 0.0;
        for (std::size_t frame = 0; frame <= framesAtEach; ++frame) {
            const double copy = secondsFor([&] { frames.copy(frame % 2); });
            const double drawn = secondsFor([&] { draw(frames, positions[i]); });
            if (frame == 0) continue;
            copies += copy;
            drawings += drawn;
        }
        ratios.atPosition[i].push_back(drawings / copies);
        copying += copies;
        drawing += drawings;
    }
    ratios.means.push_back(drawing / copying);
    return drawing / (framesAtEach * std::size(positions));
}

/// Draws with one transition, or with two in turn.
void run(benchmark::State& state, const std::vector<Draw>& contenders, const Size& size) {
    static std::map<std::int32_t, Frames> framesByHeight;
    const Frames& frames = framesByHeight.try_emplace(size.height, size).first->second;
    std::vector<Ratios> ratios(contenders.size());
    std::vector<double> against;
    std::size_t turn = 0;
    for ([[maybe_unused]] auto _ : state) {
        double seconds[2] = {};
        ++turn;
        for (std::size_t i = 0; i < contenders.size(); ++i) {
            const std::size_t which = (i + turn) % contenders.size();
            seconds[which] = drawAll(ratios[which], contenders[which], frames);
        }
        against.push_back(seconds[0] / seconds[1]);
        state.SetIterationTime(seconds[0]);
    }
    double highest = 0.0;
    for (const std::vector<double>& copies : ratios[0].atPosition)
        highest = std::max(highest, median(copies));
    state.counters["copies"] = median(ratios[0].means);
    state.counters["highest"] = highest;
    if (contenders.size() < 2) return;
    state.counters["other"] = median(ratios[1].means);
    state.counters["against"] = median(std::move(against));
}

/// One line per transition and size; at the end, for each size, the median of all its transitions.
class Table : public benchmark::BenchmarkReporter {
   public:
    bool ReportContext(const Context&) override {
        print("transition", "ms/frame", "copies", "highest", "other's", "against");
        return true;
    }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            const std::string& name = run.run_name.function_name;
            const double copies = run.counters.at("copies");
            const auto counter = [&](const char* wanted, int decimals) {
                const auto found = run.counters.find(wanted);
                return found != run.counters.end() ? fixed(found->second, decimals) : "";
            };
            print(name + " " + run.aggregate_name, fixed(run.GetAdjustedRealTime(), 3), fixed(copies, 2),
                  counter("highest", 2), counter("other", 2), counter("against", 3));
            if (run.run_type == Run::RT_Iteration)
                copiesBySize_[name.substr(name.find('/') + 1)].push_back(copies);
        }
    }

    void Finalize() override {
        for (const auto& [size, copies] : copiesBySize_)
            print("median at " + size, "", fixed(median(copies), 2));
    }

   private:
    static std::string fixed(double value, int decimals) {
        char text[32];
        std::snprintf(text, sizeof text, "%.*f", decimals, value);
        return text;
    }

    static void print(const std::string& name, const std::string& time, const std::string& copies,
                      const std::string& highest = {}, const std::string& other = {},
                      const std::string& against = {}) {
        std::printf("%-40s %10s %8s %8s %8s %8s\n", name.c_str(), time.c_str(), copies.c_str(),
                    highest.c_str(), other.c_str(), against.c_str());
        std::fflush(stdout);
    }

    std::map<std::string, std::vector<double>> copiesBySize_;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    const bool compares = argc == 3 && argv[1] == std::string_view("--against");
    const bool bridges = argc == 2 && argv[1] == std::string_view("--modules");
    if (!compares && !bridges && benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    const vantle::Plugin plugin(PLUGIN_PATH);
    std::optional<vantle::Plugin> other;
    if (compares) other.emplace(argv[2]);
    const std::vector<bench::Module> modules = bridges ? bench::allModules() : std::vector<bench::Module>();
    for (const Size& size : sizes)
        for (const vantle::Transition& transition : plugin.transitions()) {
            std::vector<Draw> contenders{drawing(transition.draw)};
            if (other)
                for (const vantle::Transition& same : other->transitions())
                    if (same.function == transition.function) contenders.push_back(drawing(same.draw));
            for (const bench::Module& module : modules)
                if (module.function == transition.function)
                    contenders.insert(contenders.begin(), drawing(module, size));
            if (transition.draw != nullptr)
                benchmark::RegisterBenchmark(
                    (transition.function + "/" + size.text()).c_str(),
                    [contenders, size](benchmark::State& state) { run(state, contenders, size); })
                    ->UseManualTime()
                    ->MinTime(secondsPerBenchmark)
                    ->Unit(benchmark::kMillisecond);
        }
    Table table;
    benchmark::RunSpecifiedBenchmarks(&table);
}
