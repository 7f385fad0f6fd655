/// Writes a film of which most is copied.
#pragma once

#include <string>
#include <vector>

#include "copying/copy_plan.h"
#include "output/movie_kind.h"
#include "system/progress_bar.h"
#include "timeline/chapters.h"

namespace vantle {

struct CopyOptions {
    const MovieKind& kind;
    std::string name;
    bool overwrite = false;
    EncoderNames encoders{};
    av::Options encoderOptions{};  ///< for what is encoded
    std::vector<Chapter> chapters{};
    bool verifyAll = false;  ///< compares all frames, not only those around the seams
};

/// Writes the film as planned, and looks whether it became what it should be: returns what did not, in a few
/// words; then nothing was written. Empty when all is well.
std::string copyFilm(const OpenFilm& open, const CopyPlan& plan, const CopyOptions& options,
                     ProgressBar& progress);

}  // namespace vantle
