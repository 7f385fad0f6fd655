/// An encoder of pictures or sound.
#pragma once

#include <functional>
#include <string>

#include "media/av.h"

namespace vantle {

class Encoder {
   public:
    /// Opens an encoder; `setUp` fills in its context before. Throws Error when it refuses, and UsageError
    /// when it does not know an option.
    Encoder(const AVCodec& codec, const av::Options& options,
            const std::function<void(AVCodecContext&)>& setUp);

    AVCodecContext& context() const { return *context_; }

    /// Takes a frame, null for the end; `sink` then gets every packet that is ready.
    void encode(const AVFrame* frame, const std::function<void(AVPacket&)>& sink);

   private:
    std::string name_;
    av::Codec context_;
    av::Packet packet_ = av::makePacket();
};

/// `own` settings of a video's encoder with the user's, which come first: a way to control the rate chosen by
/// the user replaces the built-in one.
av::Options withUsersOptions(av::Options own, const av::Options& users);

}  // namespace vantle
