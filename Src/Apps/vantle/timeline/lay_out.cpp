#include "timeline/lay_out.h"

#include <algorithm>
#include <cstdio>
#include <random>
#include <utility>

#include "Host/error.h"
#include "timeline/film_shape.h"

namespace vantle {

namespace {

/// What an input can show: its pictures from `first` to before `end`.
struct Range {
    std::int64_t first = 0;
    std::int64_t end = 0;

    std::int64_t length() const { return end - first; }
};

constexpr std::int64_t endlessFrames = std::int64_t{1} << 40;
constexpr int finestRate = 192'000;     // of audio
constexpr double highestRate = 1000.0;  // as for --fps; damage and some raw streams state more

std::string inSeconds(std::int64_t frames, AVRational rate) {
    char text[48] = "";
    std::snprintf(text, sizeof text, "%.2f s", static_cast<double>(frames) / av_q2d(rate));
    return text;
}

std::string count(std::int64_t frames) {
    return std::to_string(frames) + (frames == 1 ? " frame" : " frames");
}

std::string text(Size size) { return std::to_string(size.width) + "x" + std::to_string(size.height); }

class Layout {
   public:
    Layout(const FilmRequest& request, std::vector<Source> sources,
           std::vector<std::optional<TransitionName>> transitions)
        : request_(request), transitions_(std::move(transitions)) {
        Film& film = laid_.film;
        film.sources = std::move(sources);
        film.drawsEnds = request.drawsEnds;
        film.music = request.music;
        film.fadeCurve = request.fadeCurve;
        const FilmShape shape = chooseShape(showings(), wish());
        if (!shape.why.empty()) laid_.notes.push_back(shape.why);
        film.canvas = {canvasSize(shape.size), shape.rate, request.fit};
        checkMusic();
        findRanges();
        findOverlaps();
        if (laid_.complaints.empty()) place();
    }

    LaidOut take() { return std::move(laid_); }

   private:
    void complain(const std::string& what, bool isUsage = false) {
        laid_.complaints.push_back({what, isUsage});
    }

    ShapeWish wish() const {
        const std::vector<Source>& sources = laid_.film.sources;
        return {.size = request_.firstSize ? sources.front().size : request_.size,
                .lines = request_.lines,
                .rate = request_.firstRate && !request_.rate ? commonRate(sources) : request_.rate,
                .isVideo = request_.isVideo,
                .copies = request_.copies};
    }

    std::vector<Showing> showings() const {
        const std::vector<Source>& sources = laid_.film.sources;
        // Which the film may have or not, but for how long something shows it is near enough.
        const AVRational rate = request_.rate.value_or(commonRate(sources));
        const auto overlap = [&](std::size_t meeting) {
            if (meeting >= transitions_.size() || !transitions_[meeting]) return std::int64_t{0};
            return request_.meetings[meeting].duration.value_or(request_.duration).frames(rate);
        };
        std::vector<Showing> all;
        for (std::size_t i = 0; i < sources.size(); ++i) {
            const Shot& shot = request_.shots[i];
            const Source& source = sources[i];
            const std::int64_t first = shot.in.value_or(Time{}).frames(rate);
            std::int64_t end = source.endless ? first : source.frames(rate);
            if (source.endless)
                end += (i > 0 ? overlap(i - 1) : 0) + overlap(i) +
                       shot.hold.value_or(request_.hold.value_or(Time{1})).frames(rate);
            if (shot.out) end = shot.out->frames(rate);
            const bool hasRate = source.rate.num > 0 && av_q2d(source.rate) <= highestRate;
            all.push_back({source.size, hasRate ? source.rate : AVRational{0, 1},
                           static_cast<double>(std::max<std::int64_t>(end - first, 0)) / av_q2d(rate),
                           source.isClip() ? std::optional(source.copyable) : std::nullopt});
        }
        return all;
    }

    Size canvasSize(Size size) {
        const std::vector<Source>& sources = laid_.film.sources;
        const auto model = std::ranges::find(sources, size, &Source::size);
        if (std::max(size.width, size.height) > largestSide)
            complain((model != sources.end() ? *model : sources.front()).name + ": its pictures show at " +
                     text(size) + ", and at most " + std::to_string(largestSide) +
                     " each can be rendered; --size makes them smaller");
        if (!request_.evenSize || (size.width % 2 == 0 && size.height % 2 == 0)) return size;
        if (request_.size) complain("--size: this kind of video needs an even width and height", true);
        return {std::max(size.width / 2 * 2, 2), std::max(size.height / 2 * 2, 2)};
    }

    void checkMusic() {
        const Music& music = request_.music;
        const AVRational rate = laid_.film.canvas.rate;
        if (music.out &&
            music.out->samples(rate, finestRate) <= music.in.value_or(Time{}).samples(rate, finestRate))
            complain(music.file + ": out does not lie after in");
    }

