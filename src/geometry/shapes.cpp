// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/shapes.h"

#include <cmath>

#include "common/bounded_text.h"
#include "geometry/ellipse_predicate.h"

namespace android::fp_utils {
namespace {

constexpr size_t kPrintSize = 128;

template <typename... Arguments>
std::string Format(const char* format, Arguments... arguments) {
  BoundedText<kPrintSize> text;
  text.Append(format, arguments...);
  return text.ToString();
}

}  // namespace

std::string Point::Print() const { return Format("Point(%.2f, %.2f)", x, y); }

std::string Circle::Print() const {
  return Format("Circle(x:%.2f, y:%.2f, r:%.2f)", center.x, center.y, radius);
}

// Compares the root, not the squares, which would round differently.
bool Circle::Contains(const Point& p) const {
  const float dx = center.x - p.x;
  const float dy = center.y - p.y;
  return std::sqrt(dx * dx + dy * dy) <= radius;
}

std::string Ellipse::Print() const {
  return Format("Ellipse(x:%.2f, y:%.2f, M:%.2f, m:%.2f, o:%.2f)", center.x, center.y, major_axis,
                minor_axis, orientation);
}

bool Ellipse::Contains(const Point& p) const { return EllipsePredicate(*this).Contains(p.x, p.y); }

std::string Rect::Print() const {
  return Format("Rect(%.2f, %.2f - %.2f, %.2f)", top_left.x, top_left.y, bottom_right.x,
                bottom_right.y);
}

bool Rect::Contains(const Point& p) const {
  return top_left.x <= p.x && p.x <= bottom_right.x && top_left.y <= p.y && p.y <= bottom_right.y;
}

}  // namespace android::fp_utils
