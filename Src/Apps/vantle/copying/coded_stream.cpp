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
    if (source.orientation != Orientation{})
        refuse(input, "its pictures are turned upright; only those that are stored upright can be copied");
    if (av_cmp_q(source.pixelAspect, {1, 1}) != 0)
        refuse(input, "its pixels are not square; only square ones can be copied");
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

/// Whether decoding may begin with a packet, by what lies in it.
bool beginsAfresh(const Input& input, const AVPacket& packet, const CodedPictures& coded) {
    bool fresh = true;
    for (const ByteView unit : unitsOf(contents(packet))) {
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
    return fresh && (packet.flags & AV_PKT_FLAG_KEY) != 0;
}

void checkPacket(const Input& input, const AVPacket& packet) {
    if (packet.pts == AV_NOPTS_VALUE) refuse(input, "its packets have no times; " + std::string(rewrap));
    if ((packet.flags & AV_PKT_FLAG_DISCARD) != 0)
        refuse(input,
               "some of its packets are not to be shown, as it was cut without encoding; one cut at key "
               "pictures can be copied");
    if ((packet.flags & AV_PKT_FLAG_CORRUPT) != 0)
        refuse(input, "some of its packets are damaged; an undamaged one can be copied");
    for (const AVPacketSideData& side :
         std::span(packet.side_data, static_cast<std::size_t>(packet.side_data_elems)))
        if (side.type == AV_PKT_DATA_NEW_EXTRADATA || side.type == AV_PKT_DATA_ENCRYPTION_INFO ||
            side.type == AV_PKT_DATA_ENCRYPTION_INIT_INFO)
            refuse(input, "its codec settings change on the way, or it is encrypted");
}

/// Numbers the pictures by their times, which must lie on the grid of the film and fill it.
void number(const Input& input, CodedPictures& coded) {
    std::vector<std::int64_t> times;
    for (const CodedPicture& picture : coded.pictures) times.push_back(picture.time);
    if (times.empty()) refuse(input, "has no pictures");
    const std::int64_t first = std::ranges::min(times);
    if (first != input.source().firstTime)
        refuse(input,
               "its first pictures cannot be decoded; a clip that begins with a keyframe can be copied");
    coded.start = first;
    std::vector<bool> seen(times.size());
    for (std::size_t i = 0; i < times.size(); ++i) {
        const double place =
            static_cast<double>(times[i] - first) * av_q2d(coded.timeBase) * av_q2d(coded.rate);
        const auto nearest = std::llround(place);
        const bool onGrid = std::abs(place - static_cast<double>(nearest)) <= 0.3;
        if (!onGrid || nearest >= std::ssize(times) || seen[static_cast<std::size_t>(nearest)])
            refuse(input,
                   "its pictures do not follow each other at the film's even pace; with another input first, "
                   "or --fps, "
                   "they may");
        seen[static_cast<std::size_t>(nearest)] = true;
        coded.pictures[i].number = nearest;
    }
}

/// Leaves as random access points those across which nothing is shown in another order than it is decoded in,
/// but for what HEVC lets one leave out.
void settleRandomAccess(CodedPictures& coded) {
    std::int64_t latest = -1;
    for (CodedPicture& picture : coded.pictures) {
        picture.randomAccess = picture.randomAccess && latest < picture.number;
        latest = std::max(latest, picture.number);
    }
    std::int64_t earliest = std::numeric_limits<std::int64_t>::max();
    for (auto picture = coded.pictures.rbegin(); picture != coded.pictures.rend(); ++picture) {
        if (coded.codec == NalCodec::h264)
            picture->randomAccess = picture->randomAccess && earliest > picture->number;
        earliest = std::min(earliest, picture->number);
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
    if (!format.starts_with("mov,") && !format.starts_with("matroska,"))
        refuse(input, "is no .mp4, .mov or .mkv file; " + std::string(rewrap));
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
                        .timeBase = packets.stream(stream).time_base,
                        .rate = rate,
                        .pictures = {}};
    checkParameterSets(input, codec, coded.parameterSets);
    packets.useAlone(stream);
    while (av::Packet packet = packets.read(stream)) {
        checkPacket(input, *packet);
        packet = annexB.converted(std::move(packet));
        coded.pictures.push_back(
            {.time = packet->pts, .number = 0, .randomAccess = beginsAfresh(input, *packet, coded)});
    }
    if (packets.jumped()) refuse(input, "its times jump; " + std::string(rewrap));
    number(input, coded);
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
