// What decoders must know beforehand, changed bit by bit: sets written out by hand.
#include "media/parameter_sets.h"

#include <gtest/gtest.h>

#include <string_view>

#include "Host/error.h"

namespace tests {

using namespace vantle;

/// Whole bytes, then bits (spaces are passed over), then the one that marks the end.
Bytes unit(Bytes bytes, std::string_view bits) {
    std::size_t count = 0;
    const auto put = [&](int bit) {
        if (count % 8 == 0) bytes.push_back(0);
        bytes.back() = static_cast<std::uint8_t>(bytes.back() | bit << (7 - count++ % 8));
    };
    for (const char bit : bits)
        if (bit != ' ') put(bit - '0');
    put(1);
    return bytes;
}

TEST(ParameterSets, StateHowManyPicturesWaitAndKeepRoomForThoseReferredTo) {
    // Identifier 3, four references; then nothing but what decoders need not know, added with the statement.
    const std::string_view plain = "00100 1 011 00101 0 0001010 00110 1 1 0";
    const Bytes bare = unit({0x67, 66, 0, 30}, std::string(plain) + "0");
    const std::string added = std::string(plain) + "1 00000000 1 1 011 010 000010000 000010000";
    EXPECT_EQ(restated(NalCodec::h264, bare, 0, 40), unit({0x67, 66, 0, 40}, added + "1 00101"));
    EXPECT_EQ(restated(NalCodec::h264, bare, 6, 40), unit({0x67, 66, 0, 40}, added + "00111 00111"));
    const std::optional<SequenceParameterSet> read = sequenceParameterSet(NalCodec::h264, bare);
    ASSERT_TRUE(read);
    EXPECT_EQ(std::tuple(read->id, read->level, read->references, read->progressive),
              std::tuple(3, 30, 4, true));
    EXPECT_THROW(sequenceParameterSet(NalCodec::h264, ByteView(bare).first(6)), Error);
    // One that says: two wait, among three.
    const std::string high =
        "1 010 1 1 0 0 1 1 011 011 0 0001010 00110 1 1 0 1 00000000 1 1 1 1 0001011 0001011";
    const Bytes stated = unit({0x67, 100, 0, 30}, high + "011 00100");
    EXPECT_EQ(sequenceParameterSet(NalCodec::h264, stated)->reorder, 2);
    EXPECT_EQ(restated(NalCodec::h264, stated, 1, 30), unit({0x67, 100, 0, 30}, high + "010 00100"));
    EXPECT_EQ(restated(NalCodec::h264, stated, 4, 30), unit({0x67, 100, 0, 30}, high + "00101 00101"));
}

TEST(ParameterSets, OfHevcKeepWhatLooksLikeAStartCodeApart) {
    const auto head = [](std::uint8_t level) {
        return Bytes{0x42, 1, 1, 1, 0x60, 0, 0, 3, 3, 0x90, 0, 0, 3, 0, 0, 3, 0, level};
    };
    const std::string size = "1 010 000000010100001 0000001100001 0 1 1 00101 1";
    const std::string rest = "1 010 011 1 1 0 0 1 0";
    // One waits for none; two that wait need room beside the one that shows.
    const Bytes stated = unit(head(93), size + "010 1 1" + rest);
    EXPECT_EQ(sequenceParameterSet(NalCodec::hevc, stated)->references, 1);
    EXPECT_EQ(restated(NalCodec::hevc, stated, 2, 120), unit(head(120), size + "011 011 1" + rest));
    const Bytes other{0x40, 1, 0, 0, 3, 1};
    EXPECT_EQ(restated(NalCodec::hevc, other, 2, 120), other);
}

}  // namespace tests
