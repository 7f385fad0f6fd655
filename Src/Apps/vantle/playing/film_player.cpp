#include "playing/film_player.h"

#include "timeline/time.h"

namespace vantle {

FilmPlayer::FilmPlayer(const OpenFilm& open, std::int64_t first, std::int64_t end,
                       const PictureFormat& format, const std::optional<AudioFormat>& audio)
    : reader_(open, first, audio.has_value()),
      painter_(open.film().canvas.size, format),
      next_(first),
      end_(end) {
    if (audio) mix_.emplace(open, *audio, sampleOf(first, open.film().canvas.rate, audio->sampleRate), false);
}

void FilmPlayer::read() {
    ahead_.push_back(reader_.next());
    // At once: an input is closed when its pictures have been read.
    ++next_;
    if (mix_) mix_->advance(next_);
    if (mix_ && next_ == end_) mix_->finish();
}

av::Frame FilmPlayer::picture() {
    if (ahead_.empty() && next_ == end_) return nullptr;
    if (ahead_.empty()) read();
    av::Frame picture = painter_.paint(ahead_.front());
    ahead_.pop_front();
    // What a decoder noted of its own picture types is not for the encoder to follow.
    picture->pict_type = AV_PICTURE_TYPE_NONE;
    picture->pts = shown_++;
    return picture;
}

av::Frame FilmPlayer::audio() {
    for (;;) {
        if (av::Frame samples = mix_->pull()) {
            samples->pts = samples_;
            samples_ += samples->nb_samples;
            return samples;
        }
        if (next_ == end_) return nullptr;
        read();
    }
}

}  // namespace vantle
