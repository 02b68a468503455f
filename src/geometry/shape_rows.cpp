// SPDX-License-Identifier: Apache-2.0
#include "geometry/shape_rows.h"

#include "common/exact_class.h"

namespace android::fp_utils {

std::optional<ShapeRows> KnownRows(const IShape& shape) {
  if (const auto* circle = ExactCast<Circle>(shape)) {
    return CircleRows(*circle);
  }
  if (const auto* ellipse = ExactCast<Ellipse>(shape)) {
    return EllipseRows(*ellipse);
  }
  if (const auto* rect = ExactCast<Rect>(shape)) {
    return RectRows(*rect);
  }
  return std::nullopt;
}

}  // namespace android::fp_utils
