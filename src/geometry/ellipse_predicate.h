// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <math.h>

#include "fp_utils/shapes.h"

namespace android::fp_utils {

// Ellipse::Contains(), with all terms that do not depend on the point computed in advance. Every
// rounding is part of the contract: offsets and rotation are in single precision, the quotients in
// double, and their sum is rounded to single.
struct EllipsePredicate {
  explicit EllipsePredicate(const Ellipse& ellipse)
      : center_x(ellipse.center.x),
        center_y(ellipse.center.y),
        semi_major(ellipse.major_axis * 0.5F),
        semi_minor(ellipse.minor_axis * 0.5F) {
    sincosf(ellipse.orientation, &sine, &cosine);
  }

  bool Contains(float x, float y) const {
    const float dx = x - center_x;
    const float dy = y - center_y;
    const double u = dx * sine - dy * cosine;
    const double v = dx * cosine + dy * sine;
    const double a = semi_major;
    const double b = semi_minor;
    // With a zero axis the sum is infinite, or NaN (0/0): nothing is inside, not even the centre.
    return static_cast<float>(u * u / (a * a) + v * v / (b * b)) <= 1.0F;
  }

  float center_x, center_y;
  float semi_major, semi_minor;
  float sine, cosine;
};

}  // namespace android::fp_utils
