#include "copying/verification.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

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

/// Decoded pictures by their numbers.
class NumberedPictures {
   public:
    /// Goes to the keyframe that shows at `time`, or before it.
    NumberedPictures(const std::string& file, int stream, std::int64_t start, AVRational rate,
                     std::int64_t time)
        : input_(file), stream_(stream), start_(start), rate_(rate), reader_(input_, stream) {
        input_.useAlone(stream_);
        if (!input_.seek(stream_, time)) input_.reopen();
    }

    /// The picture of this number; at first earlier ones are passed over, from then on each must follow the
    /// one before. Throws Fault when it is missing or damaged.
    av::Frame picture(std::int64_t number) {
        for (;;) {
            av::Frame picture = reader_.next();
            if (!picture) fail("the film ends before frame", number);
            const std::int64_t shown = av_rescale_q_rnd(
                picture->pts - start_, input_.stream(stream_).time_base, av_inv_q(rate_), AV_ROUND_NEAR_INF);
            if (shown < number && !found_) continue;
            found_ = true;
            if (shown != number) fail("the decoder does not show frame", number);
            if (input_.health().damaged > 0) fail("packets do not decode before frame", number);
            return picture;
        }
    }

   private:
    Demuxer input_;
    int stream_;
    std::int64_t start_;
    AVRational rate_;
    StreamReader reader_;
    bool found_ = false;  // the first that was asked for
};

/// The packets of a film's audio: each begins where the one before it ends.
class AudioPackets {
   public:
    AudioPackets(AVRational timeBase, int sampleRate)
        : samples_(av_q2d(timeBase) * sampleRate), slack_(std::max(1.0, samples_)) {}

    void take(const AVPacket& packet) {
        const double time = static_cast<double>(packet.pts) * samples_;
        if (count_ == 0) first_ = time;
        if (std::abs(time - first_ - static_cast<double>(count_ * CodedAudio::frameSamples)) > slack_)
            fail("wrong times at packet of audio", count_);
        ++count_;
    }

    std::int64_t count() const { return count_; }

   private:
    double samples_;  // in a unit of time
    double slack_;
    double first_ = 0.0;
    std::int64_t count_ = 0;
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
        : file_(file), plan_(plan), drawn_(drawn), everything_(everything), rate_(plan.film.canvas.rate) {}

    /// An input that is shown to its end shows all that it holds.
    void checkEnds() const {
        for (std::size_t i = 0; i < plan_.film.parts.size(); ++i) {
            const Part& part = plan_.film.parts[i];
            const std::int64_t end = part.first + part.frames;
            if (plan_.pictures[i] && end < std::ssize(plan_.pictures[i]->pictures) &&
                end == plan_.film.sourceOf(part).frames(rate_))
                fail(plan_.film.sourceOf(part).name + " is left before its frame", end);
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
            audio.emplace(input.stream(*stream).time_base, plan_.modelAudio().sample_rate);
        }
        while (const av::Packet packet = input.read()) {
            if (packet->stream_index == stream_)
                pictures.take(*packet);
            else
                audio->take(*packet);
        }
        if (audio && audio->count() != plan_.audioPlan.stretches.back().end() + 1)
            fail("the number of packets of audio is", audio->count());
        checkTimes(pictures, input.stream(stream_).time_base);
    }

    void checkSeams() {
        std::vector<std::pair<std::int64_t, std::int64_t>> ranges;
        if (everything_)
            ranges = {{0, plan_.film.frames()}};
        else
            for (std::size_t i = 1; i < plan_.stretches.size(); ++i) {
                const auto [first, end] = around(plan_.stretches[i].first);
                if (!ranges.empty() && first < ranges.back().second)
                    ranges.back().second = std::max(ranges.back().second, end);
                else
                    ranges.emplace_back(first, end);
            }
        for (const auto& [first, end] : ranges) check(first, end);
    }