    void findRanges() {
        for (std::size_t i = 0; i < laid_.film.sources.size(); ++i)
            ranges_.push_back(rangeOf(request_.shots[i], laid_.film.sources[i]));
    }

    Range rangeOf(const Shot& shot, const Source& source) {
        const AVRational rate = laid_.film.canvas.rate;
        if (shot.hold && (!source.endless || shot.out))
            complain(source.name + (source.endless
                                        ? ": hold and out exclude each other; each says how long it shows"
                                        : ": hold is for stills; in and out say what of a clip is shown"));
        if (source.still && shot.in && !shot.out)
            complain(source.name + ": in is for clips; hold says how long a still shows");
        if (shot.motion && !source.still)
            complain(source.name + ": motion is for stills; a clip moves by itself");
        if (shot.volume != 1.0 && !source.audio)
            complain(source.name + ": has no audio whose volume could be changed");
        const std::int64_t length = source.endless ? endlessFrames : source.frames(rate);
        const std::string itsEnd = "its end, " + inSeconds(length, rate) + " (" + count(length) + ")";
        Range range{0, length};
        if (shot.in) range.first = shot.in->frames(rate);
        if (shot.out) range.end = shot.out->frames(rate);
        if (range.first >= length) {
            complain(source.name + ": in lies after " + itsEnd);
            return {0, length};
        }
        // A file's stated length may be rounded up by a part of a frame.
        if (range.end > length + 1) complain(source.name + ": out lies after " + itsEnd);
        range.end = std::min(range.end, length);
        if (range.length() > 0) return range;
        complain(source.name + ": out does not lie after in");
        return {0, length};
    }

    /// The overlaps before and after an input.
    static std::pair<std::int64_t, std::int64_t> around(std::size_t shot,
                                                        const std::vector<std::int64_t>& lengths) {
        return {shot > 0 ? lengths[shot - 1] : 0, shot < lengths.size() ? lengths[shot] : 0};
    }

    void findOverlaps() {
        const AVRational rate = laid_.film.canvas.rate;
        const std::vector<Source>& sources = laid_.film.sources;
        std::vector<std::int64_t> wanted;
        for (std::size_t i = 0; i < transitions_.size(); ++i) {
            wanted.push_back(
                transitions_[i] ? request_.meetings[i].duration.value_or(request_.duration).frames(rate) : 0);
            if (transitions_[i] && wanted.back() < 1) complain("duration: shorter than one frame", true);
        }
        overlaps_ = wanted;
        for (std::size_t i = 0; i < sources.size(); ++i) {
            const std::int64_t length = ranges_[i].length();
            const auto [before, after] = around(i, wanted);
            if (before + after <= length) continue;
            if (!request_.shrink)
                complain(sources[i].name + ": shows " + count(length) + " (" + inSeconds(length, rate) +
                         "), fewer than the " + std::to_string(before + after) + " (" +
                         inSeconds(before + after, rate) +
                         ") that its transitions need; a shorter --duration helps, or --shrink");
            if (i > 0) overlaps_[i - 1] = std::min(overlaps_[i - 1], before * length / (before + after));
            if (i < overlaps_.size())
                overlaps_[i] = std::min(overlaps_[i], after * length / (before + after));
        }
        for (std::size_t i = 0; i < overlaps_.size(); ++i)
            if (overlaps_[i] != wanted[i])
                laid_.notes.push_back("the transition from " + sources[i].name + " to " +
                                      sources[i + 1].name + " is shortened from " +
                                      std::to_string(wanted[i]) + " to " + count(overlaps_[i]) +
                                      (overlaps_[i] == 0 ? ": a cut" : ""));
    }

    void place() {
        Film& film = laid_.film;
        std::int64_t start = 0;
        for (std::size_t i = 0; i < film.sources.size(); ++i) {
            const Shot& shot = request_.shots[i];
            const Source& source = film.sources[i];
            const auto [before, after] = around(i, overlaps_);
            // What never ends shows for its hold outside its joins, unless it is told where to end.
            std::int64_t frames = ranges_[i].length();
            if (source.endless && !shot.out)
                frames = std::max<std::int64_t>(
                    before + after +
                        shot.hold.value_or(request_.hold.value_or(Time{1})).frames(film.canvas.rate),
                    1);
            film.parts.push_back({i, start, frames, ranges_[i].first, shot.fit.value_or(request_.fit),
                                  source.audio && !shot.mute && !request_.mute, shot.volume});
            if (i == transitions_.size()) break;
            start += frames - after;
            film.joins.push_back({after > 0 ? transitions_[i] : std::nullopt, start, after});
        }
        // The end that is drawn is a frame of its own, whether or not the last input has one for it.
        if (film.drawsEnds && !film.joins.empty() && film.joins.back().transition)
            film.parts.back().frames = std::max(film.parts.back().frames, film.joins.back().frames + 1);
        findFades();
        moveStills();
        film.audio = audioForm();
        // All from one input: a place of one and the camera of another would be true of neither.
        const auto tells = [](const Source& source) { return !source.tags.empty(); };
        if (const auto told = std::ranges::find_if(film.sources, tells); told != film.sources.end())
            film.tags = told->tags;
    }

