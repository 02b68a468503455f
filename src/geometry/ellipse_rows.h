// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "fp_utils/shapes.h"
#include "geometry/ellipse_predicate.h"
#include "geometry/row_spans.h"

namespace android::fp_utils {

// The rows of an ellipse; docs/coverage.md has the mathematics. Rounding makes the result of
// Ellipse::Contains() irregular close to the edge, so samples there stay undecided.
class EllipseRows {
 public:
  // Samples closer to the edge than this multiple of the proven rounding error are undecided. 1
  // would suffice if the roots were exact; 2 also covers the errors of computing them in double.
  static constexpr double kBoundFactor = 2;

  // Only tests pass a factor of their own.
  explicit EllipseRows(const Ellipse& ellipse, double bound_factor = kBoundFactor);

  void SetColumns(const Columns& columns);
  void FindSpans(const RowBlock& rows, RowSpans* spans) const;
  bool Contains(float x, float y) const { return predicate_.Contains(x, y); }

 private:
  // All rows are empty, their spans follow from the roots, or all samples are undecided.
  enum class Method { kEmpty, kSolve, kUndecided };

  // Offsets from the centre's column. Samples strictly between the inner roots are inside, samples
  // strictly beyond an outer root are outside. NaN if the row has no such root.
  struct Roots {
    float outer_low[kBlockRows], outer_high[kBlockRows];
    float inner_low[kBlockRows], inner_high[kBlockRows];
  };

  void Solve(const RowBlock& rows, Roots* __restrict roots) const;
  void Guess(const Roots& roots, RowSpans* spans) const;
  bool IsGuessRight(const Roots& roots, uint32_t row, const RowSpans& guess) const;
  RowSpan CorrectSpan(const Roots& roots, uint32_t row, const RowSpans& guess) const;
  float Dx(uint32_t column) const { return columns_->X()[column] - predicate_.center_x; }

  EllipsePredicate predicate_;
  double bound_factor_;

  Method method_ = Method::kSolve;

  // With p = dy * cosine and q = dy * sine, the row at dy is the straight line
  //   w(dx) = ((dx * sine - p) / a, (dx * cosine + q) / b),
  // and the ellipse contains its part with |w| <= 1. w moves by speed_ per dx.
  double speed_ = 0;
  // |w| is smallest at dx = nearest_by_p_ * p - nearest_by_q_ * q, where it is
  // smallest_scale_ * (sine * q + cosine * p).
  double nearest_by_p_ = 0;
  double nearest_by_q_ = 0;
  double smallest_scale_ = 0;

  // Set by SetColumns().
  const Columns* columns_ = nullptr;
  Method columns_method_ = Method::kEmpty;
  double inner_norm_ = 0;  // a sample with a smaller |w| is inside; NaN: none is
  double outer_norm_ = 0;  // a sample with a larger |w| is outside
  float first_dx_ = 0;
  float density_ = 0;  // columns per panel unit
};

}  // namespace android::fp_utils
