#include "copying/film_pictures.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

namespace vantle {

namespace {

/// The reorder depth of a copied stretch: how many pictures, at most, are decoded before one and shown after
/// it.
int reorderOf(const CodedPictures& coded, std::int64_t first, std::int64_t end) {
    std::vector<std::int64_t> before;  // numbers of pictures coded so far that may show later, ascending
    std::ptrdiff_t most = 0;
    bool begun = false;
    for (const CodedPicture& picture : coded.pictures) {
        begun = begun || (picture.randomAccess && picture.number == first);
        if (!begun || picture.number < first || picture.number >= end) continue;
        const auto place = std::ranges::lower_bound(before, picture.number);
        most = std::max(most, before.end() - place);
        before.insert(place, picture.number);
        // Within the standards nothing waits for longer.
        if (before.size() > 64) before.erase(before.begin());
    }
    return static_cast<int>(most);
}

av::Packet packetOf(const Bytes& bytes, const AVPacket& like) {
    av::Packet packet = av::makePacket();
    av::check(av_new_packet(packet.get(), static_cast<int>(bytes.size())), "packet");
    std::memcpy(packet->data, bytes.data(), bytes.size());
    packet->flags = like.flags & AV_PKT_FLAG_KEY;
    packet->pts = like.pts;
    packet->dts = like.dts;
    return packet;
}

}  // namespace

EncodedPictures::EncodedPictures(const OpenFilm& open, const CopyPlan& plan, const StretchEncoder& encoder,
                                 const Stretch& stretch, bool comparesAll)
    : open_(open),
      plan_(plan),
      stretch_(stretch),
      comparesAll_(comparesAll),
      encoder_(encoder.open()),
      reader_(open, stretch.first, false),
      painter_(plan.film.canvas.size,
               {encoder_->context().pix_fmt, open.inputOf(plan.film.parts[plan.model]).first().colorspace,
                open.inputOf(plan.film.parts[plan.model]).first().color_range}),
      frame_(stretch.first) {}

EncodedPictures::~EncodedPictures() {
    for (const Part& part : plan_.film.parts)
        if (part.start < stretch_.end() && part.end() > stretch_.first) open_.inputOf(part).close();
}

av::Packet EncodedPictures::next() {
    for (;;) {
        if (av::Packet packet = encoder_->receive()) return packet;
        if (flushed_) return nullptr;
        flushed_ = frame_ == stretch_.end();
        if (flushed_) {
            encoder_->send(nullptr);
            continue;
        }
        const av::Frame picture = painter_.paint(reader_.next());
        picture->pict_type = AV_PICTURE_TYPE_NONE;
        picture->pts = frame_;
        if (comparesAll_ || plan_.isCompared(stretch_, frame_))
            drawn_.emplace(frame_, brightnessOf(*picture));
        ++frame_;
        encoder_->send(picture.get());
    }
}

CopiedPictures::CopiedPictures(const std::string& name, const CodedPictures& coded, std::int64_t first,
                               std::int64_t count)
    : coded_(coded), input_(name), first_(first), left_(count) {
    input_.useAlone(coded.stream);
    const auto start = std::ranges::find_if(coded.pictures, [&](const CodedPicture& picture) {
        return picture.randomAccess && picture.number == first;
    });
    const auto find = [&] {
        do ahead_ = input_.read(coded_.stream);
        while (ahead_ && coded_.numberOf(*ahead_) < first_);
        return ahead_ && coded_.numberOf(*ahead_) == first_;
    };
    if (input_.seek(coded.stream, start->time) && find()) return;
    input_.reopen();
    if (!find()) throw NotCopied(name + ": its picture " + std::to_string(first) + " is not found again");
}

av::Packet CopiedPictures::next() {
    if (left_ == 0) return nullptr;
    av::Packet packet = std::move(ahead_);
    // Pictures shown before the first are of the stretch before.
    while (!packet || coded_.numberOf(*packet) < first_) {
        packet = input_.read(coded_.stream);
        if (!packet) throw NotCopied(input_.name() + ": ends before its time");
    }
    --left_;
    packet->pts = coded_.numberOf(*packet);
    return packet;
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
            const Part& part = plan.film.parts[*stretch.part];
            const std::int64_t first = stretch.first - part.offset();
            reorder_ =
                std::max(reorder_, reorderOf(*plan.pictures[*stretch.part], first, first + stretch.frames));
        } else if (!encoders_.contains(stretch.isSeam)) {
            const auto& encoder =
                encoders_.try_emplace(stretch.isSeam, plan, choice, stretch.isSeam).first->second;
            reorder_ = std::max(reorder_, encoder.reorder());
            noteLevels(encoder.sets());
        }
    }
    for (const auto& pictures : plan.pictures)
        if (pictures) noteLevels(pictures->configuration.sets());
    for (const auto& [seams, encoder] : encoders_) encodedSets_[seams] = setsOf(encoder.sets());
    for (std::size_t i = 0; i < plan.pictures.size(); ++i)
        if (plan.pictures[i]) copiedSets_[i] = setsOf(plan.pictures[i]->configuration.sets());
}

