#include "copying/film_pictures.h"

#include <algorithm>
#include <cstring>
#include <memory>
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
    packet->duration = like.duration;
    return packet;
}

}  // namespace

CopiedPictures::CopiedPictures(const std::string& name, const CodedPictures& coded, std::int64_t first,
                               std::int64_t count)
    : coded_(coded),
      input_(name),
      annexB_(coded.codec, input_.stream(coded.stream)),
      first_(first),
      left_(count) {
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
            const Part& part = plan.film.parts[*stretch.part];
            const std::int64_t first = stretch.first - part.offset();
            reorder_ =
                std::max(reorder_, reorderOf(*plan.pictures[*stretch.part], first, first + stretch.frames));
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
        encodedSets_[seams] = restatedSets(encoder.parameterSets());
    for (std::size_t i = 0; i < plan.pictures.size(); ++i)
        if (plan.pictures[i]) copiedSets_[i] = restatedSets(plan.pictures[i]->parameterSets);
}

std::vector<Bytes> FilmPictures::restatedSets(const std::vector<Bytes>& own) const {
    std::vector<Bytes> sets;
    for (const Bytes& set : own) sets.push_back(restated(plan_.modelPictures().codec, set, reorder_, level_));
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
    return muxer.add(*parameters, timeBase(), plan_.film.canvas.rate);
}

void FilmPictures::beginEncoding(const Stretch& stretch) {
    std::unique_ptr<Encoder> encoder = encoders_.at(stretch.isSeam).open();
    const Colours& like = plan_.film.sourceOf(plan_.film.parts[plan_.model]).colours;
    player_.emplace(open_, stretch.first, stretch.end(),
                    PictureFormat{encoder->context().pix_fmt, like.space, like.range}, std::nullopt);
    encoding_.emplace(std::move(encoder), [this, stretch] {
        av::Frame picture = player_->picture();
        if (!picture) return picture;
        picture->pts += stretch.first;
        if (comparesAll_ || plan_.isCompared(stretch, picture->pts))
            drawn_.emplace(picture->pts, brightnessOf(*picture));
        return picture;
    });
}

av::Packet FilmPictures::nextOfStretch() {
    const Stretch& stretch = plan_.stretches[stretch_];
    begun_ = encoding_ || copying_;
    if (!stretch.part) {
        if (!encoding_) beginEncoding(stretch);
        return encoding_->next();
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

void FilmPictures::endStretch() {
    const Stretch& stretch = plan_.stretches[stretch_++];
    copying_.reset();
    if (!encoding_) return;
    encoding_.reset();
    player_.reset();
    for (const Part& part : plan_.film.parts)
        if (part.start < stretch.end() && part.end() > stretch.first) open_.inputOf(part).close();
}

av::Packet FilmPictures::next() {
    while (stretch_ < plan_.stretches.size()) {
        if (av::Packet packet = nextOfStretch()) {
            packet->dts = packets_++ - reorder_;
            packet->duration = 1;
            return rewritten(std::move(packet));
        }
        endStretch();
    }
    return nullptr;
}

av::Packet FilmPictures::rewritten(av::Packet packet) const {
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
    if (!key && std::ranges::none_of(units, isDropped)) return packet;
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
        const std::span<std::uint8_t> appended = appendUnit(contents, unit);
        if (!begun_ && codec == NalCodec::hevc) breakLink(appended);
    }
    return packetOf(contents, *packet);
}

}  // namespace vantle
