// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "geometry/sample_axis.h"

namespace android::fp_utils {

// The columns and rows that are processed at a time. They bound the buffers on the stack.
inline constexpr uint32_t kMaxColumns = 1024;
inline constexpr uint32_t kBlockRows = 32;

// Adjacent columns of the grid, in ascending order. A NaN is always the only column. A sentinel
// on either side, which lies in no shape, lets code look at a neighbour without a bounds check.
class Columns {
 public:
  // Takes the next samples of an axis. Returns their weight, as SampleAxis::TakeMerged() does.
  uint32_t TakeMerged(SampleAxis* axis) {
    const SampleAxis::Batch batch = axis->TakeMerged(x_ + 1, kMaxColumns);
    SetCount(batch.count);
    if (axis->IsDescending()) {
      std::reverse(x_ + 1, x_ + 1 + count_);
    }
    return batch.weight;
  }

  uint32_t Count() const { return count_; }
  const float* X() const { return x_ + 1; }
  float First() const { return x_[1]; }
  float Last() const { return x_[count_]; }

 private:
  void SetCount(uint32_t count) {
    count_ = count;
    x_[0] = -std::numeric_limits<float>::infinity();
    x_[count + 1] = std::numeric_limits<float>::infinity();
  }

  float x_[kMaxColumns + 2];
  uint32_t count_ = 0;
};

// Adjacent rows, in ascending or descending order. A NaN is always the only row. Unused elements
// repeat the last row, so that a loop can run over all kBlockRows.
struct RowBlock {
  float y[kBlockRows];
  uint32_t count;

  uint32_t TakeMerged(SampleAxis* axis) {
    const SampleAxis::Batch batch = axis->TakeMerged(y, kBlockRows);
    SetCount(batch.count);
    return batch.weight;
  }

 private:
  void SetCount(uint32_t rows) {
    count = rows;
    std::fill(y + rows, y + kBlockRows, y[rows - 1]);
  }
};

// Where the samples of one row lie relative to one convex shape: columns `begin` to `end` are
// inside, columns before `outer_begin` and from `outer_end` on are outside, and those in between
// are undecided. outer_begin <= begin <= end <= outer_end.
struct RowSpan {
  uint32_t outer_begin, begin, end, outer_end;

  bool IsInside(uint32_t i) const { return i - begin < end - begin; }
  bool IsOutside(uint32_t i) const { return i - outer_begin >= outer_end - outer_begin; }

  // `contains` is called only if the sample is undecided.
  template <typename Predicate>
  bool Contains(uint32_t i, Predicate contains) const {
    return IsInside(i) || (!IsOutside(i) && contains(i));
  }

  template <typename Function>
  void ForEachUndecided(Function function) const {
    for (uint32_t i = outer_begin; i < begin; ++i) {
      function(i);
    }
    for (uint32_t i = end; i < outer_end; ++i) {
      function(i);
    }
  }
};

// The spans of the rows of a block. Unused elements are empty spans.
struct RowSpans {
  uint32_t begin[kBlockRows], end[kBlockRows];
  uint32_t outer_begin[kBlockRows], outer_end[kBlockRows];  // unless is_exact
  bool is_exact;                                            // no sample is undecided

  RowSpan At(uint32_t row) const {
    return is_exact ? RowSpan{begin[row], begin[row], end[row], end[row]}
                    : RowSpan{outer_begin[row], begin[row], end[row], outer_end[row]};
  }

  void Set(uint32_t row, const RowSpan& span) {
    outer_begin[row] = span.outer_begin;
    begin[row] = span.begin;
    end[row] = span.end;
    outer_end[row] = span.outer_end;
    is_exact &= span.outer_begin == span.begin && span.outer_end == span.end;
  }

  void FillExact(uint32_t rows, uint32_t from, uint32_t to) {
    is_exact = true;
    std::fill_n(begin, rows, from);
    std::fill_n(end, rows, to);
    ClearUnusedRows(rows);
  }

  // All `columns` samples of each row are undecided.
  void FillUndecided(uint32_t rows, uint32_t columns) {
    FillExact(rows, 0, 0);
    is_exact = false;
    std::fill_n(outer_begin, kBlockRows, 0);
    std::fill_n(outer_end, kBlockRows, columns);
  }

  void ClearUnusedRows(uint32_t rows) {
    std::fill(begin + rows, begin + kBlockRows, 0);
    std::fill(end + rows, end + kBlockRows, 0);
  }
};

// `position` rounded down and clamped to 0..`limit`; 0 for NaN.
inline uint32_t ClampedColumn(float position, uint32_t limit) {
  const auto highest = static_cast<float>(limit);
  position = position > 0 ? position : 0;
  position = position < highest ? position : highest;
  return static_cast<uint32_t>(static_cast<int32_t>(position));
}

// Evaluates all conditions without branches. They are nearly always true, and one mispredicted
// branch would cost as much as all the comparisons.
inline bool AllTrue(bool a, bool b, bool c, bool d) {
  return (int{a} & int{b} & int{c} & int{d}) != 0;
}

// The first index in `begin`..`end` for which `holds` is true; `holds` must be monotone. `guess`
// lies in the same range and is usually close to the result.
template <typename Predicate>
uint32_t FirstIndex(uint32_t begin, uint32_t end, uint32_t guess, Predicate holds) {
  constexpr int kShortWalk = 4;
  for (int i = 0; i < kShortWalk; ++i) {
    if (guess > begin && holds(guess - 1)) {
      end = --guess;
    } else if (guess < end && !holds(guess)) {
      begin = ++guess;
    } else {
      return guess;
    }
  }
  while (begin < end) {
    const uint32_t middle = begin + (end - begin) / 2;
    if (holds(middle)) {
      end = middle;
    } else {
      begin = middle + 1;
    }
  }
  return begin;
}

}  // namespace android::fp_utils
