// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <variant>

#include "fp_utils/shapes.h"
#include "geometry/circle_rows.h"
#include "geometry/ellipse_rows.h"
#include "geometry/rect_rows.h"
#include "geometry/row_spans.h"

namespace android::fp_utils {

// A shape that contains the whole grid.
class FullRows {
 public:
  void SetColumns(const Columns& columns) { count_ = columns.Count(); }
  void FindSpans(const RowBlock& rows, RowSpans* spans) const {
    spans->FillExact(rows.count, 0, count_);
  }
  bool Contains(float /*x*/, float /*y*/) const { return true; }

 private:
  uint32_t count_ = 0;
};

// Finds the rows of a shape of the library's own classes. Every alternative has three operations:
// SetColumns() sets the columns to work on, FindSpans() finds the spans of a block of rows in them,
// and Contains() decides an undecided sample as the shape's own Contains() would.
using ShapeRows = std::variant<FullRows, CircleRows, EllipseRows, RectRows>;

// None for any other class, also for one derived from the library's: it may contain other points.
std::optional<ShapeRows> KnownRows(const IShape& shape);

}  // namespace android::fp_utils
