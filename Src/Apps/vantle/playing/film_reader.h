/// The pictures of a film as they are read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <vector>

#include "playing/clip.h"
#include "playing/open_film.h"

namespace vantle {

/// What shows at a moment: a picture of one input, or pictures of two and the transition between them.
struct Moment {
    av::Frame picture;
    av::Frame incoming;  ///< null outside joins
    TransFunc* transition = nullptr;
    double position = 0.0;  ///< in frames of the join
    double duration = 0.0;
    double light = 1.0;  ///< how bright it shows: less than 1 where the film fades
};

/// The pictures of a film, frame by frame. At most two inputs are open at a time: one is closed when its part
/// has been read.
class FilmReader {
   public:
    /// From frame `first` on; with `audio`, the audio of its inputs can be read from there too.
    FilmReader(const OpenFilm& open, std::int64_t first, bool audio);

    /// What shows in the next frame. To be called for the film's frames only.
    Moment next();

   private:
    struct Player {
        std::size_t part;
        Clip clip;
        av::Frame last;
    };
    av::Frame pictureOf(std::size_t number, std::int64_t frame);

    const OpenFilm& open_;
    const Film& film_;
    std::int64_t frame_;
    bool audio_;
    std::list<Player> players_;  // of the parts in this frame and the one before
};

/// What join `number` shows at each of `positions` (0 to 1, ascending).
std::vector<Moment> momentsOf(const OpenFilm& open, std::size_t number, const std::vector<double>& positions);

}  // namespace vantle
