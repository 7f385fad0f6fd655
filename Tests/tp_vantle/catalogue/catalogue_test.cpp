#include "catalogue/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <set>

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

TEST(Catalogue, EntryPointsAnswerForFortyTwoRecords) {
    auto* const type = exported<decltype(GetTransType)>("GetTransType");
    EXPECT_STREQ(type(), "vantle type");
    EXPECT_EQ(type(), type());
    EXPECT_EQ(exported<decltype(GetTransCount)>("GetTransCount")(), 42);
    EXPECT_EQ(recordAt(0), plugin().symbol("g_arTransInfo"));
    for (const std::int32_t none : {42, 43, -1, INT_MIN, INT_MAX}) EXPECT_EQ(recordAt(none), nullptr) << none;
}

TEST(Catalogue, RecordsHoldTheirTextsToTheLetter) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (std::int32_t index = 0; index < 42; ++index) {
        const TransInfo& record = *recordAt(index);
        EXPECT_EQ(reinterpret_cast<const char*>(&record),
                  reinterpret_cast<const char*>(recordAt(0)) + 2848 * index);
        EXPECT_EQ(record.nType, 2) << index;
        for (const char c : textIn(record.szName) + "|" + textIn(record.szGuid) + "\n")
            hash = (hash ^ static_cast<std::uint8_t>(c)) * 0x100000001b3;
    }
    EXPECT_EQ(hash, 0x619e6131e72db26b) << "FNV-1a of all names and GUIDs";
}

TEST(Catalogue, RecordsPointAtTheFunctionsOfTheirNames) {
    std::set<std::pair<std::string, std::string>> expected, found;
    for (const Traits& traits : transitionTable) expected.emplace(traits.name, traits.function);
    for (const vantle::Transition& transition : plugin().transitions()) {
        EXPECT_NE(transition.draw, nullptr) << transition.name;
        found.emplace(transition.name, transition.function);
    }
    EXPECT_EQ(found, expected);
}
