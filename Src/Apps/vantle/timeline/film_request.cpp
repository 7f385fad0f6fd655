#include "timeline/film_request.h"

#include <charconv>
#include <cmath>
#include <string_view>

namespace vantle {

std::optional<Fit> parseFit(const std::string& text) {
    if (text == "contain") return Fit::contain;
    if (text == "cover") return Fit::cover;
    if (text == "stretch") return Fit::stretch;
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
