#include "copying/verification.h"

#include <algorithm>
#include <cmath>
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

/// Decoded pictures with their numbers.
class NumberedPictures {
   public:
    NumberedPictures(const std::string& file, int stream, std::int64_t start, AVRational rate)
        : input_(file),
          stream_(stream),
          start_(start),
          rate_(rate),
          reader_((input_.useAlone(stream), input_), stream) {}

    /// Goes to the key picture that shows at `time`, or before it.
    void seek(std::int64_t time) {
        if (!input_.seek(stream_, time)) input_.reopen();
        reader_.flush();
    }

    /// The pictures from `first` to before `end`, each with its number. Throws Fault when one is missing.
    template <typename Take>
    void read(std::int64_t first, std::int64_t end, Take&& take) {
        for (std::int64_t next = first; next < end;) {
            const av::Frame picture = reader_.next();
            if (!picture) fail("the film ends before frame", next);
            const std::int64_t number =
                av_rescale_q_rnd(picture->pts - start_, timeBase(), av_inv_q(rate_), AV_ROUND_NEAR_INF);
            if (number < next && next == first) continue;
            if (number != next) fail("the decoder does not show frame", next);
            take(next++, *picture);
        }
        if (input_.health().damaged > 0) fail("packets do not decode before frame", end);
    }

    AVRational timeBase() const { return input_.stream(stream_).time_base; }

   private:
    Demuxer input_;
    int stream_;
    std::int64_t start_;
    AVRational rate_;
    StreamReader reader_;
};

class Verification {
   public:
    Verification(const std::string& file, const CopyPlan& plan,
                 const std::map<std::int64_t, Brightness>& drawn)
        : file_(file), plan_(plan), drawn_(drawn), rate_(plan.film.canvas.rate) {}

    void checkPackets() {
        Demuxer input(file_);
        stream_ = *input.best(AVMEDIA_TYPE_VIDEO);
        input.useAlone(stream_);
        const AVRational timeBase = input.stream(stream_).time_base;
        // Matroska keeps no times of decoding.
        const bool keepsDecoding = std::string_view(input.container().iformat->name).starts_with("mov,");
        std::vector<std::int64_t> times;
        std::vector<std::int64_t> keys;  // when key pictures show
        std::optional<std::int64_t> decoded;
        while (const av::Packet packet = input.read(stream_)) {
            times.push_back(packet->pts);
            if ((packet->flags & AV_PKT_FLAG_KEY) != 0) keys.push_back(packet->pts);
            const bool ordered = packet->dts <= packet->pts && (!decoded || packet->dts > *decoded);
            if (keepsDecoding && !ordered) fail("wrong times at packet", std::ssize(times));
            decoded = packet->dts;
        }
        if (std::ssize(times) != plan_.film.frames()) fail("the number of packets is", std::ssize(times));
        std::ranges::sort(times);
        start_ = times.front();
        for (std::int64_t i = 0; i < std::ssize(times); ++i)
            if (numberAt(times[static_cast<std::size_t>(i)], timeBase) != i)
                fail("no packet has the time of frame", i);
        for (const std::int64_t time : keys) keys_.emplace(numberAt(time, timeBase), time);
    }

    void checkSound() const {
        if (plan_.soundStretches.empty()) return;
        Demuxer input(file_);
        const std::optional<int> stream = input.best(AVMEDIA_TYPE_AUDIO);
        if (!stream) throw Fault("the sound is missing");
        input.useAlone(*stream);
        const int rate = plan_.modelSound().sample_rate;
        const AVRational timeBase = input.stream(*stream).time_base;
        const double slack = std::max(1.0, rate * av_q2d(timeBase));
        std::int64_t count = 0;
        double first = 0.0;
        while (const av::Packet packet = input.read(*stream)) {
            const double time = static_cast<double>(packet->pts) * av_q2d(timeBase) * rate;
            if (count == 0) first = time;
            if (std::abs(time - first - static_cast<double>(count * CodedSound::portion)) > slack)
                fail("wrong times at packet of sound", count);
            ++count;
        }
        if (count != plan_.soundStretches.back().end() + 1) fail("the number of packets of sound is", count);
    }

