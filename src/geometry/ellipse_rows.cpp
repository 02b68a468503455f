// SPDX-License-Identifier: Apache-2.0
#include "geometry/ellipse_rows.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace android::fp_utils {
namespace {

// Half an ulp of 1 in single precision, and the largest error of two products that underflow.
constexpr double kEpsilon = 0x1p-24;
constexpr double kUnderflow = 0x1p-149;

// Rotating offsets up to this size cannot overflow.
constexpr float kLargestOffset = 1e37F;

bool IsZeroOrNan(float axis) { return !(axis < 0 || axis > 0); }

}  // namespace

EllipseRows::EllipseRows(const Ellipse& ellipse, double bound_factor)
    : predicate_(ellipse), bound_factor_(bound_factor) {
  const double sine = predicate_.sine;
  const double cosine = predicate_.cosine;
  const double a = std::fabs(predicate_.semi_major);
  const double b = std::fabs(predicate_.semi_minor);
  if (IsZeroOrNan(predicate_.semi_major) || IsZeroOrNan(predicate_.semi_minor) ||
      std::isnan(sine)) {
    method_ = Method::kEmpty;
  } else if (std::isinf(a) || std::isinf(b)) {
    method_ = Method::kUndecided;
  } else {
    const double speed2 = sine / a * (sine / a) + cosine / b * (cosine / b);
    speed_ = std::sqrt(speed2);
    nearest_by_p_ = sine / (a * a) / speed2;
    nearest_by_q_ = cosine / (b * b) / speed2;
    smallest_scale_ = 1 / (a * b * speed_);
  }
}

void EllipseRows::SetColumns(const Columns& columns) {
  columns_ = &columns;
  columns_method_ = method_;
  if (method_ != Method::kSolve) {
    return;
  }
  first_dx_ = columns.First() - predicate_.center_x;
  const float last_dx = columns.Last() - predicate_.center_x;
  const float largest_dx = std::max(std::fabs(first_dx_), std::fabs(last_dx));
  if (!(largest_dx <= kLargestOffset)) {
    columns_method_ = Method::kUndecided;
    return;
  }
  density_ =
      last_dx > first_dx_ ? static_cast<float>(columns.Count() - 1) / (last_dx - first_dx_) : 0;

  // What the predicate computes for |w| is off by at most kEpsilon * |w| + error.
  const double a = std::fabs(predicate_.semi_major);
  const double b = std::fabs(predicate_.semi_minor);
  const double error =
      kEpsilon * (1 + kEpsilon) * largest_dx * speed_ + kUnderflow * (1 / a + 1 / b);
  const double edge = std::sqrt(1 + kEpsilon);  // the largest |w| whose square rounds to 1
  inner_norm_ = (edge - bound_factor_ * error) / (1 + bound_factor_ * kEpsilon);
  outer_norm_ = (edge + bound_factor_ * error) / (1 - bound_factor_ * kEpsilon);
  if (inner_norm_ < 0) {
    inner_norm_ = std::numeric_limits<double>::quiet_NaN();
  }
}

void EllipseRows::FindSpans(const RowBlock& rows, RowSpans* spans) const {
  if (columns_method_ == Method::kEmpty) {
    spans->FillExact(rows.count, 0, 0);
    return;
  }
  const auto is_near = [&](float y) {
    return std::fabs(y - predicate_.center_y) <= kLargestOffset;
  };
  if (columns_method_ == Method::kUndecided || !is_near(rows.y[0]) ||
      !is_near(rows.y[rows.count - 1])) {
    spans->FillUndecided(rows.count, columns_->Count());
    return;
  }
  Roots roots;
  Solve(rows, &roots);
  Guess(roots, spans);
  spans->is_exact = true;
  for (uint32_t row = 0; row < rows.count; ++row) {
    if (IsGuessRight(roots, row, *spans)) {
      spans->outer_begin[row] = spans->begin[row];
      spans->outer_end[row] = spans->end[row];
    } else {
      spans->Set(row, CorrectSpan(roots, row, *spans));
    }
  }
  spans->ClearUnusedRows(rows.count);
}

// Without branches, so that the compiler can vectorize it. A row without roots gets the NaN that
// the square root of a negative number gives.
void EllipseRows::Solve(const RowBlock& rows, Roots* __restrict roots) const {
  const float center = predicate_.center_y;
  const float sine = predicate_.sine;
  const float cosine = predicate_.cosine;
  const double inverse_speed = 1 / speed_;
  for (uint32_t row = 0; row < kBlockRows; ++row) {
    const float dy = rows.y[row] - center;
    // Rounded as the predicate rounds them, so that they add nothing to the error.
    const double p = dy * cosine;
    const double q = dy * sine;
    const double nearest = nearest_by_p_ * p - nearest_by_q_ * q;
    const double smallest = (sine * q + cosine * p) * smallest_scale_;
    const double outer =
        std::sqrt((outer_norm_ - smallest) * (outer_norm_ + smallest)) * inverse_speed;
    const double inner =
        std::sqrt((inner_norm_ - smallest) * (inner_norm_ + smallest)) * inverse_speed;
    roots->outer_low[row] = static_cast<float>(nearest - outer);
    roots->outer_high[row] = static_cast<float>(nearest + outer);
    roots->inner_low[row] = static_cast<float>(nearest - inner);
    roots->inner_high[row] = static_cast<float>(nearest + inner);
  }
}

void EllipseRows::Guess(const Roots& roots, RowSpans* spans) const {
  const uint32_t count = columns_->Count();
  for (uint32_t row = 0; row < kBlockRows; ++row) {
    spans->begin[row] = ClampedColumn((roots.outer_low[row] - first_dx_) * density_ + 1, count);
    spans->end[row] = ClampedColumn((roots.outer_high[row] - first_dx_) * density_ + 1, count);
  }
}

// True for nearly every row: the guessed range is exact and no sample is undecided.
inline bool EllipseRows::IsGuessRight(const Roots& roots, uint32_t row,
                                      const RowSpans& guess) const {
  const float center = predicate_.center_x;
  const float* const low = columns_->X() + guess.begin[row];
  const float* const high = columns_->X() + guess.end[row];
  return AllTrue(low[-1] - center < roots.outer_low[row], roots.inner_low[row] < low[0] - center,
                 high[-1] - center < roots.inner_high[row],
                 roots.outer_high[row] < high[0] - center);
}

RowSpan EllipseRows::CorrectSpan(const Roots& roots, uint32_t row, const RowSpans& guess) const {
  const float outer_low = roots.outer_low[row];
  const float outer_high = roots.outer_high[row];
  if (!(outer_low <= outer_high)) {
    return {0, 0, 0, 0};
  }
  const uint32_t count = columns_->Count();
  RowSpan span;
  span.outer_begin =
      FirstIndex(0, count, guess.begin[row], [&](uint32_t i) { return Dx(i) >= outer_low; });
  span.outer_end = FirstIndex(span.outer_begin, count, std::max(span.outer_begin, guess.end[row]),
                              [&](uint32_t i) { return Dx(i) > outer_high; });
  // A linear search: each sample that it passes is undecided and needs a call of Contains() anyway.
  span.begin = span.outer_begin;
  while (span.begin < span.outer_end && !(Dx(span.begin) > roots.inner_low[row])) {
    ++span.begin;
  }
  span.end = span.outer_end;
  while (span.end > span.begin && !(Dx(span.end - 1) < roots.inner_high[row])) {
    --span.end;
  }
  return span;
}

}  // namespace android::fp_utils
