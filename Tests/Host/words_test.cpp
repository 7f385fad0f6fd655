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
        {"crossfade", "\"fade\", \"Dissolve 2\" or \"Zoom\"?", "Zoom, Dissolve 2, fade, "},
        {"fadetoblack", "\"fade-black\" or \"fade-white\"?", ""},
        {"IRIS", "\"Round_zoom_out\", \"Round_zoom_in\" or ",
         "Round_zoom_out, Round_zoom_in, TrRoundZoomIn2, TrCirqueZoomIn, "},
        {"wipeleft", "\"Linear Wipe Right\", ", "Linear Wipe Right, "},
        {"fan", "\"Pinwheel\" or \"sweep_clockwise\"?", "sweep_clockwise, Pinwheel, "},
        {"fancy", "called \"fancy\" (", ""},
        {"Twirl", "mean \"Twrl\" or \"Roll", "Roll_clockwise, Twrl, "},
        {"Pinwhel", "mean \"Pinwheel\"?", ""},
        {"shutter_1", "mean \"Cross_shutter_1\"?", "Cross_shutter_1, "},
        {"round zoom", "\"Round_zoom_out\"", "Round_zoom_out, Round_zoom_in, "},
        {"slats both", "\"Horizontal_shutter\", ", "Cross_shutter_1, Cross_shutter_2, "},
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
