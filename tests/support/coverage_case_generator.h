// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <random>

#include "fp_utils/shapes.h"
#include "reference/coverage_case.h"

namespace fp_test {

using fp_reference::AnyShape;
using fp_reference::CoverageCase;

// Makes random cases in which rounding decides: samples an ulp apart along edges, rows that are
// tangents, offsets so large that steps are rounded away, axes from the smallest to the largest
// number, special values and random bits in every field, and grids that are inverted, flat or
// larger than what is counted at once.
class CoverageCaseGenerator {
 public:
  explicit CoverageCaseGenerator(uint64_t stream) : random_(stream) {}

  CoverageCase Next() {
    PickScale();
    CoverageCase next;
    next.s1 = Shape();
    next.s2 = Shape();
    next.grid = OneIn(3) ? GridAround(next.s1) : GridAlong(next.s1);
    is_whole_ = false;
    if (OneIn(8)) {
      std::swap(next.grid.top_left.x, next.grid.bottom_right.x);
    }
    if (OneIn(8)) {
      std::swap(next.grid.top_left.y, next.grid.bottom_right.y);
    }
    if (OneIn(4)) {
      const std::vector<float*> fields = next.Fields();
      for (uint32_t i = Below(3) + 1; i > 0; --i) {
        *fields[Below(static_cast<uint32_t>(fields.size()))] = Special();
      }
    } else if (OneIn(16)) {
      for (float* field : next.Fields()) {
        *field = OneIn(2) ? Noise() : *field;
      }
    }
    if (OneIn(2)) {
      std::swap(next.s1, next.s2);
    }
    PickScanPoints(&next);
    return next;
  }

 private:
  using Circle = android::fp_utils::Circle;
  using Ellipse = android::fp_utils::Ellipse;
  using Point = android::fp_utils::Point;
  using Rect = android::fp_utils::Rect;

  static constexpr float kHalfTurn = 3.14159265F;

  // Few enough for the plain scan of hundreds of thousands of cases.
  static constexpr uint32_t kMaxScanPoints = 28;

  static float StepBy(float value, int ulps) {
    const float toward = ulps < 0 ? -INFINITY : INFINITY;
    for (int i = 0; i < std::abs(ulps); ++i) {
      value = std::nextafter(value, toward);
    }
    return value;
  }

  uint32_t Below(uint32_t limit) { return static_cast<uint32_t>(random_() % limit); }
  bool OneIn(uint32_t n) { return Below(n) == 0; }

  float Between(float low, float high) {
    const float value = low + (high - low) * static_cast<float>(random_() >> 40) * 0x1p-24F;
    return is_whole_ ? std::round(value * 2) / 2 : value;
  }

  float Power(float low, float high) { return std::exp2(Between(low, high)); }
  float Noise() { return __builtin_bit_cast(float, static_cast<uint32_t>(random_())); }

  float Special() {
    const float values[] = {0,       -0.0F,   1,        -1,      INFINITY,     -INFINITY,
                            NAN,     FLT_MAX, -FLT_MAX, FLT_MIN, FLT_TRUE_MIN, -FLT_TRUE_MIN,
                            0x1p24F, 1e19F,   1e37F,    size_,   -size_,       offset_,
                            Noise()};
    return values[Below(std::size(values))];
  }

  float Orientation() {
    switch (Below(4)) {
      case 0:
        return static_cast<float>(static_cast<int>(Below(17)) - 8) * kHalfTurn / 4;
      case 1:
        return StepBy(static_cast<float>(Below(5)) * kHalfTurn / 2, static_cast<int>(Below(9)) - 4);
      case 2:
        return OneIn(2) ? Power(-140, 0) : -Power(0, 127);
      default:
        return Between(-7, 7);
    }
  }

  void PickScale() {
    is_whole_ = false;
    size_ = Power(0, 7);
    offset_ = Between(-2000, 2000);
    switch (Below(5)) {
      case 0:
        is_whole_ = true;
        size_ = std::max(1.0F, std::round(size_));
        offset_ = std::round(offset_);
        break;
      case 1:
        offset_ = (OneIn(2) ? 1.0F : -1.0F) * Power(14, 30);
        break;
      case 2:
        size_ = Power(-149, 127);
        offset_ = size_ * Between(-8, 8);
        break;
      case 3:
        offset_ = 0;
        break;
      default:
        break;
    }
  }

