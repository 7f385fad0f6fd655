#include "copying/verification.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <optional>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include "copying/film_audio.h"
#include "media/decoder.h"
#include "media/demuxer.h"
#include "system/interrupt.h"

namespace vantle {

namespace {

/// A fault, on its way out.
class Fault : public Error {
    using Error::Error;
};

[[noreturn]] void fail(const std::string& what, std::int64_t frame) {
    throw Fault(what + " " + std::to_string(frame));
}

/// Decoded pictures by their times.
class DecodedPictures {
   public:
    /// Goes to the keyframe that shows at `time`, or before it.
    DecodedPictures(const std::string& file, int stream, std::int64_t time)
        : input_(file), reader_(input_, stream) {
        input_.useAlone(stream);
        if (!input_.seek(stream, time)) input_.reopen();
    }

    /// The picture of this time, which shows in `frame` of the film; at first earlier ones are passed over,
    /// from then on each must follow the one before. Throws Fault when it is missing or damaged.
    av::Frame picture(std::int64_t time, std::int64_t frame) {
        for (;;) {
            av::Frame picture = reader_.next();
            if (!picture) fail("the film ends before frame", frame);
            if (picture->pts < time && !found_) continue;
            // What is shown before a recovery point cannot be decoded from there.
            if (!std::exchange(found_, true)) damaged_ = input_.health().damaged;
            if (picture->pts != time) fail("the decoder does not show frame", frame);
            if (input_.health().damaged > damaged_) fail("packets do not decode before frame", frame);
            return picture;
        }
    }

   private:
    Demuxer input_;
    StreamReader reader_;
    bool found_ = false;  // the first that was asked for
    std::int64_t damaged_ = 0;
};

/// The packets of a film's audio: each begins where the one before it ends, and those that are copied are
/// those of their sources.
class AudioPackets {
   public:
    AudioPackets(const CopyPlan& plan, AVRational timeBase)
        : plan_(plan),
          samples_(av_q2d(timeBase) * plan.modelAudio().sample_rate),
          slack_(std::max(1.0, samples_)),
          stretch_(plan.audioPlan.stretches.begin()) {}

    void take(const AVPacket& packet) {
        const double time = static_cast<double>(packet.pts) * samples_;
        if (count_ == 0) first_ = time;
        if (std::abs(time - first_ - static_cast<double>(count_ * CodedAudio::frameSamples)) > slack_)
            fail("wrong times at packet of audio", count_);
        // The first lies before the film.
        const std::int64_t aacFrame = count_++ - 1;
        while (stretch_ != plan_.audioPlan.stretches.end() && stretch_->end() <= aacFrame) {
            source_.reset();
            ++stretch_;
        }
        if (stretch_ == plan_.audioPlan.stretches.end() || !stretch_->part) return;
        if (!source_)
            source_.emplace(plan_.film.sourceOf(plan_.film.parts[*stretch_->part]).name,
                            *plan_.audio[*stretch_->part], stretch_->source, stretch_->aacFrames);
        const av::Packet own = source_->next();
        if (!own || !std::ranges::equal(std::span(own->data, static_cast<std::size_t>(own->size)),
                                        std::span(packet.data, static_cast<std::size_t>(packet.size))))
            fail("another sound is in packet of audio", aacFrame + 1);
    }

    void finish() const {
        if (count_ != plan_.audioPlan.stretches.back().end() + 1)
            fail("the number of packets of audio is", count_);
    }

   private:
    const CopyPlan& plan_;
    double samples_;  // in a unit of time
    double slack_;
    double first_ = 0.0;
    std::int64_t count_ = 0;
    std::vector<AudioStretch>::const_iterator stretch_;
    std::optional<CopiedAudio> source_;
};

/// The packets of a film's pictures.
class PicturePackets {
   public:
    /// Matroska keeps no times of decoding.
    explicit PicturePackets(bool keepsDecoding) : keepsDecoding_(keepsDecoding) {}

    void take(const AVPacket& packet) {
        times.push_back(packet.pts);
        if ((packet.flags & AV_PKT_FLAG_KEY) != 0) keys.push_back(packet.pts);
        const bool ordered = packet.dts <= packet.pts && packet.dts > decoded_;
        if (keepsDecoding_ && !ordered) fail("wrong times at packet", std::ssize(times));
        decoded_ = packet.dts;
    }

