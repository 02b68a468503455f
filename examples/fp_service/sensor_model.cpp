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

constexpr double kRawNoise = 70;
constexpr double kQualityNoise = 2.5;

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

SensorModel::Capture SensorModel::Touch(Skin skin) {
  const double leak = kLeakRawPerMs * std::min(1.0, lux_ / kFullSunLux);
  const double raw = (kPanelRawPerMs * Transmission(skin) + leak) * exposure_ms_ + Noise(kRawNoise);
  const double off = (raw - kIdealRaw) / 1000;
  const double quality =
      std::clamp(kBestQuality - kQualityFalloff * off * off + Noise(kQualityNoise), 0.0, 100.0);
  const double chance = 1 / (1 + std::exp((kMiddleQuality - quality) / kQualitySoftness));
  return {
      .raw_mean = static_cast<int32_t>(std::lround(raw)),
      .quality = static_cast<int32_t>(std::lround(quality)),
      .coverage_percent = static_cast<float>(std::clamp(88 + Noise(6), 0.0, 100.0)),
      .distance_mm = static_cast<float>(std::abs(Noise(1.2))),
      .matches = Uniform() < chance,
  };
}

}  // namespace fp_service
