// SPDX-License-Identifier: Apache-2.0
//
// Compares the coverage of a sensor circle by a touch, counted by rows, with the plain scan.
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

BENCHMARK(Coverage)->Arg(50)->Arg(100)->Arg(200)->Arg(500);
BENCHMARK(CoverageByPlainScan)->Arg(50)->Arg(100)->Arg(200)->Arg(500);

const bool kClaims[] = {
    Claim("coverage_r50", "CoverageByPlainScan/50", "Coverage/50", Goal::kAtLeast, 60),
    Claim("coverage_r100", "CoverageByPlainScan/100", "Coverage/100", Goal::kAtLeast, 130),
    Claim("coverage_r200", "CoverageByPlainScan/200", "Coverage/200", Goal::kAtLeast, 280),
    Claim("coverage_r500", "CoverageByPlainScan/500", "Coverage/500", Goal::kAtLeast, 700),
};

}  // namespace
}  // namespace fp_bench