    void findFades() {
        Film& film = laid_.film;
        const AVRational rate = film.canvas.rate;
        film.fadeIn = request_.fadeIn.value_or(Time{}).frames(rate);
        film.fadeOut = request_.fadeOut.value_or(Time{}).frames(rate);
        if (const std::int64_t both = film.fadeIn + film.fadeOut; both > film.frames())
            complain("--fade-in and --fade-out take " + count(both) + " (" + inSeconds(both, rate) +
                     ") together, and the film has " + count(film.frames()) + " (" +
                     inSeconds(film.frames(), rate) + ")");
    }

    void moveStills() {
        Film& film = laid_.film;
        for (Part& part : film.parts) {
            if (!film.sourceOf(part).still || !request_.shots[part.source].motion.value_or(request_.motion))
                continue;
            const double seconds = static_cast<double>(part.frames) / av_q2d(film.canvas.rate);
            part.motion = slowMotion(request_.seed.value_or(0), part.source, seconds);
        }
        if (request_.motion && std::ranges::none_of(film.sources, &Source::still))
            laid_.notes.emplace_back("--motion moves stills, and no input is one");
    }

    /// The first input's rate, and as many channels as all agree on, else two.
    std::optional<AudioParameters> audioForm() const {
        std::optional<AudioParameters> parameters;
        for (const Part& part : laid_.film.parts) {
            if (!part.audible) continue;
            const Source::Audio& audio = *laid_.film.sourceOf(part).audio;
            if (!parameters)
                parameters = {audio.sampleRate, audio.channels};
            else if (parameters->channels != audio.channels)
                parameters->channels = 2;
        }
        if (!parameters && !request_.music.file.empty()) parameters = {48000, 2};
        if (parameters) parameters->channels = request_.channels.value_or(parameters->channels);
        return parameters;
    }

    const FilmRequest& request_;
    std::vector<std::optional<TransitionName>> transitions_;
    std::vector<Range> ranges_;
    std::vector<std::int64_t> overlaps_;
    LaidOut laid_;
};

}  // namespace

AVRational commonRate(std::span<const Source> sources) {
    for (const Source& source : sources)
        if (source.rate.num > 0 && av_q2d(source.rate) <= highestRate) return source.rate;
    return {30, 1};
}

std::vector<std::optional<TransitionName>> chooseTransitions(const FilmRequest& request,
                                                             std::span<const Transition> catalogue,
                                                             std::vector<Complaint>& complaints) {
    // What else may be meant by a name that nothing has.
    std::vector<Transition> known(catalogue.begin(), catalogue.end());
    for (const char* const word : {"cut", "random"}) known.emplace_back().name = word;
    std::vector<const Transition*> chosen;
    for (const Meeting& meeting : request.meetings) {
        const bool isOpen = meeting.transition == "cut" || meeting.transition == "random";
        const Transition* found = nullptr;
        try {
            found = isOpen ? nullptr : &findTransition(known, meeting.transition);
            if (found != nullptr && found->draw == nullptr)
                complaints.push_back(
                    {"the plug-in lists \"" + found->name + "\" but does not have it yet", false});
        } catch (const UsageError& unknown) {
            complaints.push_back({unknown.what(), true});
        }
        chosen.push_back(found);
    }
    std::vector<const Transition*> drawn;
    for (const Transition& transition : known)
        if (transition.index && transition.draw != nullptr) drawn.push_back(&transition);
    std::mt19937 random(request.seed.value_or(0));  // the same numbers everywhere
    for (std::size_t i = 0; i < chosen.size(); ++i) {
        if (request.meetings[i].transition != "random") continue;
        const Transition* const before = i > 0 ? chosen[i - 1] : nullptr;
        const Transition* const after = i + 1 < chosen.size() ? chosen[i + 1] : nullptr;
        std::vector<const Transition*> others;
        std::ranges::copy_if(drawn, std::back_inserter(others), [&](const Transition* transition) {
            return transition != before && transition != after;
        });
        if (others.empty()) others = drawn;
        if (others.empty())
            complaints.push_back({"the plug-in has no transition", false});
        else
            chosen[i] = others[random() % others.size()];
    }
    std::vector<std::optional<TransitionName>> names;
    for (const Transition* const transition : chosen)
        names.push_back(transition != nullptr
                            ? std::optional(TransitionName{shownName(*transition), transition->function})
                            : std::nullopt);
    return names;
}

LaidOut layOut(const FilmRequest& request, std::vector<Source> sources,
               std::vector<std::optional<TransitionName>> transitions) {
    return Layout(request, std::move(sources), std::move(transitions)).take();
}

}  // namespace vantle
