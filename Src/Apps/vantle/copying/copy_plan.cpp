#include "copying/copy_plan.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <map>
#include <utility>

#include "media/audio_format.h"

namespace vantle {

namespace {

constexpr std::int64_t shortest = 2;  // pictures of a stretch: two fresh ones in a row confuse browsers
constexpr int longestSeam = 12;       // seconds: a join, and ten up to the next keyframe
constexpr int compared = 2;           // seconds at either end of a longer stretch

std::int64_t framesIn(int seconds, AVRational rate) { return av_rescale(seconds, rate.num, rate.den); }

std::string sizeText(int width, int height) { return std::to_string(width) + "x" + std::to_string(height); }

std::string rateText(AVRational rate) {
    char text[32] = "";
    std::snprintf(text, sizeof text, "%g", av_q2d(rate));
    return text;
}

/// Why an input's pictures cannot go into the film beside those of the model; empty when they can.
std::string mismatch(const AVCodecParameters& parameters, const AVCodecParameters& model) {
    const auto range = [](const AVCodecParameters& of) {
        return of.color_range == AVCOL_RANGE_UNSPECIFIED ? AVCOL_RANGE_MPEG : of.color_range;
    };
    if (parameters.codec_id != model.codec_id) return "codec";
    if (parameters.format != model.format) return "pixel format";
    if (range(parameters) != range(model)) return "range of colours";
    if (parameters.color_space != model.color_space || parameters.color_primaries != model.color_primaries ||
        parameters.color_trc != model.color_trc || parameters.chroma_location != model.chroma_location)
        return "description of its colours";
    return {};
}

/// Why a source's pictures cannot go into a film; empty when they can.
std::string refusalOf(const Film& film, const Source& source, const CodedSource& coded) {
    if (av_cmp_q(source.rate, film.canvas.rate) != 0)
        return source.name + ": shows " + rateText(source.rate) + " pictures a second and the film " +
               rateText(film.canvas.rate) + "; clips of one rate can be copied";
    if (!coded.pictures) return coded.refusal;
    const AVCodecParameters& parameters = *coded.pictures->parameters;
    const Size& size = film.canvas.size;
    if (parameters.width != size.width || parameters.height != size.height)
        return source.name + ": is " + sizeText(parameters.width, parameters.height) + " and the film " +
               sizeText(size.width, size.height) + "; clips of one size can be copied";
    return {};
}

/// All pictures from a random access point on that are decoded before any from `limit` on: the number after
/// the last.
std::int64_t cleanEnd(const CodedPictures& coded, std::size_t start, std::int64_t limit) {
    const std::int64_t first = coded.pictures[start].number;
    std::int64_t end = first;
    std::int64_t latest = first;
    std::int64_t count = 0;
    for (std::size_t i = start; i < coded.pictures.size(); ++i) {
        const std::int64_t number = coded.pictures[i].number;
        if (number < first) continue;  // shown before it: left out
        if (number >= limit) break;
        latest = std::max(latest, number);
        if (latest == first + count++) end = latest + 1;
    }
    return end;
}

/// The first random access point from a picture on, in decoding order.
std::optional<std::size_t> randomAccessFrom(const CodedPictures& coded, std::int64_t number,
                                            std::int64_t limit) {
    for (std::size_t i = 0; i < coded.pictures.size(); ++i)
        if (coded.pictures[i].randomAccess && coded.pictures[i].number >= number &&
            coded.pictures[i].number < limit)
            return i;
    return {};
}

/// Lays copied stretches into a film, part after part.
class Layout {
   public:
    explicit Layout(CopyPlan& plan) : plan_(plan), film_(plan.film) {}

    void run() {
        for (std::size_t part = 0; part < film_.parts.size(); ++part)
            if (plan_.pictures[part]) lay(part);
        std::int64_t next = 0;
        for (const Laid& laid : laid_) {
            encode(next, laid.first);
            plan_.stretches.push_back({laid.first, laid.end - laid.first, laid.part});
            next = laid.end;
        }
        encode(next, film_.frames());
    }