    void checkSeams(bool everything) {
        std::vector<std::pair<std::int64_t, std::int64_t>> ranges;
        if (everything)
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
    std::int64_t numberAt(std::int64_t time, AVRational timeBase) const {
        return av_rescale_q_rnd(time - start_, timeBase, av_inv_q(rate_), AV_ROUND_NEAR_INF);
    }

    /// The frames of the film at which decoding may begin, as far as they are known, ascending.
    std::vector<std::int64_t> entries() const {
        std::vector<std::int64_t> frames;
        for (const Stretch& stretch : plan_.stretches) {
            if (!stretch.part) {
                frames.push_back(stretch.first);
                continue;
            }
            const Part& part = plan_.film.parts[*stretch.part];
            for (const CodedPicture& picture : plan_.pictures[*stretch.part]->pictures) {
                const std::int64_t frame = picture.number - part.first + part.start;
                if (picture.entry && frame >= stretch.first && frame < stretch.end()) frames.push_back(frame);
            }
        }
        return frames;
    }

    std::pair<std::int64_t, std::int64_t> around(std::int64_t seam) {
        if (entries_.empty()) entries_ = entries();
        const auto at = std::ranges::lower_bound(entries_, seam);
        const std::int64_t first = at != entries_.begin() ? *std::prev(at) : 0;
        const std::int64_t end =
            std::distance(at, entries_.end()) > 1 ? *std::next(at) + 1 : plan_.film.frames();
        return {first, end};
    }

    void check(std::int64_t first, std::int64_t end) const {
        std::map<std::int64_t, std::uint64_t> expected;
        for (const Stretch& stretch : plan_.stretches) {
            if (!stretch.part || stretch.end() <= first || stretch.first >= end) continue;
            const Part& part = plan_.film.parts[*stretch.part];
            const CodedPictures& coded = *plan_.pictures[*stretch.part];
            const std::int64_t offset = part.start - part.first;
            const std::int64_t from = std::max(first, stretch.first) - offset;
            NumberedPictures source(part.input->name(), coded.stream, coded.start, rate_);
            source.seek(std::ranges::find_if(coded.pictures, [&](const CodedPicture& picture) {
                            return picture.entry && picture.number == from;
                        })->time);
            source.read(from, std::min(end, stretch.end()) - offset,
                        [&](std::int64_t number, const AVFrame& picture) {
                            expected.emplace(number + offset, pixelsHash(picture));
                        });
        }
        NumberedPictures made(file_, stream_, start_, rate_);
        const auto key = keys_.find(first);
        if (key == keys_.end()) fail("no key picture is in frame", first);
        made.seek(key->second);
        made.read(first, end, [&](std::int64_t frame, const AVFrame& picture) {
            const auto copied = expected.find(frame);
            const bool same = copied != expected.end() ? copied->second == pixelsHash(picture)
                                                       : alike(drawn_.at(frame), brightnessOf(picture));
            if (!same) fail("another picture shows in frame", frame);
        });
    }

    const std::string& file_;
    const CopyPlan& plan_;
    const std::map<std::int64_t, Brightness>& drawn_;
    AVRational rate_;
    int stream_ = 0;
    std::int64_t start_ = 0;
    std::vector<std::int64_t> entries_;
    std::map<std::int64_t, std::int64_t> keys_;  // when key pictures show, by frame
};

}  // namespace

std::string faultOf(const std::string& file, const CopyPlan& plan,
                    const std::map<std::int64_t, Brightness>& drawn, bool everything) {
    try {
        Verification verification(file, plan, drawn);
        verification.checkPackets();
        verification.checkSound();
        verification.checkSeams(everything);
    } catch (const Fault& fault) {
        return fault.what();
    } catch (const Error& error) {
        throwIfInterrupted();
        return std::string("it does not decode: ") + error.what();
    }
    return {};
}

}  // namespace vantle
