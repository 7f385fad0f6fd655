/// The frames of one call and their rows, on which every transition draws from left to right.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "frame/pixels/run.h"
#include "frame/pixels/streaming.h"

namespace vantle {

/// What of the output an effect writes, in all of its rows.
enum class Writes : std::uint8_t {
    pixels,           ///< all four bytes
    coloursOverFrom,  ///< bytes 0 to 2; byte 3 and the padding are those of imgFrom
    coloursOverTo,    ///< bytes 0 to 2; byte 3 and the padding are those of imgTo
    colours           ///< bytes 0 to 2; byte 3 and the padding keep what imgOut held
};

/// `coloursOverFrom` or `coloursOverTo`.
constexpr Writes coloursOver(Source source) {
    return source == Source::from ? Writes::coloursOverFrom : Writes::coloursOverTo;
}

/// Columns or rows `first` to `end` - 1.
struct Span {
    std::int32_t first, end;
    bool empty() const { return first >= end; }
    bool operator==(const Span&) const = default;
};

/// Values of columns side by side, such as weights: `values[0]` is that of column `first`.
template <typename Value>
struct Columns {
    const Value* values;
    std::int32_t first;
    const Value* from(std::int32_t column) const { return values + (column - first); }
};

/// Samples for columns side by side: the first is that of column `first`.
struct SampledColumns {
    Samples samples;
    std::int32_t first;
    Samples from(std::int32_t column) const {
        const std::int32_t skipped = column - first;
        return {samples.gathered != nullptr ? samples.gathered + skipped : nullptr, samples.row,
                samples.columns + skipped};
    }
};

/// The three frames of one call, which have one geometry, from the first byte of each in memory.
struct StageFrames {
    std::int32_t width, height;
    std::int32_t pitch;  ///< bytes from one row to the next in memory
    std::uint8_t* out;
    const std::uint8_t* from;
    const std::uint8_t* to;
    const std::uint8_t* kept;  ///< where a byte 3 that an effect keeps comes from: `out`, or an input
    bool streamed;             ///< whether they are too large for a cache to hold
    std::int64_t prefetched;  ///< bytes of them that may be prefetched: none of small ones, which are at hand
};

/// A row of the output, or in a wide frame a piece of one, written from left to right: each call continues
/// where the last one ended and writes up to, not including, column `end`. An `end` outside is clipped and
/// one already passed writes nothing, so that spans may be given as computed.
class Row {
   public:
    /// Row `y` of the picture, which begins `offset` bytes into the frames, in these columns.
    Row(const StageFrames& frames, Writes writes, std::int32_t y, std::ptrdiff_t offset, const Span& columns)
        : frames_(&frames),
          offset_(offset),
          y_(y),
          columns_(columns),
          at_(4 * columns.first),
          end_(columns.end == frames.width ? frames.pitch : 4 * columns.end),
          writes_(writes) {}

    std::int32_t y() const { return y_; }             ///< picture row, counted from the top
    std::int32_t x() const { return at_ / 4; }        ///< column that the next run starts with
    const Span& columns() const { return columns_; }  ///< all columns that it has

    /// Pixels of one input frame.
    Row& show(Source source, std::int32_t end) {
        if (isWhole(source)) return copyUpTo(4 * std::clamp(end, columns_.first, columns_.end), source);
        const Run run = next(end);
        return shown(source == Source::to ? run.to : run.from, run);
    }
    Row& from(std::int32_t end) { return show(Source::from, end); }
    Row& to(std::int32_t end) { return show(Source::to, end); }

    /// The rest of the row, with its padding unless that is kept.
    void showRest(Source source) {
        if (isWhole(source)) {
            copyUpTo(end_, source);
        } else {
            show(source, columns_.end);
            if (writes_ != Writes::colours) copyUpTo(end_, source == Source::to ? Source::from : Source::to);
        }
    }
    void fromRest() { showRest(Source::from); }
    void toRest() { showRest(Source::to); }

    /// Pixels of imgFrom up to the last `count` pixels of the pitch: of the row, when it has no padding.
    Row& fromAllBut(std::int32_t count) {
        return copyUpTo(std::min(frames_->pitch - 4 * count, end_), Source::from);
    }

    /// Pixels of an input frame's row `other`, each from `right` columns further right.
    Row& moved(const Row& other, Source source, std::int32_t right, std::int32_t end) {
        const std::uint8_t* const start = other.pixels(source) + at_ + std::ptrdiff_t{4} * right;
        return shown(start, next(end));
    }

    /// Both frames, imgTo with `weight` 0 to 255 and imgFrom with the rest of 255.
    Row& mix(std::int32_t weight, std::int32_t end, Division division = Division::by255) {
        if (const Run run = next(end); run.count > 0) vantle::mix(run, division, weight);
        return *this;
    }
    Row& mix(const Columns<Weight>& weights, std::int32_t end, Division division = Division::by255) {
        const std::int32_t start = x();
        if (const Run run = next(end); run.count > 0) vantle::mix(run, division, weights.from(start));
        return *this;
    }

