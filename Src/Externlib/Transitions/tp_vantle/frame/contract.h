/// The contract between a host and the transitions: frames, parameters and the function type they share.
#pragma once

#include <cstddef>
#include <cstdint>

/// Marks what the library exports; everything else is hidden.
#define VANTLE_API __attribute__((visibility("default")))

/// Opaque handle of a frame owned by the host; valid for the duration of a call.
using DIImage = void*;

/// The host's parameter record. The library reads the two doubles and never writes any of it; the host may
/// append fields of its own.
struct TransParam {
    std::byte hostFields[416];
    double dDuration;  ///< length of the transition, in the host's position units; finite, above 0
    double dPosition;  ///< position within the transition, 0 at its first frame, dDuration at its end
};

static_assert(offsetof(TransParam, dDuration) == 416 && offsetof(TransParam, dPosition) == 424);

/// A transition: composes `imgOut` from the outgoing frame `imgFrom` and the incoming frame `imgTo` at
/// `param`'s position. Frames have 32 bits per pixel and are stored bottom-up; width, height and pitch are
/// those of `imgOut`. A missing frame or one too small leaves `imgOut` untouched; nothing is reported.
///
/// Nothing leaves a transition but one thing: the dissolve, `TrFadeNew`, keeps the order of its pixels, which
/// it makes at its first call and whenever width, height or pitch of `imgOut` change; when that finds no
/// memory, the call ends with the C++ exception std::bad_alloc, `imgOut` untouched, and the next call tries
/// again. A host in a language without exceptions calls it through a function that catches this.
using TransFunc = void(DIImage imgOut, DIImage imgFrom, DIImage imgTo, const TransParam* param);

/// Accessors of the host's image library. They are asked anew in every call, must not throw, and get the
/// handles of the call. A null handle is given to the first two only, by the transitions that compare widths
/// for the log (`TrCrossShutter1`, `TrColSplit2`): for that one they must return some value, 0 for instance.
extern "C" {
std::int32_t DIGetWidth(DIImage image);     ///< pixels in a row; below 0 counts as 0
std::int32_t DIGetHeight(DIImage image);    ///< rows; below 0 counts as 0
std::int32_t DIGetPitch(DIImage image);     ///< bytes from one row to the next, at least 4 per pixel
std::uint8_t* DIGetBits(DIImage image);     ///< first byte of the pixels: the bottom row of the picture
std::int32_t DIGetBitCount(DIImage image);  ///< bits per pixel
}

/// Linear ramp from 0 at `e0` to 1 at `e1`, clamped to 0..1; NaN where the ramp is undefined (e0 = e1 = x).
VANTLE_API float smoothStep(float e0, float e1, float x);
