#include <gtest/gtest.h>

#include <cstdio>
#include <regex>
#include <set>

#include "transition_table.h"

static std::set<std::string> wordsFrom(const char* command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command, "r"), pclose);
    std::set<std::string> words;
    for (char word[1024]; std::fscanf(output.get(), "%1023s", word) == 1;) words.insert(word);
    return words;
}

TEST(Exports, AreTheInterfaceAndNothingElse) {
    std::set<std::string> expected{"GetTransType", "GetTransCount", "GetTransInfo", "g_arTransInfo",
                                   "_Z10smoothStepfff"};
    for (const tests::Traits& traits : tests::transitionTable)
        expected.insert(tests::symbolOf(traits.function));
    std::set<std::string> exports =
        wordsFrom(NM " -D --defined-only --format=just-symbols \"" PLUGIN_PATH "\"");
    exports.erase("__odr_asan.g_arTransInfo");  // the address sanitizer's, in a build with it
    EXPECT_EQ(exports, expected);
}

// But for what the compiler and the standard library have, and what a sanitizer takes over from them.
TEST(Exports, NeedTheAccessorsAndTheLoggerAndNothingElse) {
    std::set<std::string> needed =
        wordsFrom(NM " -D --undefined-only --format=just-symbols \"" PLUGIN_PATH "\"");
    const std::regex common("__.*|_ITM_.*|_Z[nd][aw].*|[a-z]+|.*@.*");
    std::erase_if(needed, [&](const std::string& name) { return std::regex_match(name, common); });
    EXPECT_EQ(needed, (std::set<std::string>{"DIGetWidth", "DIGetHeight", "DIGetPitch", "DIGetBits",
                                             "DIGetBitCount", "QeltGetDefaultLogger"}));
}

TEST(Exports, BothPlatformLibrariesAreNeededByName) {
    const std::set<std::string> dynamic = wordsFrom(READELF " -d \"" PLUGIN_PATH "\"");
    for (const char* const library : {"[libBrix_ImageProc.so]", "[libQeltLogger.so]"})
        EXPECT_TRUE(dynamic.contains(library)) << library;
}
