#include "copying/copy_plan.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <utility>

#include "media/audio_format.h"

namespace vantle {

namespace {

constexpr int compared = 2;  // seconds at either end of a longer stretch

std::string sizeText(Size size) { return std::to_string(size.width) + "x" + std::to_string(size.height); }

std::string rateText(AVRational rate) {
    char text[32] = "";
    std::snprintf(text, sizeof text, "%g", av_q2d(rate));
    return text;
}

std::string decibelText(double factor) {
    char text[32] = "";
    std::snprintf(text, sizeof text, "%+.1f dB", 20.0 * std::log10(factor));
    return text;
}

/// Why a clip's pictures cannot go into the film beside those of the model; empty when they can.
std::string mismatch(const Source& source, const AVCodecParameters& parameters, const Source& modelSource,
                     const AVCodecParameters& model) {
    const Colours own = completed(coloursOf(parameters), parameters.height);
    const Colours wanted = completed(coloursOf(model), model.height);
    if (parameters.codec_id != model.codec_id) return "its codec is not that of";
    if (parameters.format != model.format) return "its pixel format is not that of";
    if (own.range != wanted.range) return "its range of colours is not that of";
    if (own != wanted || parameters.chroma_location != model.chroma_location)
        return "its description of its colours is not that of";
    if (source.orientation != modelSource.orientation) return "it was held otherwise than";
    if (av_cmp_q(source.pixelAspect, modelSource.pixelAspect) != 0 || parameters.width != model.width ||
        parameters.height != model.height)
        return "its pixels are not shaped as those of";
    return {};
}

/// Whether pictures of this rate can show at their own times in a film: it has as many frames, or hardly
/// more. Of uneven ones it is not known better.
bool isNear(AVRational rate, bool even, AVRational film) {
    const double ratio = av_q2d(rate) / av_q2d(film);
    return ratio > 0.98 && (av_cmp_q(rate, film) <= 0 || (!even && ratio < 1.002));
}

/// Why a source's pictures cannot go into a film; empty when they can.
std::string refusalOf(const Film& film, const Source& source, const CodedSource& coded,
                      const CopyTerms& terms) {
    if (!source.isClip()) return source.name + ": is no clip; only clips can be copied";
    if (!isNear(source.rate, !coded.pictures || coded.pictures->even, film.canvas.rate))
        return source.name + ": shows " + rateText(source.rate) + " pictures a second and the film " +
               rateText(film.canvas.rate) + "; clips of one rate can be copied";
    if (!coded.pictures) return coded.refusal;
    const Size size = film.canvas.size;
    const Size even{source.size.width / 2 * 2, source.size.height / 2 * 2};  // as the film's is made
    if (size != source.size && size != even)
        return source.name + ": is " + sizeText(source.size) + " and the film " + sizeText(size) +
               "; clips of one size can be copied";
    if (!terms.orientation && source.orientation != Orientation{})
        return source.name +
               ": is turned, which this kind of file cannot say; into .mp4 or .mov it can be copied";
    return {};
}

/// Takes the first of these parts that can be copied as the model, and all that are like it.
void findAlike(CopyPlan& plan, const std::vector<std::shared_ptr<const CodedPictures>>& copyable) {
    const Film& film = plan.film;
    plan.pictures.assign(film.parts.size(), nullptr);
    const CodedPictures* model = nullptr;
    for (std::size_t i = 0; i < film.parts.size(); ++i) {
        if (!copyable[i]) continue;
        if (model == nullptr) {
            model = copyable[i].get();
            plan.model = i;
        }
        const Source& source = film.sourceOf(film.parts[i]);
        const std::string other =
            mismatch(source, *copyable[i]->parameters, plan.modelSource(), *model->parameters);
        if (other.empty())
            plan.pictures[i] = copyable[i];
        else
            plan.why[i] = source.name + ": " + other + " " + plan.modelSource().name +
                          "; clips made alike can be copied";
    }
}

/// Finds the audio of all parts that can be copied into the film's, and why that of others cannot. None when
/// they differ.
void findAudio(CopyPlan& plan, const std::vector<CodedSource>& coded) {
    const Film& film = plan.film;
    const auto encodeAll = [&](const std::string& why) {
        plan.audio.assign(film.parts.size(), nullptr);
        plan.audioWhy = {why};
    };
    if (!film.music.file.empty()) return encodeAll("music lies under the film");
    const AVCodecParameters* model = nullptr;
    for (std::size_t i = 0; i < film.parts.size(); ++i) {
        const Part& part = film.parts[i];
        if (!part.audible) continue;
        const Source& source = film.sourceOf(part);
        if (part.volume != 1.0) {
            plan.audioWhy.push_back(source.name + ": its volume is changed by " + decibelText(part.volume));
            continue;
        }
        if (!coded[part.source].audio)
            return encodeAll(source.name + ": its audio is not AAC-LC without gaps, which can be copied");
        const AVCodecParameters& parameters = *coded[part.source].audio->parameters;
        if (model == nullptr) model = &parameters;
        // The first two bytes say all that a decoder must know.
        if (!std::equal(parameters.extradata, parameters.extradata + 2, model->extradata) ||
            parameters.sample_rate != film.audio->sampleRate ||
            parameters.ch_layout.nb_channels != film.audio->channels)
            return encodeAll(source.name +
                             ": its audio is of another rate or other channels than the film's");
        plan.audio[i] = coded[part.source].audio;
    }
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

std::int64_t CopyPlan::copiedOf(std::size_t part) const {
    std::int64_t frames = 0;
    for (const Stretch& stretch : stretches)
        if (stretch.part == part) frames += stretch.frames;
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

CopyPlan planCopy(const Film& film, const std::vector<CodedSource>& coded, const CopyTerms& terms,
                  const TryEncoding& tryEncoding) {
    CopyPlan plan;
    plan.film = film;
    plan.audio.resize(film.parts.size());
    std::vector<std::shared_ptr<const CodedPictures>> copyable;
    std::vector<std::string> refusals;
    for (const Part& part : film.parts) {
        refusals.push_back(refusalOf(film, film.sourceOf(part), coded[part.source], terms));
        copyable.push_back(refusals.back().empty() ? coded[part.source].pictures : nullptr);
    }
    for (bool settled = false; !settled;) {
        plan.why = refusals;
        findAlike(plan, copyable);
        plan.stretches = layStretches(film, plan.pictures, plan.why);
        try {
            if (plan.copied() > 0 && plan.copied() < film.frames()) tryEncoding(plan);
            settled = true;
        } catch (const NotCopied& why) {
            // Others may do.
            for (std::size_t i = 0; i < film.parts.size(); ++i) {
                if (!plan.pictures[i]) continue;
                copyable[i] = nullptr;
                refusals[i] = why.what();
            }
        }
    }
    plan.shown = shownPictures(film, plan.stretches, plan.pictures);
    if (plan.copied() == 0 || !film.audio) return plan;
    if (terms.audio)
        findAudio(plan, coded);
    else
        plan.audioWhy.emplace_back("it is made by another encoder");
    const auto isCopied = [](const std::shared_ptr<const CodedAudio>& audio) { return audio != nullptr; };
    if (std::ranges::any_of(plan.audio, isCopied)) plan.audioPlan = planAudio(film, plan.audio);
    return plan;
}

}  // namespace vantle
