/// How what is not copied of a film is encoded: like what is copied.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "copying/copy_plan.h"
#include "media/encoder.h"
#include "media/nal_units.h"

namespace vantle {

/// The encoder that was asked for, empty for the usual one, and options for it.
struct EncoderChoice {
    std::string name{};
    av::Options options{};
};

class StretchEncoder {
   public:
    /// For a plan's seams, or for its longer stretches. Opens the encoder once to see what it makes: throws
    /// NotCopied when it refuses, or makes something else than the plan's pictures, and UsageError when it
    /// does not know an option.
    StretchEncoder(const CopyPlan& plan, const EncoderChoice& choice, bool seams);

    /// Opens it for one stretch.
    std::unique_ptr<Encoder> open() const;

    /// The parameter sets of all that it encodes.
    const std::vector<Bytes>& parameterSets() const { return parameterSets_; }

    /// Its reorder depth.
    int reorder() const { return reorder_; }

   private:
    const CopyPlan& plan_;
    const AVCodec* codec_ = nullptr;
    av::Options options_;
    bool seams_;
    std::vector<Bytes> parameterSets_;
    int reorder_ = 0;
};

/// Throws NotCopied when what a plan does not copy cannot be encoded.
void tryEncoding(const CopyPlan& plan, const EncoderChoice& choice);

}  // namespace vantle