    std::vector<std::int64_t> times;
    std::vector<std::int64_t> keys;  ///< when keyframes show

   private:
    bool keepsDecoding_;
    std::int64_t decoded_ = std::numeric_limits<std::int64_t>::min();
};

class Verification {
   public:
    Verification(const std::string& file, const CopyPlan& plan,
                 const std::map<std::int64_t, Brightness>& drawn, bool everything)
        : file_(file), plan_(plan), shown_(plan.shown), drawn_(drawn), everything_(everything) {}

    /// An input that is shown to its end shows all that it holds.
    void checkEnds() const {
        for (std::size_t i = 0; i < plan_.film.parts.size(); ++i) {
            if (!plan_.pictures[i]) continue;
            const Part& part = plan_.film.parts[i];
            const Source& source = plan_.film.sourceOf(part);
            const std::int64_t end = part.first + part.frames;
            // The last picture of an uneven clip may lie nearer to the frame behind.
            const std::int64_t most = plan_.pictures[i]->even ? end : end + 1;
            const auto isLater = [&](const CodedPicture& picture) {
                return picture.rank >= 0 && picture.number >= most;
            };
            if (end == source.frames(plan_.film.canvas.rate) &&
                std::ranges::any_of(plan_.pictures[i]->pictures, isLater))
                fail(source.name + " is left before its frame", end);
        }
    }

    void checkPackets() {
        Demuxer input(file_);
        stream_ = *input.best(AVMEDIA_TYPE_VIDEO);
        input.use(stream_);
        PicturePackets pictures(std::string_view(input.container().iformat->name).starts_with("mov,"));
        std::optional<AudioPackets> audio;
        if (!plan_.audioPlan.stretches.empty()) {
            const std::optional<int> stream = input.best(AVMEDIA_TYPE_AUDIO);
            if (!stream) throw Fault("the audio is missing");
            input.use(*stream);
            audio.emplace(plan_, input.stream(*stream).time_base);
        }
        while (const av::Packet packet = input.read()) {
            if (packet->stream_index == stream_)
                pictures.take(*packet);
            else
                audio->take(*packet);
        }
        if (audio) audio->finish();
        checkTimes(pictures, input.stream(stream_).time_base);
    }

    /// Looks at the film's beginning and end, and at each place where another stretch begins.
    void checkSeams() {
        const std::int64_t count = std::ssize(times_);
        if (everything_) return check(0, count);
        std::vector<std::pair<std::int64_t, std::int64_t>> ranges;
        const std::vector<std::int64_t> starts = randomAccesses();
        std::vector<std::int64_t> seams = shown_.first;
        seams.push_back(count - 1);
        for (const std::int64_t seam : seams) {
            const auto [first, end] = around(starts, seam);
            if (!ranges.empty() && first < ranges.back().second)
                ranges.back().second = std::max(ranges.back().second, end);
            else
                ranges.emplace_back(first, end);
        }
        for (const auto& [first, end] : ranges) check(first, end);
    }

   private:
    /// The frame of the film in which a picture shows.
    std::int64_t frameOf(std::int64_t place) const {
        return av_rescale_q_rnd(shown_.at(place).time, shown_.timeBase, av_inv_q(plan_.film.canvas.rate),
                                AV_ROUND_DOWN);
    }

    void checkTimes(PicturePackets& pictures, AVRational timeBase) {
        times_ = std::move(pictures.times);
        const std::int64_t count = std::ssize(shown_.pictures);
        if (std::ssize(times_) != count) fail("the number of packets is", std::ssize(times_));
        std::ranges::sort(times_);
        for (std::int64_t i = 0; i < count; ++i) {
            // As exactly as the container can count.
            const std::int64_t meant = av_rescale_q_rnd(shown_.at(i).time - shown_.at(0).time,
                                                        shown_.timeBase, timeBase, AV_ROUND_NEAR_INF);
            if (std::abs(timeAt(i) - timeAt(0) - meant) > 1)
                fail("no packet has the time of frame", frameOf(i));
        }
        for (const std::int64_t time : pictures.keys)
            keys_.insert(std::ranges::lower_bound(times_, time) - times_.begin());
    }

