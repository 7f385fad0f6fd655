#include "media/demuxer.h"

extern "C" {
#include <libavdevice/avdevice.h>
#include <libavutil/common.h>
}

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "media/exif.h"
#include "media/heif.h"
#include "media/heif_input.h"
#include "media/unreadable.h"
#include "system/interrupt.h"

namespace vantle {

namespace {

namespace fs = std::filesystem;

constexpr AVRational microseconds{1, AV_TIME_BASE};

void addTags(AVFormatContext& input, const av::Options& tags) {
    for (const auto& [key, value] : tags) av_dict_set(&input.metadata, key.c_str(), value.c_str(), 0);
}

av::Input open(const std::string& name, OpenedFiles& opened, std::unique_ptr<MemoryFile>& memory) {
    constexpr std::string_view generated = "lavfi:";
    const bool isGenerated = name.starts_with(generated);
    std::string url = isGenerated ? name.substr(generated.size()) : name;
    std::error_code ignored;  // what cannot be looked at cannot be opened either, which says why
    const fs::file_type type = isGenerated ? fs::file_type::none : fs::status(url, ignored).type();
    if (type == fs::file_type::directory) throw Error(name + ": is a directory");
    // Inputs are read more than once: to measure them, and to show them.
    if (type == fs::file_type::fifo || type == fs::file_type::socket || type == fs::file_type::character)
        throw Error(name + ": is not a regular file");
    if (type == fs::file_type::regular && isHeif(url)) {
        opened.note(url);
        av::Input input = openHeif(name, memory);
        addTags(*input, exifOf(url));
        return input;
    }
    const av::Options exif = type == fs::file_type::regular ? exifOf(url) : av::Options{};
    // A file's name may hold a colon, which would make the part before it a protocol.
    if (type == fs::file_type::regular || type == fs::file_type::block) url.insert(0, "file:");
    avdevice_register_all();

    AVFormatContext* context = av::check(avformat_alloc_context(), name);
    opened.watch(*context);
    context->interrupt_callback.callback = [](void*) { return interrupted() ? 1 : 0; };
    const int code = avformat_open_input(&context, url.c_str(),
                                         isGenerated ? av_find_input_format("lavfi") : nullptr, nullptr);
    av::Input input(context);  // null by now when it failed to open
    throwIfInterrupted();
    const bool unknown = code == AVERROR_INVALIDDATA || code == AVERROR_EOF || code == AVERROR(EIO);
    if (unknown && type == fs::file_type::regular) throw Error(name + ": " + whyUnreadable(name));
    av::check(code, name);
    av::check(avformat_find_stream_info(input.get(), nullptr), name);
    addTags(*input, exif);
    return input;
}

/// What a packet that waits takes of memory.
std::size_t sizeOf(const AVPacket& packet) { return sizeof packet + static_cast<std::size_t>(packet.size); }

/// A number of Matroska's, whose first byte says of how many bytes it is; none for "unknown".
std::optional<std::int64_t> matroskaNumber(std::istream& file) {
    const auto first = static_cast<std::uint8_t>(file.get());
    const int bytes = std::countl_zero(first) + 1;
    const int ones = 0xFF >> bytes;  // what is left of it
    std::int64_t value = first & ones;
    bool known = value != ones;
    for (int i = 1; i < bytes; ++i) {
        const int byte = file.get();
        value = value << 8 | (byte & 0xFF);
        known = known || byte != 0xFF;
    }
    return known && bytes <= 8 && file ? std::optional(value) : std::nullopt;
}

/// Where a file of Matroska's, or of RIFF's (.avi, .wav), ends by the size in its head.
std::optional<std::int64_t> statedEnd(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    std::array<char, 4> id{};
    const auto isNext = [&](std::string_view wanted) {
        file.read(id.data(), id.size());
        return file && std::string_view(id.data(), id.size()) == wanted;
    };
    if (isNext("RIFF")) {
        std::int64_t size = 0;
        for (int i = 0; i < 4; ++i) size |= std::int64_t{file.get() & 0xFF} << 8 * i;
        const bool known = size > 0 && size < 0xFFFFFFFF;  // not written as a stream
        return known ? std::optional(size + 8) : std::nullopt;
    }
    file.seekg(0);
    if (!isNext("\x1A\x45\xDF\xA3")) return {};
    if (const std::optional<std::int64_t> head = matroskaNumber(file)) file.seekg(*head, std::ios::cur);
    if (!isNext("\x18\x53\x80\x67")) return {};
    const std::optional<std::int64_t> size = matroskaNumber(file);
    return size ? std::optional(*size + file.tellg()) : std::nullopt;
}

}  // namespace

Demuxer::Demuxer(const std::string& name) : name_(name), input_(open(name, *opened_, memory_)) {}

std::optional<int> Demuxer::best(AVMediaType type) const { return find(type, true); }

bool Demuxer::holds(AVMediaType type) const { return find(type, false).has_value(); }

std::optional<int> Demuxer::find(AVMediaType type, bool decodable) const {
    const AVCodec* decoder = nullptr;  // asked for, it must be there
    const int best = av_find_best_stream(input_.get(), type, -1, -1, decodable ? &decoder : nullptr, 0);
    if (best < 0) return {};
    // Covers and thumbnails are streams of pictures, too.
    const auto isAside = [&](int index) {
        return (stream(index).disposition &
                (AV_DISPOSITION_ATTACHED_PIC | AV_DISPOSITION_TIMED_THUMBNAILS)) != 0;
    };
    if (!isAside(best)) return best;
    for (int i = 0; i < static_cast<int>(input_->nb_streams); ++i) {
        const AVCodecParameters& parameters = *stream(i).codecpar;
        if (parameters.codec_type == type && !isAside(i) &&
            (!decodable || avcodec_find_decoder(parameters.codec_id) != nullptr))
            return i;
    }
    return {};
}

std::string Demuxer::whyNone(AVMediaType type) const {
    const std::optional<int> stream = find(type, false);
    const bool pictures = type == AVMEDIA_TYPE_VIDEO;
    if (!stream) return pictures ? "holds no picture" : "holds no audio";
    const AVCodecParameters& parameters = *this->stream(*stream).codecpar;
    std::array<char, AV_FOURCC_MAX_STRING_SIZE> tag{};
    av_fourcc_make_string(tag.data(), parameters.codec_tag);
    return std::string("FFmpeg has no decoder for its ") + (pictures ? "pictures" : "audio") + " (" +
           (parameters.codec_id != AV_CODEC_ID_NONE
                ? avcodec_get_name(parameters.codec_id) + std::string(", ")
                : "") +
           tag.data() + ")";
}

void Demuxer::drop(int stream) {
    if (const auto queue = queues_.find(stream); queue != queues_.end())
        while (!queue->second.empty()) taken(queue->second);
    queues_.erase(stream);
    apart_.erase(stream);
}

void Demuxer::useAlone(int stream) {
    alone_ = stream;
    passOverOthers();
    use(stream);
}

void Demuxer::passOverOthers() {
    for (unsigned i = 0; i < input_->nb_streams && alone_; ++i)
        input_->streams[i]->discard = static_cast<int>(i) == *alone_ ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
}

av::Packet Demuxer::read(int stream) {
    // Of other streams, while this one has none for long.
    constexpr std::size_t mostWaiting = std::size_t{16} << 20;
    std::deque<av::Packet>& queue = queues_.at(stream);
    while (queue.empty()) {
        if (apart_.contains(stream) || (waiting_ > mostWaiting && readApart(stream)))
            return apart_.at(stream)->read(stream);
        if (!readOne()) return nullptr;
    }
    return taken(queue);
}

bool Demuxer::readApart(int stream) {
    if (jumped() || (input_->iformat->flags & (AVFMT_NOFILE | AVFMT_NOTIMESTAMPS)) != 0) return false;
    // On from the last packet that was read here. All others are read there too, as times jump for all at
    // once.
    const auto last = times_.find(stream);
    const std::int64_t from = last != times_.end() ? last->second.decoded : begin_;
    const std::int64_t start = input_->start_time != AV_NOPTS_VALUE ? input_->start_time : 0;
    auto apart = std::make_unique<Demuxer>(name_);
    apart->use(stream);
    const AVRational timeBase = this->stream(stream).time_base;
    if (!apart->seek(stream, av_rescale_q(av_sat_add64(from, start), microseconds, timeBase)))
        apart->reopen();
    while (av::Packet packet = last != times_.end() ? apart->read(stream) : nullptr) {
        if (apart->times_.at(stream).decoded <= from) continue;
        apart->waiting_ += sizeOf(*packet);
        apart->queues_.at(stream).push_front(std::move(packet));
        break;
    }
    apart_.emplace(stream, std::move(apart));
    return true;
}

av::Packet Demuxer::read() {
    for (;;) {
        for (auto& [stream, queue] : queues_)
            if (!queue.empty()) return taken(queue);
        if (!readOne()) return nullptr;
    }
}

av::Packet Demuxer::taken(std::deque<av::Packet>& queue) {
    av::Packet packet = std::move(queue.front());
    queue.pop_front();
    waiting_ -= sizeOf(*packet);
    return packet;
}

bool Demuxer::readOne() {
    constexpr int mostInARow = 100;  // damaged packets: what goes on like that has no more good ones
    int code = 0;
    for (int i = 0; i < mostInARow && !ended_; ++i) {
        av::Packet packet = av::makePacket();
        code = av_read_frame(input_.get(), packet.get());
        throwIfInterrupted();
        if (code == AVERROR_EOF) {
            ended_ = true;
            checkLength();
        } else if (code >= 0) {
            bridgeJump(*packet);
            const auto queue = queues_.find(packet->stream_index);
            if (queue != queues_.end() && !apart_.contains(queue->first)) {
                waiting_ += sizeOf(*packet);
                queue->second.push_back(std::move(packet));
            }
            return true;
        } else if (code == AVERROR_INVALIDDATA || code == AVERROR(EAGAIN)) {
            ++health_.damaged;
        } else {
            break;
        }
    }
    if (!ended_) fail(av::message(code));
    return false;
}

bool Demuxer::seek(int stream, std::int64_t time) {
    if (jumped() || (input_->iformat->flags & AVFMT_NOTIMESTAMPS) != 0) return false;
    // Without an index a place is found by the time of any packet, some of which come late.
    if ((input_->iformat->flags & AVFMT_TS_DISCONT) != 0)
        time = av_sat_sub64(time, av_rescale_q(1, {1, 1}, this->stream(stream).time_base));
    const int code =
        avformat_seek_file(input_.get(), stream, std::numeric_limits<std::int64_t>::min(), time, time, 0);
    throwIfInterrupted();
    if (code < 0) return false;
    forget();
    return true;
}

void Demuxer::reopen() {
    input_.reset();
    input_ = open(name_, *opened_, memory_);
    passOverOthers();
    forget();
}

void Demuxer::forget() {
    for (auto& [stream, queue] : queues_) queue.clear();
    waiting_ = 0;
    apart_.clear();
    ended_ = false;
    times_.clear();
    begin_ = std::numeric_limits<std::int64_t>::max();
    shift_ = end_ = othersEnd_ = 0;
}

FileSet Demuxer::files() const {
    opened_->lookAhead(*input_);
    return opened_->found();
}

bool Demuxer::indexed() const {
    const std::string_view format = input_->iformat->name;
    return (format.starts_with("mov,") || format.starts_with("matroska,")) && statesLength();
}

void Demuxer::bridgeJump(AVPacket& packet) {
    constexpr std::int64_t second = AV_TIME_BASE;
    constexpr std::int64_t longest = 3600 * second;  // that anything stands still
    constexpr std::int64_t gap = 10 * second;        // that is no jump where times may jump
    const AVStream& stream = *input_->streams[packet.stream_index];
    const AVMediaType type = stream.codecpar->codec_type;
    const std::int64_t shown = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
    if (shown == AV_NOPTS_VALUE) return;

    // Saturating: the times of a damaged file may be any number.
    const auto sum = [](std::int64_t a, std::int64_t b) { return av_sat_add64(a, b); };
    const std::int64_t start = input_->start_time != AV_NOPTS_VALUE ? input_->start_time : 0;
    const auto sinceStart = [&](std::int64_t time) {
        return av_sat_sub64(av_rescale_q(time, stream.time_base, microseconds), start);
    };
    const std::int64_t read = sinceStart(shown);
    packet.duration = std::min(packet.duration, av_rescale_q(longest, microseconds, stream.time_base));
    const std::int64_t length = av_rescale_q(packet.duration, stream.time_base, microseconds);
    if (type != AVMEDIA_TYPE_VIDEO && type != AVMEDIA_TYPE_AUDIO) {
        othersEnd_ = std::max(othersEnd_, sum(read, length));
        return;
    }
    const std::int64_t readDecoded = sinceStart(packet.dts != AV_NOPTS_VALUE ? packet.dts : shown);
    const bool restarts = (input_->iformat->flags & AVFMT_TS_DISCONT) != 0;
    Times& own = times_[packet.stream_index];
    const auto jumps = [&](std::int64_t shift) {
        if (end_ <= 0) return false;
        const std::int64_t time = sum(read, shift);
        const bool pastStatedEnd = statesLength() && time > sum(input_->duration, gap);
        if (time > sum(end_, restarts || pastStatedEnd ? gap : longest)) return true;
        // Other formats may keep their streams apart, one after the other.
        return restarts ? sum(readDecoded, shift) < av_sat_sub64(own.decoded, second / 10)
                        : shift != 0 && time < end_ - gap;
    };
    if (jumps(own.shift)) {
        // The first stream to jump sets where all go on; the others follow when they come to their jump.
        if (jumps(shift_)) shift_ = av_sat_sub64(end_, read);
        own.shift = shift_;
    }
    own.decoded = sum(readDecoded, own.shift);

    begin_ = std::min(begin_, own.decoded);
    end_ = std::max(end_, sum(sum(read, own.shift), length));
    const std::int64_t shift = av_rescale_q(own.shift, microseconds, stream.time_base);
    if (packet.pts != AV_NOPTS_VALUE) packet.pts = sum(packet.pts, shift);
    if (packet.dts != AV_NOPTS_VALUE) packet.dts = sum(packet.dts, shift);
}

bool Demuxer::statesLength() const {
    // Other lengths are measured or guessed from the file as it is.
    return input_->duration > 0 && input_->duration_estimation_method == AVFMT_DURATION_FROM_STREAM;
}

void Demuxer::checkLength() {
    // Times that jump say nothing about the length, and one stream may be shorter than the others.
    if (!statesLength() || shift_ != 0 || alone_) return;
    // Lengths are stated from the first picture or from time 0. Containers round, and some leave out the
    // length of the last picture: only a clear shortfall counts.
    const double stated = static_cast<double>(input_->duration) / AV_TIME_BASE;
    const std::int64_t start = std::max<std::int64_t>(input_->start_time, 0);  // or none
    const double end = static_cast<double>(std::max(end_, othersEnd_) + start) / AV_TIME_BASE;
    if (stated < 1.0 || end_ <= 0 || end >= stated - std::min(0.1 * stated, 10.0) - 0.5) return;
    // A length may be wrong: of what was recorded live, cut or put together it often is. An index is not.
    const std::optional<std::int64_t> listed = listedBytes();
    const std::int64_t there = input_->pb != nullptr ? avio_size(input_->pb) : -1;
    if (listed && (there < 0 || *listed <= there)) return;
    char text[96] = "";
    std::snprintf(text, sizeof text, "ends after %.2f of %.2f seconds", end, stated);
    if (listed) fail(std::string(text) + ": the file is truncated or damaged");
    health_.shortfall = text;
}

std::optional<std::int64_t> Demuxer::listedBytes() const {
    if (!std::string_view(input_->iformat->name).starts_with("mov,")) return statedEnd(name_);
    std::int64_t end = 0;
    for (unsigned i = 0; i < input_->nb_streams; ++i)
        for (int j = 0; j < avformat_index_get_entries_count(input_->streams[i]); ++j) {
            const AVIndexEntry& entry = *avformat_index_get_entry(input_->streams[i], j);
            end = std::max(end, entry.pos + entry.size);
        }
    return end;
}

void Demuxer::fail(const std::string& what) const { throw Error(name_ + ": " + what); }

}  // namespace vantle
