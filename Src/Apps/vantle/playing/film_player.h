/// A film's pictures and audio, played side by side.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>

#include "media/audio_format.h"
#include "playing/audio_mix.h"
#include "playing/film_reader.h"
#include "playing/open_film.h"
#include "playing/painter.h"
#include "timeline/film.h"

namespace vantle {

/// Gives the frames of a film, drawn, and its audio, each as it is asked for: what is read ahead of the other
/// waits in memory, so they are to be asked for side by side.
class FilmPlayer {
   public:
    /// The frames from `first` to before `end`, in this format, and with `audio` what is heard with them.
    FilmPlayer(const OpenFilm& open, std::int64_t first, std::int64_t end, const PictureFormat& format,
               const std::optional<AudioFormat>& audio);

    /// The next frame, its time counted in frames from `first`; null at the end.
    av::Frame picture();

    /// The next audio, its time counted in samples from the first; null at the end.
    av::Frame audio();

   private:
    void read();

    FilmReader reader_;
    Painter painter_;
    std::int64_t next_;  // the frame that is read next
    std::int64_t end_;
    std::deque<Moment> ahead_;  // that have been read for their audio
    std::int64_t shown_ = 0;
    std::optional<AudioMix> mix_;
    std::int64_t samples_ = 0;  // given so far
};

}  // namespace vantle
