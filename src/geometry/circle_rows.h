// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "fp_utils/shapes.h"
#include "geometry/row_spans.h"

namespace android::fp_utils {

// The rows of a circle. What Circle::Contains() computes never decreases with the distance of a
// sample from the centre's column, so each row is one range of columns, exactly.
class CircleRows {
 public:
  explicit CircleRows(const Circle& circle);

  void Enter(const Columns& columns);
  void Find(const RowBlock& rows, RowSpans* spans) const;
  bool Contains(float x, float y) const { return IsIn(center_x_ - x, center_y_ - y); }

 private:
  void FindRow(float dy, uint32_t* begin, uint32_t* end) const;
  bool IsIn(float dx, float dy) const { return dx * dx + dy * dy <= threshold_; }

  float center_x_, center_y_;
  float threshold_;  // the largest square of which the root is not above the radius; -1: none is

  // Of the columns entered.
  const Columns* columns_ = nullptr;
  bool is_finite_ = false;
  uint32_t middle_ = 0;        // first column at or right of the centre
  float center_position_ = 0;  // of the centre, in columns
  float density_ = 0;          // columns per panel unit
};

}  // namespace android::fp_utils
