/// The frames of one call, and the runs of pixels that every transition draws its rows with.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "frame/pixels.h"
#include "frame/streaming.h"

namespace vantle {

/// The three frames of one call, which have one geometry, from the first byte of each in memory.
struct StageFrames {
    std::int32_t width, height;
    std::int32_t pitch;  ///< bytes from one row to the next in memory
    std::uint8_t* out;
    const std::uint8_t* from;
    const std::uint8_t* to;
    const std::uint8_t* kept;  ///< where a byte 3 that an effect keeps comes from: `out`, or an input
    std::int64_t bytes;        ///< of each frame
};

/// One row of the output, written from left to right: each call continues where the last one ended and
/// writes up to (not including) column `end`. An `end` outside the picture is clipped to it and one already
/// passed writes nothing, so spans may be given as computed.
class Row {
   public:
    /// Pixels of an input frame's row: column `first + i` of what is drawn is its column `columns[i]`.
    struct Samples;

    /// No row: nothing may be drawn to it.
    Row() = default;

    /// Row `y` of the picture, which begins `offset` bytes into the frames.
    Row(const StageFrames& frames, std::int32_t y, std::ptrdiff_t offset)
        : frames_(&frames),
          offset_(offset),
          y_(y),
          pastCache_(vantle::pastCache(frames.bytes, frames.bytes - offset)) {}

    std::int32_t y() const { return y_; }       ///< picture row, counted from the top
    std::int32_t x() const { return at_ / 4; }  ///< column that the next run starts with

    /// Whole pixels of one input frame.
    Row& show(Source source, std::int32_t end) {
        return copy(source, 4 * std::clamp(end, 0, frames_->width));
    }
    Row& from(std::int32_t end) { return show(Source::from, end); }
    Row& to(std::int32_t end) { return show(Source::to, end); }

    /// Pixels of `imgFrom` up to the last `count` pixels of the pitch (of the row, when it has no padding).
    Row& fromAllBut(std::int32_t count) { return copy(Source::from, frames_->pitch - 4 * count); }

    /// The rest of the row with its padding.
    void showRest(Source source) { copy(source, frames_->pitch); }
    void fromRest() { showRest(Source::from); }
    void toRest() { showRest(Source::to); }

    /// Bytes 0 to 2 of one input frame; what byte 3 gets is `fourth`.
    Row& colours(Source source, Fourth fourth, std::int32_t end) {
        if (const Run run = next(end); run.count > 0) copyColours(run, source, fourth);
        return *this;
    }

    /// Bytes 0 to 2 of `imgTo`, byte 3 of `imgFrom`.
    Row& toColours(std::int32_t end) { return colours(Source::to, Fourth::ofFrom, end); }

    /// Both frames, `imgTo` with `weight` 0 to 255 and `imgFrom` with the rest of 255.
    Row& mix(Divisor divisor, Fourth fourth, std::int32_t weight, std::int32_t end) {
        if (const Run run = next(end); run.count > 0) vantle::mix(run, divisor, fourth, weight);
        return *this;
    }

    /// The same with a weight for each column; `weights[0]` is that of column `first`, at or before `x()`.
    Row& mix(Divisor divisor, Fourth fourth, const Weight* weights, std::int32_t first, std::int32_t end) {
        const std::int32_t skipped = x() - first;
        if (const Run run = next(end); run.count > 0) vantle::mix(run, divisor, fourth, weights + skipped);
        return *this;
    }

    /// All bytes mixed in single precision; `weights[0]` is that of column `first`.
    Row& mixSingle(const Weight* weights, std::int32_t first, std::int32_t end) {
        const std::int32_t skipped = x() - first;
        if (const Run run = next(end); run.count > 0) vantle::mixSingle(run, weights + skipped);
        return *this;
    }

    /// Bytes 0 to 2 of one input frame times a factor, byte 3 as it is.
    Row& shaded(Source source, const Shade& factor, std::int32_t end) {
        if (const Run run = next(end); run.count > 0) shade(run, source, factor);
        return *this;
    }

