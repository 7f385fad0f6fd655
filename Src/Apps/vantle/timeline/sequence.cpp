#include "timeline/sequence.h"

#include <charconv>
#include <cmath>
#include <string_view>

namespace vantle {

std::int64_t Time::frames(AVRational rate) const {
    return std::llround(inFrames ? value : value * av_q2d(rate));
}

std::optional<Time> parseTime(const std::string& text) {
    std::string_view rest = text;
    Time time;
    double scale = 1.0;
    if (rest.ends_with("ms")) {
        rest.remove_suffix(2);
        scale = 0.001;
    } else if (rest.ends_with('f')) {
        rest.remove_suffix(1);
        time.inFrames = true;
    } else if (rest.ends_with('s')) {
        rest.remove_suffix(1);
    }
    // Hours, minutes and seconds, as many of them as are given.
    for (int parts = 1;; ++parts) {
        double number = 0.0;
        const auto [end, error] =
            std::from_chars(rest.data(), rest.data() + rest.size(), number, std::chars_format::fixed);
        if (error != std::errc() || !(number >= 0.0 && number < 1e7)) return {};
        time.value = time.value * 60.0 + number * scale;
        rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
        if (rest.empty()) break;
        const bool whole = number == std::floor(number);
        if (rest.front() != ':' || parts == 3 || !whole || scale != 1.0 || time.inFrames) return {};
        rest.remove_prefix(1);
    }
    if (time.inFrames && time.value != std::floor(time.value)) return {};
    return time;
}

std::optional<Fit> parseFit(const std::string& text) {
    if (text == "contain") return Fit::contain;
    if (text == "cover") return Fit::cover;
    if (text == "stretch") return Fit::stretch;
    return {};
}

}  // namespace vantle
