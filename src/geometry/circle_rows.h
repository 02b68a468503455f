// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "fp_utils/shapes.h"
#include "geometry/row_spans.h"

namespace android::fp_utils {

// The rows of a circle. The distance that Circle::Contains() computes never decreases as a sample
// moves away from the centre's column, so the samples inside are one range of columns in each row.
class CircleRows {
 public:
  explicit CircleRows(const Circle& circle);

  void SetColumns(const Columns& columns);
  void FindSpans(const RowBlock& rows, RowSpans* spans) const;
  bool Contains(float x, float y) const { return IsIn(center_x_ - x, center_y_ - y); }

 private:
  void CorrectSpan(float dy, uint32_t* begin, uint32_t* end) const;
  bool IsIn(float dx, float dy) const { return dx * dx + dy * dy <= threshold_; }

  float center_x_, center_y_;
  float threshold_;  // largest square whose root is at most the radius; -1: there is none

  // Set by SetColumns().
  const Columns* columns_ = nullptr;
  bool is_finite_ = false;
  uint32_t middle_ = 0;        // first column at or right of the centre
  float center_position_ = 0;  // of the centre, in columns
  float density_ = 0;          // columns per panel unit
};

}  // namespace android::fp_utils
