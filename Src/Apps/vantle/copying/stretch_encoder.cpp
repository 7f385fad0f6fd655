#include "copying/stretch_encoder.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <set>
#include <string_view>

#include "media/versions.h"
#include "output/movie_kind.h"

namespace vantle {

namespace {

/// Identifiers of sequence and picture sets that the plan's inputs use.
std::set<int> identifiers(const CopyPlan& plan) {
    std::set<int> used;
    for (const auto& pictures : plan.pictures) {
        if (!pictures || pictures->codec != NalCodec::h264) continue;
        for (const Bytes& set : pictures->parameterSets) {
            if (const auto sequence = sequenceParameterSet(NalCodec::h264, set)) used.insert(sequence->id);
            if (const auto picture = pictureParameterSet(set)) used.insert(picture->id);
        }
    }
    return used;
}

/// Seams are encoded fast, in a quality in which they do not stand out; what is longer as all films are.
av::Options ownOptions(const CopyPlan& plan, std::string_view encoder, bool seams) {
    av::Options options = usualOptions(encoder);
    if (encoder == "libx264") {
        // Its parameter sets must not take the place of those that copied pictures refer to, nor seams' those
        // of longer stretches.
        const std::set<int> used = identifiers(plan);
        int id = -1;
        for (int wanted = seams ? 1 : 2; wanted > 0;)
            if (!used.contains(++id)) --wanted;
        // At this quality most of the time would go into arithmetic coding, for six hundredths of the size.
        if (seams) options = {{"preset", "superfast"}, {"crf", "16"}, {"coder", "cavlc"}};
        options["x264-params"] = "sps-id=" + std::to_string(id);
    } else if (encoder == "libx265") {
        if (seams) options = {{"preset", "superfast"}, {"crf", "16"}};
        options["x265-params"] = "log-level=error:open-gop=0:info=0:repeat-headers=0";
    }
    return options;
}

/// With the user's; what both keep in a list of its own is put together.
av::Options withUsers(const av::Options& own, const av::Options& users) {
    av::Options options = withUsersOptions(own, users);
    for (const char* const list : {"x264-params", "x265-params"})
        if (own.contains(list) && users.contains(list)) options[list] = own.at(list) + ":" + users.at(list);
    return options;
}

}  // namespace

StretchEncoder::StretchEncoder(const CopyPlan& plan, const EncoderChoice& choice, bool seams)
    : plan_(plan), seams_(seams) {
    const CodedPictures& model = plan.modelPictures();
    const AVCodecParameters& parameters = *model.parameters;
    const std::string usual = model.codec == NalCodec::h264 ? "libx264" : "libx265";
    const std::string name = choice.name.empty() ? usual : choice.name;
    const auto refuse = [&](const std::string& why) {
        throw NotCopied(plan.modelSource().name + ": joins cannot be encoded like it: " + why);
    };
    codec_ = avcodec_find_encoder_by_name(name.c_str());
    if (codec_ == nullptr || codec_->id != parameters.codec_id)
        refuse(name + " does not make " + avcodec_get_name(parameters.codec_id) + "; " + usual + " does");
    const std::vector<AVPixelFormat> formats = av::pixelFormats(*codec_);
    const auto format = static_cast<AVPixelFormat>(parameters.format);
    if (!formats.empty() && std::ranges::find(formats, format) == formats.end())
        refuse(name + " does not take pictures of " + av_get_pix_fmt_name(format));
    options_ = withUsers(ownOptions(plan, name, seams), choice.options);
    try {
        const std::unique_ptr<Encoder> encoder = open();
        const AVCodecContext& context = encoder->context();
        reorder_ = context.has_b_frames;
        bool complete = false;
        for (const ByteView set :
             unitsOf({context.extradata, static_cast<std::size_t>(context.extradata_size)})) {
            if (kindOf(model.codec, set) != NalKind::parameterSet) continue;
            parameterSets_.emplace_back(set.begin(), set.end());
            if (const std::optional<SequenceParameterSet> sequence = sequenceParameterSet(model.codec, set)) {
                reorder_ = std::max(reorder_, sequence->reorder);
                complete = true;
            }
        }
        if (!complete) refuse(name + " does not say beforehand how it codes");
    } catch (const UsageError&) {
        throw;
    } catch (const NotCopied&) {
        throw;
    } catch (const Error& error) {
        refuse(error.what());
    }
}

std::unique_ptr<Encoder> StretchEncoder::open() const {
    return std::make_unique<Encoder>(*codec_, options_, [&](AVCodecContext& context) {
        const AVCodecParameters& like = *plan_.modelPictures().parameters;
        context.width = like.width;
        context.height = like.height;
        context.pix_fmt = static_cast<AVPixelFormat>(like.format);
        context.sample_aspect_ratio = like.sample_aspect_ratio;
        context.framerate = plan_.film.canvas.rate;
        context.time_base = av_inv_q(plan_.film.canvas.rate);
        context.color_range = like.color_range;
        context.colorspace = like.color_space;
        context.color_primaries = like.color_primaries;
        context.color_trc = like.color_trc;
        context.chroma_sample_location = like.chroma_location;
        context.profile = like.profile;
        if (seams_) {
            if (plan_.modelPictures().codec == NalCodec::h264) context.level = like.level;
            // They would need room among the references, and here they save neither time nor size.
            context.max_b_frames = 0;
        }
        context.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    });
}

void tryEncoding(const CopyPlan& plan, const EncoderChoice& choice) {
    for (const bool seams : {true, false}) {
        const auto needs = [&](const Stretch& stretch) { return !stretch.part && stretch.isSeam == seams; };
        if (std::ranges::any_of(plan.stretches, needs)) StretchEncoder(plan, choice, seams);
    }
}

}  // namespace vantle