    /// The same with the mean, truncated, of a weight for each column and another.
    Row& mixMean(const Columns<Weight>& weights, std::int32_t other, std::int32_t end) {
        const std::int32_t start = x();
        if (const Run run = next(end); run.count > 0)
            vantle::mixMean(run, weights.from(start), static_cast<Weight>(other));
        return *this;
    }

    /// All four bytes of both frames, imgFrom with `share` 0 to 1 and imgTo with the rest, in single
    /// precision.
    Row& fade(float share, std::int32_t end) {
        if (const Run run = next(end); run.count > 0) vantle::fade(run, share);
        return *this;
    }
    Row& fade(const Columns<float>& shares, std::int32_t end) {
        const std::int32_t start = x();
        if (const Run run = next(end); run.count > 0) vantle::fade(run, shares.from(start));
        return *this;
    }

    /// Bytes 0 to 2 of one input frame times a factor; byte 3 as it is.
    Row& shade(Source source, const Shade& factor, std::int32_t end) {
        const std::uint8_t* const start = pixels(source) + at_;
        if (const Run run = next(end); run.count > 0) vantle::shade(run, start, factor);
        return *this;
    }

    /// Pixels of `chosen` where the mask is 255 and of the other frame where it is 0.
    Row& choose(const Columns<Weight>& mask, std::int32_t end, Source chosen = Source::to) {
        const std::int32_t start = x();
        Run run = next(end);
        if (chosen == Source::from) std::swap(run.from, run.to);
        if (run.count > 0) vantle::choose(run, mask.from(start));
        return *this;
    }

    /// Pixels of imgTo where their rank is below `shown`, and of imgFrom.
    Row& choose(const Columns<std::uint32_t>& ranks, std::uint32_t shown, std::int32_t end) {
        const std::int32_t start = x();
        if (const Run run = next(end); run.count > 0) vantle::choose(run, ranks.from(start), shown);
        return *this;
    }

    /// Bytes 0 to 2 of samples of the row's columns; only where byte 3 is not written.
    Row& sample(const SampledColumns& samples, std::int32_t end) {
        const std::int32_t start = x();
        if (const Run run = next(end); run.count > 0) vantle::sample(run, samples.from(start));
        return *this;
    }

    /// The same with `opacity` 0 to 1 over others, in single precision.
    Row& sample(const SampledColumns& over, const SampledColumns& under, float opacity, std::int32_t end) {
        if (opacity == 1.0F) return sample(over, end);
        const std::int32_t start = x();
        if (const Run run = next(end); run.count > 0)
            vantle::sample(run, over.from(start), under.from(start), opacity);
        return *this;
    }

    /// Leaves pixels as they are.
    Row& skip(std::int32_t end) {
        next(end);
        return *this;
    }

    /// Up to column `end`, for loops that make their own pixels.
    Run next(std::int32_t end) {
        const std::int32_t start = at_;
        at_ = std::max(at_, 4 * std::clamp(end, columns_.first, columns_.end));
        const std::ptrdiff_t offset = offset_ + start;
        const std::uint8_t* const other = fourth();
        return {frames_->out + offset,
                frames_->from + offset,
                frames_->to + offset,
                other != nullptr ? other + start : nullptr,
                (at_ - start) / 4,
                frames_->streamed,
                offset_ + frames_->pitch < frames_->prefetched ? std::ptrdiff_t{frames_->pitch} : 0};
    }

    /// The whole row of an input frame.
    const std::uint8_t* pixels(Source source) const {
        return (source == Source::to ? frames_->to : frames_->from) + offset_;
    }

   private:
    /// The row that byte 3 comes from; null where it is like the other three.
    const std::uint8_t* fourth() const {
        if (writes_ == Writes::pixels) return nullptr;
        if (writes_ == Writes::colours) return frames_->kept + offset_;
        return pixels(writes_ == Writes::coloursOverFrom ? Source::from : Source::to);
    }

    /// Whether byte 3 is that of this frame as well.
    bool isWhole(Source source) const { return writes_ == Writes::pixels || writes_ == coloursOver(source); }

    /// All bytes of an input frame up to byte `end` of the row.
    Row& copyUpTo(std::int32_t end, Source source) {
        if (end > at_) {
            copyBytes(frames_->out + offset_ + at_, pixels(source) + at_, end - at_, frames_->streamed);
            at_ = end;
        }
        return *this;
    }

    Row& shown(const std::uint8_t* pixels, const Run& run) {
        if (run.count > 0) copy(run, pixels);
        return *this;
    }

