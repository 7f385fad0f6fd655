// The door that every exported function is, seen from a host: the accessors are this file's.
#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "transition_table.h"

using namespace tests;

namespace {

struct Frame {
    char letter;
    std::vector<std::uint8_t> bits = std::vector<std::uint8_t>(80);
};

std::string asked;  // what, and of which frame
bool broken = false;

std::int32_t ask(char what, DIImage image, std::int32_t answer) {
    if (broken) throw std::runtime_error("no accessor may do this");
    ((asked += what) += image != nullptr ? static_cast<Frame*>(image)->letter : '0') += ' ';
    return image != nullptr ? answer : 0;
}

std::string askedBy(TransFunc* draw, bool out, bool from, bool to) {
    Frame frames[] = {{'o'}, {'f'}, {'t'}};
    const TransParam param{};
    asked.clear();
    draw(out ? &frames[0] : nullptr, from ? &frames[1] : nullptr, to ? &frames[2] : nullptr, &param);
    return asked;
}

bool checks(const std::string& function) {
    return function == "TrCrossShutter1" || function == "TrColSplit2";
}

}  // namespace

VANTLE_API std::int32_t DIGetWidth(DIImage image) { return ask('w', image, 5); }
VANTLE_API std::int32_t DIGetHeight(DIImage image) { return ask('h', image, 4); }
VANTLE_API std::int32_t DIGetPitch(DIImage image) { return ask('p', image, 20); }
VANTLE_API std::int32_t DIGetBitCount(DIImage image) { return ask('c', image, 32); }
VANTLE_API std::uint8_t* DIGetBits(DIImage image) {
    ask('b', image, 0);
    return static_cast<Frame*>(image)->bits.data();
}

class Door : public testing::TestWithParam<Traits> {
   protected:
    const std::string function = GetParam().function;
    TransFunc* const draw = transition(function);
};

INSTANTIATE_TEST_SUITE_P(All, Door, testing::ValuesIn(transitionTable),
                         [](const auto& tested) { return tested.param.function; });

TEST_P(Door, AsksForEverythingInItsOrder) {
    const char* const order = function == "TrFadeNew"         ? "wo ho po co bo bf bt "
                              : function == "TrCrossShutter1" ? "wo ho po bo bf bt wo wf co "
                              : function == "TrColSplit2"     ? "wo ho po bo bf bt co wo wf "
                                                              : "wo ho po bo bf bt co ";
    EXPECT_EQ(askedBy(draw, true, true, true).find(order), 0U) << asked;
}

TEST_P(Door, AsksNothingOfNullButWidthsToBeChecked) {
    for (const int present : {0, 1, 2, 3, 4, 5, 6}) {
        std::string all = askedBy(draw, present & 1, present & 2, present & 4);
        for (std::size_t at; checks(function) && (at = all.find("w0")) != std::string::npos;)
            all.erase(at, 2);
        EXPECT_EQ(all.find('0'), std::string::npos) << asked;
    }
}

TEST_P(Door, LetsNoExceptionOut) {
    if (function == "TrFadeNew") return;
    EXPECT_DEATH((broken = true, askedBy(draw, true, true, true)), "terminate called");
}
