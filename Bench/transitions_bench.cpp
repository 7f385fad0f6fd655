// What each transition costs, in milliseconds per frame and in copies: how many times as long as copying
// the frame it takes. A copy is timed before every drawing, so that a busy machine slows both down alike,
// and the median of the ratios is kept.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "Host/image.h"
#include "Host/plugin.h"

namespace {

constexpr double positions[] = {0.1, 0.25, 0.505, 0.75, 0.9};
// Of drawing alone, at one position: the whole takes 10 to 20 times that.
constexpr double secondsPerBenchmark = 0.1;

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

template <typename Work>
double secondsFor(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    benchmark::ClobberMemory();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
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

void run(benchmark::State& state, TransFunc* draw, const Size& size) {
    static std::map<std::int32_t, Frames> framesByHeight;
    const Frames& frames = framesByHeight.try_emplace(size.height, size).first->second;
    std::vector<double> ratios;
    std::size_t input = 0;
    for ([[maybe_unused]] auto _ : state) {
        double copying = 0, drawing = 0;
        for (const double position : positions) {
            TransParam param{};
            param.dDuration = 1.0;
            param.dPosition = position;
            copying += secondsFor([&] { frames.copy(input); });
            drawing += secondsFor(
                [&] { draw(frames.out.get(), frames.inputs[0].get(), frames.inputs[1].get(), &param); });
            input = 1 - input;
        }
        ratios.push_back(drawing / copying);
        state.SetIterationTime(drawing / std::size(positions));
    }
    state.counters["copies"] = median(std::move(ratios));
}

/// One line per transition and size; at the end, for each size, the median of all its transitions.
class Table : public benchmark::BenchmarkReporter {
   public:
    bool ReportContext(const Context&) override {
        print("transition", "ms/frame", "copies");
        return true;
    }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            const std::string& name = run.run_name.function_name;
            const double copies = run.counters.at("copies");
            print(name + " " + run.aggregate_name, fixed(run.GetAdjustedRealTime(), 3), fixed(copies, 2));
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

    static void print(const std::string& name, const std::string& time, const std::string& copies) {
        std::printf("%-40s %10s %8s\n", name.c_str(), time.c_str(), copies.c_str());
        std::fflush(stdout);
    }

    std::map<std::string, std::vector<double>> copiesBySize_;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    const vantle::Plugin plugin(PLUGIN_PATH);
    for (const Size& size : sizes)
        for (const vantle::Transition& transition : plugin.transitions())
            if (transition.draw != nullptr)
                benchmark::RegisterBenchmark(
                    (transition.function + "/" + size.text()).c_str(),
                    [draw = transition.draw, size](benchmark::State& state) { run(state, draw, size); })
                    ->UseManualTime()
                    ->MinTime(secondsPerBenchmark)
                    ->Unit(benchmark::kMillisecond);
    Table table;
    benchmark::RunSpecifiedBenchmarks(&table);
}
