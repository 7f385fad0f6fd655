#include "Host/fades.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vantle {

namespace {

enum class By : std::uint8_t { black, white };

/// A row of pixels as far between two others as `share` of 65536 says; exactly one of them at either end.
void mixRow(std::uint8_t* out, const std::uint8_t* from, const std::uint8_t* to, std::size_t bytes,
            std::uint32_t share) {
    constexpr std::uint32_t whole = 1 << 16;
    for (std::size_t i = 0; i < bytes; ++i)
        out[i] = static_cast<std::uint8_t>((from[i] * (whole - share) + to[i] * share + whole / 2) >> 16);
}

std::uint32_t shareOf(double part) {
    return static_cast<std::uint32_t>(std::lround(std::clamp(part, 0.0, 1.0) * 65536.0));
}

/// Rows of an image, or of one colour.
class Rows {
   public:
    explicit Rows(DIImage image) : first_(DIGetBits(image)), pitch_(DIGetPitch(image)) {}

    Rows(By colour, std::size_t bytes) : plain_(bytes, colour == By::black ? 0 : 255) {
        for (std::size_t alpha = 3; alpha < bytes; alpha += 4) plain_[alpha] = 255;
        first_ = plain_.data();
    }

    const std::uint8_t* at(std::ptrdiff_t row) const { return first_ + row * pitch_; }

   private:
    std::vector<std::uint8_t> plain_{};
    const std::uint8_t* first_ = nullptr;
    std::ptrdiff_t pitch_ = 0;
};

std::size_t bytesOf(DIImage image) { return static_cast<std::size_t>(DIGetWidth(image)) * 4; }

void mix(DIImage out, const Rows& from, const Rows& to, double part) {
    const std::ptrdiff_t pitch = DIGetPitch(out);
    for (std::ptrdiff_t row = 0; row < DIGetHeight(out); ++row)
        mixRow(DIGetBits(out) + row * pitch, from.at(row), to.at(row), bytesOf(out), shareOf(part));
}

double partOf(const TransParam& param) {
    return param.dDuration > 0.0 ? param.dPosition / param.dDuration : 0.0;
}

void fade(DIImage out, DIImage from, DIImage to, const TransParam* param) {
    mix(out, Rows(from), Rows(to), partOf(*param));
}

template <By colour>
void fadeBy(DIImage out, DIImage from, DIImage to, const TransParam* param) {
    const double part = 2.0 * partOf(*param);
    const Rows plain(colour, bytesOf(out));
    if (part < 1.0)
        mix(out, Rows(from), plain, part);
    else
        mix(out, plain, Rows(to), part - 1.0);
}

}  // namespace

std::span<const Transition> fades() {
    static const std::array<Transition, 3> all{{
        {{}, "fade", "fade", "fades", {}, "The outgoing picture fades into the incoming one.", fade},
        {{}, "fade-black", "fade-black", "fades", {}, "Down to black, and up from it.", fadeBy<By::black>},
        {{}, "fade-white", "fade-white", "fades", {}, "Up to white, and down from it.", fadeBy<By::white>},
    }};
    return all;
}

void drawDimmed(DIImage out, DIImage picture, double light) {
    mix(out, Rows(By::black, bytesOf(out)), Rows(picture), light);
}

}  // namespace vantle
