/// From what a person asks for to a film, a part of it, a picture or a plan.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "copying/copy_choice.h"
#include "media/av.h"
#include "output/delivery.h"
#include "output/output_kind.h"
#include "timeline/film.h"
#include "timeline/film_request.h"

namespace vantle {

/// One position of one join.
struct JoinPosition {
    std::optional<std::size_t> join{};  ///< counted from 1; the only one when absent
    double position = 0.0;              ///< 0 to 1
};

struct RenderRequest {
    FilmRequest film{};
    Delivery delivery{};
    EncoderNames encoders{};
    av::Options encoderOptions{};        ///< for a video's encoder, as FFmpeg knows them
    std::optional<CopyMode> copy{};      ///< what the output and the other options suggest when absent
    bool chapters = false;               ///< one for each input
    bool verify = false;                 ///< compares all that is copied with its sources
    std::optional<JoinPosition> at{};    ///< only this picture
    std::optional<FrameRange> frames{};  ///< only these frames
    std::string joins{};                 ///< only the picture of all joins, of this name
    bool plan = false;                   ///< only tells what the film will be
    bool json = false;                   ///< as JSON
    std::vector<std::string> notes{};    ///< a line for whatever its user should know of how it was read
};

/// Throws UsageError when the request makes no sense and Error when something fails; what stood under the
/// output's name then stands as before.
void render(const RenderRequest& request);

}  // namespace vantle