    /// When the picture at this place shows, in the file.
    std::int64_t timeAt(std::int64_t place) const { return times_[static_cast<std::size_t>(place)]; }

    /// The places of pictures with which decoding may begin, ascending.
    std::vector<std::int64_t> randomAccesses() const {
        std::vector<std::int64_t> places;
        for (std::size_t i = 0; i < plan_.stretches.size(); ++i) {
            const Stretch& stretch = plan_.stretches[i];
            const std::int64_t first = shown_.first[i];
            if (!stretch.part) {
                places.push_back(first);
                if (stretch.isSeam) continue;  // all of it is looked at
                std::copy(keys_.upper_bound(first), keys_.lower_bound(first + stretch.pictures),
                          std::back_inserter(places));
                continue;
            }
            for (const CodedPicture& picture : plan_.pictures[*stretch.part]->pictures)
                if (picture.randomAccess && picture.rank >= stretch.rank &&
                    picture.rank < stretch.rank + stretch.pictures &&
                    (!picture.recovery || picture.rank == stretch.rank))
                    places.push_back(first + picture.rank - stretch.rank);
        }
        return places;
    }

    /// From the last start before a seam to the second behind it.
    std::pair<std::int64_t, std::int64_t> around(const std::vector<std::int64_t>& starts,
                                                 std::int64_t seam) const {
        const auto at = std::ranges::lower_bound(starts, seam);
        const std::int64_t first = at != starts.begin() ? *std::prev(at) : 0;
        const std::int64_t end =
            std::distance(at, starts.end()) > 1 ? *std::next(at) + 1 : std::ssize(times_);
        return {first, end};
    }

    /// Looks at the pictures from the place `first` on, a keyframe, to before `end`.
    void check(std::int64_t first, std::int64_t end) const {
        if (!keys_.contains(first)) fail("no keyframe is in frame", frameOf(first));
        DecodedPictures made(file_, stream_, timeAt(first));
        for (std::size_t i = 0; i < plan_.stretches.size(); ++i) {
            const Stretch& stretch = plan_.stretches[i];
            const std::int64_t from = std::max(first, shown_.first[i]);
            const std::int64_t to = std::min(end, shown_.first[i] + stretch.pictures);
            if (from >= to) continue;
            std::optional<DecodedPictures> source;
            if (stretch.part)
                source.emplace(plan_.film.sourceOf(plan_.film.parts[*stretch.part]).name,
                               plan_.pictures[*stretch.part]->stream, shown_.at(from).source);
            for (std::int64_t place = from; place < to; ++place) {
                const std::int64_t frame = frameOf(place);
                const std::int64_t own = shown_.at(place).source;
                const av::Frame picture = made.picture(timeAt(place), frame);
                const bool looksAt = source || everything_ || plan_.isCompared(stretch, own);
                const bool same = !looksAt || (source ? samePixels(*picture, *source->picture(own, frame))
                                                      : alike(brightnessOf(*picture), drawn_.at(own)));
                if (!same) fail("another picture shows in frame", frame);
            }
        }
    }

    const std::string& file_;
    const CopyPlan& plan_;
    const ShownPictures& shown_;
    const std::map<std::int64_t, Brightness>& drawn_;
    bool everything_;
    int stream_ = 0;
    std::vector<std::int64_t> times_;  // when pictures show, ascending
    std::set<std::int64_t> keys_;      // the places of keyframes among them
};

}  // namespace

std::string faultOf(const std::string& file, const CopyPlan& plan,
                    const std::map<std::int64_t, Brightness>& drawn, bool everything) {
    try {
        Verification verification(file, plan, drawn, everything);
        verification.checkEnds();
        verification.checkPackets();
        verification.checkSeams();
    } catch (const Fault& fault) {
        return fault.what();
    } catch (const Error& error) {
        throwIfInterrupted();
        return std::string("it does not decode: ") + error.what();
    }
    return {};
}

}  // namespace vantle
