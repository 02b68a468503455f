// SPDX-License-Identifier: Apache-2.0
#include <cmath>

#include "geometry/grid_count.h"

namespace android::fp_utils {
namespace {

// A shape of a class that the library does not know: it sees every sample.
class AskedShape {
 public:
  explicit AskedShape(const IShape& shape) : shape_(shape) {}

  void Enter(const Columns& /*columns*/, const RowBlock& /*rows*/) {}

  // Tells by column and point of one row.
  auto Row(uint32_t /*row*/) const {
    return [&shape = shape_](uint32_t /*column*/, const Point& p) { return shape.Contains(p); };
  }

 private:
  const IShape& shape_;
};

// A shape of which the rows are known: nobody sees when it answers.
class KnownShape {
 public:
  explicit KnownShape(const ShapeRows& rows) : shape_(rows) {}

  void Enter(const Columns& columns, const RowBlock& rows) {
    // Descending columns and NaN are too rare here to be put in order.
    if (std::isfinite(columns.First()) && std::isfinite(columns.Last()) &&
        columns.First() <= columns.Last()) {
      std::visit(
          [&](auto& shape) {
            shape.Enter(columns);
            shape.Find(rows, &spans_);
          },
          shape_);
    } else {
      spans_.FillOpen(rows.count, columns.Count());
    }
  }

  auto Row(uint32_t row) const {
    return [this, span = spans_.At(row)](uint32_t column, const Point& p) {
      return span.Has(column, [&](uint32_t) {
        return std::visit([&](const auto& shape) { return shape.Contains(p.x, p.y); }, shape_);
      });
    };
  }

 private:
  ShapeRows shape_;
  RowSpans spans_;
};

// Between the calls few registers are left: the counts share one, 16 bits each, and nothing of the
// caller is inlined around.
static_assert(kMaxColumns < 1U << 16);

template <typename In1, typename In2>
[[gnu::noinline]] void ScanRow(const Columns& columns, float y, In1 in_s1, In2 in_s2,
                               Counts* counts) {
  Point p(0, y);
  uint64_t packed = 0;
  uint32_t i = 0;
  for (const float *x = columns.X(), *end = x + columns.Count(); x != end; ++x, ++i) {
    p.x = *x;
    const uint64_t is_in1 = in_s1(i, p) ? 1 : 0;
    const uint64_t is_in2 = in_s2(i, p) ? 1 : 0;
    packed += is_in1 + (is_in2 << 16) + ((is_in1 & is_in2) << 32);
  }
  counts->in_s1 += packed & 0xFFFF;
  counts->in_s2 += packed >> 16 & 0xFFFF;
  counts->in_both += static_cast<uint32_t>(packed >> 32);
}

template <typename Shape1, typename Shape2>
Counts Scan(Grid grid, Shape1 s1, Shape2 s2) {
  Counts counts;
  Columns columns;
  RowBlock rows;
  // Rows of more than a piece are passed through one at a time: the order of samples is seen.
  const uint32_t limit = grid.columns.Left() <= kMaxColumns ? kBlockRows : 1;
  while (!grid.rows.IsEmpty()) {
    rows.Take(&grid.rows, limit);
    for (SampleAxis axis = grid.columns; !axis.IsEmpty();) {
      columns.Take(&axis);
      s1.Enter(columns, rows);
      s2.Enter(columns, rows);
      for (uint32_t row = 0; row < rows.count; ++row) {
        ScanRow(columns, rows.y[row], s1.Row(row), s2.Row(row), &counts);
      }
    }
  }
  return counts;
}

}  // namespace

Counts ScanSamples(Grid grid, const IShape& s1, const IShape& s2) {
  return Scan(grid, AskedShape(s1), AskedShape(s2));
}

Counts ScanSamples(Grid grid, const IShape& s1, const ShapeRows& s2) {
  return Scan(grid, AskedShape(s1), KnownShape(s2));
}

Counts ScanSamples(Grid grid, const ShapeRows& s1, const IShape& s2) {
  return Scan(grid, KnownShape(s1), AskedShape(s2));
}

}  // namespace android::fp_utils
