// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <random>

#include "scenario.h"

namespace fp_service {

// The optical sensor under the panel, reduced to what exposure control sees.
//
//   raw     = (panel * skin + leak(lux)) * exposure      mean of the raw image
//   quality = best - falloff * ((raw - ideal) / 1000)^2  image quality score
//   match   = logistic((quality - middle) / softness)    chance that an enrolled finger matches
//
// `panel` is chosen so that a normal finger in a dim room gives the ideal raw mean at the
// calibrated exposure; each image adds noise to raw and quality. README.md has the figures.
class SensorModel {
 public:
  struct Capture {
    int32_t raw_mean;
    int32_t quality;
    float coverage_percent;
    float distance_mm;
    bool matches;  // if the finger is enrolled
  };

  // The same `seed` gives the same captures, with every compiler.
  explicit SensorModel(uint64_t seed) : random_(seed) {}

  void SetLux(float lux) { lux_ = lux; }
  void SetExposure(float ms) { exposure_ms_ = ms; }
  float GetExposure() const { return exposure_ms_; }

  Capture Touch(Skin skin);

  // A whole number from 0 to limit - 1, for what the model does not describe.
  int32_t Below(int32_t limit) { return static_cast<int32_t>(Uniform() * limit); }

 private:
  double Uniform();
  double Noise(double deviation);

  std::mt19937_64 random_;
  float lux_ = 100;
  float exposure_ms_ = 0;
};

}  // namespace fp_service
