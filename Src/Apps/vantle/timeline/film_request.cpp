#include "timeline/film_request.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <string_view>

namespace vantle {

const char* nameOf(Fit fit) {
    constexpr const char* names[] = {"contain", "cover", "stretch", "blur"};
    return names[static_cast<std::size_t>(fit)];
}

std::optional<Fit> parseFit(const std::string& text) {
    for (const Fit fit : {Fit::contain, Fit::cover, Fit::stretch, Fit::blur})
        if (text == nameOf(fit)) return fit;
    return {};
}

std::optional<double> parseVolume(const std::string& text) {
    std::string_view number = text;
    const bool decibels = number.ends_with("dB");
    if (decibels) number.remove_suffix(2);
    if (decibels && number.starts_with('+')) number.remove_prefix(1);
    double value = 0.0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error != std::errc() || end != number.data() + number.size()) return {};
    if (decibels) value = std::pow(10.0, value / 20.0);
    constexpr double most = 10.0 + 1e-9;
    return value >= 0.0 && value <= most ? std::optional(value) : std::nullopt;
}

}  // namespace vantle
