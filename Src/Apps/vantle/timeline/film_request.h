/// What a film is asked for as: files, what of them is shown, how they meet, and what holds for all of it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "media/canvas.h"
#include "timeline/fade_curve.h"
#include "timeline/time.h"

namespace vantle {

/// Reads `contain`, `cover`, `stretch` or `blur`; none when the text is no way to fit.
std::optional<Fit> parseFit(const std::string& text);

/// What `parseFit` reads as this.
const char* nameOf(Fit fit);

/// Reads a factor (`0.5`) or decibels (`-6dB`), up to ten or 20 dB; none when the text is no such volume.
std::optional<double> parseVolume(const std::string& text);

/// One input and what of it is shown.
struct Shot {
    std::string file;
    std::optional<Time> in{};    ///< its start when absent
    std::optional<Time> out{};   ///< exclusive; its end when absent
    std::optional<Time> hold{};  ///< how long an endless input shows outside its joins
    std::optional<Fit> fit{};
    Orientation turn{};            ///< of its upright pictures
    std::optional<bool> motion{};  ///< of a still
    bool mute = false;
    double volume = 1.0;  ///< a factor
};

/// How two shots meet.
struct Meeting {
    std::string transition{};  ///< catalogue name, index, GUID, function name, a fade, `random` or `cut`
    std::optional<Time> duration{};
};

/// What lies under a film.
struct Music {
    std::string file{};         ///< empty: none
    std::optional<Time> in{};   ///< its start when absent
    std::optional<Time> out{};  ///< exclusive; its end when absent
    double volume = 1.0;        ///< a factor
    bool duck = true;           ///< quieter where inputs are loud
};

/// Shots in order; meeting i lies between shots i and i + 1. A command line is one way to write this, a file
/// of an editor another.
struct FilmRequest {
    std::vector<Shot> shots{};
    std::vector<Meeting> meetings{};
    Time duration{1};                  ///< of an overlap
    std::optional<Time> hold{};        ///< of an endless input outside its joins; 1 second when absent
    std::optional<Size> size{};        ///< chosen for all inputs when absent
    bool firstSize = false;            ///< it is the first input's
    int lines = 0;                     ///< it is of 16:9, or 9:16 where most of the film is upright
    std::optional<AVRational> rate{};  ///< chosen for all inputs when absent
    bool firstRate = false;            ///< it is that of the first input that has one
    Fit fit = Fit::contain;
    std::optional<std::uint32_t> seed{};  ///< what `random` and motion follow from; 0 when absent
    bool motion = false;                  ///< the view moves over stills
    bool mute = false;                    ///< leaves out the audio of all inputs
    bool level = false;                   ///< brings all that is heard to one loudness
    FadeCurve fadeCurve = FadeCurve::qsin;
    Music music{};
    std::optional<Time> fadeIn{};   ///< from black and silence, of the whole film
    std::optional<Time> fadeOut{};  ///< to black and silence
    std::optional<int> channels{};  ///< of the audio; those of the inputs where they agree, else 2
    bool shrink = false;            ///< overlaps that are too long for their inputs are shortened
    bool drawsEnds = false;         ///< see Film
    bool evenSize = false;          ///< the pixel format halves the chroma
    bool isVideo = false;           ///< and not pictures
    bool copies = false;            ///< packets may be copied
};

}  // namespace vantle
