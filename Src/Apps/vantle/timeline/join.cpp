#include "timeline/join.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <optional>
#include <utility>

namespace vantle {

namespace {

[[noreturn]] void tooShort(const Clip& clip, std::int64_t frames, std::int64_t overlap) {
    throw Error(clip.name() + ": has " + std::to_string(frames) + " frames, fewer than the transition's " +
                std::to_string(overlap) + "; --duration makes it shorter");
}

/// The pictures of FROM in order. Where its overlap begins is known only once its end is in sight, so that
/// many pictures are read ahead; when they would take too much memory, the input is read twice instead.
class FromPictures {
   public:
    FromPictures(Clip& clip, const Canvas& canvas, std::int64_t overlap) : clip_(clip), overlap_(overlap) {
        constexpr std::int64_t mostAhead = std::int64_t{1} << 30;  // bytes
        constexpr std::int64_t bytesPerPixel = 2;
        const std::int64_t pixels = std::int64_t{canvas.size.width} * canvas.size.height;
        if (!clip.endless() && overlap * pixels * bytesPerPixel > mostAhead) {
            Clip counted(clip.name());
            counted.start(canvas, {});
            std::int64_t frames = 0;
            while (counted.next()) ++frames;
            setLength(frames);
        }
    }

    av::Frame next() {
        while (!ended_ && (!length_ || ahead_.empty()) && std::ssize(ahead_) <= overlap_) {
            av::Frame picture = clip_.next();
            ended_ = !picture;
            if (picture) ahead_.push_back(std::move(picture));
        }
        if (ended_ && !length_) setLength(given_ + std::ssize(ahead_));
        if (ahead_.empty()) return nullptr;
        av::Frame picture = std::move(ahead_.front());
        ahead_.pop_front();
        ++given_;
        return picture;
    }

    /// True when the picture last given lies in the overlap; from then on the length is known.
    bool inOverlap() const { return length_ && given_ > *length_ - overlap_; }

    std::int64_t length() const { return *length_; }

   private:
    void setLength(std::int64_t frames) {
        if (frames < overlap_) tooShort(clip_, frames, overlap_);
        length_ = frames;
    }

    Clip& clip_;
    std::int64_t overlap_;
    std::deque<av::Frame> ahead_;
    std::optional<std::int64_t> length_;
    std::int64_t given_ = 0;
    bool ended_ = false;
};

}  // namespace

void join(Clip& from, Clip& to, const Canvas& canvas, const Overlap& overlap, Renderer& renderer,
          Soundtrack* sound) {
    const auto duration = static_cast<double>(overlap.frames);
    FromPictures outgoing(from, canvas, overlap.frames);
    av::Frame lastFrom;
    av::Frame lastTo;
    std::int64_t k = 0;
    while (av::Frame picture = renderer.done() ? nullptr : outgoing.next()) {
        if (!outgoing.inOverlap()) {
            renderer.show(*picture);
            continue;
        }
        if (k == 0 && sound != nullptr) sound->endFrom(outgoing.length());
        av::Frame incoming = to.next();
        if (!incoming) tooShort(to, k, overlap.frames);
        renderer.mix(*picture, *incoming, static_cast<double>(k++), duration);
        lastFrom = std::move(picture);
        lastTo = std::move(incoming);
    }
    if (overlap.drawEnd && lastFrom && !renderer.done()) {
        if (av::Frame incoming = to.next()) lastTo = std::move(incoming);
        renderer.mix(*lastFrom, *lastTo, duration, duration);
    }
    while (av::Frame picture = renderer.done() ? nullptr : to.next()) renderer.show(*picture);
}

std::vector<Meeting> meetingsAt(Clip& from, Clip& to, const Canvas& canvas, std::int64_t overlapFrames,
                                std::span<const double> positions) {
    for (Clip* clip : {&from, &to})
        clip->start(canvas, clip->endless() ? std::optional(overlapFrames) : std::nullopt);
    FromPictures outgoing(from, canvas, overlapFrames);
    av::Frame fromPicture;
    av::Frame toPicture;
    std::int64_t fromSeen = 0;
    std::int64_t toSeen = 0;
    std::vector<Meeting> meetings;
    for (const double position : positions) {
        // A fraction such as 29 / 100 times 100 falls just short of frame 29, which is what is meant.
        const double frame = position * static_cast<double>(overlapFrames);
        const double drawn = std::abs(frame - std::round(frame)) < 1e-6 ? std::round(frame) : frame;
        // The picture of the overlap that shows at this position; at its very end TO's next one, if it has
        // one.
        const auto k = static_cast<std::int64_t>(drawn);
        while (fromSeen <= std::min(k, overlapFrames - 1)) {
            fromPicture = outgoing.next();
            if (!fromPicture) tooShort(from, fromSeen, overlapFrames);
            if (outgoing.inOverlap()) ++fromSeen;
        }
        for (; toSeen <= k; ++toSeen) {
            av::Frame picture = to.next();
            if (!picture && toSeen < overlapFrames) tooShort(to, toSeen, overlapFrames);
            if (picture) toPicture = std::move(picture);
        }
        meetings.push_back({av::share(*fromPicture), av::share(*toPicture), drawn});
    }
    return meetings;
}

}  // namespace vantle
