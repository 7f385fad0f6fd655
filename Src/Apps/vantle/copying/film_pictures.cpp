#include "copying/film_pictures.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <span>
#include <utility>

namespace vantle {

namespace {

/// By how many places pictures of a copied stretch are coded before they show.
int reorderOf(const CodedPictures& coded, std::int64_t first, std::int64_t end) {
    std::vector<std::int64_t> before;  // numbers of pictures coded so far that may show later, ascending
    std::ptrdiff_t most = 0;
    bool begun = false;
    for (const CodedPicture& picture : coded.pictures) {
        begun = begun || (picture.entry && picture.number == first);
        if (!begun || picture.number < first || picture.number >= end) continue;
        const auto place = std::ranges::lower_bound(before, picture.number);
        most = std::max(most, before.end() - place);
        before.insert(place, picture.number);
        // Within the standards nothing waits for longer.
        if (before.size() > 64) before.erase(before.begin());
    }
    return static_cast<int>(most);
}

/// Identifiers of sequence and picture sets that the plan's inputs use.
std::set<int> identifiers(const CopyPlan& plan) {
    std::set<int> used;
    for (const auto& pictures : plan.pictures) {
        if (!pictures || pictures->coding != NalCoding::h264) continue;
        for (const Bytes& set : pictures->configuration.sets()) {
            if (const auto sequence = sequenceSet(NalCoding::h264, set)) used.insert(sequence->id);
            if (const auto picture = pictureSet(set)) used.insert(picture->id);
        }
    }
    return used;
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

StretchEncoder::StretchEncoder(const CopyPlan& copyPlan, const std::string& name, const av::Options& users)
    : plan(copyPlan), codec(nullptr), reorder(0) {
    for (const Stretch& stretch : plan.stretches) {
        if (!stretch.part) continue;
        const Part& part = plan.film.parts[*stretch.part];
        const std::int64_t first = part.first + stretch.first - part.start;
        reorder = std::max(reorder, reorderOf(*plan.pictures[*stretch.part], first, first + stretch.frames));
    }
    const bool isH264 = plan.modelPictures().coding == NalCoding::h264;
    const std::string usual = isH264 ? "libx264" : "libx265";
    const std::string& chosen = name.empty() ? usual : name;
    codec = avcodec_find_encoder_by_name(chosen.c_str());
    if (codec == nullptr || codec->id != plan.modelPictures().form->codec_id)
        throw NotCopied("its joins need an encoder like that of " +
                        plan.film.parts[plan.model].input->name() + ", which " + chosen + " is not; " +
                        usual + " is");
    if (chosen == "libx264") {
        // Its parameter sets must not take the place of those that copied pictures refer to.
        const std::set<int> used = identifiers(plan);
        int id = 0;
        while (used.contains(id)) ++id;
        // At this quality most of the time would go into arithmetic coding, for six hundredths of the size.
        options = {{"preset", "superfast"},
                   {"crf", "16"},
                   {"coder", "cavlc"},
                   {"x264-params", "sps-id=" + std::to_string(id)}};
    } else if (chosen == "libx265") {
        options = {{"preset", "superfast"},
                   {"crf", "16"},
                   {"x265-params", "log-level=error:open-gop=0:info=0:repeat-headers=0"}};
    }
    options = withUsersOptions(options, users);
}

std::unique_ptr<Encoder> StretchEncoder::open() const {
    return std::make_unique<Encoder>(*codec, options, [&](AVCodecContext& context) {
        const AVCodecParameters& like = *plan.modelPictures().form;
        context.width = like.width;
        context.height = like.height;
        context.pix_fmt = static_cast<AVPixelFormat>(like.format);
        context.sample_aspect_ratio = {1, 1};
        context.framerate = plan.film.canvas.rate;
        context.time_base = av_inv_q(plan.film.canvas.rate);
        context.color_range = like.color_range;
        context.colorspace = like.color_space;
        context.color_primaries = like.color_primaries;
        context.color_trc = like.color_trc;
        context.chroma_sample_location = like.chroma_location;
        context.profile = like.profile;
        context.level = plan.modelPictures().coding == NalCoding::h264 ? like.level : context.level;
        // They would need room among the references, and here they save neither time nor size.
        context.max_b_frames = 0;
        context.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    });
}

EncodedPictures::EncodedPictures(const StretchEncoder& encoder, const Stretch& stretch)
    : film_(encoder.plan.film),
      stretch_(stretch),
      encoder_(encoder.open()),
      reader_(film_, stretch.first, false),
      painter_(film_.canvas.size,
               {encoder_->context().pix_fmt, film_.parts[encoder.plan.model].input->first().colorspace,
                film_.parts[encoder.plan.model].input->first().color_range}),
      frame_(stretch.first) {}

EncodedPictures::~EncodedPictures() {
    for (const Part& part : film_.parts)
        if (part.start < stretch_.end() && part.end() > stretch_.first) part.input->close();
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
        drawn_.emplace(frame_++, brightnessOf(*picture));
        encoder_->send(picture.get());
    }
}

CopiedPictures::CopiedPictures(const std::string& name, const CodedPictures& coded, std::int64_t first,
                               std::int64_t count)
    : coded_(coded), input_(name), first_(first), left_(count) {
    input_.useAlone(coded.stream);
    const auto entry = std::ranges::find_if(coded.pictures, [&](const CodedPicture& picture) {
        return picture.entry && picture.number == first;
    });
    const auto find = [&] {
        do ahead_ = input_.read(coded_.stream);
        while (ahead_ && coded_.numberOf(*ahead_) < first_);
        return ahead_ && coded_.numberOf(*ahead_) == first_;
    };
    if (input_.seek(coded.stream, entry->time) && find()) return;
    input_.reopen();
    if (!find()) throw Error(name + ": its picture " + std::to_string(first) + " is not found again");
}

av::Packet CopiedPictures::next() {
    if (left_ == 0) return nullptr;
    av::Packet packet = std::move(ahead_);
    // Pictures shown before the first are of the stretch before.
    while (!packet || coded_.numberOf(*packet) < first_) {
        packet = input_.read(coded_.stream);
        if (!packet) throw Error(input_.name() + ": ends before its time");
    }
    --left_;
    packet->pts = coded_.numberOf(*packet);
    return packet;
}

FilmPictures::FilmPictures(const CopyPlan& plan, const std::string& encoder, const av::Options& users)
    : plan_(plan),
      encoder_(plan, encoder, users),
      reorder_(encoder_.reorder),
      copiedSets_(plan.pictures.size()) {
    const NalCoding coding = plan.modelPictures().coding;
    const bool encodes =
        std::ranges::any_of(plan.stretches, [](const Stretch& stretch) { return !stretch.part; });
    if (encodes) {
        const std::unique_ptr<Encoder> first = encoder_.open();
        const AVCodecContext& context = first->context();
        for (const ByteView set :
             unitsWithStartCodes({context.extradata, static_cast<std::size_t>(context.extradata_size)}))
            if (kindOf(coding, set) == NalKind::parameterSet)
                encodedSets_.emplace_back(set.begin(), set.end());
    }
    const auto note = [&](const std::vector<Bytes>& sets) {
        int depth = 0;
        for (const Bytes& set : sets)
            if (const auto sequence = sequenceSet(coding, set)) {
                level_ = std::max(level_, sequence->level);
                depth = std::max(depth, sequence->reorder);
            }
        return depth;
    };
    reorder_ = std::max(reorder_, note(encodedSets_));
    for (const auto& pictures : plan.pictures)
        if (pictures) note(pictures->configuration.sets());
    encodedSets_ = setsOf(encodedSets_);
    for (std::size_t i = 0; i < plan.pictures.size(); ++i)
        if (plan.pictures[i]) copiedSets_[i] = setsOf(plan.pictures[i]->configuration.sets());
}

std::vector<Bytes> FilmPictures::setsOf(const std::vector<Bytes>& own) const {
    std::vector<Bytes> sets;
    for (const Bytes& set : own)
        sets.push_back(restated(plan_.modelPictures().coding, set, reorder_, level_));
    return sets;
}

av::Parameters FilmPictures::form() const {
    const CodedPictures& model = plan_.modelPictures();
    av::Parameters form = copyOf(*model.form);
    // Those of the first stretch, and all others that do not take their place: beside being in each stretch.
    std::vector<Bytes> sets = copiedSets_[plan_.model];
    if (model.coding == NalCoding::h264) sets.insert(sets.end(), encodedSets_.begin(), encodedSets_.end());
    const Bytes record = model.configuration.withSets(sets);
    av_freep(&form->extradata);
    form->extradata = static_cast<std::uint8_t*>(
        av::check(av_mallocz(record.size() + AV_INPUT_BUFFER_PADDING_SIZE), "parameters"));
    form->extradata_size = static_cast<int>(record.size());
    std::ranges::copy(record, form->extradata);
    form->codec_tag = 0;
    form->video_delay = reorder_;
    return form;
}

av::Packet FilmPictures::nextOfStretch() {
    const Stretch& stretch = plan_.stretches[stretch_];
    begun_ = encoding_ || copying_;
    if (!stretch.part) {
        if (!encoding_) encoding_.emplace(encoder_, stretch);
        av::Packet packet = encoding_->next();
        if (!packet) drawn_.merge(encoding_->drawn());
        return packet;
    }
    const Part& part = plan_.film.parts[*stretch.part];
    const std::int64_t offset = part.start - part.first;
    if (!copying_)
        copying_.emplace(part.input->name(), *plan_.pictures[*stretch.part], stretch.first - offset,
                         stretch.frames);
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
    const NalCoding coding = plan_.modelPictures().coding;
    const std::optional<std::size_t>& part = plan_.stretches[stretch_].part;
    const ByteView bytes(packet->data, static_cast<std::size_t>(packet->size));
    const std::vector<ByteView> units = part ? unitsWithLengths(bytes) : unitsWithStartCodes(bytes);
    const bool key = (packet->flags & AV_PKT_FLAG_KEY) != 0;
    const bool holdsSets = std::ranges::any_of(
        units, [&](ByteView unit) { return kindOf(coding, unit) == NalKind::parameterSet; });
    if (part && !key && !holdsSets) {
        av_packet_free_side_data(packet.get());
        return packet;
    }
    // In each stretch sets come before each key picture, for those who start there.
    Bytes contents;
    bool opened = !key;
    for (const ByteView unit : units) {
        const NalKind kind = kindOf(coding, unit);
        if (!opened && kind != NalKind::delimiter) {
            for (const Bytes& set : part ? copiedSets_[*part] : encodedSets_) appendUnit(contents, set);
            opened = true;
        }
        // What an encoder says of itself is not what the film is.
        if (kind == NalKind::parameterSet || (!part && kind == NalKind::other)) continue;
        const std::size_t at = contents.size() + 4;
        appendUnit(contents, unit);
        if (!begun_ && coding == NalCoding::hevc) breakLink(std::span(contents).subspan(at));
    }
    av::Packet result = packetOf(contents, *packet);
    result->duration = packet->duration;
    return result;
}

}  // namespace vantle
