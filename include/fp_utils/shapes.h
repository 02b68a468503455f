// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <type_traits>

#include "fp_utils/export.h"

// A point, three closed convex shapes, and an estimate of how much of one shape another covers, for
// example of the sensor by a finger. All are plain values.
//
// Threading:  no shared state; const operations may run on several threads at once.
// Blocking:   none.
// Errors:     none. Fields are not validated: with a NaN, swapped corners or a negative radius a
//             shape contains nothing. A coverage that is not finite means that it is unknown: there
//             was nothing to cover, or there were too many samples to count.
// Units:      panel units, x to the right, y downwards; radians; coverage in percent.

namespace android::fp_utils {

// A position on the panel.
class FP_UTILS_EXPORT Point {
 public:
  Point() = default;
  Point(float x, float y) : x(x), y(y) {}
  virtual ~Point() = default;

  // For logs. All Print() functions here return at most 127 characters.
  virtual std::string Print() const;

  float x = 0;
  float y = 0;
};

// A shape that the coverage estimate can sample. It is assumed to be convex: if it contains the
// four corners of a grid, it contains all of the grid. A shape must not change while an estimate
// runs.
class FP_UTILS_EXPORT IShape {
 public:
  virtual ~IShape() = default;

  virtual std::string Print() const = 0;

  // Whether `p` lies in the shape or on its boundary.
  [[nodiscard]] virtual bool Contains(const Point& p) const = 0;
};

class FP_UTILS_EXPORT Circle : public IShape {
 public:
  Circle() = default;
  Circle(const Point& center, float radius) : center(center), radius(radius) {}

  std::string Print() const override;
  [[nodiscard]] bool Contains(const Point& p) const override;

  // Percentage of this circle's samples that also lie in `other`. The samples are the points of a
  // grid over the circle's bounding box that lie in the circle.
  [[nodiscard]] float CoverageCoveredBy(const IShape& other) const;

  // Percentage of this circle's area that lies in `other`, in closed form.
  [[nodiscard]] float CoverageCoveredBy(const Circle& other) const;

  // Uses the sampled estimate for a class derived from Circle, because it may override Contains().
  template <typename Derived>
  requires std::is_convertible_v<const Derived*, const Circle*>
  [[nodiscard]] float CoverageCoveredBy(const Derived& other) const {
    return CoverageCoveredBy(static_cast<const IShape&>(other));
  }

  Point center;
  float radius = 0;
};

// The shape of a touch contact.
class FP_UTILS_EXPORT Ellipse : public IShape {
 public:
  Ellipse() = default;
  Ellipse(const Point& center, float major_axis, float minor_axis, float orientation)
      : center(center), major_axis(major_axis), minor_axis(minor_axis), orientation(orientation) {}

  std::string Print() const override;
  [[nodiscard]] bool Contains(const Point& p) const override;

  Point center;
  float major_axis = 0;   // full length, not half
  float minor_axis = 0;   // full length, at right angles to the major axis
  float orientation = 0;  // of the major axis: 0 points up, pi/2 to the right
};

// An axis-aligned rectangle. `top_left` must not exceed `bottom_right` on either axis.
class FP_UTILS_EXPORT Rect : public IShape {
 public:
  Rect() = default;
  Rect(const Point& top_left, const Point& bottom_right)
      : top_left(top_left), bottom_right(bottom_right) {}

  std::string Print() const override;
  [[nodiscard]] bool Contains(const Point& p) const override;

  // Counts the samples of a grid over this rectangle that lie in s1, in s2 and in both. The grid
  // has one sample per panel unit, edges included, unless the property
  // persist.vendor.udfps.geometry.rect.{x,y}_axis_scan_points sets the number on that axis. First
  // calls Contains() of each shape for the corners. A shape that does not contain all of them is
  // then tested at every sample, row by row, s1 before s2.
  //
  // If both shapes are exactly of class Circle, Ellipse or Rect, whole rows are counted at once,
  // with the same result. The counters wrap around when they overflow.
  void NumOfPointsIn(const IShape& s1, const IShape& s2, unsigned int& in_s1, unsigned int& in_s2,
                     unsigned int& in_both) const;

  // Percentage of this rectangle's samples that lie in `other`.
  [[nodiscard]] float CoverageCoveredBy(const IShape& other) const;

  Point top_left;      // smaller x and y
  Point bottom_right;  // larger x and y
};

}  // namespace android::fp_utils
