#include "copying/stretches.h"

#include <algorithm>
#include <utility>

namespace vantle {

namespace {

constexpr std::int64_t shortest = 2;  // frames of a stretch: two fresh ones in a row confuse browsers
constexpr int longestSeam = 12;       // seconds: a join, and ten up to the next keyframe

/// What can be copied from a random access point on.
struct Clean {
    std::int64_t end = 0;  ///< the source's frame behind it
    std::int64_t pictures = 0;
};

/// All pictures from a random access point on that are decoded before any from frame `limit` on.
Clean cleanFrom(const CodedPictures& coded, std::size_t start, std::int64_t limit) {
    const CodedPicture& first = coded.pictures[start];
    Clean clean{first.number, 0};
    const CodedPicture* latest = &first;
    std::int64_t count = 0;
    for (std::size_t i = start; i < coded.pictures.size(); ++i) {
        const CodedPicture& picture = coded.pictures[i];
        if (picture.time < first.time) continue;  // shown before it: left out
        if (picture.rank < 0 || picture.number >= limit) break;
        if (picture.rank > latest->rank) latest = &picture;
        if (latest->rank == first.rank + count++ && latest->end > latest->number)
            clean = {std::min(latest->end, limit), count};
    }
    return clean;
}

/// The first random access point from a frame on, in decoding order.
std::optional<std::size_t> randomAccessFrom(const CodedPictures& coded, std::int64_t frame,
                                            std::int64_t limit) {
    for (std::size_t i = 0; i < coded.pictures.size(); ++i)
        if (coded.pictures[i].randomAccess && coded.pictures[i].number >= frame &&
            coded.pictures[i].number < limit)
            return i;
    return {};
}

class Layout {
   public:
    Layout(const Film& film, const std::vector<std::shared_ptr<const CodedPictures>>& pictures,
           std::vector<std::string>& why)
        : film_(film), pictures_(pictures), why_(why) {}

    std::vector<Stretch> run() {
        for (std::size_t part = 0; part < film_.parts.size(); ++part)
            if (pictures_[part]) lay(part);
        std::int64_t next = 0;
        for (const Laid& laid : laid_) {
            encode(next, laid.first);
            stretches_.push_back({.first = laid.first,
                                  .frames = laid.end - laid.first,
                                  .part = laid.part,
                                  .rank = pictures_[laid.part]->pictures[laid.start].rank,
                                  .pictures = laid.pictures});
            next = laid.end;
        }
        encode(next, film_.frames());
        return std::move(stretches_);
    }

   private:
    struct Laid {
        std::size_t part;
        std::size_t start;
        std::int64_t first;  // frames of the film
        std::int64_t end;
        std::int64_t pictures;
    };

    void encode(std::int64_t first, std::int64_t end) {
        if (end <= first) return;
        bool isSeam = end - first <= framesIn(longestSeam, film_.canvas.rate);
        for (std::size_t i = 0; i < film_.parts.size(); ++i)
            if (film_.parts[i].start < end && film_.parts[i].end() > first)
                isSeam = isSeam && std::ranges::find(laid_, i, &Laid::part) != laid_.end();
        stretches_.push_back(
            {.first = first, .frames = end - first, .isSeam = isSeam, .pictures = end - first});
    }

    void lay(std::size_t number) {
        const Part& part = film_.parts[number];
        const CodedPictures& coded = *pictures_[number];
        const std::int64_t from = std::max(film_.fadeIn, number > 0 ? film_.joins[number - 1].end() : 0);
        const std::int64_t to =
            std::min(film_.frames() - film_.fadeOut,
                     number < film_.joins.size() ? film_.joins[number].start : part.end());
        const std::int64_t offset = part.offset();
        std::optional<std::size_t> start = randomAccessFrom(coded, from - offset, to - offset);
        if (start && isLoneFrame(coded.pictures[*start].number + offset))
            start = randomAccessFrom(coded, coded.pictures[*start].number + 1, to - offset);
        if (!start) {
            if (to - from > shortest)
                why_[number] = film_.sourceOf(part).name + ": has no keyframe in its frames " +
                               std::to_string(from - offset) + " to " + std::to_string(to - offset - 1) +
                               ", with which copying could begin; one every few seconds (x264: keyint) helps";
            return;
        }
        const Clean clean = cleanFrom(coded, *start, to - offset);
        const Laid laid{number, *start, coded.pictures[*start].number + offset, clean.end + offset,
                        clean.pictures};
        if (laid.end - laid.first >= shortest) laid_.push_back(laid);
    }

    /// True when a stretch that begins with `frame` would leave a single frame to be encoded before it. The
    /// stretch before it is shortened where that helps.
    bool isLoneFrame(std::int64_t frame) {
        if (laid_.empty()) return frame == 1;
        Laid& before = laid_.back();
        if (frame - before.end != 1) return false;
        const std::int64_t offset = film_.parts[before.part].offset();
        const Clean clean = cleanFrom(*pictures_[before.part], before.start, before.end - offset - 1);
        if (clean.end + offset - before.first < shortest) return true;
        before.end = clean.end + offset;
        before.pictures = clean.pictures;
        return false;
    }

    const Film& film_;
    const std::vector<std::shared_ptr<const CodedPictures>>& pictures_;
    std::vector<std::string>& why_;
    std::vector<Laid> laid_;
    std::vector<Stretch> stretches_;
};

}  // namespace

std::int64_t copiedFrames(const std::vector<Stretch>& stretches) {
    std::int64_t frames = 0;
    for (const Stretch& stretch : stretches)
        if (stretch.part) frames += stretch.frames;
    return frames;
}

std::int64_t framesIn(int seconds, AVRational rate) { return av_rescale(seconds, rate.num, rate.den); }

std::vector<Stretch> layStretches(const Film& film,
                                  const std::vector<std::shared_ptr<const CodedPictures>>& pictures,
                                  std::vector<std::string>& why) {
    return Layout(film, pictures, why).run();
}

}  // namespace vantle
