// SPDX-License-Identifier: Apache-2.0
#include "reference/plain_geometry.h"

#include <cmath>

namespace fp_reference {

using android::fp_utils::Circle;
using android::fp_utils::IShape;
using android::fp_utils::Point;
using android::fp_utils::Rect;

template <>
bool PlainCircle::Contains(const Point& p) const {
  const float dx = shape_.center.x - p.x;
  const float dy = shape_.center.y - p.y;
  return sqrtf(dx * dx + dy * dy) <= shape_.radius;
}

template <>
bool PlainEllipse::Contains(const Point& p) const {
  float s = 0;
  float c = 0;
  sincosf(shape_.orientation, &s, &c);
  const float dx = p.x - shape_.center.x;
  const float dy = p.y - shape_.center.y;
  const double u = dx * s - dy * c;
  const double v = dx * c + dy * s;
  const double a = shape_.major_axis * 0.5F;
  const double b = shape_.minor_axis * 0.5F;
  return static_cast<float>(u * u / (a * a) + v * v / (b * b)) <= 1.0F;
}

template <>
bool PlainRect::Contains(const Point& p) const {
  return shape_.top_left.x <= p.x && p.x <= shape_.bottom_right.x && shape_.top_left.y <= p.y &&
         p.y <= shape_.bottom_right.y;
}

std::ostream& operator<<(std::ostream& out, const PlainCounts& counts) {
  return out << counts.in_s1 << ' ' << counts.in_s2 << ' ' << counts.in_both;
}

uint32_t PlainScanPoints(float low, float high) {
  const float points = high - low + 1.0F;
  if (points >= 4294967296.0F) {
    return 4294967295U;
  }
  return points >= 1.0F ? static_cast<uint32_t>(points) : 0;  // also NaN
}

PlainCounts PlainScan(const Rect& grid, uint32_t nx, uint32_t ny, const IShape& s1,
                      const IShape& s2) {
  const float x1 = grid.top_left.x;
  const float y1 = grid.top_left.y;
  const float x2 = grid.bottom_right.x;
  const float y2 = grid.bottom_right.y;
  const auto has_corners = [&](const IShape& s) {
    return s.Contains(Point(x1, y1)) && s.Contains(Point(x1, y2)) && s.Contains(Point(x2, y1)) &&
           s.Contains(Point(x2, y2));
  };
  const bool all1 = has_corners(s1);
  const bool all2 = has_corners(s2);
  const float step_x = (x2 - x1) / static_cast<float>(nx - 1);
  const float step_y = (y2 - y1) / static_cast<float>(ny - 1);
  PlainCounts counts;
  float y = y1;
  for (uint32_t row = 0; row < ny; ++row) {
    float x = x1;
    for (uint32_t column = 0; column < nx; ++column) {
      const bool in1 = all1 || s1.Contains(Point(x, y));
      const bool in2 = all2 || s2.Contains(Point(x, y));
      counts.in_s1 += in1 ? 1 : 0;
      counts.in_s2 += in2 ? 1 : 0;
      counts.in_both += in1 && in2 ? 1 : 0;
      x += step_x;
    }
    y += step_y;
  }
  return counts;
}

}  // namespace fp_reference
