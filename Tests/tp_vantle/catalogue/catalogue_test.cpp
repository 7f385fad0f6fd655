#include "catalogue/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

#include "transition_table.h"

using namespace tests;

static const TransInfo* recordAt(std::int32_t index) {
    return exported<decltype(GetTransInfo)>("GetTransInfo")(index);
}

/// The text in a field; fails unless the field is zero from the text's terminator to its end.
template <std::size_t size>
static std::string textIn(const wchar_t (&field)[size]) {
    const wchar_t* const end = std::find(field, field + size, L'\0');
    EXPECT_LT(end, field + size);
    EXPECT_TRUE(std::all_of(end, field + size, [](wchar_t unit) { return unit == 0; }));
    return {field, end};
}

/// What hosts have known from the first are these; more may follow.
constexpr std::int32_t known = 42;

TEST(Catalogue, EntryPointsAnswerForEveryRecord) {
    auto* const type = exported<decltype(GetTransType)>("GetTransType");
    EXPECT_STREQ(type(), "vantle type");
    EXPECT_EQ(type(), type());
    EXPECT_EQ(recordAt(0), plugin().symbol("g_arTransInfo"));
    const std::int32_t count = exported<decltype(GetTransCount)>("GetTransCount")();
    EXPECT_EQ(count, std::ranges::count_if(vantle::transitionRows, [](auto row) { return *row.name != 0; }));
    EXPECT_GE(count, known);
    for (const std::int32_t none : {count, count + 1, -1, INT_MIN, INT_MAX})
        EXPECT_EQ(recordAt(none), nullptr) << none;
}

TEST(Catalogue, RecordsHoldTheirTextsAndFunctionsToTheLetter) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (std::int32_t index = 0; index < known; ++index) {
        const TransInfo& record = *recordAt(index);
        EXPECT_EQ(reinterpret_cast<const char*>(&record),
                  reinterpret_cast<const char*>(recordAt(0)) + 2848 * index);
        EXPECT_EQ(record.nType, 2) << index;
        const std::string& function = plugin().find(std::to_string(index)).function;
        EXPECT_EQ(record.pfnTransition, transition(function)) << function;
        for (const char c : textIn(record.szName) + "|" + textIn(record.szGuid) + "|" + function + "\n")
            hash = (hash ^ static_cast<std::uint8_t>(c)) * 0x100000001b3;
    }
    EXPECT_EQ(hash, 0x880c8241e2c5933f) << "FNV-1a of all names, GUIDs and functions";
}

TEST(Catalogue, HasNoRecordOfThreeThatAreExported) {
    for (const char* const function : {"TrCrossSplit2", "TrRoundZoomIn2", "TrCirqueZoomIn"})
        EXPECT_FALSE(plugin().find(function).index) << function;
}
