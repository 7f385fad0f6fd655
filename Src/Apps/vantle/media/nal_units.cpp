#include "media/nal_units.h"

#include <cstddef>
#include <cstring>

namespace vantle {

namespace {

constexpr int cra = 21;  // HEVC's clean random access, from which one may start
constexpr int blaWithoutLeading = 18;

int hevcType(ByteView unit) { return unit[0] >> 1 & 63; }

NalKind kindInH264(int type) {
    switch (type) {
        case 1:
            return NalKind::slice;
        case 5:
            return NalKind::freshSlice;
        case 7:
        case 8:
            return NalKind::parameterSet;
        case 9:
            return NalKind::delimiter;
        case 6:
        case 10:
        case 11:
        case 12:
            return NalKind::other;
        default:
            return NalKind::foreign;
    }
}

NalKind kindInHevc(int type) {
    if (type <= 9) return NalKind::slice;
    if (type == 19 || type == 20) return NalKind::freshSlice;
    if ((type >= 16 && type <= 18) || type == cra) return NalKind::entrySlice;
    if (type >= 32 && type <= 34) return NalKind::parameterSet;
    if (type == 35) return NalKind::delimiter;
    return type >= 36 && type <= 40 ? NalKind::other : NalKind::foreign;
}

}  // namespace

NalKind kindOf(NalCodec codec, ByteView unit) {
    if (unit.size() < 2) return NalKind::foreign;
    if (codec == NalCodec::h264) return kindInH264(unit[0] & 31);
    const int layer = (unit[0] & 1) << 5 | unit[1] >> 3;
    // Some programs leave messages of their own, which no decoder looks at.
    if (hevcType(unit) >= 48) return NalKind::other;
    return layer == 0 ? kindInHevc(hevcType(unit)) : NalKind::foreign;
}

std::vector<ByteView> unitsOf(ByteView stream) {
    constexpr std::size_t codeSize = 3;  // 0, 0, 1
    const auto nextCode = [&](std::size_t from) {
        for (std::size_t at = from + 2; at < stream.size(); ++at) {
            const void* const one = std::memchr(stream.data() + at, 1, stream.size() - at);
            if (one == nullptr) break;
            at = static_cast<std::size_t>(static_cast<const std::uint8_t*>(one) - stream.data());
            if (stream[at - 1] == 0 && stream[at - 2] == 0) return at - 2;
        }
        return stream.size();
    };
    std::vector<ByteView> units;
    for (std::size_t code = nextCode(0); code < stream.size();) {
        const std::size_t next = nextCode(code + codeSize);
        ByteView unit = stream.subspan(code + codeSize, next - code - codeSize);
        // Zeros before the next code belong to it.
        while (!unit.empty() && unit.back() == 0) unit = unit.first(unit.size() - 1);
        if (!unit.empty()) units.push_back(unit);
        code = next;
    }
    return units;
}

std::span<std::uint8_t> appendUnit(Bytes& stream, ByteView unit) {
    stream.insert(stream.end(), {0, 0, 0, 1});
    stream.insert(stream.end(), unit.begin(), unit.end());
    return std::span(stream).last(unit.size());
}

void breakLink(std::span<std::uint8_t> unit) {
    if (hevcType(unit) == cra) unit[0] = static_cast<std::uint8_t>((unit[0] & 0x81) | blaWithoutLeading << 1);
}

}  // namespace vantle
