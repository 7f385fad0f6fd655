#include "copying/copy_choice.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cstddef>

namespace vantle {

std::optional<CopyPlan> planCopies(const OpenFilm& open, CopyMode mode, const EncoderChoice& choice,
                                   bool keepsAudio, std::vector<std::string>& notes) {
    if (mode == CopyMode::never) return {};
    const Film& film = open.film();
    CopyPlan plan = planCopy(film, scanSources(open), keepsAudio,
                             [&](const CopyPlan& tried) { tryEncoding(tried, choice); });
    // Below a tenth it saves next to nothing, and all else would have to be like what is copied.
    const bool few = mode == CopyMode::automatic && plan.copied() > 0 && plan.copied() < film.frames() / 10;
    const bool none = few || plan.copied() == 0;
    if (few)
        plan.refusals = {std::to_string(plan.copied()) + " of " + std::to_string(film.frames()) +
                         " frames are too few"};
    else if (none && plan.refusals.empty() &&
             std::ranges::any_of(plan.pictures, [](const auto& coded) { return coded != nullptr; }))
        plan.refusals.emplace_back("all frames lie in joins");
    if (mode == CopyMode::always)
        plan.refusals.insert(plan.refusals.end(), plan.noClips.begin(), plan.noClips.end());
    if (!plan.refusals.empty()) {
        if (mode == CopyMode::always) throw Error("--copy always: " + plan.refusals.front());
        const std::size_t others = plan.refusals.size() - 1;
        notes.push_back((none ? "nothing is copied: " : "not copied: ") + plan.refusals.front() +
                        (others > 0 ? "; nor are " + std::to_string(others) + " more" : ""));
    }
    return none ? std::nullopt : std::optional(std::move(plan));
}

std::vector<std::string> losses(const Film& film, const std::optional<CopyPlan>& copies) {
    int kept = 8;
    if (copies)
        if (const auto* const format =
                av_pix_fmt_desc_get(static_cast<AVPixelFormat>(copies->modelPictures().parameters->format)))
            kept = format->comp[0].depth;
    const auto isDrawn = [&](std::size_t join) {
        return join < film.joins.size() && film.joins[join].transition;
    };
    std::vector<std::string> notes;
    for (std::size_t i = 0; i < film.parts.size(); ++i) {
        const Source& source = film.sourceOf(film.parts[i]);
        const auto tell = [&](const std::string& what) {
            const std::string note = source.name + ": " + what;
            if (std::ranges::find(notes, note) == notes.end()) notes.push_back(note);
        };
        if (!source.leftOut.empty()) tell(source.leftOut);
        if (source.colours.hdr())
            tell("its HDR colours are mapped to ordinary ones of 8 bits");
        else if (source.depth > 8 && !source.still &&
                 (source.depth > kept || isDrawn(i) || (i > 0 && isDrawn(i - 1))))
            tell("its colours of " + std::to_string(source.depth) + " bits become ones of 8" +
                 (source.depth > kept ? "" : " in joins"));
    }
    return notes;
}

}  // namespace vantle
