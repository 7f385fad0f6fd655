#include "copying/film_pictures.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cstring>
#include <memory>
#include <span>
#include <utility>

namespace vantle {

namespace {

/// The reorder depth of a copied stretch: how many pictures, at most, are decoded before one and shown after
/// it.
int reorderOf(const CodedPictures& coded, const Stretch& stretch) {
    std::vector<std::int64_t> before;  // ranks of pictures coded so far that may show later, ascending
    std::ptrdiff_t most = 0;
    bool begun = false;
    for (const CodedPicture& picture : coded.pictures) {
        begun = begun || picture.rank == stretch.rank;
        if (!begun || picture.rank < stretch.rank || picture.rank >= stretch.rank + stretch.pictures)
            continue;
        const auto place = std::ranges::lower_bound(before, picture.rank);
        most = std::max(most, before.end() - place);
        before.insert(place, picture.rank);
        // Within the standards nothing waits for longer.
        if (before.size() > 64) before.erase(before.begin());
    }
    return static_cast<int>(most);
}

/// Whether a stretch begins at a recovery point.
bool isRecovery(const CodedPictures& coded, const Stretch& stretch) {
    return std::ranges::find(coded.pictures, stretch.rank, &CodedPicture::rank)->recovery;
}

av::Packet packetOf(const Bytes& bytes, const AVPacket& like) {
    av::Packet packet = av::makePacket();
    av::check(av_new_packet(packet.get(), static_cast<int>(bytes.size())), "packet");
    std::memcpy(packet->data, bytes.data(), bytes.size());
    packet->flags = like.flags & AV_PKT_FLAG_KEY;
    packet->pts = like.pts;
    packet->dts = like.dts;
    packet->duration = like.duration;
    return packet;
}

}  // namespace

CopiedPictures::CopiedPictures(const std::string& name, const CodedPictures& coded, std::int64_t first,
                               std::int64_t count)
    : stream_(coded.stream),
      input_(name),
      annexB_(coded.codec, input_.stream(coded.stream)),
      first_(first),
      left_(count) {
    input_.useAlone(stream_);
    const auto find = [&] {
        do ahead_ = input_.read(stream_);
        while (ahead_ && ahead_->pts < first_);
        return ahead_ && ahead_->pts == first_;
    };
    if (input_.seek(stream_, first_) && find()) return;
    input_.reopen();
    if (!find()) throw NotCopied(name + ": its picture at " + std::to_string(first) + " is not found again");
}

av::Packet CopiedPictures::next() {
    if (left_ == 0) return nullptr;
    av::Packet packet = std::move(ahead_);
    // Pictures shown before the first are of the stretch before.
    while (!packet || packet->pts < first_) {
        packet = input_.read(stream_);
        if (!packet) throw NotCopied(input_.name() + ": ends before its time");
    }
    --left_;
    // What comes with it beside its contents was for the source's container.
    av_packet_free_side_data(packet.get());
    return annexB_.converted(std::move(packet));
}

FilmPictures::FilmPictures(const OpenFilm& open, const CopyPlan& plan, const EncoderChoice& choice,
                           bool comparesAll)
    : open_(open), plan_(plan), comparesAll_(comparesAll), copiedSets_(plan.pictures.size()) {
    const NalCodec codec = plan.modelPictures().codec;
    const auto noteLevels = [&](const std::vector<Bytes>& sets) {
        for (const Bytes& set : sets)
            if (const auto sequence = sequenceParameterSet(codec, set))
                level_ = std::max(level_, sequence->level);
    };
    for (const Stretch& stretch : plan.stretches) {
        if (stretch.part) {
            reorder_ = std::max(reorder_, reorderOf(*plan.pictures[*stretch.part], stretch));
        } else if (!encoders_.contains(stretch.isSeam)) {
            const auto& encoder =
                encoders_.try_emplace(stretch.isSeam, plan, choice, stretch.isSeam).first->second;
            reorder_ = std::max(reorder_, encoder.reorder());
            noteLevels(encoder.parameterSets());
        }
    }
    for (const auto& pictures : plan.pictures)
        if (pictures) noteLevels(pictures->parameterSets);
    for (const auto& [seams, encoder] : encoders_)
        encodedSets_[seams] = restatedSets(encoder.parameterSets(), false);
    for (std::size_t i = 0; i < plan.pictures.size(); ++i) {
        if (!plan.pictures[i]) continue;
        const auto own = std::ranges::find(plan.stretches, i, &Stretch::part);
        const bool gaps = own != plan.stretches.end() && isRecovery(*plan.pictures[i], *own);
        copiedSets_[i] = restatedSets(plan.pictures[i]->parameterSets, gaps);
    }
}

std::vector<Bytes> FilmPictures::restatedSets(const std::vector<Bytes>& own, bool gaps) const {
    std::vector<Bytes> sets;
    for (const Bytes& set : own)
        sets.push_back(restated(plan_.modelPictures().codec, set, reorder_, level_, gaps));
    return sets;
}

AVStream& FilmPictures::addTo(Muxer& muxer) const {
    const CodedPictures& model = plan_.modelPictures();
    const av::Parameters parameters = copyOf(*model.parameters);
    // Those of the first stretch, and all others that do not take their place: beside being in each stretch.
    std::vector<Bytes> sets = copiedSets_[plan_.model];
    if (model.codec == NalCodec::h264)
        for (const auto& [seams, encoded] : encodedSets_)
            sets.insert(sets.end(), encoded.begin(), encoded.end());
    Bytes header;
    for (const Bytes& set : sets) appendUnit(header, set);
    av_freep(&parameters->extradata);
    parameters->extradata = static_cast<std::uint8_t*>(
        av::check(av_mallocz(header.size() + AV_INPUT_BUFFER_PADDING_SIZE), "parameters"));
    parameters->extradata_size = static_cast<int>(header.size());
    std::ranges::copy(header, parameters->extradata);
    parameters->codec_tag = 0;
    parameters->video_delay = reorder_;
    const Colours colours = completed(coloursOf(*parameters), parameters->height);
    parameters->color_space = colours.space;
    parameters->color_primaries = colours.primaries;
    parameters->color_trc = colours.transfer;
    parameters->color_range = colours.range;
    AVStream& stream = muxer.add(*parameters, timeBase(), plan_.film.canvas.rate);
    if (model.displayMatrix) muxer.turn(stream, *model.displayMatrix);
    return stream;
}

void FilmPictures::beginEncoding(const Stretch& stretch) {
    std::unique_ptr<Encoder> encoder = encoders_.at(stretch.isSeam).open();
    const Colours& like = plan_.modelSource().colours;
    player_.emplace(open_, stretch.first, stretch.end(),
                    PictureFormat{encoder->context().pix_fmt, like.space, like.range}, std::nullopt);
    encoding_.emplace(std::move(encoder), [this, stretch] {
        av::Frame picture = nextDrawn(stretch);
        if (picture && (comparesAll_ || plan_.isCompared(stretch, picture->pts)))
            drawn_.emplace(picture->pts, brightnessOf(*picture));
        return picture;
    });
}

av::Frame FilmPictures::nextDrawn(const Stretch& stretch) {
    av::Frame picture = player_->picture();
    if (!picture) return picture;
    picture->pts += stretch.first;
    const AVCodecParameters& model = *plan_.modelPictures().parameters;
    const Size size{model.width, model.height};
    if (plan_.orientation() == Orientation{} && size == plan_.film.canvas.size) return picture;
    if (!stored_) {
        std::vector<Filter> filters = upright(inverse(plan_.orientation()));
        filters.push_back(
            {"scale",
             {{"w", std::to_string(size.width)}, {"h", std::to_string(size.height)}, {"flags", "bicubic"}}});
        filters.push_back(
            {"format", {{"pix_fmts", av_get_pix_fmt_name(static_cast<AVPixelFormat>(picture->format))}}});
        stored_.emplace(*picture, timeBase(), filters);
    }
    const std::int64_t frame = picture->pts;
    stored_->push(std::move(picture));
    picture = stored_->pull();
    if (!picture) throw NotCopied("a picture cannot be turned as the film is stored");
    picture->pts = frame;
    picture->pict_type = AV_PICTURE_TYPE_NONE;
    return picture;
}

av::Packet FilmPictures::nextOfStretch() {
    const Stretch& stretch = plan_.stretches[stretch_];
    begun_ = encoding_ || copying_;
    if (!stretch.part) {
        if (!encoding_) beginEncoding(stretch);
        return encoding_->next();
    }
    if (!copying_) {
        const CodedPictures& coded = *plan_.pictures[*stretch.part];
        copying_.emplace(plan_.film.sourceOf(plan_.film.parts[*stretch.part]).name, coded,
                         plan_.shown.at(plan_.shown.first[stretch_]).source, stretch.pictures);
        if (isRecovery(coded, stretch)) freshStart_.emplace(coded.parameterSets);
    }
    return copying_->next();
}

void FilmPictures::endStretch() {
    const Stretch& stretch = plan_.stretches[stretch_++];
    copying_.reset();
    freshStart_.reset();
    if (!encoding_) return;
    encoding_.reset();
    player_.reset();
    for (const Part& part : plan_.film.parts)
        if (part.start < stretch.end() && part.end() > stretch.first) open_.inputOf(part).close();
}

av::Packet FilmPictures::next() {
    while (stretch_ < plan_.stretches.size()) {
        av::Packet packet = nextOfStretch();
        if (!packet) {
            endStretch();
            continue;
        }
        const ShownPictures& shown = plan_.shown;
        const std::optional<std::int64_t> place = shown.find(stretch_, packet->pts);
        if (!place) throw NotCopied("a picture comes that was not planned");
        packet->pts = shown.at(*place).time;
        packet->dts = decoded_ = std::max(decodedAt(packets_++ - reorder_), decoded_ + 1);
        packet->duration = shown.endOf(*place) - packet->pts;
        return rewritten(std::move(packet));
    }
    return nullptr;
}

std::int64_t FilmPictures::decodedAt(std::int64_t place) const {
    // A grid of its own, half a frame before that on which pictures show or to which they are nearest: where
    // they come unevenly, programs tell the film's rate from it.
    const AVRational frame = av_inv_q(plan_.film.canvas.rate);
    const ShownPictures& shown = plan_.shown;
    const std::int64_t nearest =
        place < 0 ? place : av_rescale_q_rnd(shown.at(place).time, shown.timeBase, frame, AV_ROUND_NEAR_INF);
    return av_rescale_q(nearest, frame, shown.timeBase) - av_rescale_q(1, frame, shown.timeBase) / 2;
}

av::Packet FilmPictures::rewritten(av::Packet packet) {
    const NalCodec codec = plan_.modelPictures().codec;
    const Stretch& stretch = plan_.stretches[stretch_];
    const std::vector<ByteView> units = unitsOf({packet->data, static_cast<std::size_t>(packet->size)});
    const bool key = (packet->flags & AV_PKT_FLAG_KEY) != 0;
    const auto isDropped = [&](ByteView unit) {
        const NalKind kind = kindOf(codec, unit);
        if (kind != NalKind::other) return kind == NalKind::parameterSet;
        // The encoder's own SEI, and what came from beside the packets.
        return !stretch.part ||
               std::ranges::any_of(plan_.pictures[*stretch.part]->headerSei,
                                   [&](const Bytes& sei) { return std::ranges::equal(sei, unit); });
    };
    if (!key && !freshStart_ && std::ranges::none_of(units, isDropped)) return packet;
    // In each stretch parameter sets come before each keyframe, for those who start there.
    Bytes contents;
    bool opened = !key;
    for (const ByteView unit : units) {
        if (!opened && kindOf(codec, unit) != NalKind::delimiter) {
            for (const Bytes& set :
                 stretch.part ? copiedSets_[*stretch.part] : encodedSets_.at(stretch.isSeam))
                appendUnit(contents, set);
            opened = true;
        }
        if (isDropped(unit)) continue;
        if (freshStart_) {
            appendUnit(contents, freshStart_->rewritten(unit, !begun_));
            continue;
        }
        const std::span<std::uint8_t> appended = appendUnit(contents, unit);
        if (!begun_ && codec == NalCodec::hevc) breakLink(appended);
    }
    return packetOf(contents, *packet);
}

}  // namespace vantle
