// Twirl: the outgoing frame turns once clockwise about the centre while it shrinks, on black, to a twentieth;
// then the incoming one turns once more and grows from there.
#include "frame/progress.h"
#include "frame/stage.h"
#include "frame/turned.h"

namespace vantle {

/// Whole pixels on black, whose byte 3 is not written, nor is the padding but at the very end.
void twirl(const Stage& stage, const Progress& progress) {
    constexpr double pi = 3.141592653589793;
    constexpr double shrunk = 0.05F;
    constexpr double rest = 0.95F;
    const double position = progress.position();
    if (progress.ended()) {
        stage.show(Source::to);
        return;
    }
    if (progress.duration() == position + position) {
        for (Row row : stage.rows(Writes::colours)) row.shade(Source::to, black, stage.width());
        return;
    }
    const double half = progress.duration() * 0.5;
    const bool firstHalf = progress.duration() > position + position;
    const double passed = firstHalf ? position : position - half;
    const double grown = firstHalf ? half - position : passed;
    drawTurned(stage, firstHalf ? Source::from : Source::to, (passed / half + passed / half) * pi,
               static_cast<float>(grown * rest / half + shrunk));
}

}  // namespace vantle
