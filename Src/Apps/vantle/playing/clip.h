/// The pictures of one input, brought to the canvas of a film.
#pragma once

#include <cstdint>
#include <optional>

#include "media/canvas.h"
#include "media/filters.h"
#include "playing/input.h"
#include "playing/moving_still.h"
#include "timeline/film.h"

namespace vantle {

/// Gives the picture of an input for each number of a film's grid: the one that shows at that time.
class Clip {
   public:
    /// Of this part of a film, from the input's picture number `first` on. The input must outlive it; with
    /// `audio`, its audio can be read from there too.
    Clip(Input& input, const Film& film, const Part& part, std::int64_t first, bool audio);

    /// The next picture; after the input's end its last one, again and again.
    av::Frame next();

   private:
    av::Frame onCanvas(const AVFrame& picture);
    av::Frame moved();

    Input& input_;
    Canvas canvas_;
    Part part_;
    std::int64_t number_;  // in the grid, of the picture that `next` gives
    av::Frame ahead_;      // the first picture that shows later
    av::Frame decoded_;    // the one that shows now
    av::Frame shown_;      // the same on the canvas, once asked for
    std::optional<Filters> filters_;
    av::Frame filtered_;                 // a picture of the format that the filters are made for
    std::optional<MovingStill> moving_;  // of a still that moves, once asked for
    bool ended_ = false;
};

}  // namespace vantle
