#include "timeline/pace.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace vantle {

AVRational paceOf(std::vector<std::int64_t> times, AVRational timeBase) {
    std::ranges::sort(times);
    std::vector<std::int64_t> steps;
    for (std::size_t i = 1; i < times.size(); ++i)
        if (times[i] > times[i - 1]) steps.push_back(times[i] - times[i - 1]);
    if (steps.empty()) return {0, 1};
    const auto middle = steps.begin() + std::ssize(steps) / 2;
    std::ranges::nth_element(steps, middle);
    // The mean is finer than a container's unit of time, and with the steps over missing pictures, which
    // count as several, a camera's jitter falls out of it.
    const std::int64_t median = *middle;
    const std::int64_t near = std::max<std::int64_t>(median / 5, 1);
    double sum = 0.0;
    double count = 0.0;
    for (const std::int64_t step : steps) {
        const std::int64_t multiple = std::max<std::int64_t>((step + median / 2) / median, 1);
        if (std::abs(step - multiple * median) > near) continue;
        sum += static_cast<double>(step);
        count += static_cast<double>(multiple);
    }
    const double unit = av_q2d(timeBase);
    const double rate = count / (sum * unit);
    // Those of television come first: a short clip may be too coarse to tell 30000/1001 from 30.
    constexpr AVRational standards[] = {{24000, 1001}, {30000, 1001}, {60000, 1001}, {120000, 1001}, {24, 1},
                                        {25, 1},       {30, 1},       {48, 1},       {50, 1},        {60, 1},
                                        {15, 1},       {100, 1},      {120, 1},      {240, 1}};
    // Between the first and the last of these pictures, in units of time.
    const auto error = [&](AVRational standard) { return std::abs(count / (av_q2d(standard) * unit) - sum); };
    for (const double most : {1e-6, 1.0})
        for (const AVRational standard : standards)
            if (error(standard) <= most) return standard;
    const AVRational nearest = *std::ranges::min_element(standards, {}, error);
    constexpr double jitter = 0.015;
    if (error(nearest) <= jitter * sum) return nearest;
    constexpr int finest = 1001;
    return av_d2q(rate, finest);
}

}  // namespace vantle