  Point Center() { return {offset_ + size_ * Between(-1, 1), offset_ + size_ * Between(-1, 1)}; }

  AnyShape Shape() {
    switch (Below(4)) {
      case 0:
        return Circle(Center(),
                      is_whole_ && OneIn(2) ? 5 * std::round(size_ / 5) : size_ * Between(0.5F, 2));
      case 1:
        if (OneIn(2)) {
          const Point p = Center();
          return Rect(p, {p.x + size_ * Between(0, 2), p.y + size_ * Between(0, 2)});
        }
        [[fallthrough]];
      default: {
        const float major = 2 * size_ * Between(0.5F, 1.5F);
        const float ratio = OneIn(3) ? Power(-40, 40) : Between(0.5F, 1.5F);
        return OneIn(8) ? Ellipse(Center(), major * ratio, major, Orientation())
                        : Ellipse(Center(), major, major * ratio, Orientation());
      }
    }
  }

  // A point on the edge of a shape but for rounding, often where a row or a column is a tangent.
  Point OnEdge(const AnyShape& shape) {
    const float angle = OneIn(2) ? static_cast<float>(Below(4)) * kHalfTurn / 2 : Between(-4, 4);
    if (const auto* circle = std::get_if<Circle>(&shape)) {
      return {circle->center.x + circle->radius * std::cos(angle),
              circle->center.y + circle->radius * std::sin(angle)};
    }
    if (const auto* rect = std::get_if<Rect>(&shape)) {
      return OneIn(2) ? rect->top_left : rect->bottom_right;
    }
    const auto& ellipse = std::get<Ellipse>(shape);
    const double s = std::sin(static_cast<double>(ellipse.orientation));
    const double c = std::cos(static_cast<double>(ellipse.orientation));
    const double a = ellipse.major_axis / 2;
    const double b = ellipse.minor_axis / 2;
    // The point of the ellipse at which the outward normal has this angle.
    const double nx = std::cos(static_cast<double>(angle));
    const double ny = std::sin(static_cast<double>(angle));
    const double along_major = nx * s - ny * c;
    const double along_minor = nx * c + ny * s;
    const double length = std::hypot(a * along_major, b * along_minor);
    const double u = a * a * along_major / length;
    const double v = b * b * along_minor / length;
    return {static_cast<float>(ellipse.center.x + u * s + v * c),
            static_cast<float>(ellipse.center.y - u * c + v * s)};
  }

  Rect GridAround(const AnyShape& shape) {
    const Point p = OneIn(2) ? OnEdge(shape) : Center();
    const float width = size_ * (OneIn(4) ? Power(-12, 4) : Between(0, 4));
    const float height = size_ * (OneIn(4) ? Power(-12, 4) : Between(0, 4));
    const float before_x = width * Between(0, 1);
    const float before_y = height * Between(0, 1);
    return {{p.x - before_x, p.y - before_y}, {p.x - before_x + width, p.y - before_y + height}};
  }

  // A grid around a point of the edge, with steps of a few ulps.
  Rect GridAlong(const AnyShape& shape) {
    const Point p = OnEdge(shape);
    const int width = 1 << Below(12);
    const int height = 1 << Below(10);
    const int before_x = static_cast<int>(Below(static_cast<uint32_t>(width)));
    const int before_y = static_cast<int>(Below(static_cast<uint32_t>(height)));
    return {{StepBy(p.x, -before_x), StepBy(p.y, -before_y)},
            {StepBy(p.x, width - before_x), StepBy(p.y, height - before_y)}};
  }

  void PickScanPoints(CoverageCase* picked) {
    picked->SetDefaultScanPoints();
    if (picked->nx <= kMaxScanPoints && picked->ny <= kMaxScanPoints && OneIn(2)) {
      return;
    }
    picked->is_tuned = true;
    picked->nx = Below(kMaxScanPoints + 1);
    picked->ny = Below(kMaxScanPoints + 1);
    if (OneIn(200)) {
      // More than is counted at once.
      (OneIn(2) ? picked->nx : picked->ny) = 1000 + Below(1200);
    }
  }

  std::mt19937_64 random_;

  // Of the case being made.
  float size_ = 1;
  float offset_ = 0;
  bool is_whole_ = false;  // all numbers are multiples of 0.5
};

}  // namespace fp_test
