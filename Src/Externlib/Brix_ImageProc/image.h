/// Stand-in for the host's image library: frames behind the accessors that the transitions call. In a host
/// its own library of the same name takes this one's place.
#pragma once

#include <cstdint>

#include "frame/contract.h"

extern "C" {

/// A new frame of `width` x `height` pixels of 32 bits, all bytes 0, rows aligned to 64 bytes. Null when a
/// size is below 1, the frame would reach 2^31 bytes or memory is short. Release with `DIFree`.
VANTLE_API DIImage DICreate(std::int32_t width, std::int32_t height);

/// A frame over memory of the caller's, which must outlive it. The values are kept as they are, whatever
/// they say. Null when memory is short. Release with `DIFree`, which leaves `bits` alone.
VANTLE_API DIImage DIWrap(void* bits, std::int32_t width, std::int32_t height, std::int32_t pitch,
                          std::int32_t bitCount);

/// Releases a frame; null is ignored.
VANTLE_API void DIFree(DIImage image);
}
