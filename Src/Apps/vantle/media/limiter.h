/// A limiter of audio.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

#include "media/audio_format.h"
#include "media/filters.h"

namespace vantle {

/// Keeps the peaks of audio below -1 dBTP, those between its samples too. Audio without such peaks stays as
/// it is, to the bit; all of it stays in its place.
class Limiter {
   public:
    /// For planar audio in single precision.
    explicit Limiter(const AudioFormat& format);

    /// Takes the next audio.
    void push(av::Frame audio);

    /// Says that nothing follows.
    void close();

    /// The next audio in portions as they were pushed, or null when it needs what follows first.
    av::Frame pull();

   private:
    void readPeaks();
    void pushPeaks(std::size_t samples);
    void apply(const AVFrame& gains);
    void finishFront();

    AudioFormat format_;
    Filters oversampled_;
    Filters gains_;
    std::deque<float> samplePeaks_;  // of all channels, of the samples whose gain is not yet asked for
    std::deque<float> truePeaks_;    // the peak from each of these to the next
    float lastPeak_ = 0.0F;          // of the oversampled audio before them
    int subsample_ = 0;              // how many oversampled values the last of `truePeaks_` is made of
    std::int64_t asked_ = 0;         // samples whose gain has been asked for
    std::deque<av::Frame> waiting_;
    int limited_ = 0;  // samples of the first that is waiting
    std::deque<av::Frame> ready_;
};

}  // namespace vantle
