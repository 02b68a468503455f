// SPDX-License-Identifier: Apache-2.0
#include "geometry/circle_rows.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace android::fp_utils {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNone = -1;

// In columns. The edge of a circle often passes exactly through a sample; this keeps rounding from
// moving the guess past it.
constexpr float kGuessSlack = 0x1p-10F;

// The largest float whose square root, rounded, is at most `radius`. sqrtf() is monotone, and only
// a few floats have the same rounded root, so the result is a few floats from the rounded square.
float LargestSquareWithin(float radius) {
  if (!(radius >= 0)) {
    return kNone;
  }
  if (radius == kInfinity) {
    return kInfinity;
  }
  float square = std::min(radius * radius, std::numeric_limits<float>::max());
  while (std::sqrt(square) > radius) {
    square = std::nextafter(square, 0.0F);
  }
  for (float next = square; std::sqrt(next) <= radius; next = std::nextafter(next, kInfinity)) {
    square = next;
  }
  return square;
}

}  // namespace

CircleRows::CircleRows(const Circle& circle)
    : center_x_(circle.center.x),
      center_y_(circle.center.y),
      threshold_(LargestSquareWithin(circle.radius)) {}

void CircleRows::SetColumns(const Columns& columns) {
  columns_ = &columns;
  const float first = columns.First();
  const float last = columns.Last();
  is_finite_ = std::isfinite(center_x_) && std::isfinite(first) && std::isfinite(last) &&
               threshold_ < kInfinity;
  if (!is_finite_) {
    return;
  }
  const uint32_t count = columns.Count();
  density_ = last > first ? static_cast<float>(count - 1) / (last - first) : 0;
  center_position_ = (center_x_ - first) * density_;
  middle_ = FirstIndex(0, count, ClampedColumn(center_position_, count),
                       [&](uint32_t i) { return columns.X()[i] >= center_x_; });
}

void CircleRows::FindSpans(const RowBlock& rows, RowSpans* spans) const {
  if (!is_finite_) {
    spans->FillUndecided(rows.count, columns_->Count());
    return;
  }
  const uint32_t count = columns_->Count();
  for (uint32_t row = 0; row < kBlockRows; ++row) {
    const float dy = center_y_ - rows.y[row];
    const float rest = threshold_ - dy * dy;
    const float half = std::sqrt(rest > 0 ? rest : 0) * density_;
    spans->begin[row] = ClampedColumn(center_position_ - half + (1 - kGuessSlack), count);
    spans->end[row] = ClampedColumn(center_position_ + half + (1 + kGuessSlack), count);
  }
  for (uint32_t row = 0; row < rows.count; ++row) {
    CorrectSpan(center_y_ - rows.y[row], &spans->begin[row], &spans->end[row]);
  }
  spans->is_exact = true;
  spans->ClearUnusedRows(rows.count);
}

// `begin` and `end` hold guesses on entry and the exact range on return.
inline void CircleRows::CorrectSpan(float dy, uint32_t* begin, uint32_t* end) const {
  const float* const x = columns_->X();
  const float* const low = x + *begin;
  const float* const high = x + *end;
  if (AllTrue(!IsIn(center_x_ - low[-1], dy), IsIn(center_x_ - low[0], dy),
              IsIn(center_x_ - high[-1], dy), !IsIn(center_x_ - high[0], dy))) {
    return;
  }
  if (!(dy * dy <= threshold_)) {
    *begin = 0;
    *end = 0;
    return;
  }
  const auto is_in = [&](uint32_t i) { return IsIn(center_x_ - x[i], dy); };
  const auto is_out = [&](uint32_t i) { return !is_in(i); };
  *begin = FirstIndex(0, middle_, std::min(*begin, middle_), is_in);
  *end = FirstIndex(middle_, columns_->Count(), std::max(*end, middle_), is_out);
}

}  // namespace android::fp_utils
