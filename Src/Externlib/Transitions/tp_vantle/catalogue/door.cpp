#include "catalogue/door.h"

#include <cstdlib>
#include <ctime>
#include <optional>

#include "frame/host_frames.h"
#include "frame/progress.h"
#include "frame/stage.h"

namespace vantle {

namespace {

/// No record is the first frame.
Progress progressOf(const TransParam* param) {
    return param != nullptr ? Progress(param->dDuration, param->dPosition) : Progress(1.0, 0.0);
}

}  // namespace

void draw(const Call& call, Effect& effect, const FrameChecks& checks) noexcept {
    HostFrames frames(call);
    frames.readPixels();
    if (checks.beforeBitCount != nullptr) checks.beforeBitCount(call);
    frames.readBitCount();
    if (checks.afterBitCount != nullptr) checks.afterBitCount(call);
    if (const std::optional<Stage> stage = frames.stage()) effect(*stage, progressOf(call.param));
}

void draw(const Call& call, Dissolve& dissolve) {
    HostFrames frames(call);
    frames.readBitCount();
    // A size that no frame can have leaves the order as it is: nothing will be drawn with another.
    if (frames.areOfPossibleSize())
        dissolve.fit(frames.width(), frames.height(), frames.pitch(), [] {
            std::srand(static_cast<unsigned>(std::time(nullptr)));
            return std::rand;
        });
    frames.readPixels();
    if (const std::optional<Stage> stage = frames.stage()) dissolve.draw(*stage, progressOf(call.param));
}

}  // namespace vantle
