// Takes any bytes for a stream of H.264 or HEVC: whatever is read of it, a set that is stated anew says what
// it said before, and stays one unit; so does a slice that is counted from another picture on.
#include <algorithm>
#include <cstdlib>

#include "Host/error.h"
#include "media/fresh_start.h"

using namespace vantle;

static void require(bool holds) {
    if (!holds) std::abort();
}

static void readUnit(NalCodec codec, ByteView unit, int reorder, int level) {
    (void)kindOf(codec, unit);
    if (codec == NalCodec::h264) (void)pictureParameterSet(unit);
    const std::optional<SequenceParameterSet> before = sequenceParameterSet(codec, unit);
    const Bytes stated = restated(codec, unit, reorder, level);
    Bytes stream;
    const auto appended = appendUnit(stream, stated);
    if (codec == NalCodec::hevc) breakLink(appended);
    const std::vector<ByteView> units = unitsOf(stream);
    require(units.size() == 1 && units.front().size() == stated.size());
    if (!before) return require(std::ranges::equal(unit, stated));
    const SequenceParameterSet after = *sequenceParameterSet(codec, stated);
    require(after.id == before->id && after.profile == before->profile &&
            after.progressive == before->progressive && after.separatePlanes == before->separatePlanes);
    require(after.reorder == reorder && after.level == level && after.references >= before->references);
}

static void startAfresh(const std::vector<ByteView>& units) {
    std::vector<Bytes> sets;
    for (const ByteView unit : units) sets.emplace_back(unit.begin(), unit.end());
    FreshStart freshStart(sets);
    (void)freshStart.canBegin(units);
    for (bool first = true; const ByteView unit : units) {
        Bytes stream;
        appendUnit(stream, freshStart.rewritten(unit, first));
        require(unitsOf(stream).size() == 1);
        first = first && kindOf(NalCodec::h264, unit) != NalKind::slice;
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const NalCodec codec = data[0] % 2 == 0 ? NalCodec::h264 : NalCodec::hevc;
    const ByteView stream(data + 2, size - 2);
    const auto orSaysWhy = [](const auto& read) {
        try {
            read();
        } catch (const Error&) {
            // Damaged, and said to be.
        }
    };
    const std::vector<ByteView> units = unitsOf(stream);
    for (const ByteView unit : units) orSaysWhy([&] { readUnit(codec, unit, data[1] % 17, data[1]); });
    if (codec == NalCodec::h264) orSaysWhy([&] { startAfresh(units); });
    return 0;
}
