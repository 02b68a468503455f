// SPDX-License-Identifier: Apache-2.0
//
// Computes the same coverage with two geometry libraries, as the area of the intersection of two
// prepared polygons of 64 corners.
#include <benchmark/benchmark.h>
#include <geos_c.h>

#include <boost/geometry/algorithms/append.hpp>
#include <boost/geometry/algorithms/area.hpp>
#include <boost/geometry/algorithms/correct.hpp>
#include <boost/geometry/algorithms/intersection.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>
#include <boost/geometry/strategies/strategies.hpp>
#include <cmath>
#include <vector>

#include "fp_utils/shapes.h"
#include "geometry/touches.h"
#include "measure/ratios.h"

namespace fp_bench {
namespace {

using BoostPoint = boost::geometry::model::d2::point_xy<double>;
using BoostPolygon = boost::geometry::model::polygon<BoostPoint>;

struct Corner {
  double x, y;
};

// Clockwise if y points up, and closed.
std::vector<Corner> CornersOf(const android::fp_utils::Ellipse& ellipse) {
  constexpr int kCorners = 64;
  const double s = std::sin(static_cast<double>(ellipse.orientation));
  const double c = std::cos(static_cast<double>(ellipse.orientation));
  std::vector<Corner> corners;
  for (int i = 0; i < kCorners; ++i) {
    const double angle = -2 * M_PI * i / kCorners;
    const double v = ellipse.minor_axis / 2.0 * std::cos(angle);
    const double u = ellipse.major_axis / 2.0 * std::sin(angle);
    corners.push_back({ellipse.center.x + v * c + u * s, ellipse.center.y + v * s - u * c});
  }
  corners.push_back(corners.front());
  return corners;
}

std::vector<Corner> SensorCorners(float r) {
  return CornersOf({Sensor(r).center, 2 * r, 2 * r, 0});
}

BoostPolygon AsBoost(const std::vector<Corner>& corners) {
  BoostPolygon polygon;
  for (const Corner& corner : corners) {
    boost::geometry::append(polygon, BoostPoint(corner.x, corner.y));
  }
  boost::geometry::correct(polygon);
  return polygon;
}

double BoostCoverage(const BoostPolygon& sensor, const BoostPolygon& touch) {
  std::vector<BoostPolygon> common;
  boost::geometry::intersection(sensor, touch, common);
  double area = 0;
  for (const BoostPolygon& polygon : common) {
    area += boost::geometry::area(polygon);
  }
  return area / boost::geometry::area(sensor) * 100;
}

void CoverageByBoost(benchmark::State& state) {
  const auto r = static_cast<float>(state.range(0));
  const BoostPolygon sensor = AsBoost(SensorCorners(r));
  const BoostPolygon touch = AsBoost(CornersOf(Touch(r)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(BoostCoverage(sensor, touch));
  }
  ReportError(state, BoostCoverage(sensor, touch));
}

GEOSGeometry* AsGeos(const std::vector<Corner>& corners) {
  GEOSCoordSequence* const sequence =
      GEOSCoordSeq_create(static_cast<unsigned int>(corners.size()), 2);
  for (unsigned int i = 0; i < corners.size(); ++i) {
    GEOSCoordSeq_setXY(sequence, i, corners[i].x, corners[i].y);
  }
  return GEOSGeom_createPolygon(GEOSGeom_createLinearRing(sequence), nullptr, 0);
}

double GeosCoverage(const GEOSGeometry* sensor, const GEOSGeometry* touch) {
  GEOSGeometry* const common = GEOSIntersection(sensor, touch);
  double common_area = 0;
  double sensor_area = 0;
  GEOSArea(common, &common_area);
  GEOSArea(sensor, &sensor_area);
  GEOSGeom_destroy(common);
  return common_area / sensor_area * 100;
}

void CoverageByGeos(benchmark::State& state) {
  initGEOS(nullptr, nullptr);
  const auto r = static_cast<float>(state.range(0));
  GEOSGeometry* const sensor = AsGeos(SensorCorners(r));
  GEOSGeometry* const touch = AsGeos(CornersOf(Touch(r)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(GeosCoverage(sensor, touch));
  }
  ReportError(state, GeosCoverage(sensor, touch));
  GEOSGeom_destroy(sensor);
  GEOSGeom_destroy(touch);
  finishGEOS();
}

BENCHMARK(CoverageByBoost)->Arg(100);
BENCHMARK(CoverageByGeos)->Arg(100);

const bool kClaims[] = {
    Claim("coverage_over_boost", "CoverageByBoost/100", "Coverage/100", Goal::kAtLeast, 5),
    Claim("coverage_over_geos", "CoverageByGeos/100", "Coverage/100", Goal::kAtLeast, 7),
};

}  // namespace
}  // namespace fp_bench
