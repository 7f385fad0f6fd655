#include "copying/copy_choice.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cstddef>

namespace vantle {

namespace {

void addOnce(std::vector<std::string>& lines, const std::string& line) {
    if (std::ranges::find(lines, line) == lines.end()) lines.push_back(line);
}

}  // namespace

CopyPlan planCopies(const OpenFilm& open, CopyMode mode, const EncoderChoice& choice,
                    const CopyTerms& terms) {
    const Film& film = open.film();
    if (mode == CopyMode::never) return {.film = film, .why = std::vector<std::string>(film.parts.size())};
    CopyPlan plan =
        planCopy(film, scanSources(open), terms, [&](const CopyPlan& tried) { tryEncoding(tried, choice); });
    std::vector<std::string> refused;
    std::vector<std::string> noClips;
    for (std::size_t i = 0; i < film.parts.size(); ++i)
        if (!plan.why[i].empty())
            addOnce(film.sourceOf(film.parts[i]).isClip() ? refused : noClips, plan.why[i]);
    // Below a tenth it saves next to nothing, and all else would have to be like what is copied.
    const std::int64_t copied = plan.copied();
    const bool few = mode == CopyMode::automatic && copied > 0 && copied < film.frames() / 10;
    const auto clip = [](const auto& pictures) { return pictures != nullptr; };
    if (few)
        refused = {std::to_string(copied) + " of " + std::to_string(film.frames()) +
                   (copied == 1 ? " frames is too few" : " frames are too few") +
                   "; more keyframes, or shorter joins, help"};
    else if (copied == 0 && refused.empty() && std::ranges::any_of(plan.pictures, clip))
        refused.emplace_back("all frames lie in joins; shorter ones (--duration) leave some");
    if (mode == CopyMode::always) {
        refused.insert(refused.end(), noClips.begin(), noClips.end());
        if (!refused.empty()) throw Error("--copy always: " + refused.front());
    }
    if (few || copied == 0) {
        plan.stretches.clear();
        for (std::size_t i = 0; i < film.parts.size(); ++i)
            if (plan.pictures[i] && plan.why[i].empty()) plan.why[i] = refused.front();
    }
    // That stills and generated inputs are encoded is no news.
    if (!refused.empty())
        plan.summary = (plan.stretches.empty() ? "nothing is copied: " : "not copied: ") + refused.front() +
                       (refused.size() > 1 ? (refused.size() > 2 ? "; nor are " : "; nor is ") +
                                                 std::to_string(refused.size() - 1) + " more"
                                           : "");
    return plan;
}

std::vector<std::string> losses(const CopyPlan& plan) {
    const Film& film = plan.film;
    int kept = 8;
    if (plan.copied() > 0)
        if (const auto* const format =
                av_pix_fmt_desc_get(static_cast<AVPixelFormat>(plan.modelPictures().parameters->format)))
            kept = format->comp[0].depth;
    const auto isDrawn = [&](std::size_t join) {
        return join < film.joins.size() && film.joins[join].transition;
    };
    const auto isFaded = [&](const Part& part) {
        return part.start < film.fadeIn || part.end() > film.frames() - film.fadeOut;
    };
    std::vector<std::string> notes;
    for (std::size_t i = 0; i < film.parts.size(); ++i) {
        const Source& source = film.sourceOf(film.parts[i]);
        const auto tell = [&](const std::string& what) { addOnce(notes, source.name + ": " + what); };
        if (!source.leftOut.empty()) tell(source.leftOut);
        if (source.interlaced) tell("its pictures are interlaced: they are deinterlaced, one a frame");
        if (source.colours.hdr())
            tell("its HDR colours are mapped to ordinary ones of 8 bits");
        else if (source.depth > 8 && !source.still &&
                 (source.depth > kept || isFaded(film.parts[i]) || isDrawn(i) || (i > 0 && isDrawn(i - 1))))
            tell("its colours of " + std::to_string(source.depth) + " bits become ones of 8" +
                 (source.depth > kept      ? ""
                  : isFaded(film.parts[i]) ? " in joins and fades"
                                           : " in joins"));
    }
    return notes;
}

}  // namespace vantle
