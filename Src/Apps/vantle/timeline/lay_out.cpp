#include "timeline/lay_out.h"

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <random>
#include <utility>

#include "Host/error.h"
#include "system/progress_bar.h"
#include "system/workers.h"

namespace vantle {

namespace {

/// What an input can show: its pictures from `first` to before `end`.
struct Range {
    std::int64_t first = 0;
    std::int64_t end = 0;
};

constexpr std::int64_t endlessFrames = std::int64_t{1} << 40;

std::string inSeconds(std::int64_t frames, AVRational rate) {
    char text[48] = "";
    std::snprintf(text, sizeof text, "%.2f s", static_cast<double>(frames) / av_q2d(rate));
    return text;
}

std::string count(std::int64_t frames) {
    return std::to_string(frames) + (frames == 1 ? " frame" : " frames");
}

Range rangeOf(const Shot& shot, Input& input, AVRational rate) {
    const std::int64_t length = input.endless() ? endlessFrames : input.frames(rate);
    Range range{0, length};
    if (shot.in) range.first = shot.in->frames(rate);
    if (shot.out) range.end = shot.out->frames(rate);
    if (range.first >= length)
        throw Error(input.name() + ": in lies after its end, " + inSeconds(length, rate) + " (" +
                    count(length) + ")");
    // A file's stated length may be rounded up by a part of a frame.
    if (range.end > length + 1)
        throw Error(input.name() + ": out lies after its end, " + inSeconds(length, rate) + " (" +
                    count(length) + ")");
    range.end = std::min(range.end, length);
    if (range.end <= range.first) throw Error(input.name() + ": out does not lie after in");
    return range;
}

}  // namespace

std::vector<const Transition*> transitionsFor(const Sequence& sequence, const Plugin& plugin,
                                              std::uint32_t seed) {
    std::vector<const Transition*> chosen;
    for (const Meeting& meeting : sequence.meetings) {
        const bool open = meeting.transition == "cut" || meeting.transition == "random";
        const Transition* const found = open ? nullptr : &plugin.find(meeting.transition);
        if (found != nullptr && found->draw == nullptr)
            throw Error("the plug-in lists \"" + found->name + "\" but does not have it yet");
        chosen.push_back(found);
    }
    std::vector<const Transition*> catalogue;
    for (const Transition& transition : plugin.transitions())
        if (transition.index && transition.draw != nullptr) catalogue.push_back(&transition);
    std::mt19937 random(seed);  // the same numbers everywhere
    for (std::size_t i = 0; i < chosen.size(); ++i) {
        if (sequence.meetings[i].transition != "random") continue;
        const Transition* const before = i > 0 ? chosen[i - 1] : nullptr;
        const Transition* const after = i + 1 < chosen.size() ? chosen[i + 1] : nullptr;
        std::vector<const Transition*> others;
        std::ranges::copy_if(catalogue, std::back_inserter(others), [&](const Transition* transition) {
            return transition != before && transition != after;
        });
        if (others.empty()) others = catalogue;
        if (others.empty()) throw Error("the plug-in has no transition");
        chosen[i] = others[random() % others.size()];
    }
    return chosen;
}

std::vector<std::unique_ptr<Input>> openInputs(const Sequence& sequence, bool quiet) {
    constexpr std::size_t keptOpen = 2;
    std::vector<std::unique_ptr<Input>> inputs(sequence.shots.size());
    ProgressBar progress(std::ssize(inputs), quiet || inputs.size() <= keptOpen, "input");
    std::mutex guard;
    std::int64_t opened = 0;
    inParallel(inputs.size(), [&](std::size_t i) {
        inputs[i] = std::make_unique<Input>(sequence.shots[i].file);
        if (!inputs[i]->endless()) inputs[i]->frames({1, 1});
        if (i >= keptOpen) inputs[i]->close();
        const std::scoped_lock lock(guard);
        progress.update(++opened);
    });
    return inputs;
}

Film layOut(const Sequence& sequence, std::span<const std::unique_ptr<Input>> inputs,
            const std::vector<const Transition*>& transitions, const Canvas& canvas, const Defaults& defaults,
            std::vector<std::string>& notes) {
    const AVRational rate = canvas.rate;
    std::vector<Range> ranges;
    for (std::size_t i = 0; i < inputs.size(); ++i)
        ranges.push_back(rangeOf(sequence.shots[i], *inputs[i], rate));

    std::vector<std::int64_t> overlaps;
    for (std::size_t i = 0; i < transitions.size(); ++i) {
        overlaps.push_back(transitions[i] != nullptr
                               ? sequence.meetings[i].duration.value_or(defaults.duration).frames(rate)
                               : 0);
        if (transitions[i] != nullptr && overlaps.back() < 1)
            throw UsageError("duration: shorter than one frame");
    }
    const auto around = [&](std::size_t shot, const std::vector<std::int64_t>& lengths) {
        return std::pair{shot > 0 ? lengths[shot - 1] : 0, shot < lengths.size() ? lengths[shot] : 0};
    };
    std::vector<std::int64_t> shrunk = overlaps;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        const std::int64_t length = ranges[i].end - ranges[i].first;
        const auto [before, after] = around(i, overlaps);
        if (before + after <= length) continue;
        if (!defaults.shrink)
            throw Error(inputs[i]->name() + ": shows " + count(length) + " (" + inSeconds(length, rate) +
                        "), fewer than the " + std::to_string(before + after) + " (" +
                        inSeconds(before + after, rate) +
                        ") that its transitions need; a shorter --duration helps, or --shrink");
        if (i > 0) shrunk[i - 1] = std::min(shrunk[i - 1], before * length / (before + after));
        if (i < shrunk.size()) shrunk[i] = std::min(shrunk[i], after * length / (before + after));
    }
    for (std::size_t i = 0; i < shrunk.size(); ++i)
        if (shrunk[i] != overlaps[i])
            notes.push_back("the transition from " + inputs[i]->name() + " to " + inputs[i + 1]->name() +
                            " is shortened from " + std::to_string(overlaps[i]) + " to " + count(shrunk[i]) +
                            (shrunk[i] == 0 ? ": a cut" : ""));

    Film film{canvas, {}, {}, defaults.drawsEnds};
    std::int64_t start = 0;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        const Shot& shot = sequence.shots[i];
        const auto [before, after] = around(i, shrunk);
        // What never ends shows for its hold outside its joins, unless it is told where to end.
        std::int64_t frames = ranges[i].end - ranges[i].first;
        if (inputs[i]->endless() && !shot.out)
            frames =
                std::max<std::int64_t>(before + after + shot.hold.value_or(defaults.hold).frames(rate), 1);
        film.parts.push_back(
            {inputs[i].get(), start, frames, ranges[i].first, shot.fit.value_or(canvas.fit), shot.mute});
        if (i == transitions.size()) break;
        start += frames - after;
        film.joins.push_back({after > 0 ? transitions[i] : nullptr, start, after});
    }
    // The end that is drawn is a frame of its own, whether or not the last input has one for it.
    if (film.drawsEnds && !film.joins.empty() && film.joins.back().transition != nullptr)
        film.parts.back().frames = std::max(film.parts.back().frames, film.joins.back().frames + 1);
    return film;
}

}  // namespace vantle