   private:
    void checkTimes(PicturePackets& pictures, AVRational timeBase) {
        std::vector<std::int64_t>& times = pictures.times;
        if (std::ssize(times) != plan_.film.frames()) fail("the number of packets is", std::ssize(times));
        std::ranges::sort(times);
        start_ = times.front();
        for (std::int64_t i = 0; i < std::ssize(times); ++i)
            if (numberAt(times[static_cast<std::size_t>(i)], timeBase) != i)
                fail("no packet has the time of frame", i);
        for (const std::int64_t time : pictures.keys) keys_.emplace(numberAt(time, timeBase), time);
    }

    std::int64_t numberAt(std::int64_t time, AVRational timeBase) const {
        return av_rescale_q_rnd(time - start_, timeBase, av_inv_q(rate_), AV_ROUND_NEAR_INF);
    }

    /// The frames of the film at which decoding may begin, ascending.
    std::vector<std::int64_t> randomAccesses() const {
        std::vector<std::int64_t> frames;
        for (const Stretch& stretch : plan_.stretches) {
            if (!stretch.part) {
                frames.push_back(stretch.first);
                if (stretch.isSeam) continue;  // all of it is looked at
                for (const auto& [key, time] : keys_)
                    if (key > stretch.first && key < stretch.end()) frames.push_back(key);
                continue;
            }
            const Part& part = plan_.film.parts[*stretch.part];
            for (const CodedPicture& picture : plan_.pictures[*stretch.part]->pictures) {
                const std::int64_t frame = picture.number + part.offset();
                if (picture.randomAccess && frame >= stretch.first && frame < stretch.end())
                    frames.push_back(frame);
            }
        }
        return frames;
    }

    std::pair<std::int64_t, std::int64_t> around(std::int64_t seam) {
        if (randomAccesses_.empty()) randomAccesses_ = randomAccesses();
        const auto at = std::ranges::lower_bound(randomAccesses_, seam);
        const std::int64_t first = at != randomAccesses_.begin() ? *std::prev(at) : 0;
        const std::int64_t end =
            std::distance(at, randomAccesses_.end()) > 1 ? *std::next(at) + 1 : plan_.film.frames();
        return {first, end};
    }

    /// Looks at the frames from `first` on, a keyframe, to before `end`.
    void check(std::int64_t first, std::int64_t end) const {
        const auto key = keys_.find(first);
        if (key == keys_.end()) fail("no keyframe is in frame", first);
        NumberedPictures made(file_, stream_, start_, rate_, key->second);
        for (const Stretch& stretch : plan_.stretches) {
            const std::int64_t from = std::max(first, stretch.first);
            const std::int64_t to = std::min(end, stretch.end());
            if (from >= to) continue;
            std::int64_t offset = 0;
            std::optional<NumberedPictures> source;
            if (stretch.part) {
                const Part& part = plan_.film.parts[*stretch.part];
                const CodedPictures& coded = *plan_.pictures[*stretch.part];
                offset = part.offset();
                const auto start = std::ranges::find_if(coded.pictures, [&](const CodedPicture& picture) {
                    return picture.randomAccess && picture.number == from - offset;
                });
                source.emplace(plan_.film.sourceOf(part).name, coded.stream, coded.start, rate_, start->time);
            }
            for (std::int64_t frame = from; frame < to; ++frame) {
                const av::Frame picture = made.picture(frame);
                const bool compared = source || everything_ || plan_.isCompared(stretch, frame);
                const bool same =
                    !compared || (source ? samePixels(*picture, *source->picture(frame - offset))
                                         : alike(brightnessOf(*picture), drawn_.at(frame)));
                if (!same) fail("another picture shows in frame", frame);
            }
        }
    }

    const std::string& file_;
    const CopyPlan& plan_;
    const std::map<std::int64_t, Brightness>& drawn_;
    bool everything_;
    AVRational rate_;
    int stream_ = 0;
    std::int64_t start_ = 0;
    std::vector<std::int64_t> randomAccesses_;
    std::map<std::int64_t, std::int64_t> keys_;  // when keyframes show, by frame
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
