// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "fp_utils/shapes.h"
#include "geometry/row_spans.h"

namespace android::fp_utils {

// The rows of a rectangle: each is empty or the same range of columns.
class RectRows {
 public:
  explicit RectRows(const Rect& rect)
      : left_(rect.top_left.x),
        top_(rect.top_left.y),
        right_(rect.bottom_right.x),
        bottom_(rect.bottom_right.y) {}

  void SetColumns(const Columns& columns) {
    const float* const x = columns.X();
    begin_ = FirstIndex(0, columns.Count(), 0, [&](uint32_t i) { return left_ <= x[i]; });
    end_ =
        FirstIndex(begin_, columns.Count(), begin_, [&](uint32_t i) { return !(x[i] <= right_); });
  }

  void FindSpans(const RowBlock& rows, RowSpans* spans) const {
    spans->FillExact(rows.count, begin_, end_);
    for (uint32_t row = 0; row < rows.count; ++row) {
      if (!(top_ <= rows.y[row] && rows.y[row] <= bottom_)) {
        spans->end[row] = begin_;
      }
    }
  }

  bool Contains(float x, float y) const {
    return left_ <= x && x <= right_ && top_ <= y && y <= bottom_;
  }

 private:
  float left_, top_, right_, bottom_;

  // Set by SetColumns().
  uint32_t begin_ = 0, end_ = 0;
};

}  // namespace android::fp_utils
