/// What depends on the column alone and is the same in all rows.
#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/stage.h"

namespace vantle {

/// Values `valueAt(column)`, worked out once for the columns that rows have: weights, shares in single
/// precision, or, of a condition, a mask.
template <typename ValueAt>
class PerColumn {
   public:
    using Result = std::invoke_result_t<ValueAt, std::int32_t>;
    using Value = std::conditional_t<std::is_floating_point_v<Result>, Result, Weight>;

    explicit PerColumn(ValueAt valueAt) : valueAt_(valueAt) {}

    /// Those of the row's columns.
    Columns<Value> operator()(const Row& row) {
        if (columns_ != row.columns()) {
            columns_ = row.columns();
            for (std::int32_t x = columns_.first; x < columns_.end; ++x) {
                if constexpr (std::is_same_v<Result, bool>)
                    values_[x - columns_.first] = valueAt_(x) ? 255 : 0;
                else
                    values_[x - columns_.first] = static_cast<Value>(valueAt_(x));
            }
        }
        return {values_, columns_.first};
    }

   private:
    ValueAt valueAt_;
    Span columns_{0, 0};
    Value values_[Stage::widestPiece];
};

}  // namespace vantle
