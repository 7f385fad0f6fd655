// The modules in the programs that they are for.
#include "vantle/command.h"

namespace tests {

class Hosts : public CommandTest {
   protected:
    /// Two stills of a size that is no multiple of 8, and clips that show them.
    Hosts() {
        ffmpeg("-f lavfi -i testsrc2=s=162x98 -frames:v 1 a.png");
        ffmpeg("-f lavfi -i mandelbrot=s=162x98 -frames:v 1 b.png");
        for (const std::string still : {"a", "b"})
            ffmpeg("-loop 1 -r 25 -i " + still + ".png -frames:v 20 -c:v ffv1 -pix_fmt bgr0 " + still +
                   ".mkv");
    }

    /// What the plug-in draws of the stills.
    Bytes drawn(const std::string& transition, double position) const {
        render("a.png b.png -t " + transition + " --at " + std::to_string(position) + " -o at.png --force");
        return rgb("at.png");
    }
};

TEST_F(Hosts, AreGivenTheirFilesInTheHomeOfAUserWhoGetsItBackAsItWas) {
    const std::string home = "export HOME=\"$PWD/home\" && unset XDG_DATA_HOME && ";
    const std::string script = home + SOURCE_FOLDER "/scripts/install-editors --build " BUILD_FOLDER " 2>&1";
    const auto told = [&](const std::string& command) { return shell(in(home + command)).text(); };
    const std::string all = "cd home && find . | sort | xargs -d '\\n' sha256sum 2>&1; find . | sort";
    told("mkdir -p home/.frei0r-1/lib home/.local/share/kdenlive; echo mine >home/.frei0r-1/lib/other.so");
    const std::string before = told(all);
    for ([[maybe_unused]] const char* const time : {"first", "again"}) {
        ASSERT_EQ(shell(in(script)).status, 0);
        EXPECT_EQ(told("cd home; ls .frei0r-1/lib/vantle_*.so .local/share/kdenlive/transitions/vantle_*.xml "
                       ".local/share/kdenlive/transitions/vantle_*.webp | wc -l"),
                  "135\n");
        EXPECT_NE(told("unset MLT_FREI0R_PLUGIN_PATH FREI0R_PATH; melt -query transitions 2>/dev/null")
                      .find("frei0r.vantle_cirque_zoom_in"),
                  std::string::npos);
    }
    EXPECT_EQ(shell(in(script + " --remove")).status, 0);
    EXPECT_EQ(told(all), before);
    // What is not from here, or no longer as it was, is nobody's to take.
    told("echo mine >home/.frei0r-1/lib/vantle_twrl.so");
    const std::string changed = told(all);
    EXPECT_NE(shell(in(script)).status, 0);
    EXPECT_EQ(told(all), changed);
}

// Frame k of an overlap of n frames is drawn at k / (n - 1): the first shows nothing but the outgoing clip,
// the last nothing but the incoming one.
TEST_F(Hosts, MeltJoinsClipsFromOneEndToTheOther) {
    std::ofstream(folder_ / "profile")
        << "description=small\nframe_rate_num=25\nframe_rate_den=1\nwidth=162\nheight=98\nprogressive=1\n"
           "sample_aspect_num=1\nsample_aspect_den=1\ndisplay_aspect_num=162\n"
           "display_aspect_den=98\ncolorspace=601\n";
    // Parameters are known by number and by name, the latter in Kdenlive's projects.
    for (const auto& [transition, mixer] :
         {std::pair{"Col_vantle", "vantle_col_vantle 0"}, {"Zoom", "vantle_zoom position"}}) {
        const Outcome melt =
            shell(in("MLT_FREI0R_PLUGIN_PATH=" MODULE_FOLDER " QT_QPA_PLATFORM=offscreen "
                     "SDL_VIDEODRIVER=dummy melt -profile profile a.mkv b.mkv -mix 6 -mixer frei0r." +
                     std::string(mixer) +
                     "='0=0;-1=1' -consumer avformat:%02d.png vcodec=png "
                     "pix_fmt=rgb24 mlt_image_format=rgb real_time=-1 an=1 2>&1"));
        ASSERT_EQ(melt.status, 0) << melt.text();
        for (int k = 0; k <= 5; ++k) {
            const std::string number = std::to_string(15 + k);
            EXPECT_EQ(rgb(number + ".png"), drawn(transition, k / 5.0)) << transition << " frame " << k;
        }
        for (const auto& [frame, still] :
             {std::pair{"14.png", "a.png"}, {"15.png", "a.png"}, {"20.png", "b.png"}, {"34.png", "b.png"}})
            EXPECT_EQ(rgb(frame), rgb(still)) << transition << " " << frame;
        EXPECT_FALSE(fs::exists(folder_ / "35.png"));
    }
}

TEST_F(Hosts, GStreamerDrawsThePositionThatItIsGiven) {
    for (const std::string still : {"a", "b"})
        ffmpeg("-i " + still + ".png -f rawvideo -pix_fmt rgba " + still + ".rgba");
    const std::string parsed = " ! rawvideoparse width=162 height=98 format=rgba framerate=25/1 ! mixer.";
    for (const double position : {0.0, 0.4, 1.0}) {
        // What it knows of its modules it keeps in a file, which shall be the test's own.
        const Outcome launched =
            shell(in("GST_REGISTRY=registry FREI0R_PATH=" MODULE_FOLDER
                     " gst-launch-1.0 -q frei0r-mixer-vantle--linear-wipe-down name=mixer position=" +
                     std::to_string(position) + " ! filesink location=out.rgba filesrc location=a.rgba" +
                     parsed + "sink_0 filesrc location=b.rgba" + parsed + "sink_1 2>&1"));
        ASSERT_EQ(launched.status, 0) << launched.text();
        ffmpeg("-f rawvideo -pix_fmt rgba -s 162x98 -i out.rgba out.png");
        EXPECT_EQ(rgb("out.png"), drawn("'Linear Wipe Down'", position)) << position;
    }
}

}  // namespace tests
