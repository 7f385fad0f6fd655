#include "rendering/film_palette.h"

#include <algorithm>

#include "playing/film_reader.h"
#include "playing/painter.h"

namespace vantle {

Palettized paletteFor(const OpenFilm& open, std::int64_t first, std::int64_t end) {
    constexpr std::int64_t enough = 60;  // frames; more hardly change the palette
    const std::int64_t step = std::max<std::int64_t>((end - first) / enough, 1);
    const Size size = open.film().canvas.size;
    FilmReader reader(open, first, false);
    Painter painter(size, Palettized::format);
    PaletteMaker maker(size);
    std::int64_t time = 0;
    for (std::int64_t frame = first; frame < end; ++frame) {
        const Moment moment = reader.next();
        if ((frame - first) % step != 0) continue;
        av::Frame picture = painter.paint(moment);
        picture->pts = time++;
        maker.add(std::move(picture));
    }
    return {size, maker.palette()};
}

}  // namespace vantle
