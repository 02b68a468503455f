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
  void Enter(const Columns& columns) { count_ = columns.Count(); }
  void Find(const RowBlock& rows, RowSpans* spans) const {
    spans->FillExact(rows.count, 0, count_);
  }
  bool Contains(float /*x*/, float /*y*/) const { return true; }

 private:
  uint32_t count_ = 0;
};

// Knows the rows of a shape of which it knows the class. Each kind offers the same three
// operations: Enter() neighbouring columns, Find() the spans of a block of rows in them, and
// Contains() for the samples that a span leaves open, with the answer that the shape itself would
// give.
using ShapeRows = std::variant<FullRows, CircleRows, EllipseRows, RectRows>;

// None for a class that is not the library's own; a class derived from one of those may contain
// something else.
std::optional<ShapeRows> KnownRows(const IShape& shape);

}  // namespace android::fp_utils
