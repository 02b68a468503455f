// SPDX-License-Identifier: Apache-2.0
#include "sensor_model.h"

#include <algorithm>
#include <cmath>

namespace fp_service {
namespace {

constexpr double kIdealRaw = 2000;         // between the controller's thresholds, 1500 and 2500
constexpr double kPanelRawPerMs = 33.333;  // a normal finger at the usual calibration of 60 ms
constexpr double kLeakRawPerMs = 22;       // ambient light past the finger, in full sun
constexpr double kFullSunLux = 30000;
constexpr double kDrySkin = 0.80;
constexpr double kWetSkin = 0.56;

constexpr double kBestQuality = 45;
constexpr double kQualityFalloff = 26;  // per (1000 raw)^2
constexpr double kMiddleQuality = 22;   // one in two images of this quality matches
constexpr double kQualitySoftness = 2.5;

constexpr double kHalfCoverage = 45;  // percent; half of the images that small match at most
constexpr double kCoverageEdge = 8;

constexpr double kUnlit = 0.02;  // what the panel gives without its high-brightness mode
constexpr double kRawNoise = 70;
constexpr double kQualityNoise = 2.5;

// A fingertip in display pixels: lengths of its axes, how they vary, and how far off it lands.
constexpr double kMajor = 280;
constexpr double kMinor = 236;
constexpr double kSizeNoise = 20;
constexpr double kTurnNoise = 0.25;  // radians
constexpr double kGoodAim = 15;
constexpr double kPoorAim = 85;

double Logistic(double x) { return 1 / (1 + std::exp(-x)); }

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

double SensorModel::Uniform() {
  return static_cast<double>(random_() >> 11) * 0x1p-53;  // std's distributions differ by library
}

double SensorModel::Noise(double deviation) {
  double sum = -6;  // the sum of twelve uniform numbers is close to normal, with deviation 1
  for (int i = 0; i < 12; ++i) {
    sum += Uniform();
  }
  return sum * deviation;
}

Contact SensorModel::Aim(fp_service::Aim aim) {
  const double off = aim == fp_service::Aim::kGood ? kGoodAim : kPoorAim;
  // A finger never lands so far off that the touch controller would not report it.
  const auto near = [&](double center) {
    return static_cast<float>(center + std::clamp(Noise(off), -200.0, 200.0));
  };
  Contact contact = {};
  contact.x = near(kCenterX);
  contact.y = near(kCenterY);
  contact.major = static_cast<float>(kMajor + Noise(kSizeNoise));
  contact.minor = static_cast<float>(kMinor + Noise(kSizeNoise));
  contact.angle = static_cast<float>(Noise(kTurnNoise));
  return contact;
}

SensorModel::Capture SensorModel::Expose(const Scene& scene) {
  const double panel = kPanelRawPerMs * (scene.lit ? 1 : kUnlit);
  const double leak = kLeakRawPerMs * std::min(1.0, scene.lux / kFullSunLux);
  const double raw = (panel * Transmission(scene.skin) + leak) * exposure_ms_ + Noise(kRawNoise);
  const double off = (raw - kIdealRaw) / 1000;
  const double quality =
      std::clamp(kBestQuality - kQualityFalloff * off * off + Noise(kQualityNoise), 0.0, 100.0);
  const double chance = Logistic((quality - kMiddleQuality) / kQualitySoftness) *
                        Logistic((scene.coverage_percent - kHalfCoverage) / kCoverageEdge);
  return {
      .raw_mean = static_cast<int32_t>(std::lround(raw)),
      .quality = static_cast<int32_t>(std::lround(quality)),
      .matches = Uniform() < chance,
  };
}

}  // namespace fp_service
