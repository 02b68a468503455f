// SPDX-License-Identifier: Apache-2.0
#include "sensor_model.h"

#include <algorithm>
#include <cmath>

namespace fp_service {
namespace {

constexpr double kIdealRaw = 2000;         // between the controller's thresholds, 1500 and 2500
constexpr double kPanelRawPerMs = 33.333;  // a normal finger at the usual calibration of 60 ms
constexpr double kLeakRawPerMs = 22;       // ambient light that leaks past the finger, in full sun
constexpr double kFullSunLux = 30000;
constexpr double kDrySkin = 0.80;
constexpr double kWetSkin = 0.56;

constexpr double kBestQuality = 45;
constexpr double kQualityFalloff = 26;  // per (1000 raw)^2

constexpr double kUnlit = 0.02;  // fraction of the panel's light without its high-brightness mode
constexpr double kRawNoise = 70;
constexpr double kQualityNoise = 2.5;

// A fingertip in display pixels: lengths of its axes, how they vary, and how far from the sensor's
// centre it lands.
constexpr double kMajor = 280;
constexpr double kMinor = 236;
constexpr double kSizeNoise = 20;
constexpr double kTurnNoise = 0.25;  // radians
constexpr double kGoodOffset = 15;
constexpr double kPoorOffset = 85;

double Transmission(Skin skin) {
  switch (skin) {
    case Skin::kNormal:
      return 1;
    case Skin::kDry:
      return kDrySkin;
    case Skin::kWet:
      return kWetSkin;
  }
  return 1;
}

}  // namespace

Contact SensorModel::Touch(Placement placement) {
  const double spread = placement == Placement::kGood ? kGoodOffset : kPoorOffset;
  // Limited to the area in which the touch controller reports touches.
  const auto near = [&](double center) {
    return static_cast<float>(center + std::clamp(random_.Noise(spread), -200.0, 200.0));
  };
  Contact contact = {};
  contact.x = near(kCenterX);
  contact.y = near(kCenterY);
  contact.major = static_cast<float>(kMajor + random_.Noise(kSizeNoise));
  contact.minor = static_cast<float>(kMinor + random_.Noise(kSizeNoise));
  contact.angle = static_cast<float>(random_.Noise(kTurnNoise));
  return contact;
}

Capture SensorModel::Expose(const Scene& scene) {
  const double panel = kPanelRawPerMs * (scene.lit ? 1 : kUnlit);
  const double leak = kLeakRawPerMs * std::min(1.0, scene.lux / kFullSunLux);
  const double raw =
      (panel * Transmission(scene.skin) + leak) * exposure_ms_ + random_.Noise(kRawNoise);
  const double offset = (raw - kIdealRaw) / 1000;
  const double quality = std::clamp(
      kBestQuality - kQualityFalloff * offset * offset + random_.Noise(kQualityNoise), 0.0, 100.0);
  return {.raw_mean = static_cast<int32_t>(std::lround(raw)),
          .quality = static_cast<int32_t>(std::lround(quality)),
          .finger = scene.finger};
}

}  // namespace fp_service
