#include "media/nal_units.h"

#include <algorithm>
#include <array>

#include "Host/error.h"

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

std::vector<ByteView> unitsWithLengths(ByteView packet) {
    std::vector<ByteView> units;
    while (!packet.empty()) {
        std::size_t length = 0;
        for (std::size_t i = 0; i < 4; ++i) length = length << 8 | (i < packet.size() ? packet[i] : 0xFF);
        if (length == 0 || packet.size() < 4 || packet.size() - 4 < length)
            throw Error("a packet is damaged");
        units.push_back(packet.subspan(4, length));
        packet = packet.subspan(4 + length);
    }
    return units;
}

std::vector<ByteView> unitsWithStartCodes(ByteView stream) {
    constexpr std::array<std::uint8_t, 3> code{0, 0, 1};
    std::vector<ByteView> units;
    const auto next = [&](ByteView in) {
        return std::search(in.begin(), in.end(), code.begin(), code.end());
    };
    auto found = next(stream);
    while (found != stream.end()) {
        const ByteView rest(found + code.size(), stream.end());
        const auto end = next(rest);
        ByteView unit(rest.begin(), end);
        found = stream.end() - (rest.end() - end);
        // Zeros before the next code belong to it.
        while (!unit.empty() && unit.back() == 0) unit = unit.first(unit.size() - 1);
        if (!unit.empty()) units.push_back(unit);
    }
    return units;
}

void appendUnit(Bytes& packet, ByteView unit) {
    for (int shift = 24; shift >= 0; shift -= 8)
        packet.push_back(static_cast<std::uint8_t>(unit.size() >> shift));
    packet.insert(packet.end(), unit.begin(), unit.end());
}

void breakLink(std::span<std::uint8_t> unit) {
    if (hevcType(unit) == cra) unit[0] = static_cast<std::uint8_t>((unit[0] & 0x81) | blaWithoutLeading << 1);
}

}  // namespace vantle
