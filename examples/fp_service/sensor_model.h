// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <random>

#include "fp_utils/shapes.h"
#include "scenario.h"

namespace fp_service {

// Where and how large a finger touches, in display pixels and radians.
struct Contact {
  float x;
  float y;
  float major;  // full lengths of the axes
  float minor;
  float angle;  // of the major axis: 0 points up
};

// The optical sensor under the panel, reduced to what exposure control sees, and the user's hand.
//
//   raw     = (panel * skin + leak(lux)) * exposure      mean of the raw image
//   quality = best - falloff * ((raw - ideal) / 1000)^2  image quality score
//   match   = logistic((quality - middle) / softness)    chance that an enrolled finger matches
//             * logistic((coverage - half) / edge)       with so much of the sensor covered
//
// `panel` is chosen so that a normal finger in a dim room gives the ideal raw mean at the
// calibrated exposure, the panel's high-brightness mode being on; without it hardly any light comes
// back. Each image adds noise to raw and quality. README.md has the figures.
class SensorModel {
 public:
  // The sensing area: a circle on the display.
  static constexpr float kCenterX = 540;
  static constexpr float kCenterY = 1900;
  static constexpr float kRadius = 100;
  static constexpr float kPixelsPerMm = 17;
  static android::fp_utils::Circle Area() {
    return {android::fp_utils::Point(kCenterX, kCenterY), kRadius};
  }

  // What the sensor looks at.
  struct Scene {
    Skin skin;
    float coverage_percent;
    float lux;
    bool lit;  // by the panel's local high-brightness mode
  };
  struct Capture {
    int32_t raw_mean;
    int32_t quality;
    bool matches;  // if the finger is enrolled
  };

  // The same `seed` gives the same touches and captures, with every compiler.
  explicit SensorModel(uint64_t seed) : random_(seed) {}

  void SetExposure(float ms) { exposure_ms_ = ms; }
  float GetExposure() const { return exposure_ms_; }

  Contact Aim(fp_service::Aim aim);
  Capture Expose(const Scene& scene);

  // A whole number from 0 to limit - 1, for what the model does not describe.
  int32_t Below(int32_t limit) { return static_cast<int32_t>(Uniform() * limit); }

 private:
  double Uniform();
  double Noise(double deviation);

  std::mt19937_64 random_;
  float exposure_ms_ = 0;
};

}  // namespace fp_service