    /// All bytes of both frames, imgFrom with `share` 0 to 1 and imgTo with the rest, in single precision.
    Row& fade(float share, std::int32_t end) {
        if (const Run run = next(end); run.count > 0) vantle::fade(run, share);
        return *this;
    }

    /// The same with a share for each column; `shares[0]` is that of column `first`.
    Row& fade(const float* shares, std::int32_t first, std::int32_t end) {
        const std::int32_t skipped = x() - first;
        if (const Run run = next(end); run.count > 0) vantle::fade(run, shares + skipped);
        return *this;
    }

    /// Whole pixels, of `shown` where the weight is 255 and of the other frame where it is 0, which is faster
    /// than short runs; `weights[0]` is that of column `first`.
    Row& woven(Source shown, const Weight* weights, std::int32_t first, std::int32_t end) {
        const std::int32_t skipped = x() - first;
        Run run = next(end);
        if (shown == Source::from) std::swap(run.from, run.to);
        if (run.count > 0) weave(run, Fourth::mixed, weights + skipped);
        return *this;
    }

    /// The same of bytes 0 to 2 of imgTo; byte 3 of imgFrom.
    Row& wovenColours(const Weight* weights, std::int32_t first, std::int32_t end) {
        const std::int32_t skipped = x() - first;
        if (const Run run = next(end); run.count > 0) weave(run, Fourth::ofFrom, weights + skipped);
        return *this;
    }

    /// The rest of the row but its padding: columns `first` to `end` - 1 of one frame, and of the other
    /// around them. Byte 3 as in `weave`.
    Row& window(Source inside, Fourth fourth, std::int32_t first, std::int32_t end) {
        const std::int32_t start = x(), count = frames_->width - start;
        const std::int32_t ofTo = inside == Source::to ? end - first : count - (end - first);
        if (!windowIsFaster(fourth, ofTo, count, pastCache_)) {
            const Source outside = inside == Source::to ? Source::from : Source::to;
            return piece(outside, fourth, first)
                .piece(inside, fourth, end)
                .piece(outside, fourth, frames_->width);
        }
        vantle::window(next(frames_->width), inside, fourth, first - start, end - start);
        return *this;
    }

    /// Whole pixels, of imgTo where their rank is below `shown` and of imgFrom; `ranks[0]` is that of the
    /// row's first pixel.
    Row& chosen(const std::uint32_t* ranks, std::uint32_t shown, std::int32_t end) {
        const std::int32_t skipped = x();
        if (const Run run = next(end); run.count > 0) choose(run, ranks + skipped, shown);
        return *this;
    }

    /// Bytes 0 to 2 black, byte 3 kept.
    Row& black(std::int32_t end) {
        if (const Run run = next(end); run.count > 0) blacken(run);
        return *this;
    }

    /// Whole pixels of an input frame's row `other`, from its column `first` on.
    Row& moved(const Row& other, Source source, std::int32_t first, std::int32_t end) {
        if (const Run run = next(end); run.count > 0)
            copyBytes(run.out, other.pixels(source) + std::ptrdiff_t{4} * first, 4 * run.count,
                      run.pastCache);
        return *this;
    }

    /// Whole pixels of a picture in the making: `places[0]`, `places[1]`, ... pixels from its pixel `origin`.
    Row& picked(const std::uint32_t* pixels, std::ptrdiff_t origin, const std::int32_t* places,
                std::int32_t end) {
        if (const Run run = next(end); run.count > 0) pick(run, pixels, origin, places);
        return *this;
    }

    /// Bytes 0 to 2 of sampled pixels, byte 3 kept.
    Row& sampled(const Samples& samples, std::int32_t end);

    /// The same with `opacity` 0 to 1, faded in over `under`, whose first pixel is that of the same column.
    Row& faded(const Samples& samples, const std::uint32_t* under, float opacity, std::int32_t end);

