// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "geometry/sample_axis.h"

namespace android::fp_utils {

// How many samples of a row, and how many rows, are dealt with at a time: what stays on the stack.
inline constexpr uint32_t kMaxColumns = 1024;
inline constexpr uint32_t kBlockRows = 32;

// Neighbouring columns of the grid, in ascending order; NaN only alone. Before and behind them
// stand sentinels that lie in no shape, so that a look at a neighbour needs no test.
class Columns {
 public:
  // Fills with the next samples of an axis; returns how often they count.
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

// Neighbouring rows, in either order; NaN only alone. Places behind the last hold its number, so
// that a loop can run over all of them.
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

// What is known about the samples of one row with respect to one convex shape: in the shape from
// `begin` to `end`, outside it before `outer_begin` and from `outer_end` on, and open in between.
// Ordered outer_begin <= begin <= end <= outer_end.
struct RowSpan {
  uint32_t outer_begin, begin, end, outer_end;

  bool SurelyHas(uint32_t i) const { return i - begin < end - begin; }
  bool MayHave(uint32_t i) const { return i - outer_begin < outer_end - outer_begin; }

  // `ask` decides where the sample is open.
  template <typename Predicate>
  bool Has(uint32_t i, Predicate ask) const {
    return SurelyHas(i) || (MayHave(i) && ask(i));
  }

  template <typename Function>
  void ForEachOpen(Function function) const {
    for (uint32_t i = outer_begin; i < begin; ++i) {
      function(i);
    }
    for (uint32_t i = end; i < outer_end; ++i) {
      function(i);
    }
  }
};

// The spans of the rows of a block. Places behind the last row hold empty ones.
struct RowSpans {
  uint32_t begin[kBlockRows], end[kBlockRows];
  uint32_t outer_begin[kBlockRows], outer_end[kBlockRows];  // unless is_exact
  bool is_exact;                                            // no sample is open

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
    Finish(rows);
  }

  // All of `columns` samples are open.
  void FillOpen(uint32_t rows, uint32_t columns) {
    FillExact(rows, 0, 0);
    is_exact = false;
    std::fill_n(outer_begin, kBlockRows, 0);
    std::fill_n(outer_end, kBlockRows, columns);
  }

  void Finish(uint32_t rows) {
    std::fill(begin + rows, begin + kBlockRows, 0);
    std::fill(end + rows, end + kBlockRows, 0);
  }
};

// The whole number of columns nearest below `position`, from 0 to `limit`; 0 for NaN.
inline uint32_t ClampedColumn(float position, uint32_t limit) {
  const auto highest = static_cast<float>(limit);
  position = position > 0 ? position : 0;
  position = position < highest ? position : highest;
  return static_cast<uint32_t>(static_cast<int32_t>(position));
}

// Without branches in between: where nearly all are true, one that is wrong once in a while costs
// as much as all of the comparisons.
inline bool AreAll(bool a, bool b, bool c, bool d) {
  return (int{a} & int{b} & int{c} & int{d}) != 0;
}

// The first index from `begin` to `end` from which on `holds` is true; it is false before. `guess`
// lies in the same range, usually beside the spot.
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
