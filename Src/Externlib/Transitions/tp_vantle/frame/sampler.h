/// Frames that are shown at other places than their own: scaled, for instance.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/stage.h"

namespace vantle {

/// A frame of which pixel (columnAt(x), rowAt(y)) is shown at (x, y), for some columns; neither ever falls.
template <typename ColumnAt, typename RowAt>
class Sampler {
   public:
    Sampler(const Stage& stage, Source source, const Span& columns, ColumnAt columnAt, RowAt rowAt)
        : stage_(stage), source_(source), shown_(columns), columnAt_(columnAt), rowAt_(rowAt) {}

    /// What is shown in the columns of a row.
    SampledColumns operator()(const Row& row) {
        if (piece_ != row.columns()) {
            piece_ = row.columns();
            sampled_ = {std::clamp(shown_.first, piece_.first, piece_.end),
                        std::clamp(shown_.end, piece_.first, piece_.end)};
            for (std::int32_t x = sampled_.first; x < sampled_.end; ++x)
                columns_[x - sampled_.first] = columnAt_(x);
        }
        return {{nullptr, stage_.row(rowAt_(row.y())).pixels(source_), columns_}, sampled_.first};
    }

    std::int32_t count() const { return sampled_.end - sampled_.first; }  ///< samples of the latest row

   private:
    const Stage& stage_;
    Source source_;
    Span shown_;
    ColumnAt columnAt_;
    RowAt rowAt_;
    Span piece_{0, 0};    // the columns of the latest row
    Span sampled_{0, 0};  // those of them that are shown
    std::int32_t columns_[Stage::widestPiece];
};

/// The same where rows repeat, as in a magnified frame: each is gathered once.
template <typename ColumnAt, typename RowAt>
class Magnifier {
   public:
    Magnifier(const Stage& stage, Source source, const Span& columns, ColumnAt columnAt, RowAt rowAt)
        : sampler_(stage, source, columns, columnAt, rowAt) {}

    SampledColumns operator()(const Row& row) {
        SampledColumns sampled = sampler_(row);
        if (gathered_ != sampled.samples.row || first_ != sampled.first) {
            gather(pixels_, sampled.samples.row, sampled.samples.columns, sampler_.count());
            gathered_ = sampled.samples.row;
            first_ = sampled.first;
        }
        sampled.samples.gathered = pixels_;
        return sampled;
    }

   private:
    Sampler<ColumnAt, RowAt> sampler_;
    const std::uint8_t* gathered_ = nullptr;  // the row that has been, from column `first_` on
    std::int32_t first_ = 0;
    Pixel pixels_[Stage::widestPiece];
};

}  // namespace vantle
