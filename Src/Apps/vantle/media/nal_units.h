/// NAL units: the pieces of which coded pictures of H.264 (ISO/IEC 14496-10) and HEVC (23008-2) consist.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace vantle {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

enum class NalCodec : std::uint8_t { h264, hevc };

/// What a unit is, as far as one must know who moves it.
enum class NalKind : std::uint8_t {
    slice,         ///< of a picture
    freshSlice,    ///< of a picture after which nothing refers back (IDR)
    entrySlice,    ///< of one that pictures shown before it may refer across (CRA, BLA)
    parameterSet,  ///< what a decoder must know beforehand
    delimiter,     ///< the start of a picture
    other,         ///< messages, filling
    foreign,       ///< of what is not moved: partitions, layers, views, alpha
};

NalKind kindOf(NalCodec codec, ByteView unit);

/// The units of a byte stream (Annex B of both standards), each behind a start code.
std::vector<ByteView> unitsOf(ByteView stream);

/// Puts a unit behind a start code at the end of a byte stream. Returns where it lies there.
std::span<std::uint8_t> appendUnit(Bytes& stream, ByteView unit);

/// Makes a CRA picture's unit one of a BLA picture without pictures shown before it; others stay.
void breakLink(std::span<std::uint8_t> unit);

}  // namespace vantle
