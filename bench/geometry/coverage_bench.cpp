// SPDX-License-Identifier: Apache-2.0
//
// How much of a sensor circle a touch covers, against the scan in its plainest form: by whole rows
// for the library's shapes, sample by sample for what a user brings.
#include <benchmark/benchmark.h>

#include "fp_utils/shapes.h"
#include "geometry/touches.h"
#include "measure/ratios.h"
#include "reference/plain_geometry.h"

namespace fp_bench {
namespace {

using android::fp_utils::Circle;
using android::fp_utils::Ellipse;
using android::fp_utils::IShape;
using android::fp_utils::Point;
using android::fp_utils::Rect;
using fp_reference::PlainCircle;
using fp_reference::PlainEllipse;

Rect BoxOf(const Circle& c) {
  return {{c.center.x - c.radius, c.center.y - c.radius},
          {c.center.x + c.radius, c.center.y + c.radius}};
}

float PlainCoverage(const Rect& box, const IShape& sensor, const IShape& touch) {
  const uint32_t nx = fp_reference::PlainScanPoints(box.top_left.x, box.bottom_right.x);
  const uint32_t ny = fp_reference::PlainScanPoints(box.top_left.y, box.bottom_right.y);
  const fp_reference::PlainCounts counts = fp_reference::PlainScan(box, nx, ny, sensor, touch);
  return static_cast<float>(counts.in_both) / static_cast<float>(counts.in_s1) * 100;
}

void Coverage(benchmark::State& state) {
  const Circle sensor = Sensor(static_cast<float>(state.range(0)));
  const Ellipse touch = Touch(sensor.radius);
  for (auto _ : state) {
    benchmark::DoNotOptimize(sensor.CoverageCoveredBy(touch));
  }
  ReportError(state, sensor.CoverageCoveredBy(touch));
}

void CoverageByPlainScan(benchmark::State& state) {
  const Circle sensor = Sensor(static_cast<float>(state.range(0)));
  const PlainCircle plain_sensor(sensor);
  const PlainEllipse touch(Touch(sensor.radius));
  for (auto _ : state) {
    benchmark::DoNotOptimize(PlainCoverage(BoxOf(sensor), plain_sensor, touch));
  }
  ReportError(state, PlainCoverage(BoxOf(sensor), plain_sensor, touch));
}

// What a user may bring: a circle with its lower part cut off. It answers quickly, so that the scan
// is measured and not the shape.
class CutCircle : public IShape {
 public:
  CutCircle(const Circle& circle, float cut)
      : center_(circle.center), cut_(cut), radius_square_(circle.radius * circle.radius) {}
  std::string Print() const override { return "CutCircle"; }
  bool Contains(Point const& p) const override {
    const float x = p.x - center_.x;
    const float y = p.y - center_.y;
    return p.y <= cut_ && x * x + y * y <= radius_square_;
  }

 private:
  Point center_;
  float cut_, radius_square_;
};

const CutCircle kUserSensor(Sensor(100), 1860);
const CutCircle kUserTouch(Circle({570, 1780}, 94), 1840);

void Scan(benchmark::State& state, const IShape& sensor, const IShape& touch) {
  const Rect box = BoxOf(Sensor(100));
  for (auto _ : state) {
    unsigned int in_sensor = 0;
    unsigned int in_touch = 0;
    unsigned int in_both = 0;
    box.NumOfPointsIn(sensor, touch, in_sensor, in_touch, in_both);
    benchmark::DoNotOptimize(in_both);
  }
}

void PlainScan(benchmark::State& state, const IShape& sensor, const IShape& touch) {
  const Rect box = BoxOf(Sensor(100));
  for (auto _ : state) {
    benchmark::DoNotOptimize(PlainCoverage(box, sensor, touch));
  }
}

BENCHMARK(Coverage)->Arg(50)->Arg(100)->Arg(200)->Arg(500);
BENCHMARK(CoverageByPlainScan)->Arg(50)->Arg(100)->Arg(200)->Arg(500);
BENCHMARK_CAPTURE(Scan, user_touch, Sensor(100), kUserTouch);
BENCHMARK_CAPTURE(PlainScan, user_touch, PlainCircle(Sensor(100)), kUserTouch);
BENCHMARK_CAPTURE(Scan, user_sensor, kUserSensor, Touch(100));
BENCHMARK_CAPTURE(PlainScan, user_sensor, kUserSensor, PlainEllipse(Touch(100)));
BENCHMARK_CAPTURE(Scan, user_both, kUserSensor, kUserTouch);
BENCHMARK_CAPTURE(PlainScan, user_both, kUserSensor, kUserTouch);

const bool kClaims[] = {
    Claim("coverage_r50", "CoverageByPlainScan/50", "Coverage/50", Goal::kAtLeast, 35),
    Claim("coverage_r100", "CoverageByPlainScan/100", "Coverage/100", Goal::kAtLeast, 80),
    Claim("coverage_r200", "CoverageByPlainScan/200", "Coverage/200", Goal::kAtLeast, 170),
    Claim("coverage_r500", "CoverageByPlainScan/500", "Coverage/500", Goal::kAtLeast, 450),
    Claim("scan_user_touch", "PlainScan/user_touch", "Scan/user_touch", Goal::kAtLeast, 1.4),
    Claim("scan_user_sensor", "PlainScan/user_sensor", "Scan/user_sensor", Goal::kAtLeast, 1.4),
    Claim("scan_user_both", "PlainScan/user_both", "Scan/user_both", Goal::kAtLeast, 1.4),
};

}  // namespace
}  // namespace fp_bench
