#include "copying/shown_pictures.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <span>

namespace vantle {

namespace {

/// The times of a stretch's pictures in their source, ascending.
std::vector<std::int64_t> timesIn(const CodedPictures& coded, const Stretch& stretch) {
    std::vector<std::int64_t> times(static_cast<std::size_t>(stretch.pictures));
    for (const CodedPicture& picture : coded.pictures)
        if (picture.rank >= stretch.rank && picture.rank < stretch.rank + stretch.pictures)
            times[static_cast<std::size_t>(picture.rank - stretch.rank)] = picture.time;
    return times;
}

}  // namespace

std::optional<std::int64_t> ShownPictures::find(std::size_t stretch, std::int64_t source) const {
    const auto next = stretch + 1 < first.size() ? first[stretch + 1] : std::ssize(pictures);
    const auto own = std::span(pictures).subspan(static_cast<std::size_t>(first[stretch]),
                                                 static_cast<std::size_t>(next - first[stretch]));
    const auto found = std::ranges::lower_bound(own, source, {}, &ShownPicture::source);
    if (found == own.end() || found->source != source) return {};
    return first[stretch] + (found - own.begin());
}

ShownPictures shownPictures(const Film& film, const std::vector<Stretch>& stretches,
                            const std::vector<std::shared_ptr<const CodedPictures>>& pictures) {
    const AVRational frame = av_inv_q(film.canvas.rate);
    const auto isUneven = [&](const Stretch& stretch) {
        return stretch.part && !pictures[*stretch.part]->even;
    };
    ShownPictures shown{.timeBase = frame};
    for (const Stretch& stretch : stretches) {
        if (!isUneven(stretch)) continue;
        // What a container can count with; what is finer than that is rounded.
        const std::int64_t finer =
            std::lcm(std::int64_t{shown.timeBase.den}, std::int64_t{pictures[*stretch.part]->timeBase.den});
        if (finer <= std::numeric_limits<int>::max()) shown.timeBase = {1, static_cast<int>(finer)};
    }
    const auto timeOf = [&](std::int64_t number) {
        return av_rescale_q_rnd(number, frame, shown.timeBase, AV_ROUND_NEAR_INF);
    };
    for (const Stretch& stretch : stretches) {
        shown.first.push_back(std::ssize(shown.pictures));
        if (!stretch.part) {
            for (std::int64_t i = stretch.first; i < stretch.end(); ++i)
                shown.pictures.push_back({timeOf(i), i});
            continue;
        }
        const CodedPictures& coded = *pictures[*stretch.part];
        const std::int64_t offset = film.parts[*stretch.part].offset();
        std::int64_t next = stretch.first;
        for (const std::int64_t time : timesIn(coded, stretch)) {
            const bool isOnGrid = coded.even || next == stretch.first;
            const std::int64_t own = timeOf(offset) + av_rescale_q_rnd(time - coded.start, coded.timeBase,
                                                                       shown.timeBase, AV_ROUND_NEAR_INF);
            shown.pictures.push_back({isOnGrid ? timeOf(next) : own, time});
            ++next;
        }
    }
    shown.end = timeOf(film.frames());
    return shown;
}

}  // namespace vantle
