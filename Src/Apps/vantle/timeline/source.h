/// What is known of a film's input without opening it again.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "media/canvas.h"

namespace vantle {

struct Source {
    /// Its audio.
    struct Audio {
        int stream = 0;
        int sampleRate = 0;
        int channels = 0;
    };

    std::string name;
    bool still = false;
    bool endless = false;          ///< it never ends of itself: a still, or a generated source without an end
    bool generated = false;        ///< no file
    bool copyable = false;         ///< its packets are of a kind that may be copied
    Size size{};                   ///< at which it shows: upright, with square pixels
    AVRational pixelAspect{1, 1};  ///< width of a stored pixel by its height
    Orientation orientation{};     ///< in which its pictures are stored
    bool interlaced = false;       ///< its pictures hold two moments each; they are shown deinterlaced
    AVRational rate{};  ///< pictures per second, that of a standard within a thousandth; 0/1 for a still
    AVRational timeBase{1, 1};   ///< unit of the times below, in seconds
    std::int64_t firstTime = 0;  ///< when its first picture shows
    std::int64_t length = 0;     ///< from then to the end of its last picture; 0 for an endless one
    std::optional<Audio> audio{};
    Colours colours{};
    int depth = 8;                              ///< bits of a colour
    std::string leftOut{};                      ///< what of it is left out, and why; empty when nothing is
    std::map<std::string, std::string> tags{};  ///< when, where and with which camera it was recorded

    /// Neither a still nor generated.
    bool isClip() const { return !still && !endless && !generated; }

    /// How many pictures it has in a grid of so many a second, at least 1; not for endless ones.
    std::int64_t frames(AVRational grid) const;

    /// The sample of its audio at which its first picture shows, counted from its time 0.
    std::int64_t startSample(int sampleRate) const;
};

}  // namespace vantle
