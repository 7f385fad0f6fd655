#include "timeline/time.h"

extern "C" {
#include <libavutil/mathematics.h>
}

#include <charconv>
#include <string_view>

namespace vantle {

namespace {

constexpr std::int64_t most = 10'000'000;  // hours, minutes, seconds or frames

/// Takes the digits at the start of a text away from it, at most `longest` of which count.
std::optional<std::int64_t> takeDigits(std::string_view& text, std::size_t longest) {
    const std::size_t length = std::min(text.find_first_not_of("0123456789"), text.size());
    std::int64_t number = 0;
    const std::string_view digits = text.substr(0, std::min(length, longest));
    if (std::from_chars(digits.data(), digits.data() + digits.size(), number).ec != std::errc()) return {};
    text.remove_prefix(length);
    return number;
}

}  // namespace

std::int64_t Time::frames(AVRational rate) const {
    return inFrames ? av_rescale(value, 1, perUnit) : av_rescale(value, rate.num, perUnit * rate.den);
}

std::int64_t Time::samples(AVRational frameRate, int sampleRate) const {
    return inFrames ? sampleOf(frames(frameRate), frameRate, sampleRate)
                    : av_rescale(value, sampleRate, perUnit);
}

std::optional<Time> parseTime(const std::string& text) {
    constexpr std::size_t finest = 6;  // digits of a fraction
    std::string_view rest = text;
    Time time;
    if (rest.ends_with("ms")) {
        rest.remove_suffix(2);
        time.perUnit = 1000;
    } else if (rest.ends_with('f')) {
        rest.remove_suffix(1);
        time.inFrames = true;
    } else if (rest.ends_with('s')) {
        rest.remove_suffix(1);
    }
    const bool plain = time.perUnit == 1 && !time.inFrames;
    // Hours, minutes and seconds, as many of them as are given.
    for (int parts = 1;; ++parts) {
        const auto number = takeDigits(rest, 8);
        if (!number || *number >= most) return {};
        time.value = time.value * 60 + *number;
        if (!rest.starts_with(':')) break;
        if (parts == 3 || !plain) return {};
        rest.remove_prefix(1);
    }
    if (rest.starts_with('.')) {
        rest.remove_prefix(1);
        const std::string_view digits = rest;
        const auto fraction = takeDigits(rest, finest);
        if (!fraction && !rest.empty()) return {};
        for (std::size_t i = 0; i < std::min(digits.size() - rest.size(), finest); ++i) {
            time.value *= 10;
            time.perUnit *= 10;
        }
        time.value += fraction.value_or(0);
    }
    if (!rest.empty() || (time.inFrames && time.value % time.perUnit != 0)) return {};
    return time;
}

std::int64_t sampleOf(std::int64_t frame, AVRational frameRate, int sampleRate) {
    return av_rescale(frame, static_cast<std::int64_t>(sampleRate) * frameRate.den, frameRate.num);
}

}  // namespace vantle