   private:
    struct Laid {
        std::size_t part;
        std::size_t start;
        std::int64_t first;  // frames of the film
        std::int64_t end;
    };

    void encode(std::int64_t first, std::int64_t end) {
        if (end <= first) return;
        bool isSeam = end - first <= framesIn(longestSeam, film_.canvas.rate);
        for (std::size_t i = 0; i < film_.parts.size(); ++i)
            if (film_.parts[i].start < end && film_.parts[i].end() > first)
                isSeam = isSeam && std::ranges::find(laid_, i, &Laid::part) != laid_.end();
        plan_.stretches.push_back({first, end - first, {}, isSeam});
    }

    void lay(std::size_t number) {
        const Part& part = film_.parts[number];
        const CodedPictures& coded = *plan_.pictures[number];
        const std::int64_t from = number > 0 ? film_.joins[number - 1].end() : 0;
        const std::int64_t to = number < film_.joins.size() ? film_.joins[number].start : part.end();
        const std::int64_t offset = part.offset();
        std::optional<std::size_t> start = randomAccessFrom(coded, from - offset, to - offset);
        if (start && isLoneFrame(coded.pictures[*start].number + offset))
            start = randomAccessFrom(coded, coded.pictures[*start].number + 1, to - offset);
        if (!start) {
            if (to - from > shortest)
                plan_.refusals.push_back(
                    film_.sourceOf(part).name + ": has no keyframe in its frames " +
                    std::to_string(from - offset) + " to " + std::to_string(to - offset - 1) +
                    ", with which copying could begin; one every few seconds (x264: keyint) "
                    "helps");
            return;
        }
        const Laid laid{number, *start, coded.pictures[*start].number + offset,
                        cleanEnd(coded, *start, to - offset) + offset};
        if (laid.end - laid.first >= shortest) laid_.push_back(laid);
    }

    /// True when a stretch that begins with `frame` would leave a single frame to be encoded before it. The
    /// stretch before it is shortened where that helps.
    bool isLoneFrame(std::int64_t frame) {
        if (laid_.empty()) return frame == 1;
        Laid& before = laid_.back();
        if (frame - before.end != 1) return false;
        const std::int64_t offset = film_.parts[before.part].offset();
        const std::int64_t end =
            cleanEnd(*plan_.pictures[before.part], before.start, before.end - offset - 1) + offset;
        if (end - before.first < shortest) return true;
        before.end = end;
        return false;
    }

