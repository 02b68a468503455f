// SPDX-License-Identifier: Apache-2.0
#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include <android-base/properties.h>

#include "common/log.h"
#include "fp_utils/shapes.h"
#include "geometry/grid_count.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "Geometry";
constexpr double kPi = 3.141592653589793;

// Truncates towards zero and saturates; NaN becomes 0.
uint32_t Truncated(float value) {
  if (!(value > 0)) {
    return 0;
  }
  return value < 0x1p32F ? static_cast<uint32_t>(value) : std::numeric_limits<uint32_t>::max();
}

// Samples on an axis: one per panel unit, both edges included, unless the property overrides it.
uint32_t ScanPoints(const std::string& property, float low, float high) {
  return base::GetUintProperty<uint32_t>(property, Truncated((high - low) + 1.0F), 4294967295U);
}

// Stops at the first corner that lies outside.
bool ContainsCorners(const IShape& shape, const Rect& rect) {
  const Point& low = rect.top_left;
  const Point& high = rect.bottom_right;
  return shape.Contains({low.x, low.y}) && shape.Contains({low.x, high.y}) &&
         shape.Contains({high.x, low.y}) && shape.Contains({high.x, high.y});
}

// Calls Contains() at every sample, row by row, for s1 before s2. A null shape contains all
// samples.
Counts ScanSamples(Grid grid, const IShape* s1, const IShape* s2) {
  Counts counts;
  Point p;
  while (!grid.rows.IsEmpty()) {
    grid.rows.Take(&p.y, 1);
    for (SampleAxis columns = grid.columns; !columns.IsEmpty();) {
      columns.Take(&p.x, 1);
      const bool is_in_s1 = s1 == nullptr || s1->Contains(p);
      const bool is_in_s2 = s2 == nullptr || s2->Contains(p);
      counts.in_s1 += is_in_s1 ? 1 : 0;
      counts.in_s2 += is_in_s2 ? 1 : 0;
      counts.in_both += is_in_s1 && is_in_s2 ? 1 : 0;
    }
  }
  return counts;
}

// Counts by rows if the library knows both shapes, otherwise by scanning all samples. A null shape
// contains all samples.
Counts Count(const Grid& grid, const IShape* s1, const IShape* s2) {
  if (s1 == nullptr && s2 == nullptr) {
    const uint32_t all = grid.columns.Left() * grid.rows.Left();
    return {all, all, all};
  }
  const std::optional<ShapeRows> rows1 = s1 == nullptr ? FullRows() : KnownRows(*s1);
  const std::optional<ShapeRows> rows2 = s2 == nullptr ? FullRows() : KnownRows(*s2);
  return rows1 && rows2 ? CountRows(grid, *rows1, *rows2) : ScanSamples(grid, s1, s2);
}

float SampledCoverage(const Rect& grid, const IShape& shape, const IShape& other) {
  unsigned int in_shape = 0;
  unsigned int in_other = 0;
  unsigned int in_both = 0;
  grid.NumOfPointsIn(shape, other, in_shape, in_other, in_both);
  return static_cast<float>(in_both) / static_cast<float>(in_shape) * 100.0F;
}

float CircleArea(float r) { return static_cast<float>(kPi * (static_cast<double>(r) * r)); }

// The area shared by two circles whose edges intersect: both sectors less the kite between the
// centres and the intersections. NaN if rounding makes a cosine exceed 1.
float LensArea(float small, float large, float d) {
  const float small2 = small * small;
  const float large2 = large * large;
  const float d2 = d * d;
  return small2 * std::acos((small2 + d2 - large2) / (small * (2.0F * d))) +
         large2 * std::acos((large2 + d2 - small2) / (large * (2.0F * d))) -
         0.5F * std::sqrt((large + (small - d)) * (small + d - large) * (large + (d - small)) *
                          (large + (small + d)));
}

}  // namespace

void Rect::NumOfPointsIn(const IShape& s1, const IShape& s2, unsigned int& in_s1,
                         unsigned int& in_s2, unsigned int& in_both) const {
  in_s1 = 0;
  in_s2 = 0;
  in_both = 0;
  // Static, so that an estimate does not allocate.
  static const auto& x_property =
      *new std::string("persist.vendor.udfps.geometry.rect.x_axis_scan_points");
  static const auto& y_property =
      *new std::string("persist.vendor.udfps.geometry.rect.y_axis_scan_points");
  const uint32_t nx = ScanPoints(x_property, top_left.x, bottom_right.x);
  const uint32_t ny = ScanPoints(y_property, top_left.y, bottom_right.y);
  if (nx == 0 || ny == 0) {
    // Continues, because the log lines about the corners show how the shapes lie.
    FP_LOG_ERROR(kTag, "[%s] Invalid scan points(%u, %u)", "NumOfPointsIn", nx, ny);
  }
  const bool all_points_in_s1 = ContainsCorners(s1, *this);
  FP_LOG_DEBUG(kTag, "[%s] all_points_in_s1:%d", "NumOfPointsIn", all_points_in_s1);
  const bool all_points_in_s2 = ContainsCorners(s2, *this);
  FP_LOG_DEBUG(kTag, "[%s] all_points_in_s2:%d", "NumOfPointsIn", all_points_in_s2);
  if (nx == 0 || ny == 0) {
    return;
  }
  const Grid grid = {SampleAxis(top_left.x, bottom_right.x, nx),
                     SampleAxis(top_left.y, bottom_right.y, ny)};
  const Counts counts =
      Count(grid, all_points_in_s1 ? nullptr : &s1, all_points_in_s2 ? nullptr : &s2);
  // Added rather than assigned, because a caller may pass the same counter twice.
  in_s1 += counts.in_s1;
  in_s2 += counts.in_s2;
  in_both += counts.in_both;
}

float Rect::CoverageCoveredBy(const IShape& other) const {
  return SampledCoverage(*this, *this, other);
}

float Circle::CoverageCoveredBy(const IShape& other) const {
  const Rect box({center.x - radius, center.y - radius}, {center.x + radius, center.y + radius});
  return SampledCoverage(box, *this, other);
}

float Circle::CoverageCoveredBy(const Circle& other) const {
  const float dx = other.center.x - center.x;
  const float dy = other.center.y - center.y;
  const float d = std::sqrt(dx * dx + dy * dy);
  const bool other_is_smaller = other.radius < radius;
  const float small = other_is_smaller ? other.radius : radius;
  const float large = other_is_smaller ? radius : other.radius;
  float covered = 0;
  if (!(d > radius + other.radius)) {
    covered = d <= large - small ? CircleArea(small) : LensArea(small, large, d);
  }
  return covered / CircleArea(radius) * 100.0F;
}

}  // namespace android::fp_utils
