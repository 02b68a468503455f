// SPDX-License-Identifier: Apache-2.0
//
// A sensor of radius r and a typical touch: a little off the centre and rotated.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>

#include "fp_utils/shapes.h"

namespace fp_bench {

inline android::fp_utils::Circle Sensor(float r) { return {{540, 1800}, r}; }

inline android::fp_utils::Ellipse Touch(float r) {
  return {{540 + 0.3F * r, 1800 - 0.2F * r}, 2.2F * r, 1.6F * r, 0.4F};
}

// The share of the sensor's area under the finger, in percent: the overlap of the two chords,
// summed over a hundred thousand rows in double precision.
inline double ExactCoverage(float radius) {
  constexpr int kRows = 100000;
  const android::fp_utils::Ellipse touch = Touch(radius);
  const double sensor_r = radius;
  const double s = std::sin(static_cast<double>(touch.orientation));
  const double c = std::cos(static_cast<double>(touch.orientation));
  const double a = touch.major_axis / 2.0;
  const double b = touch.minor_axis / 2.0;
  const double center_x = touch.center.x - 540.0;
  const double center_y = touch.center.y - 1800.0;
  const double speed2 = s * s / (a * a) + c * c / (b * b);
  double area = 0;
  for (int row = 0; row < kRows; ++row) {
    const double y = sensor_r * (2 * (row + 0.5) / kRows - 1);
    const double dy = y - center_y;
    const double middle = center_x + dy * s * c * (1 / (a * a) - 1 / (b * b)) / speed2;
    const double half = std::sqrt(std::max(0.0, speed2 - dy * dy / (a * a * b * b))) / speed2;
    const double sensor_half = std::sqrt(sensor_r * sensor_r - y * y);
    area +=
        std::max(0.0, std::min(middle + half, sensor_half) - std::max(middle - half, -sensor_half));
  }
  return area * (2 * sensor_r / kRows) / (M_PI * sensor_r * sensor_r) * 100;
}

// Adds the difference from the exact area, in percent of the sensor, to the benchmark's output.
inline void ReportError(benchmark::State& state, double coverage) {
  state.counters["error"] = coverage - ExactCoverage(static_cast<float>(state.range(0)));
}

}  // namespace fp_bench
