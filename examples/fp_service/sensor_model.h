// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "fp_utils/shapes.h"
#include "random.h"
#include "scenario.h"

namespace fp_service {

// Position and size of a finger contact, in display pixels and radians.
struct Contact {
  float x;
  float y;
  float major;  // full lengths of the axes
  float minor;
  float angle;  // of the major axis: 0 points up
};

// An image of a finger as the sensor's driver hands it to the service.
struct Capture {
  int32_t raw_mean;
  int32_t quality;
  int finger;  // the finger in the image, for the matcher alone; 0 is one that is not enrolled
};

// Models the optical sensor under the panel, as far as exposure control depends on it, and how the
// user places a finger.
//
//   raw     = (panel * skin + leak(lux)) * exposure      mean of the raw image
//   quality = best - falloff * ((raw - ideal) / 1000)^2  image quality score
//
// `panel` is chosen so that a normal finger in a dim room gives the ideal raw mean at the
// calibrated exposure while the panel's high-brightness mode is on; without that mode almost no
// light returns. Each image adds noise to raw and quality. README.md has the figures.
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

  // The conditions of a capture.
  struct Scene {
    int finger;
    Skin skin;
    float lux;
    bool lit;  // by the panel's local high-brightness mode
  };

  // A touch and a capture draw the same number of random numbers at any exposure, so that a day can
  // be repeated with the same touches at other exposures.
  explicit SensorModel(Random& random) : random_(random) {}

  void SetExposure(float ms) { exposure_ms_ = ms; }
  float GetExposure() const { return exposure_ms_; }

  Contact Touch(Placement placement);
  Capture Expose(const Scene& scene);

 private:
  Random& random_;
  float exposure_ms_ = 0;
};

}  // namespace fp_service