    CopyPlan& plan_;
    const Film& film_;
    std::vector<Laid> laid_;
};

/// Pictures by part; null where they cannot be copied.
using Copyable = std::vector<std::shared_ptr<const CodedPictures>>;

void addOnce(std::vector<std::string>& lines, const std::string& line) {
    if (std::ranges::find(lines, line) == lines.end()) lines.push_back(line);
}

/// Takes the first part that can be copied as the model, and all that are like it.
void findAlike(CopyPlan& plan, const Copyable& copyable) {
    const Film& film = plan.film;
    plan.pictures.assign(film.parts.size(), nullptr);
    const AVCodecParameters* model = nullptr;
    for (std::size_t i = 0; i < film.parts.size(); ++i) {
        if (!copyable[i]) continue;
        if (model == nullptr) {
            model = copyable[i]->parameters.get();
            plan.model = i;
        }
        const std::string other = mismatch(*copyable[i]->parameters, *model);
        if (other.empty())
            plan.pictures[i] = copyable[i];
        else
            addOnce(plan.refusals, film.sourceOf(film.parts[i]).name + ": its " + other + " is not that of " +
                                       film.sourceOf(film.parts[plan.model]).name +
                                       "; clips made alike can be copied");
    }
}

/// Finds the audio of all parts, and whether it can be copied as the film's.
bool findAudio(CopyPlan& plan, const std::vector<CodedSource>& coded) {
    if (!plan.film.audio || !plan.film.music.file.empty()) return false;
    const AVCodecParameters* model = nullptr;
    for (std::size_t i = 0; i < plan.film.parts.size(); ++i) {
        const Part& part = plan.film.parts[i];
        if (!part.audible) continue;
        plan.audio[i] = coded[part.source].audio;
        if (!plan.audio[i]) return false;
        const AVCodecParameters& parameters = *plan.audio[i]->parameters;
        if (model == nullptr) model = &parameters;
        // The first two bytes say all that a decoder must know.
        if (!std::equal(parameters.extradata, parameters.extradata + 2, model->extradata) ||
            parameters.sample_rate != plan.film.audio->sampleRate ||
            parameters.ch_layout.nb_channels != plan.film.audio->channels)
            return false;
    }
    return model != nullptr;
}

CodedSource scan(const Input& input, AVRational rate) {
    CodedSource coded;
    try {
        if (input.source().isClip())
            coded.pictures = std::make_shared<const CodedPictures>(codedPictures(input, rate));
    } catch (const NotCopied& why) {
        coded.refusal = why.what();
    }
    try {
        if (input.source().audio) coded.audio = std::make_shared<const CodedAudio>(codedAudio(input));
    } catch (const NotCopied&) {
        // Then all audio is encoded.
    }
    return coded;
}

}  // namespace

std::int64_t copiedFrames(const std::vector<Stretch>& stretches) {
    std::int64_t frames = 0;
    for (const Stretch& stretch : stretches)
        if (stretch.part) frames += stretch.frames;
    return frames;
}

bool CopyPlan::isCompared(const Stretch& stretch, std::int64_t frame) const {
    const std::int64_t near = framesIn(compared, film.canvas.rate);
    return stretch.isSeam || frame < stretch.first + near || frame >= stretch.end() - near;
}

const AVCodecParameters& CopyPlan::modelAudio() const {
    const auto has = [](const std::shared_ptr<const CodedAudio>& coded) { return coded != nullptr; };
    return *(*std::ranges::find_if(audio, has))->parameters;
}

std::vector<CodedSource> scanSources(const OpenFilm& open) {
    std::map<std::string, CodedSource> known;
    std::vector<CodedSource> coded;
    for (const std::unique_ptr<Input>& input : open.inputs) {
        const auto [found, isNew] = known.try_emplace(input->name());
        if (isNew) found->second = scan(*input, open.film().canvas.rate);
        coded.push_back(found->second);
    }
    return coded;
}

CopyPlan planCopy(const Film& film, const std::vector<CodedSource>& coded, bool keepsAudio,
                  const TryEncoding& tryEncoding) {
    CopyPlan plan;
    plan.film = film;
    plan.audio.resize(film.parts.size());
    Copyable copyable;
    std::vector<std::string> refusals;
    for (const Part& part : film.parts) {
        const Source& source = film.sourceOf(part);
        if (!source.isClip()) {
            addOnce(plan.noClips, source.name + ": is no clip; only clips can be copied");
            copyable.push_back(nullptr);
            continue;
        }
        const std::string refusal = refusalOf(film, source, coded[part.source]);
        if (!refusal.empty()) addOnce(refusals, refusal);
        copyable.push_back(refusal.empty() ? coded[part.source].pictures : nullptr);
    }
    for (bool settled = false; !settled;) {
        plan.refusals = refusals;
        findAlike(plan, copyable);
        plan.stretches.clear();
        Layout(plan).run();
        try {
            if (plan.copied() > 0 && plan.copied() < film.frames()) tryEncoding(plan);
            settled = true;
        } catch (const NotCopied& why) {
            // Others may do.
            refusals.emplace_back(why.what());
            for (std::size_t i = 0; i < film.parts.size(); ++i)
                if (plan.pictures[i]) copyable[i] = nullptr;
        }
    }
    if (plan.copied() > 0 && keepsAudio && findAudio(plan, coded))
        plan.audioPlan = planAudio(film, plan.audio);
    return plan;
}

}  // namespace vantle
