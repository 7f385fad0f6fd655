#include "copying/coded_stream.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "media/annex_b.h"
#include "media/convert.h"
#include "media/fresh_start.h"

namespace vantle {

namespace {

/// Suggested to the user: remux.
constexpr std::string_view rewrap = "ffmpeg -i IN -c copy OUT.mp4 may mend that";

[[noreturn]] void refuse(const Input& input, const std::string& why) {
    throw NotCopied(input.name() + ": " + why);
}

ByteView contents(const AVPacket& packet) { return {packet.data, static_cast<std::size_t>(packet.size)}; }

NalCodec codecOf(const Input& input, const AVCodecParameters& parameters) {
    if (parameters.codec_id == AV_CODEC_ID_H264) return NalCodec::h264;
    if (parameters.codec_id == AV_CODEC_ID_HEVC) return NalCodec::hevc;
    refuse(input, std::string("is coded as ") + avcodec_get_name(parameters.codec_id) +
                      "; only H.264 and HEVC can be copied");
}

/// What is wrong with pictures of these parameters wherever they go.
void checkParameters(const Input& input, const AVCodecParameters& parameters) {
    const Source& source = input.source();
    const std::optional<DisplayMatrix> stated = input.displayMatrix();
    if (source.orientation != (stated ? orientationOf(*stated) : Orientation{}))
        refuse(input, "its pictures say themselves how they are turned; ffmpeg -i IN OUT.mp4 mends that");
    if (source.colours.hdr())
        refuse(input, "its HDR colours are mapped to ordinary ones; a clip of those can be copied");
    if (parameters.field_order > AV_FIELD_PROGRESSIVE)
        refuse(input, "its pictures are interlaced; deinterlaced ones (ffmpeg's filter bwdif) can be copied");
}

void checkParameterSets(const Input& input, NalCodec codec, const std::vector<Bytes>& sets) {
    for (const Bytes& set : sets) {
        const std::optional<SequenceParameterSet> sequence = sequenceParameterSet(codec, set);
        if (sequence && !sequence->progressive)
            refuse(input,
                   "its pictures are interlaced; deinterlaced ones (ffmpeg's filter bwdif) can be copied");
        const std::optional<PictureParameterSet> picture =
            codec == NalCodec::h264 ? pictureParameterSet(set) : std::nullopt;
        if ((sequence && sequence->separatePlanes) || (picture && picture->sliceGroups))
            refuse(input, "its pictures are coded in a way that few decoders know; others can be copied");
    }
}

/// A picture with whether decoding may begin with it, by what lies in its packet.
CodedPicture pictureIn(const Input& input, const AVPacket& packet, const CodedPictures& coded,
                       const FreshStart& freshStart) {
    bool fresh = true;
    const std::vector<ByteView> units = unitsOf(contents(packet));
    for (const ByteView unit : units) {
        switch (kindOf(coded.codec, unit)) {
            case NalKind::slice:
                fresh = false;
                break;
            case NalKind::foreign:
                refuse(input, "its pictures come in partitions or layers, which cannot be copied");
            case NalKind::parameterSet:
                if (std::ranges::none_of(coded.parameterSets,
                                         [&](const Bytes& set) { return std::ranges::equal(set, unit); }))
                    refuse(input, "its codec settings change on the way; ffmpeg -i IN OUT.mp4 mends that");
                break;
            default:
                break;
        }
    }
    const bool isKey = (packet.flags & AV_PKT_FLAG_KEY) != 0;
    const bool recovery = isKey && !fresh && coded.codec == NalCodec::h264 && freshStart.canBegin(units);
    return {.time = packet.pts,
            .rank = (packet.flags & AV_PKT_FLAG_DISCARD) == 0 ? 0 : -1,
            .randomAccess = isKey && (fresh || recovery),
            .recovery = recovery};
}

void checkPacket(const Input& input, const AVPacket& packet) {
    if (packet.pts == AV_NOPTS_VALUE) refuse(input, "its packets have no times; " + std::string(rewrap));
    if ((packet.flags & AV_PKT_FLAG_CORRUPT) != 0)
        refuse(input, "some of its packets are damaged; an undamaged one can be copied");
    for (const AVPacketSideData& side :
         std::span(packet.side_data, static_cast<std::size_t>(packet.side_data_elems)))
        if (side.type == AV_PKT_DATA_NEW_EXTRADATA || side.type == AV_PKT_DATA_ENCRYPTION_INFO ||
            side.type == AV_PKT_DATA_ENCRYPTION_INIT_INFO)
            refuse(input,
                   "its codec settings change on the way, or it is encrypted; ffmpeg -i IN OUT.mp4 may mend "
                   "that");
}

/// Numbers and ranks the pictures by their times.
void number(const Input& input, CodedPictures& coded, AVRational rate) {
    coded.start = input.source().firstTime;
    std::vector<CodedPicture*> shown;
    for (CodedPicture& picture : coded.pictures) {
        picture.number =
            av_rescale_q_rnd(picture.time - coded.start, coded.timeBase, av_inv_q(rate), AV_ROUND_NEAR_INF);
        if (picture.rank >= 0 && picture.time >= coded.start)
            shown.push_back(&picture);
        else
            picture.rank = -1;
    }
    if (shown.empty()) refuse(input, "has no pictures");
    std::ranges::sort(shown, {}, &CodedPicture::time);
    for (std::size_t i = 0; i < shown.size(); ++i) {
        CodedPicture& picture = *shown[i];
        picture.rank = static_cast<std::int64_t>(i);
        picture.end = i + 1 < shown.size() ? shown[i + 1]->number : std::numeric_limits<std::int64_t>::max();
        if (i > 0 && picture.time == shown[i - 1]->time)
            refuse(input, "two of its pictures show at one time; " + std::string(rewrap));
        const std::int64_t meant =
            av_rescale_q_rnd(picture.number, av_inv_q(rate), coded.timeBase, AV_ROUND_NEAR_INF);
        coded.even =
            coded.even && picture.number == picture.rank && std::abs(picture.time - coded.start - meant) <= 1;
    }
    // What an edit leaves out lies before or behind what it shows.
    for (const CodedPicture& picture : coded.pictures)
        if (picture.rank < 0 && picture.time > coded.start && picture.time < shown.back()->time)
            refuse(input,
                   "some of its pictures are left out in the middle, as it was cut without encoding; ffmpeg "
                   "-i IN OUT.mp4 mends that");
}

/// Leaves as random access points those across which nothing is shown in another order than it is decoded in,
/// but for what can be left out, and which show at their frames' ends.
void settleRandomAccess(CodedPictures& coded) {
    std::int64_t latest = std::numeric_limits<std::int64_t>::min();
    for (CodedPicture& picture : coded.pictures) {
        picture.randomAccess = picture.randomAccess && picture.rank >= 0 && latest < picture.time;
        latest = std::max(latest, picture.time);
    }
    std::int64_t earliest = std::numeric_limits<std::int64_t>::max();
    for (auto picture = coded.pictures.rbegin(); picture != coded.pictures.rend(); ++picture) {
        picture->randomAccess =
            picture->randomAccess && picture->end > picture->number &&
            (coded.codec == NalCodec::hevc || picture->recovery || earliest > picture->time);
        earliest = std::min(earliest, picture->time);
    }
}

}  // namespace

av::Parameters copyOf(const AVCodecParameters& parameters) {
    av::Parameters copy(av::check(avcodec_parameters_alloc(), "parameters"));
    av::check(avcodec_parameters_copy(copy.get(), &parameters), "parameters");
    return copy;
}

CodedPictures codedPictures(const Input& input, AVRational rate) try {
    Demuxer packets(input.name());
    const std::string_view format = packets.container().iformat->name;
    if (!format.starts_with("mov,") && !format.starts_with("matroska,") && format != "mpegts")
        refuse(input, "is no .mp4, .mov, .mkv or .ts file; " + std::string(rewrap));
    const int stream = *packets.best(AVMEDIA_TYPE_VIDEO);
    const AVCodecParameters& parameters = *packets.stream(stream).codecpar;
    const NalCodec codec = codecOf(input, parameters);
    checkParameters(input, parameters);
    if (parameters.extradata_size <= 0)
        refuse(input, "its packets lack a description; " + std::string(rewrap));
    AnnexB annexB(codec, packets.stream(stream));
    CodedPictures coded{.stream = stream,
                        .codec = codec,
                        .parameters = copyOf(parameters),
                        .parameterSets = annexB.header(true),
                        .headerSei = annexB.header(false),
                        .displayMatrix = input.displayMatrix(),
                        .timeBase = packets.stream(stream).time_base,
                        .pictures = {}};
    coded.parameters->sample_aspect_ratio = input.source().pixelAspect;
    checkParameterSets(input, codec, coded.parameterSets);
    const FreshStart freshStart(codec == NalCodec::h264 ? coded.parameterSets : std::vector<Bytes>{});
    packets.useAlone(stream);
    while (av::Packet packet = packets.read(stream)) {
        checkPacket(input, *packet);
        packet = annexB.converted(std::move(packet));
        coded.pictures.push_back(pictureIn(input, *packet, coded, freshStart));
    }
    if (packets.jumped()) refuse(input, "its times jump; " + std::string(rewrap));
    number(input, coded, rate);
    settleRandomAccess(coded);
    return coded;
} catch (const NotCopied&) {
    throw;
} catch (const Error& error) {
    // Whatever else is wrong with it: encoding may still manage.
    const std::string what = error.what();
    throw NotCopied(what.starts_with(input.name()) ? what : input.name() + ": " + what);
}

CodedAudio codedAudio(const Input& input) {
    const int stream = input.source().audio->stream;
    Demuxer packets(input.name());
    packets.useAlone(stream);
    const AVStream& source = packets.stream(stream);
    const AVCodecParameters& parameters = *source.codecpar;
    if (parameters.codec_id != AV_CODEC_ID_AAC || parameters.profile != FF_PROFILE_AAC_LOW ||
        parameters.frame_size != CodedAudio::frameSamples || parameters.extradata_size < 2)
        refuse(input, "its audio is not AAC-LC");
    CodedAudio coded{.stream = stream, .parameters = copyOf(parameters)};
    // Some files keep times in thousandths only.
    const double slack = std::max(1.0, parameters.sample_rate * av_q2d(source.time_base));
    while (const av::Packet packet = packets.read(stream)) {
        if (packet->pts == AV_NOPTS_VALUE) refuse(input, "its audio has no times");
        const double time =
            static_cast<double>(packet->pts) * av_q2d(source.time_base) * parameters.sample_rate;
        if (coded.packets == 0) coded.first = std::llround(time);
        const std::int64_t expected = coded.first + coded.packets * CodedAudio::frameSamples;
        if (std::abs(time - static_cast<double>(expected)) > slack ||
            (packet->flags & AV_PKT_FLAG_CORRUPT) != 0)
            refuse(input, "its audio has gaps");
        ++coded.packets;
    }
    return coded;
}

}  // namespace vantle
