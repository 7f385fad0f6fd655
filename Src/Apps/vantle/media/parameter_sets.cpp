#include "media/parameter_sets.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "media/bits.h"

namespace vantle {

namespace {

/// A set with where in its bits the reorder depth is stated.
struct Parsed {
    SequenceParameterSet set;
    std::size_t gaps = 0;       // H.264: the bit that lets numbers of frames be missing
    std::size_t statement = 0;  // the first bit of it
    std::size_t rest = 0;       // the first bit behind it
    std::vector<int> values;    // its numbers
    bool hasUsability = false;  // H.264: that part of the set which holds it is there
    int layers = 0;             // HEVC: the temporal layers that state it
};

void skipScalingList(BitReader& read, int size) {
    int last = 8;
    int next = 8;
    for (int i = 0; i < size; ++i) {
        if (next != 0) next = (last + read.signedNumber() + 256) % 256;
        last = next == 0 ? last : next;
    }
}

void skipBufferModel(BitReader& read) {
    const int count = read.number() + 1;
    read.skip(8);
    for (int i = 0; i < count; ++i) {
        read.number();
        read.number();
        read.flag();
    }
    read.skip(20);
}

/// Up to the flag before the statement.
void skipUsability(BitReader& read) {
    constexpr std::uint32_t anyShape = 255;
    if (read.flag() && read.bits(8) == anyShape) read.skip(32);
    if (read.flag()) read.flag();
    if (read.flag()) {
        read.skip(4);
        if (read.flag()) read.skip(24);
    }
    if (read.flag()) {
        read.number();
        read.number();
    }
    if (read.flag()) read.skip(65);
    const bool nal = read.flag();
    if (nal) skipBufferModel(read);
    const bool vcl = read.flag();
    if (vcl) skipBufferModel(read);
    if (nal || vcl) read.flag();
    read.flag();
}

Parsed parseH264(const Bytes& bytes) {
    Parsed parsed;
    BitReader read(bytes, 8);
    const std::uint32_t profile = read.bits(8);
    parsed.set.profile = static_cast<int>(profile);
    read.skip(8);
    parsed.set.level = static_cast<int>(read.bits(8));
    parsed.set.id = read.number();
    constexpr auto high =
        std::to_array<std::uint32_t>({100, 110, 122, 244, 44, 83, 86, 118, 128, 138, 139, 134, 135});
    if (std::ranges::find(high, profile) != high.end()) {
        const int chroma = read.number();
        if (chroma == 3) parsed.set.separatePlanes = read.flag();
        parsed.set.monochrome = chroma == 0;
        read.number();
        read.number();
        read.flag();
        if (read.flag())
            for (int i = 0; i < (chroma == 3 ? 12 : 8); ++i)
                if (read.flag()) skipScalingList(read, i < 6 ? 16 : 64);
    }
    parsed.set.frameNumberBits = read.number() + 4;
    parsed.set.orderType = read.number();
    switch (parsed.set.orderType) {
        case 0:
            parsed.set.orderBits = read.number() + 4;
            break;
        case 1: {
            read.flag();
            read.number();
            read.number();
            for (int count = read.number(); count > 0; --count) read.number();
            break;
        }
        default:
            break;
    }
    constexpr int mostBits = 16;
    if (parsed.set.frameNumberBits > mostBits || parsed.set.orderBits > mostBits)
        throw Error("a parameter set is damaged");
    parsed.set.references = read.number();
    parsed.gaps = read.position();
    read.flag();
    read.number();
    read.number();
    parsed.set.progressive = read.flag();
    if (!parsed.set.progressive) read.flag();
    read.flag();
    if (read.flag())
        for (int i = 0; i < 4; ++i) read.number();
    parsed.statement = read.position();
    parsed.hasUsability = read.flag();
    if (!parsed.hasUsability) return parsed;
    skipUsability(read);
    parsed.statement = read.position();
    if (!read.flag()) return parsed;
    parsed.values.push_back(read.flag() ? 1 : 0);
    for (int i = 0; i < 6; ++i) parsed.values.push_back(read.number());
    parsed.set.reorder = parsed.values[5];
    return parsed;
}

Parsed parseHevc(const Bytes& bytes) {
    Parsed parsed;
    BitReader read(bytes, 16);
    read.skip(4);
    const auto layers = static_cast<int>(read.bits(3));
    read.skip(1 + 3);
    parsed.set.profile = static_cast<int>(read.bits(5));
    read.skip(80);
    parsed.set.level = static_cast<int>(read.bits(8));
    std::vector<std::pair<bool, bool>> stated;
    for (int i = 0; i < layers; ++i) {
        const bool profile = read.flag();
        stated.emplace_back(profile, read.flag());
    }
    if (layers > 0) read.skip(2 * (8 - layers));
    for (const auto& [profile, level] : stated) read.skip((profile ? 88 : 0) + (level ? 8 : 0));
    parsed.set.id = read.number();
    if (read.number() == 3) parsed.set.separatePlanes = read.flag();
    read.number();
    read.number();
    if (read.flag())
        for (int i = 0; i < 4; ++i) read.number();
    for (int i = 0; i < 3; ++i) read.number();
    parsed.layers = read.flag() ? layers + 1 : 1;
    parsed.statement = read.position();
    for (int i = 0; i < 3 * parsed.layers; ++i) parsed.values.push_back(read.number());
    parsed.rest = read.position();
    parsed.set.references = parsed.values[parsed.values.size() - 3];
    parsed.set.reorder = parsed.values[parsed.values.size() - 2];
    return parsed;
}

bool isSequenceSet(NalCodec codec, ByteView unit) {
    if (unit.size() < 4) return false;
    return codec == NalCodec::h264 ? (unit[0] & 31) == 7 : (unit[0] >> 1 & 63) == 33;
}

Parsed parse(NalCodec codec, const Bytes& bytes) {
    return codec == NalCodec::h264 ? parseH264(bytes) : parseHevc(bytes);
}

}  // namespace

std::optional<SequenceParameterSet> sequenceParameterSet(NalCodec codec, ByteView unit) {
    if (!isSequenceSet(codec, unit)) return {};
    return parse(codec, payload(unit)).set;
}

std::optional<PictureParameterSet> pictureParameterSet(ByteView unit) {
    if (unit.size() < 2 || (unit[0] & 31) != 8) return {};
    const Bytes bytes = payload(unit);
    BitReader read(bytes, 8);
    PictureParameterSet set;
    set.id = read.number();
    set.sequence = read.number();
    set.arithmetic = read.flag();
    set.statesBottomOrder = read.flag();
    set.sliceGroups = read.number() > 0;
    if (set.sliceGroups) return set;
    for (int& references : set.references) references = read.number() + 1;
    set.weighted = read.flag();
    set.weightedBoth = read.bits(2) == 1;
    for (int i = 0; i < 3; ++i) read.signedNumber();
    set.statesDeblocking = read.flag();
    read.flag();
    set.redundant = read.flag();
    return set;
}

Bytes restated(NalCodec codec, ByteView unit, int reorder, int level, bool gaps) {
    if (!isSequenceSet(codec, unit)) return {unit.begin(), unit.end()};
    Bytes bytes = payload(unit);
    const Parsed parsed = parse(codec, bytes);
    bytes[codec == NalCodec::h264 ? 3 : 14] = static_cast<std::uint8_t>(level);
    if (gaps && codec == NalCodec::h264) setBits(bytes, parsed.gaps, 1, 1);
    BitWriter write;
    write.copy(bytes, 0, parsed.statement);
    if (codec == NalCodec::h264) {
        if (!parsed.hasUsability) write.bits(1U << 8, 9);  // it is there, and says none of what comes first
        // Where nothing was stated, what a decoder assumes then.
        std::vector<int> values = parsed.values;
        if (values.empty()) values = {1, 2, 1, 15, 15, 0, 0};
        values[5] = reorder;
        values[6] = std::max({values[6], reorder, parsed.set.references});
        write.bits(1, 1);
        write.bits(static_cast<std::uint32_t>(values[0]), 1);
        for (std::size_t i = 1; i < values.size(); ++i) write.number(values[i]);
    } else {
        for (std::size_t i = 0; i < parsed.values.size(); i += 3) {
            write.number(std::max(parsed.values[i], reorder));
            write.number(reorder);
            write.number(0);
        }
        std::size_t end = 8 * bytes.size();
        const auto isSet = [&](std::size_t bit) { return (bytes[bit / 8] >> (7 - bit % 8) & 1) != 0; };
        while (end > parsed.rest && !isSet(end - 1)) --end;
        write.copy(bytes, parsed.rest, end - 1);
    }
    return escaped(write.finish());
}

}  // namespace vantle
