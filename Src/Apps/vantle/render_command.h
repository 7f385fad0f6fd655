/// `vantle render`: turns two inputs and a transition into an output.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "media/canvas.h"
#include "timeline/renderer.h"

namespace vantle {

struct RenderOptions {
    std::string plugin;      ///< path of the plug-in; empty for the installed one
    std::string from;        ///< outgoing input
    std::string to;          ///< incoming input
    std::string transition;  ///< name, index, GUID or function
    std::string output;
    double duration = 1.0;          ///< seconds of overlap
    std::optional<AVRational> fps;  ///< FROM's when absent
    std::optional<Size> size;       ///< FROM's when absent
    Fit fit = Fit::contain;
    std::optional<double> hold;  ///< seconds that an endless input plays outside the overlap
    std::optional<double> at;    ///< only the picture at this position, 0 to 1
    std::optional<FrameRange> frames;
    std::map<std::string, std::string> encoderOptions;  ///< for a video's encoder, as FFmpeg knows them
    bool force = false;
    bool quiet = false;
};

/// Renders. Throws UsageError when the options contradict each other and Error when something fails; the
/// output then stands as it stood before.
void render(const RenderOptions& options);

}  // namespace vantle
