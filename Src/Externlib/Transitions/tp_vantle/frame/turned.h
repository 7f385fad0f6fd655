/// A picture that is turned and scaled about the centre of the frame.
#pragma once

#include "frame/stage.h"

namespace vantle {

/// Draws whole pixels of an input frame, shown `scale` times as large and then turned by an angle, clockwise
/// as it is seen; around it black, whose byte 3 is kept. The picture's first row and column are not shown.
void drawTurned(const Stage& stage, Source source, double angle, float scale);

}  // namespace vantle
