/// `vantle render`: turns two inputs and a transition into an output.
#pragma once

#include <optional>
#include <string>

#include "media/canvas.h"
#include "timeline/film.h"
#include "timeline/join_options.h"

namespace vantle {

struct RenderOptions {
    JoinOptions join;
    std::string transition;      ///< name, index, GUID or function
    std::optional<Size> size;    ///< FROM's when absent
    std::optional<double> hold;  ///< seconds that an endless input plays outside the overlap
    std::optional<double> at;    ///< only the picture at this position, 0 to 1
    std::optional<FrameRange> frames;
    av::Options encoderOptions;  ///< for a video's encoder, as FFmpeg knows them
};

/// Renders. Throws UsageError when the options contradict each other and Error when something fails; the
/// output then stands as it stood before.
void render(const RenderOptions& options);

}  // namespace vantle
