#include "media/palette.h"

#include <utility>

namespace vantle {

namespace {

constexpr AVRational milliseconds{1, 1000};

}  // namespace

PaletteMaker::PaletteMaker(Size size)
    : filters_(*blankPicture(size, Palettized::format), milliseconds, {{"palettegen"}}) {}

av::Frame PaletteMaker::palette() {
    filters_.close(0);
    av::Frame palette = filters_.pull();
    if (!palette) throw Error("no palette for these pictures");
    return palette;
}

Palettized::Palettized(Size size, av::Frame palette)
    : filters_({blankPicture(size, format).get(), palette.get()}, milliseconds,
               {{"paletteuse", {{"diff_mode", "rectangle"}}, {0, 1}}}) {
    palette->pts = 0;
    filters_.push(std::move(palette), 1);
    filters_.close(0, 1);
}

av::Frame Palettized::reduced(av::Frame picture) {
    if (!picture) return nullptr;
    const std::int64_t time = picture->pts;
    filters_.push(std::move(picture));
    av::Frame reduced = filters_.pull();
    if (!reduced) throw Error("no palette for a picture");
    reduced->pts = time;
    return reduced;
}

}  // namespace vantle
