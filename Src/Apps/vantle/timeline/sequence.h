/// What a film is asked for as: files, what of them is shown, and how they meet.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "media/canvas.h"

namespace vantle {

/// A moment or a length of time as a person gives it: in seconds, or in frames of the film.
struct Time {
    double value = 0.0;
    bool inFrames = false;

    std::int64_t frames(AVRational rate) const;
};

/// Reads `2.5` (seconds), `1:02.5`, `500ms` or `12f`; none when the text is no such time.
std::optional<Time> parseTime(const std::string& text);

/// Reads `contain`, `cover` or `stretch`; none when the text is no way to fit.
std::optional<Fit> parseFit(const std::string& text);

/// One input and what of it is shown.
struct Shot {
    std::string file;
    std::optional<Time> in{};    ///< its start when absent
    std::optional<Time> out{};   ///< exclusive; its end when absent
    std::optional<Time> hold{};  ///< how long an endless input shows outside its joins
    std::optional<Fit> fit{};
    bool mute = false;
};

/// How two shots meet.
struct Meeting {
    std::string transition{};  ///< catalogue name, index, GUID, function name, `random` or `cut`
    std::optional<Time> duration{};
};

/// Shots in order; meeting i lies between shots i and i + 1. This is what a command line, and a file that
/// describes a film, are read into.
struct Sequence {
    std::vector<Shot> shots;
    std::vector<Meeting> meetings;
};

}  // namespace vantle