    /// Bytes 0 to 2 of `pixels`, the first being that of column `first`; byte 3 kept.
    Row& painted(const std::uint32_t* pixels, std::int32_t first, std::int32_t end) {
        const std::int32_t skipped = x() - first;
        if (Run run = next(end); run.count > 0) {
            run.from = reinterpret_cast<const std::uint8_t*>(pixels + skipped);
            copyColours(run, Source::from, Fourth::kept);
        }
        return *this;
    }

    /// Leaves pixels as they are.
    Row& skip(std::int32_t end) {
        next(end);
        return *this;
    }

   private:
    /// The whole row of an input frame.
    const std::uint8_t* pixels(Source source) const {
        return (source == Source::to ? frames_->to : frames_->from) + offset_;
    }

    /// Pixels of one frame as a window shows them.
    Row& piece(Source source, Fourth fourth, std::int32_t end) {
        const bool whole = fourth == Fourth::mixed || source == Source::from;
        return whole ? show(source, end) : colours(source, fourth, end);
    }

    Row& copy(Source source, std::int32_t endByte) {
        if (endByte > at_) {
            copyBytes(frames_->out + offset_ + at_, pixels(source) + at_, endByte - at_, pastCache_);
            at_ = endByte;
        }
        return *this;
    }

    /// The pixels from here to column `end`, which the row then has passed.
    Run next(std::int32_t end) {
        const StageFrames& frames = *frames_;
        const std::int32_t start = at_;
        at_ = std::max(at_, 4 * std::clamp(end, 0, frames.width));
        const bool fetches = frames.bytes >= fetchedFrame && offset_ + frames.pitch < frames.bytes;
        const std::ptrdiff_t offset = offset_ + start;
        return {frames.out + offset,
                frames.from + offset,
                frames.to + offset,
                frames.kept + offset,
                (at_ - start) / 4,
                pastCache_,
                fetches ? std::ptrdiff_t{frames.pitch} : 0};
    }

    const StageFrames* frames_ = nullptr;
    std::ptrdiff_t offset_ = 0;
    std::int32_t y_ = 0;
    std::int32_t at_ = 0;  // byte of the row that the next run starts with
    PastCache pastCache_ = PastCache::nothing;
};

struct Row::Samples {
    Row row;
    Source source;
    const std::int32_t* columns;
    std::int32_t first;
    std::ptrdiff_t ahead = 0;  ///< bytes to the row that is to be fetched meanwhile, if any

    const std::uint8_t* pixels() const { return row.pixels(source); }

    /// The same samples up to column `end`, those of `next` being fetched meanwhile: unless they are what
    /// follows in memory, which processors fetch by themselves.
    Samples before(const Row& next, std::int32_t end) const {
        constexpr std::ptrdiff_t gap = 8 * lineBytes;
        if (row.pastCache_ != PastCache::everything || end <= first) return *this;
        const std::ptrdiff_t distance = next.offset_ - row.offset_;
        const std::ptrdiff_t length = std::ptrdiff_t{4} * (columns[end - first - 1] - columns[0]);
        if (std::abs(distance) < length + gap) return *this;
        return {row, source, columns, first, distance};
    }

    vantle::Samples from(std::int32_t column) const { return {pixels(), columns + (column - first), ahead}; }

    /// Has them, up to column `end`, brought into the cache.
    void fetch(std::int32_t end) const {
        const std::ptrdiff_t last = columns[end - first - 1];
        for (std::ptrdiff_t column = columns[0]; column <= last; column += linePixels)
            fetchLine(pixels() + 4 * column);
    }

