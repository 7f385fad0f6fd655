#include "media/palette.h"

#include <utility>
#include <vector>

namespace vantle {

Palettes::Palettes(Size size)
    : filters_(*blankPicture(size, format), {1, 1000},
               {{"split"},
                {"palettegen", {{"stats_mode", "single"}, {"reserve_transparent", "0"}}},
                {"paletteuse", {{"new", "1"}}, {1, 2}}}) {}

av::Frame Palettes::reduced(av::Frame picture) {
    if (!picture) return nullptr;
    const std::int64_t time = picture->pts;
    filters_.push(std::move(picture));
    av::Frame reduced = filters_.pull();
    if (!reduced) throw Error("no palette for a picture");
    reduced->pts = time;
    return reduced;
}

}  // namespace vantle