    const StageFrames* frames_;
    std::ptrdiff_t offset_;
    std::int32_t y_;
    Span columns_;
    std::int32_t at_;   // byte of the row that the next run starts with
    std::int32_t end_;  // byte behind its last one, which may be padding
    Writes writes_;
};

/// What is drawn on: the frames of one call. They are stored bottom-up when `pitch` is positive and top-down
/// when it is negative; the picture drawn is the same.
class Stage {
   public:
    /// Columns of a row that are drawn at a time, so that what depends on the column alone has room on the
    /// stack.
    static constexpr std::int32_t widestPiece = 4096;

    enum class Streaming : std::uint8_t { ofLargeFrames, always };

    /// Frames of `width` x `height` pixels of 4 bytes, neither negative, whose rows lie `pitch` bytes apart,
    /// at least 4 for each pixel. The pointers are to the first byte of each in memory, whichever row that is
    /// of.
    Stage(std::int32_t width, std::int32_t height, std::int32_t pitch, std::uint8_t* out,
          const std::uint8_t* from, const std::uint8_t* to, Streaming streaming = Streaming::ofLargeFrames)
        : frames_{width, height, std::abs(pitch), out, from, to, out, false, 0}, topDown_(pitch < 0) {
        const std::int64_t bytes = std::int64_t{frames_.pitch} * height;
        const bool always = streaming == Streaming::always;
        frames_.streamed = always || bytes >= streamedFrame;
        frames_.prefetched = always || bytes >= prefetchedFrame ? bytes : 0;
    }
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

    std::int32_t width() const { return frames_.width; }    ///< pixels
    std::int32_t height() const { return frames_.height; }  ///< rows

    class RowIterator;
    struct Rows;

    /// All rows of the picture in the order in which memory holds them; of frames wider than a piece, first
    /// the left pieces of all rows, then those right of them.
    Rows rows(Writes writes) const;

    /// Rows `first` to `end` - 1 of the picture, as far as it has them, whole.
    Rows rowsOf(const Span& rows, Writes writes) const;

    /// Row `y` of the picture, 0 at the top. The only place that knows in which order frames are stored.
    Row row(std::int32_t y, Writes writes, const Span& columns) const {
        return {frames_, writes, y, std::ptrdiff_t{placeOf(y)} * frames_.pitch, columns};
    }
    Row row(std::int32_t y, Writes writes = Writes::pixels) const { return row(y, writes, {0, width()}); }

    /// All of one frame.
    void show(Source source, Writes writes = Writes::pixels) const;

   private:
    /// Where memory holds row `y`; and, the two being each other's mirror image, which row it holds there.
    std::int32_t placeOf(std::int32_t y) const { return topDown_ ? y : height() - 1 - y; }

    StageFrames frames_;
    bool topDown_;
};

class Stage::RowIterator {
   public:
    RowIterator(const Rows& rows, std::int32_t place, std::int32_t column)
        : rows_(&rows), place_(place), column_(column) {}
    Row operator*() const;
    RowIterator& operator++();
    bool operator!=(const RowIterator& other) const {
        return place_ != other.place_ || column_ != other.column_;
    }

   private:
    const Rows* rows_;
    std::int32_t place_;
    std::int32_t column_;
};

struct Stage::Rows {
    const Stage& stage;
    Writes writes;
    Span places;
    std::int32_t piece;

    /// The last piece of a row begins here.
    std::int32_t lastPiece() const { return std::max(stage.width() - 1, 0) / piece * piece; }
    RowIterator begin() const { return {*this, places.first, places.empty() ? lastPiece() + piece : 0}; }
    RowIterator end() const { return {*this, places.first, lastPiece() + piece}; }
};

inline Row Stage::RowIterator::operator*() const {
    const Stage& stage = rows_->stage;
    return stage.row(stage.placeOf(place_), rows_->writes,
                     {column_, std::min(column_ + rows_->piece, stage.width())});
}

inline Stage::RowIterator& Stage::RowIterator::operator++() {
    if (++place_ == rows_->places.end) {
        place_ = rows_->places.first;
        column_ += rows_->piece;
    }
    return *this;
}

inline Stage::Rows Stage::rows(Writes writes) const { return {*this, writes, {0, height()}, widestPiece}; }

inline Stage::Rows Stage::rowsOf(const Span& rows, Writes writes) const {
    const std::int32_t first = std::clamp(rows.first, 0, height());
    const std::int32_t end = std::clamp(rows.end, first, height());
    const Span places = topDown_ ? Span{first, end} : Span{height() - end, height() - first};
    return {*this, writes, places, std::max(width(), 1)};
}

inline void Stage::show(Source source, Writes writes) const {
    for (Row row : rows(writes)) row.showRest(source);
}

}  // namespace vantle
