// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "fp_utils/shapes.h"
#include "geometry/ellipse_predicate.h"
#include "geometry/row_spans.h"

namespace android::fp_utils {

// The rows of an ellipse; docs/coverage.md has the mathematics. Rounding makes the answer of
// Ellipse::Contains() irregular close to the edge: samples there stay open.
class EllipseRows {
 public:
  // How many times the proven bound of the rounding error is kept clear of the edge. One would do
  // if the rows were solved in real numbers; the second pays for solving them in double.
  static constexpr double kBoundFactor = 2;

  // Tests turn the factor down.
  explicit EllipseRows(const Ellipse& ellipse, double bound_factor = kBoundFactor);

  void Enter(const Columns& columns);
  void Find(const RowBlock& rows, RowSpans* spans) const;
  bool Contains(float x, float y) const { return predicate_.Contains(x, y); }

 private:
  enum class Answer { kEmpty, kSolve, kAsk };

  // Offsets from the centre's column. Samples strictly between the inner ones are surely in,
  // samples strictly beyond an outer one surely out. NaN where a row has none.
  struct Roots {
    float outer_low[kBlockRows], outer_high[kBlockRows];
    float inner_low[kBlockRows], inner_high[kBlockRows];
  };

  void Solve(const RowBlock& rows, Roots* __restrict roots) const;
  void Guess(const Roots& roots, RowSpans* spans) const;
  bool IsGuessed(const Roots& roots, uint32_t row, const RowSpans& guess) const;
  RowSpan FindRow(const Roots& roots, uint32_t row, const RowSpans& guess) const;
  float Dx(uint32_t column) const { return columns_->X()[column] - predicate_.center_x; }

  EllipsePredicate predicate_;
  double bound_factor_;

  // With p = dy * cosine and q = dy * sine, the row at dy is the straight line
  //   w(dx) = ((dx * sine - p) / a, (dx * cosine + q) / b),
  // of which the shape holds the part with |w| <= 1.
  Answer answer_ = Answer::kSolve;
  double speed_ = 0;           // growth of w per dx
  double nearest_by_p_ = 0;    // dx where |w| is smallest: so much per p ...
  double nearest_by_q_ = 0;    // ... less so much per q
  double smallest_scale_ = 0;  // |w| there, per sine * q + cosine * p

  // Of the columns entered.
  const Columns* columns_ = nullptr;
  Answer columns_answer_ = Answer::kEmpty;
  double inner_norm_ = 0;  // with |w| below, a sample is surely in; NaN: none is
  double outer_norm_ = 0;  // with |w| above, a sample is surely out
  float first_dx_ = 0;
  float density_ = 0;  // columns per panel unit
};

}  // namespace android::fp_utils
