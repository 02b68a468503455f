// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <type_traits>

#include "fp_utils/export.h"

namespace android::fp_utils {

// Where a finger touches the sensor area, and how much of the area it covers: a point, three closed
// convex shapes, and an estimate of coverage by samples on a grid. Values all, copied freely.
//
// Threading:  no shared state; const operations may run on several threads at once.
// Blocking:   none.
// Errors:     none. Fields are not validated: with a NaN, swapped corners or a negative radius a
//             shape contains nothing. A coverage that is not finite means that none is known: there
//             was nothing to cover, or the samples were too many to count.
// Units:      panel units, x to the right, y downwards; radians; coverage in percent.
class FP_UTILS_EXPORT Point {
 public:
  Point() = default;
  Point(float x, float y) : x(x), y(y) {}
  virtual ~Point() = default;

  // For logs; at most 127 characters, as everywhere here.
  virtual std::string Print() const;

  float x = 0;
  float y = 0;
};

// What the coverage estimate can sample. Taken to be convex: a shape that contains the four corners
// of a grid contains all of it. No shape may change while an estimate runs.
class FP_UTILS_EXPORT IShape {
 public:
  virtual ~IShape() = default;

  virtual std::string Print() const = 0;

  // Whether `p` lies in the shape; its boundary belongs to it.
  virtual bool Contains(Point const& p) const = 0;
};

class FP_UTILS_EXPORT Circle : public IShape {
 public:
  Circle() = default;
  Circle(Point const& center, float radius) : center(center), radius(radius) {}

  std::string Print() const override;
  bool Contains(Point const& p) const override;

  // Percentage of this circle's samples that lie in `other`; the grid covers the bounding box.
  float CoverageCoveredBy(IShape const& other) const;

  // Percentage of this circle's area that lies in `other`, in closed form.
  float CoverageCoveredBy(Circle const& other) const;

  // A class derived from Circle may contain other points than its circle does: it is sampled.
  template <typename Derived>
  requires std::is_convertible_v<const Derived*, const Circle*>
  float CoverageCoveredBy(Derived const& other) const {
    return CoverageCoveredBy(static_cast<IShape const&>(other));
  }

  Point center;
  float radius = 0;
};

// The shape of a touch contact.
class FP_UTILS_EXPORT Ellipse : public IShape {
 public:
  Ellipse() = default;
  Ellipse(Point const& center, float major_axis, float minor_axis, float orientation)
      : center(center), major_axis(major_axis), minor_axis(minor_axis), orientation(orientation) {}

  std::string Print() const override;
  bool Contains(Point const& p) const override;

  Point center;
  float major_axis = 0;   // full length, not half
  float minor_axis = 0;   // full length, at right angles to the major axis
  float orientation = 0;  // of the major axis: 0 points up, pi/2 to the right
};

// An axis-aligned rectangle. The caller keeps `top_left` at or below `bottom_right` on both axes.
class FP_UTILS_EXPORT Rect : public IShape {
 public:
  Rect() = default;
  Rect(Point const& top_left, Point const& bottom_right)
      : top_left(top_left), bottom_right(bottom_right) {}

  std::string Print() const override;
  bool Contains(Point const& p) const override;

  // Lays a grid of samples over this rectangle and counts those in s1, in s2 and in both: one per
  // panel unit, edges included, or as many on an axis as the property
  // persist.vendor.udfps.geometry.rect.{x,y}_axis_scan_points says. Asks each shape for the corners
  // first, and where one lies outside for every sample, row by row, s1 before s2.
  //
  // Of shapes whose class is Circle, Ellipse or Rect itself whole rows are counted at once, with
  // the same result. The counters wrap.
  void NumOfPointsIn(IShape const& s1, IShape const& s2, unsigned int& in_s1, unsigned int& in_s2,
                     unsigned int& in_both) const;

  // Percentage of this rectangle's samples that lie in `other`.
  float CoverageCoveredBy(IShape const& other) const;

  Point top_left;      // smaller x and y
  Point bottom_right;  // larger x and y
};

}  // namespace android::fp_utils
