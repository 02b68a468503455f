// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cmath>
#include <cstdint>
#include <random>

#include "fp_utils/shapes.h"
#include "support/coverage_case.h"

namespace fp_test {

// Makes random cases in which rounding decides: samples an ulp apart along edges, rows that are
// tangents, offsets so large that steps are rounded away, axes from the smallest to the largest
// number, special values and random bits in every field, and grids that are inverted, flat or
// larger than what is counted at once.
class CoverageCaseGenerator {
 public:
  explicit CoverageCaseGenerator(uint64_t stream) : random_(stream) {}

  CoverageCase Next();

 private:
  uint32_t Below(uint32_t limit) { return static_cast<uint32_t>(random_() % limit); }
  bool OneIn(uint32_t n) { return Below(n) == 0; }
  float Between(float low, float high);
  float Power(float low, float high) { return std::exp2(Between(low, high)); }
  float Noise();
  float Special();
  float Orientation();

  void PickScale();
  android::fp_utils::Point Center();
  AnyShape Shape();
  android::fp_utils::Point OnEdge(const AnyShape& shape);
  android::fp_utils::Rect GridAround(const AnyShape& shape);
  android::fp_utils::Rect GridAlong(const AnyShape& shape);
  void PickScanPoints(CoverageCase* picked);

  std::mt19937_64 random_;

  // Of the case being made.
  float size_ = 1;
  float offset_ = 0;
  bool is_whole_ = false;  // all numbers are multiples of 0.5
};

}  // namespace fp_test
