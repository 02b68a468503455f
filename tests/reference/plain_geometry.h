// SPDX-License-Identifier: Apache-2.0
//
// Containment and the grid scan in the plainest form, as a reference for the library's. Every
// sample is tested, and every test computes everything from the fields of the shape.
#pragma once

#include <cstdint>
#include <ostream>

#include "fp_utils/shapes.h"

namespace fp_reference {

// The same shape as a separate class, so that the library treats it as a user's.
template <typename Shape>
class PlainShape : public android::fp_utils::IShape {
 public:
  explicit PlainShape(const Shape& shape) : shape_(shape) {}
  std::string Print() const override { return shape_.Print(); }
  bool Contains(const android::fp_utils::Point& p) const override;

 private:
  Shape shape_;
};

using PlainCircle = PlainShape<android::fp_utils::Circle>;
using PlainEllipse = PlainShape<android::fp_utils::Ellipse>;
using PlainRect = PlainShape<android::fp_utils::Rect>;

template <>
bool PlainCircle::Contains(const android::fp_utils::Point& p) const;
template <>
bool PlainEllipse::Contains(const android::fp_utils::Point& p) const;
template <>
bool PlainRect::Contains(const android::fp_utils::Point& p) const;

struct PlainCounts {
  uint32_t in_s1 = 0, in_s2 = 0, in_both = 0;

  bool operator==(const PlainCounts&) const = default;
};
std::ostream& operator<<(std::ostream& out, const PlainCounts& counts);

// The number of samples from `low` to `high` where no property is set.
uint32_t PlainScanPoints(float low, float high);

// The scan of nx times ny samples over `grid`, without its log lines.
PlainCounts PlainScan(const android::fp_utils::Rect& grid, uint32_t nx, uint32_t ny,
                      const android::fp_utils::IShape& s1, const android::fp_utils::IShape& s2);

}  // namespace fp_reference