    /// All of them, up to column `end`, whole.
    void gather(std::uint32_t* gathered, std::int32_t end) const {
        vantle::gather(gathered, from(first), end - first);
    }
};

inline Row& Row::sampled(const Samples& samples, std::int32_t end) {
    const std::int32_t start = x();
    if (const Run run = next(end); run.count > 0) sample(run, samples.from(start));
    return *this;
}

inline Row& Row::faded(const Samples& samples, const std::uint32_t* under, float opacity, std::int32_t end) {
    const std::int32_t start = x();
    if (const Run run = next(end); run.count > 0)
        sampleFaded(run, samples.from(start), under + (start - samples.first), opacity);
    return *this;
}

/// What is drawn on: the frames of one call. They are stored bottom-up when `pitch` is positive and top-down
/// when it is negative; the picture drawn is the same.
class Stage {
   public:
    /// StageFrames of `width` x `height` pixels of 4 bytes, neither negative, whose rows lie `pitch` bytes
    /// apart, at least 4 for each pixel. The pointers are to the first byte of each in memory, whichever row
    /// that is of.
    Stage(std::int32_t width, std::int32_t height, std::int32_t pitch, std::uint8_t* out,
          const std::uint8_t* from, const std::uint8_t* to)
        : frames_{width, height, std::abs(pitch), out, from, to, out, std::int64_t{std::abs(pitch)} * height},
          topDown_(pitch < 0) {}
    Stage(const Stage&) = default;
    Stage& operator=(const Stage&) = default;
    ~Stage() { finishStreaming(); }

    /// The same frames for a host whose output holds nothing yet: a byte 3 that an effect keeps, as the
    /// output held it, is that of an input frame instead.
    Stage keeping(Source source) const {
        Stage stage = *this;
        stage.frames_.kept = source == Source::to ? frames_.to : frames_.from;
        return stage;
    }

    /// The same frames, written past the cache as large ones are, for tests.
    Stage streamed() const {
        Stage stage = *this;
        stage.frames_.bytes = std::int64_t{1} << 31;
        return stage;
    }

    std::int32_t width() const { return frames_.width; }    ///< pixels
    std::int32_t height() const { return frames_.height; }  ///< rows

    /// The row after `y` in the order in which memory holds them; at the end, `y`.
    std::int32_t after(std::int32_t y) const { return std::clamp(topDown_ ? y + 1 : y - 1, 0, height() - 1); }

    class RowIterator;
    struct Rows;

    /// All rows of the picture, each once, in the order in which memory holds them.
    Rows rows() const;

    /// Rows `first` to `end` - 1 of the picture, as far as it has them, in that order.
    Rows rows(std::int32_t first, std::int32_t end) const;

    /// Row `y` of the picture, 0 at the top. The only place that knows in which order frames are stored.
    Row row(std::int32_t y) const { return {frames_, y, std::ptrdiff_t{placeOf(y)} * frames_.pitch}; }

   private:
    /// Where memory holds row `y`; and, the two being each other's mirror image, which row it holds there.
    std::int32_t placeOf(std::int32_t y) const { return topDown_ ? y : height() - 1 - y; }

    StageFrames frames_;
    bool topDown_;
};

class Stage::RowIterator {
   public:
    RowIterator(const Stage& stage, std::int32_t place) : stage_(&stage), place_(place) {}
    Row operator*() const { return stage_->row(stage_->placeOf(place_)); }
    RowIterator& operator++() {
        ++place_;
        return *this;
    }
    bool operator!=(const RowIterator& other) const { return place_ != other.place_; }

   private:
    const Stage* stage_;
    std::int32_t place_;
};

struct Stage::Rows {
    const Stage& stage;
    std::int32_t firstPlace, endPlace;
    RowIterator begin() const { return {stage, firstPlace}; }
    RowIterator end() const { return {stage, endPlace}; }
};

inline Stage::Rows Stage::rows() const { return rows(0, height()); }

inline Stage::Rows Stage::rows(std::int32_t first, std::int32_t end) const {
    const std::int32_t firstRow = std::clamp(first, 0, height());
    const std::int32_t endRow = std::clamp(end, firstRow, height());
    return topDown_ ? Rows{*this, firstRow, endRow} : Rows{*this, height() - endRow, height() - firstRow};
}

}  // namespace vantle
