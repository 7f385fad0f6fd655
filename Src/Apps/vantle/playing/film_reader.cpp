#include "playing/film_reader.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

namespace vantle {

FilmReader::FilmReader(const OpenFilm& open, std::int64_t first, bool audio)
    : open_(open), film_(open.film()), frame_(first), audio_(audio) {}

Moment FilmReader::next() {
    const std::int64_t frame = frame_++;
    Moment moment;
    moment.light = film_.lightAt(static_cast<double>(frame));
    for (std::size_t i = 0; i < film_.joins.size(); ++i) {
        const Join& join = film_.joins[i];
        if (!join.transition) continue;
        const bool isEnd = film_.drawsEnds && frame == join.end();
        if (frame < join.start || (frame >= join.end() && !isEnd)) continue;
        moment.picture = pictureOf(i, std::min(frame, join.end() - 1));
        moment.incoming = pictureOf(i + 1, frame);
        moment.transition = open_.transitions[i];
        moment.position = static_cast<double>(frame - join.start);
        moment.duration = static_cast<double>(join.frames);
        return moment;
    }
    for (std::size_t i = 0; i < film_.parts.size() && !moment.picture; ++i)
        if (film_.parts[i].holds(frame)) moment.picture = pictureOf(i, frame);
    return moment;
}

av::Frame FilmReader::pictureOf(std::size_t number, std::int64_t frame) {
    const std::int64_t now = frame_ - 1;
    for (auto player = players_.begin(); player != players_.end();) {
        const Part& part = film_.parts[player->part];
        if (part.end() + (film_.drawsEnds ? 1 : 0) > now) {
            ++player;
            continue;
        }
        player = players_.erase(player);
        if (film_.parts.size() > 2) open_.inputOf(part).close();
    }
    const Part& part = film_.parts[number];
    auto player = std::ranges::find(players_, number, &Player::part);
    const bool isNew = player == players_.end();
    if (isNew) {
        players_.push_back(
            {number, Clip(open_.inputOf(part), film_, part, frame - part.offset(), audio_ && part.audible),
             nullptr});
        player = std::prev(players_.end());
    }
    // Past its end a part's last picture is asked for once more.
    if (isNew || part.holds(now)) player->last = player->clip.next();
    return av::share(*player->last);
}

std::vector<Moment> momentsOf(const OpenFilm& open, std::size_t number,
                              const std::vector<double>& positions) {
    const Film& film = open.film();
    const Join& join = film.joins.at(number);
    std::vector<Moment> moments;
    std::optional<Clip> clips[2];
    av::Frame pictures[2];
    std::int64_t next[2] = {0, 0};  // frames of the join
    for (const double position : positions) {
        // A fraction such as 29 / 100 times 100 falls just short of frame 29, which is what is meant.
        const double frame = position * static_cast<double>(join.frames);
        const double drawn = std::abs(frame - std::round(frame)) < 1e-6 ? std::round(frame) : frame;
        // The picture of the overlap that shows at this position; at its very end TO's next one, if it has
        // one.
        const auto k = static_cast<std::int64_t>(drawn);
        for (std::size_t side = 0; side < 2; ++side) {
            const Part& part = film.parts[number + side];
            const std::int64_t wanted = side == 0 ? std::min(k, join.frames - 1) : k;
            if (!clips[side]) {
                clips[side].emplace(open.inputOf(part), film, part, join.start - part.offset() + wanted,
                                    false);
                next[side] = wanted;
            }
            for (; next[side] <= wanted; ++next[side]) pictures[side] = clips[side]->next();
        }
        moments.push_back({av::share(*pictures[0]), av::share(*pictures[1]), open.transitions[number], drawn,
                           static_cast<double>(join.frames),
                           film.lightAt(static_cast<double>(join.start) + drawn)});
    }
    return moments;
}

}  // namespace vantle
