#include "timeline/fade_curve.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace vantle {

std::optional<FadeCurve> parseFadeCurve(const std::string& text) {
    constexpr std::pair<const char*, FadeCurve> names[] = {
        {"qsin", FadeCurve::qsin}, {"tri", FadeCurve::tri}, {"hsin", FadeCurve::hsin},
        {"squ", FadeCurve::squ},   {"exp", FadeCurve::exp}, {"log", FadeCurve::log}};
    for (const auto& [name, curve] : names)
        if (text == name) return curve;
    return {};
}

double gainAt(FadeCurve curve, double position) {
    if (position <= 0.0 || position >= 1.0) return position <= 0.0 ? 0.0 : 1.0;
    constexpr double decibelsOfExp = -100.0;  // where it sets in
    switch (curve) {
        case FadeCurve::qsin:
            return std::sin(position * std::numbers::pi / 2);
        case FadeCurve::tri:
            return position;
        case FadeCurve::hsin:
            return (1.0 - std::cos(position * std::numbers::pi)) / 2;
        case FadeCurve::squ:
            return std::sqrt(position);
        case FadeCurve::exp:
            return std::pow(10.0, decibelsOfExp / 20.0 * (1.0 - position));
        case FadeCurve::log:
            return std::max(1.0 + 0.2 * std::log10(position), 0.0);
    }
    return position;
}

}  // namespace vantle
