/// A still over which the view moves.
#pragma once

#include <vector>

#include "media/canvas.h"
#include "playing/input.h"
#include "playing/onto_canvas.h"
#include "timeline/motion.h"

namespace vantle {

/// Draws what is seen of a still, resampled at fractions of its pixels so that nothing jumps. What is beside
/// it on the canvas stays where it is.
class MovingStill {
   public:
    MovingStill(const Canvas& canvas, const Input& input, const AVFrame& picture, const Motion& motion);

    /// The canvas at this position of the motion, 0 to 1.
    av::Frame at(double position);

   private:
    /// The pixels of the still that one of the canvas is made of, along one axis, and how much of each.
    struct Tap {
        int first;
        float weights[4];
    };
    static std::vector<Tap> taps(int length, int stillLength, double begin, double size);

    Box box_;
    Motion motion_;
    av::Frame still_;
    av::Frame beside_;        // the canvas before the still is drawn
    std::vector<float> row_;  // of the still, where a row of the canvas lies
};

}  // namespace vantle