std::vector<Bytes> FilmPictures::setsOf(const std::vector<Bytes>& own) const {
    std::vector<Bytes> sets;
    for (const Bytes& set : own) sets.push_back(restated(plan_.modelPictures().codec, set, reorder_, level_));
    return sets;
}

av::Parameters FilmPictures::parameters() const {
    const CodedPictures& model = plan_.modelPictures();
    av::Parameters parameters = copyOf(*model.parameters);
    // Those of the first stretch, and all others that do not take their place: beside being in each stretch.
    std::vector<Bytes> sets = copiedSets_[plan_.model];
    if (model.codec == NalCodec::h264)
        for (const auto& [seams, encoded] : encodedSets_)
            sets.insert(sets.end(), encoded.begin(), encoded.end());
    const Bytes record = model.configuration.withSets(sets);
    av_freep(&parameters->extradata);
    parameters->extradata = static_cast<std::uint8_t*>(
        av::check(av_mallocz(record.size() + AV_INPUT_BUFFER_PADDING_SIZE), "parameters"));
    parameters->extradata_size = static_cast<int>(record.size());
    std::ranges::copy(record, parameters->extradata);
    parameters->codec_tag = 0;
    parameters->video_delay = reorder_;
    return parameters;
}

av::Packet FilmPictures::nextOfStretch() {
    const Stretch& stretch = plan_.stretches[stretch_];
    begun_ = encoding_ || copying_;
    if (!stretch.part) {
        if (!encoding_) encoding_.emplace(open_, plan_, encoders_.at(stretch.isSeam), stretch, comparesAll_);
        av::Packet packet = encoding_->next();
        if (!packet) drawn_.merge(encoding_->drawn());
        return packet;
    }
    const Part& part = plan_.film.parts[*stretch.part];
    const std::int64_t offset = part.offset();
    if (!copying_)
        copying_.emplace(plan_.film.sourceOf(part).name, *plan_.pictures[*stretch.part],
                         stretch.first - offset, stretch.frames);
    av::Packet packet = copying_->next();
    if (packet) packet->pts += offset;
    return packet;
}

av::Packet FilmPictures::next() {
    for (; stretch_ < plan_.stretches.size(); ++stretch_) {
        if (av::Packet packet = nextOfStretch()) {
            packet->dts = packets_++ - reorder_;
            packet->duration = 1;
            packet = rewritten(std::move(packet));
            return packet;
        }
        encoding_.reset();
        copying_.reset();
    }
    return nullptr;
}

av::Packet FilmPictures::rewritten(av::Packet packet) const {
    const NalCodec codec = plan_.modelPictures().codec;
    const Stretch& stretch = plan_.stretches[stretch_];
    const std::optional<std::size_t>& part = stretch.part;
    const ByteView bytes(packet->data, static_cast<std::size_t>(packet->size));
    const std::vector<ByteView> units = part ? unitsWithLengths(bytes) : unitsWithStartCodes(bytes);
    const bool key = (packet->flags & AV_PKT_FLAG_KEY) != 0;
    const bool holdsSets = std::ranges::any_of(
        units, [&](ByteView unit) { return kindOf(codec, unit) == NalKind::parameterSet; });
    if (part && !key && !holdsSets) {
        av_packet_free_side_data(packet.get());
        return packet;
    }
    // In each stretch sets come before each keyframe, for those who start there.
    Bytes contents;
    bool opened = !key;
    for (const ByteView unit : units) {
        const NalKind kind = kindOf(codec, unit);
        if (!opened && kind != NalKind::delimiter) {
            for (const Bytes& set : part ? copiedSets_[*part] : encodedSets_.at(stretch.isSeam))
                appendUnit(contents, set);
            opened = true;
        }
        // Drop the encoder's own parameter sets and SEI.
        if (kind == NalKind::parameterSet || (!part && kind == NalKind::other)) continue;
        const std::size_t at = contents.size() + 4;
        appendUnit(contents, unit);
        if (!begun_ && codec == NalCodec::hevc) breakLink(std::span(contents).subspan(at));
    }
    av::Packet result = packetOf(contents, *packet);
    result->duration = packet->duration;
    return result;
}

}  // namespace vantle
