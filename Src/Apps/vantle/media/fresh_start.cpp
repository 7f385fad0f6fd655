#include "media/fresh_start.h"

#include <algorithm>

#include "media/bits.h"

namespace vantle {

namespace {

constexpr int anySlice = 1;
constexpr int idrSlice = 5;
constexpr int sei = 6;

int typeOf(ByteView unit) { return unit.empty() ? 0 : unit[0] & 31; }

/// Whether SEI says that decoding recovers at its picture (a recovery point without frames to wait for).
bool recovers(ByteView unit) {
    const Bytes bytes = payload(unit);
    for (std::size_t at = 1; at + 2 < bytes.size();) {
        const auto value = [&] {
            std::size_t sum = 0;
            while (at < bytes.size() && bytes[at] == 255) sum += bytes[at++];
            return at < bytes.size() ? sum + bytes[at++] : sum;
        };
        const std::size_t type = value();
        const std::size_t size = value();
        constexpr std::size_t recoveryPoint = 6;
        if (type == recoveryPoint) return BitReader(bytes, 8 * at).number() == 0;
        at += size;
    }
    return false;
}

}  // namespace

/// A slice, and where the parts of its header lie.
struct FreshStart::Slice {
    struct Operation {
        int kind = 0;
        int operands[2] = {0, 0};
        int count = 0;  // of operands
    };
    Bytes bytes;
    bool intra = false;
    const SequenceParameterSet* sequence = nullptr;
    const PictureParameterSet* picture = nullptr;
    std::size_t numberAt = 0;
    std::size_t orderAt = 0;
    std::uint32_t frameNumber = 0;
    std::uint32_t order = 0;
    std::size_t markingAt = 0;  // how references are marked
    std::vector<Operation> marking{};
    std::size_t restAt = 0;  // of the header
    std::size_t dataAt = 0;
};

FreshStart::FreshStart(const std::vector<Bytes>& parameterSets) {
    for (const Bytes& set : parameterSets) {
        if (const auto sequence = sequenceParameterSet(NalCodec::h264, set))
            sequences_[sequence->id] = *sequence;
        if (const auto picture = pictureParameterSet(set)) pictures_[picture->id] = *picture;
    }
}

FreshStart::Slice FreshStart::sliceOf(ByteView unit) const {
    Slice slice{.bytes = payload(unit)};
    BitReader read(slice.bytes, 8);
    read.number();
    enum : std::uint8_t { p, b, i };
    const int kind = read.number() % 5;
    slice.intra = kind == i;
    const auto picture = pictures_.find(read.number());
    if (picture == pictures_.end()) throw Error("a slice refers to no parameter set");
    slice.picture = &picture->second;
    const auto sequence = sequences_.find(slice.picture->sequence);
    if (sequence == sequences_.end()) throw Error("a slice refers to no parameter set");
    slice.sequence = &sequence->second;
    slice.numberAt = read.position();
    slice.frameNumber = read.bits(slice.sequence->frameNumberBits);
    slice.orderAt = read.position();
    if (slice.sequence->orderType == 0) {
        slice.order = read.bits(slice.sequence->orderBits);
        if (slice.picture->statesBottomOrder) read.signedNumber();
    }
    if (kind == b) read.flag();
    const int lists = kind == p ? 1 : kind == b ? 2 : 0;
    int references[2] = {slice.picture->references[0], slice.picture->references[1]};
    if (lists > 0 && read.flag())
        for (int list = 0; list < lists; ++list) references[list] = read.number() + 1;
    for (int list = 0; list < lists; ++list) {
        constexpr int end = 3;
        if (!read.flag()) continue;
        while (read.number() != end) read.number();
    }
    if ((kind == p && slice.picture->weighted) || (kind == b && slice.picture->weightedBoth)) {
        const int planes = slice.sequence->monochrome ? 1 : 2;
        for (int plane = 0; plane < planes; ++plane) read.number();
        for (int list = 0; list < lists; ++list)
            for (int reference = 0; reference < references[list]; ++reference)
                for (int plane = 0; plane < planes; ++plane)
                    if (read.flag())
                        for (int value = 0; value < (plane == 0 ? 2 : 4); ++value) read.signedNumber();
    }
    slice.markingAt = read.position();
    const bool isReference = (slice.bytes[0] & 0x60) != 0;
    if (isReference && read.flag())
        for (int operation = read.number(); operation != 0; operation = read.number()) {
            Slice::Operation& next = slice.marking.emplace_back();
            next.kind = operation;
            next.count = operation == 5 ? 0 : operation == 3 ? 2 : 1;
            for (int operand = 0; operand < next.count; ++operand) next.operands[operand] = read.number();
        }
    slice.restAt = read.position();
    if (slice.picture->arithmetic && !slice.intra) read.number();
    read.signedNumber();
    if (slice.picture->statesDeblocking && read.number() != 1) {
        read.signedNumber();
        read.signedNumber();
    }
    slice.dataAt = read.position();
    return slice;
}

bool FreshStart::canBegin(const std::vector<ByteView>& units) const try {
    bool isRecovery = false;
    bool holdsSlices = false;
    for (const ByteView unit : units) {
        isRecovery = isRecovery || (typeOf(unit) == sei && recovers(unit));
        if (typeOf(unit) == idrSlice) return false;
        if (typeOf(unit) != anySlice) continue;
        constexpr std::size_t longestHeader = 64;  // of a slice without references
        const Slice slice = sliceOf(unit.first(std::min(unit.size(), longestHeader)));
        const bool isReference = (unit[0] & 0x60) != 0;
        if (!slice.intra || !isReference || !slice.sequence->progressive || slice.sequence->orderType == 1 ||
            slice.picture->redundant)
            return false;
        holdsSlices = true;
    }
    return isRecovery && holdsSlices;
} catch (const Error&) {
    return false;
}

Bytes FreshStart::rewritten(ByteView unit, bool first) {
    ended_ = ended_ || typeOf(unit) == idrSlice;
    if (ended_ || typeOf(unit) != anySlice) return {unit.begin(), unit.end()};
    Slice slice = sliceOf(unit);
    const SequenceParameterSet& sequence = *slice.sequence;
    if (first) {
        frameNumber_ = slice.frameNumber;
        order_ = slice.order;
    }
    // Both are counted modulo a power of two.
    const auto shifted = [](std::uint32_t value, std::uint32_t by, int bits) {
        return (value - by) & ((std::uint32_t{1} << bits) - 1);
    };
    setBits(slice.bytes, slice.numberAt, sequence.frameNumberBits,
            shifted(slice.frameNumber, frameNumber_, sequence.frameNumberBits));
    if (sequence.orderType == 0)
        setBits(slice.bytes, slice.orderAt, sequence.orderBits,
                shifted(slice.order, order_, sequence.orderBits));
    if (first) {
        slice.bytes[0] = static_cast<std::uint8_t>((slice.bytes[0] & 0xE0) | idrSlice);
        return escaped(withMarking(slice, true));
    }
    const std::uint32_t number = shifted(slice.frameNumber, frameNumber_, sequence.frameNumberBits);
    wrapped_ = wrapped_ || number < latest_;
    latest_ = number;
    const auto isBefore = [&](const Slice::Operation& operation) {
        return operation.kind == 1 && !wrapped_ &&
               static_cast<std::uint32_t>(operation.operands[0]) + 1 > number;
    };
    if (std::erase_if(slice.marking, isBefore) == 0) return escaped(slice.bytes);
    return escaped(withMarking(slice, false));
}

Bytes FreshStart::withMarking(const Slice& slice, bool first) {
    BitWriter write;
    if (first) {
        // As an IDR picture it has an identifier, and another way to say which references stay.
        write.copy(slice.bytes, 0, slice.orderAt);
        write.number(0);
        write.copy(slice.bytes, slice.orderAt, slice.markingAt);
        write.bits(0, 2);
    } else {
        write.copy(slice.bytes, 0, slice.markingAt);
        write.bits(1, 1);
        for (const Slice::Operation& operation : slice.marking) {
            write.number(operation.kind);
            for (int operand = 0; operand < operation.count; ++operand)
                write.number(operation.operands[operand]);
        }
        write.number(0);
    }
    write.copy(slice.bytes, slice.restAt, slice.dataAt);
    const auto byte = [&](std::size_t bit) {
        return slice.bytes.begin() + static_cast<std::ptrdiff_t>(bit / 8);
    };
    if (slice.picture->arithmetic) {
        // Its data begin with a byte, after ones.
        while (write.position() % 8 != 0) write.bits(1, 1);
        Bytes bytes = write.take();
        bytes.insert(bytes.end(), byte(slice.dataAt + 7), slice.bytes.end());
        return bytes;
    }
    std::size_t end = 8 * slice.bytes.size();
    while (end > slice.dataAt && (*byte(end - 1) >> (7 - (end - 1) % 8) & 1) == 0) --end;
    write.copy(slice.bytes, slice.dataAt, end);
    return write.take();
}

}  // namespace vantle
