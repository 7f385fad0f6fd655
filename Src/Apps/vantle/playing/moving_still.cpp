#include "playing/moving_still.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "media/convert.h"
#include "media/filters.h"

namespace vantle {

namespace {

constexpr std::size_t channels = 4;
constexpr PictureFormat packed{AV_PIX_FMT_BGRA, AVCOL_SPC_RGB, AVCOL_RANGE_JPEG};

/// A picture of an input, brought onto a canvas in one go.
av::Frame drawn(const Canvas& canvas, const Input& input, const AVFrame& picture) {
    std::vector<Filter> filters = filtersOnto(canvas, input, picture);
    filters.push_back({"scale", {{"flags", "full_chroma_int+full_chroma_inp+accurate_rnd"}}});
    filters.push_back({"format", {{"pix_fmts", "bgra"}}});
    Filters graph(picture, input.timeBase(), filters);
    graph.push(av::share(picture));
    av::Frame result = graph.pull();
    if (!result) throw Error(input.name() + ": a picture cannot be brought to the canvas");
    result->colorspace = packed.space;
    result->color_range = packed.range;
    return result;
}

/// Mitchell and Netravali's filter: as sharp between pixels as on them, so that details do not flicker while
/// they move.
float mitchell(double distance) {
    const double x = std::abs(distance);
    if (x < 1.0) return static_cast<float>((7.0 * x * x * x - 12.0 * x * x + 16.0 / 3.0) / 6.0);
    if (x >= 2.0) return 0.0F;
    return static_cast<float>((-7.0 / 3.0 * x * x * x + 12.0 * x * x - 20.0 * x + 32.0 / 3.0) / 6.0);
}

}  // namespace

MovingStill::MovingStill(const Canvas& canvas, const Input& input, const AVFrame& picture,
                         const Motion& motion)
    : box_(boxOf(input.shownSize(picture), canvas)),
      motion_(motion),
      beside_(blankPicture(canvas.size, packed)) {
    // Large enough that the closest view loses none of the canvas's pixels.
    const double closest = std::min(motion.from.size, motion.to.size);
    const auto enlarged = [&](int length) {
        return std::max(static_cast<int>(std::lround(length / closest)), 4);
    };
    const Size size{enlarged(box_.size.width), enlarged(box_.size.height)};
    still_ = drawn({size, canvas.rate, canvas.fit == Fit::cover ? Fit::cover : Fit::stretch}, input, picture);
    row_.resize(channels * static_cast<std::size_t>(size.width));
    if (canvas.fit == Fit::blur) {
        beside_ = drawn(canvas, input, picture);
        return;
    }
    constexpr std::array<std::uint8_t, channels> black{0, 0, 0, 255};
    for (int y = 0; y < canvas.size.height; ++y)
        for (int x = 0; x < canvas.size.width; ++x)
            std::ranges::copy(black, beside_->data[0] +
                                         static_cast<std::ptrdiff_t>(y) * beside_->linesize[0] +
                                         channels * static_cast<std::size_t>(x));
}

std::vector<MovingStill::Tap> MovingStill::taps(int length, int stillLength, double begin, double size) {
    const double step = size * stillLength / length;
    std::vector<Tap> taps;
    for (int i = 0; i < length; ++i) {
        const double place = begin * stillLength + (i + 0.5) * step - 0.5;
        // At the edges the last pixel stands for those that would lie outside.
        const int wanted = static_cast<int>(std::floor(place)) - 1;
        Tap tap{std::clamp(wanted, 0, stillLength - 4), {}};
        for (int k = wanted; k < wanted + 4; ++k)
            tap.weights[std::clamp(k, tap.first, tap.first + 3) - tap.first] += mitchell(k - place);
        taps.push_back(tap);
    }
    return taps;
}

av::Frame MovingStill::at(double position) {
    const View view = motion_.at(position);
    const std::vector<Tap> across = taps(box_.size.width, still_->width, view.left, view.size);
    const std::vector<Tap> down = taps(box_.size.height, still_->height, view.top, view.size);
    const std::size_t begin = channels * static_cast<std::size_t>(across.front().first);
    const std::size_t end = channels * static_cast<std::size_t>(across.back().first + 4);
    av::Frame canvas = blankPicture({beside_->width, beside_->height}, packed);
    if (box_.size != Size{beside_->width, beside_->height})
        av::check(av_frame_copy(canvas.get(), beside_.get()), "frame");
    for (int y = 0; y < box_.size.height; ++y) {
        const auto& [first, weights] = down[static_cast<std::size_t>(y)];
        std::array<const std::uint8_t*, 4> lines{};
        for (int k = 0; k < 4; ++k)
            lines[static_cast<std::size_t>(k)] =
                still_->data[0] + static_cast<std::ptrdiff_t>(first + k) * still_->linesize[0];
        float* const row = row_.data();
        for (std::size_t i = begin; i < end; ++i)
            row[i] = weights[0] * lines[0][i] + weights[1] * lines[1][i] + weights[2] * lines[2][i] +
                     weights[3] * lines[3][i];
        std::uint8_t* out = canvas->data[0] + static_cast<std::ptrdiff_t>(box_.y + y) * canvas->linesize[0] +
                            channels * static_cast<std::size_t>(box_.x);
        for (const Tap& tap : across) {
            const float* const pixels = row + channels * static_cast<std::size_t>(tap.first);
            for (std::size_t c = 0; c < channels; ++c) {
                const float sum = tap.weights[0] * pixels[c] + tap.weights[1] * pixels[c + channels] +
                                  tap.weights[2] * pixels[c + 2 * channels] +
                                  tap.weights[3] * pixels[c + 3 * channels];
                out[c] = static_cast<std::uint8_t>(std::clamp(sum + 0.5F, 0.0F, 255.0F));
            }
            out += channels;
        }
    }
    return canvas;
}

}  // namespace vantle
