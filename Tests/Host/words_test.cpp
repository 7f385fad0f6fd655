#include "Host/words.h"

#include <gtest/gtest.h>

#include "Host/error.h"

TEST(Words, LeadFromWhatPeopleSayToWhatThereIs) {
    const vantle::Plugin plugin(PLUGIN_PATH);
    struct Case {
        const char* word;
        const char* meant;  ///< by one who asks for a transition of that name
        const char* found;  ///< by one who searches for it
    };
    const Case cases[] = {
        {"crossfade", R"("fade", "Dissolve 2" or "Zoom"?)", "Zoom, Dissolve 2, fade, "},
        {"fadetoblack", R"("fade-black" or "fade-white"?)", ""},
        {"IRIS", R"("Round_zoom_out", "Round_zoom_in" or )",
         "Round_zoom_out, Round_zoom_in, TrRoundZoomIn2, TrCirqueZoomIn, "},
        {"wipeleft", R"("Linear Wipe Right", )", "Linear Wipe Right, "},
        {"fan", R"("Pinwheel" or "sweep_clockwise"?)", "sweep_clockwise, Pinwheel, "},
        {"fancy", R"(called "fancy" ()", ""},
        {"Twirl", R"(mean "Twrl" or "Roll)", "Roll_clockwise, Twrl, "},
        {"Pinwhel", R"(mean "Pinwheel"?)", ""},
        {"shutter_1", R"(mean "Cross_shutter_1"?)", "Cross_shutter_1, "},
        {"round zoom", R"("Round_zoom_out")", "Round_zoom_out, Round_zoom_in, "},
        {"slats both", R"("Horizontal_shutter", )", "Cross_shutter_1, Cross_shutter_2, "},
    };
    for (const auto& [word, meant, found] : cases) {
        std::string all;
        for (const vantle::Transition& transition : plugin.joins())
            if (isFoundBy(transition, word)) all += shownName(transition) + ", ";
        EXPECT_EQ(all, found) << word;
        try {
            findTransition(plugin.joins(), word);
            ADD_FAILURE() << word;
        } catch (const vantle::UsageError& error) {
            EXPECT_NE(std::string(error.what()).find(meant), std::string::npos) << error.what();
        }
    }
}
