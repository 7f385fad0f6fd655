// The door that every exported function is, seen from a host: the accessors are this file's.
#include <gtest/gtest.h>

#include <regex>
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

std::string askedBy(const Traits& traits, bool out, bool from, bool to) {
    Frame frames[] = {{'o'}, {'f'}, {'t'}};
    const TransParam param{};
    asked.clear();
    transition(traits.function)(out ? &frames[0] : nullptr, from ? &frames[1] : nullptr,
                                to ? &frames[2] : nullptr, &param);
    return asked;
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

TEST(Door, AsksForEverythingInItsOrder) {
    for (const Traits& traits : transitionTable) {
        const std::string_view function = traits.function;
        const char* const order = function == "TrFadeNew"         ? "wo ho po co bo bf bt "
                                  : function == "TrCrossShutter1" ? "wo ho po bo bf bt wo wf co "
                                  : function == "TrColSplit2"     ? "wo ho po bo bf bt co wo wf "
                                                                  : "wo ho po bo bf bt co ";
        EXPECT_EQ(askedBy(traits, true, true, true).find(order), 0U) << function << ": " << asked;
        if (function == "TrFadeNew") continue;
        EXPECT_DEATH((broken = true, askedBy(traits, true, true, true)), "terminate called") << function;
    }
}

TEST(Door, AsksNothingOfNullButWidthsToBeChecked) {
    for (const Traits& traits : transitionTable)
        for (const int present : {0, 1, 2, 3, 4, 5, 6}) {
            askedBy(traits, present & 1, present & 2, present & 4);
            const bool checks = std::regex_match(traits.function, std::regex("TrCrossShutter1|TrColSplit2"));
            const std::string told = std::regex_replace(asked, std::regex(checks ? "w0" : ""), "");
            EXPECT_EQ(told.find('0'), std::string::npos) << traits.function << ": " << asked;
        }
}
