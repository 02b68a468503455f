// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "geometry/grid_count.h"

namespace android::fp_utils {
namespace {

void SetColumns(ShapeRows& shape, const Columns& columns) {
  std::visit([&](auto& rows) { rows.SetColumns(columns); }, shape);
}

void FindSpans(const ShapeRows& shape, const RowBlock& block, RowSpans* spans) {
  std::visit([&](const auto& rows) { rows.FindSpans(block, spans); }, shape);
}

bool Contains(const ShapeRows& shape, float x, float y) {
  return std::visit([&](const auto& rows) { return rows.Contains(x, y); }, shape);
}

// Counts the samples that the spans place inside.
Counts CountInside(const RowSpans& spans1, const RowSpans& spans2) {
  Counts counts;
  for (uint32_t row = 0; row < kBlockRows; ++row) {
    // Signed, because more processors have vector instructions for signed comparisons.
    const auto begin1 = static_cast<int32_t>(spans1.begin[row]);
    const auto begin2 = static_cast<int32_t>(spans2.begin[row]);
    const auto end1 = static_cast<int32_t>(spans1.end[row]);
    const auto end2 = static_cast<int32_t>(spans2.end[row]);
    counts.in_s1 += static_cast<uint32_t>(end1 - begin1);
    counts.in_s2 += static_cast<uint32_t>(end2 - begin2);
    counts.in_both +=
        static_cast<uint32_t>(std::max(std::min(end1, end2) - std::max(begin1, begin2), 0));
  }
  return counts;
}

// Counts the samples of a grid block by block.
class RowCounter {
 public:
  RowCounter(const ShapeRows& s1, const ShapeRows& s2) : s1_(s1), s2_(s2) {}

  void SetColumns(const Columns& columns) {
    columns_ = &columns;
    fp_utils::SetColumns(s1_, columns);
    fp_utils::SetColumns(s2_, columns);
  }

  Counts Count(const RowBlock& block) const {
    RowSpans spans1;
    RowSpans spans2;
    FindSpans(s1_, block, &spans1);
    FindSpans(s2_, block, &spans2);
    Counts counts = CountInside(spans1, spans2);
    if (!spans1.is_exact || !spans2.is_exact) {
      for (uint32_t row = 0; row < block.count; ++row) {
        AddUndecidedSamples(spans1.At(row), spans2.At(row), block.y[row], &counts);
      }
    }
    return counts;
  }

 private:
  // Calls Contains() for the undecided samples. A sample that is undecided for both shapes is added
  // to in_both in the first loop only.
  void AddUndecidedSamples(const RowSpan& span1, const RowSpan& span2, float y,
                           Counts* counts) const {
    const auto in_s1 = [&](uint32_t i) { return Contains(s1_, columns_->X()[i], y); };
    const auto in_s2 = [&](uint32_t i) { return Contains(s2_, columns_->X()[i], y); };
    span1.ForEachUndecided([&](uint32_t i) {
      if (in_s1(i)) {
        ++counts->in_s1;
        counts->in_both += span2.Contains(i, in_s2) ? 1 : 0;
      }
    });
    span2.ForEachUndecided([&](uint32_t i) {
      if (in_s2(i)) {
        ++counts->in_s2;
        counts->in_both += span1.IsInside(i) ? 1 : 0;
      }
    });
  }

  ShapeRows s1_, s2_;
  const Columns* columns_ = nullptr;
};

}  // namespace

Counts CountRows(Grid grid, const ShapeRows& s1, const ShapeRows& s2) {
  RowCounter counter(s1, s2);
  Columns columns;
  RowBlock block;
  Counts total;
  while (!grid.columns.IsEmpty()) {
    const uint32_t columns_weight = columns.TakeMerged(&grid.columns);
    counter.SetColumns(columns);
    for (SampleAxis rows = grid.rows; !rows.IsEmpty();) {
      const uint32_t weight = columns_weight * block.TakeMerged(&rows);
      const Counts counts = counter.Count(block);
      total.in_s1 += counts.in_s1 * weight;
      total.in_s2 += counts.in_s2 * weight;
      total.in_both += counts.in_both * weight;
    }
  }
  return total;
}

}  // namespace android::fp_utils
