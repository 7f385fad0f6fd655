/// An encoder of pictures or audio.
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

    /// Takes a frame, null for the end. All packets that are ready must have been received before.
    void send(const AVFrame* frame);

    /// The next packet, or null when it needs frames first or has ended.
    av::Packet receive();

   private:
    std::string name_;
    av::Codec context_;
};

/// `own` settings of a video's encoder with the user's, which come first: a way to control the rate chosen by
/// the user replaces the built-in one.
av::Options withUsersOptions(av::Options own, const av::Options& users);

}  // namespace vantle
