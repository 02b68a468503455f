// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/dynamic_exposure.h"

#include <cstdio>
#include <utility>

#include <android-base/properties.h>

#include "common/log.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "DynamicExposure";
constexpr float kUsPerMs = 1000;

// One step changes the exposure base by this divided by the configured denominator.
constexpr float kStepNumerator = 1000;

// The default if the property is unset, malformed or does not fit into 32 bits.
uint32_t Setting(const char* property, uint32_t default_value) {
  return base::GetUintProperty<uint32_t>(property, default_value, 4294967295U);
}

}  // namespace

bool IsDynamicExposureSupported() {
  static const bool supported =
      base::GetBoolProperty("persist.vendor.udfps.dynamic_exposure_supported", false);
  return supported;
}

DynamicExposure& DynamicExposure::GetInstance() {
  static auto* const instance = new DynamicExposure;
  return *instance;
}

DynamicExposure::DynamicExposure()
    : supported(IsDynamicExposureSupported()),
      kNumberOfAttempts(Setting("persist.vendor.udfps.dynamic.exposure.number_of_attempts", 10)),
      kExpoChangeUnitDenominator(
          Setting("persist.vendor.udfps.dynamic.exposure.expo_change_unit_denominator", 60)),
      kFrrThreshold(Setting("persist.vendor.udfps.dynamic.exposure.frr_threshold", 20)),
      kIqThreshold(Setting("persist.vendor.udfps.dynamic.exposure.image_quality_threshold", 28)),
      kHighRawMeanThreshold(
          Setting("persist.vendor.udfps.dynamic.exposure.high_raw_mean_threshold", 2500)),
      kLowRawMeanThreshold(
          Setting("persist.vendor.udfps.dynamic.exposure.low_raw_mean_threshold", 1500)),
      kExpoUpperBoundUs(Setting("persist.vendor.udfps.dynamic.exposure.upper_bound_us", 150000)),
      kExpoLowerBoundUs(Setting("persist.vendor.udfps.dynamic.exposure.lower_bound_us", 10000)) {
  if (supported) {
    stats = std::make_unique<AuthStatsG7>("DynamicExposure", kNumberOfAttempts, false);
    stats->Init();
  }
}

DynamicExposure::~DynamicExposure() = default;

void DynamicExposure::SetExpoChangedCallback(void* context, ExpoChangedCallback callback) {
  expo_changed_context = context;
  expo_changed_callback = callback;
}

void DynamicExposure::UpdateCaliExpo(float cali_expo, float cali_expo_base) {
  FP_LOG_INFO(kTag, "%s: cali_expo:%.3f, cali_expo_base:%.3f", "UpdateCaliExpo", cali_expo,
              cali_expo_base);
  this->cali_expo = cali_expo;
  this->cali_expo_base = cali_expo_base;
  if (step != 0) {
    FP_LOG_INFO(kTag, "%s: recalculate new exposure time", "UpdateCaliExpo");
    AdjustExposure(StepAdjustment::kNone);
  }
}

void DynamicExposure::AdjustExposure(StepAdjustment direction) {
  if (cali_expo == 0 || cali_expo_base == 0) {
    FP_LOG_ERROR(kTag, "[%s] cali_expo is not initialized", "AdjustExposure");
    return;
  }
  if (expo_changed_callback == nullptr) {
    FP_LOG_ERROR(kTag, "[%s] expo changed cb is not registered", "AdjustExposure");
    return;
  }
  const int32_t new_step = step + static_cast<int32_t>(direction);
  const auto denominator = static_cast<float>(kExpoChangeUnitDenominator);
  const float unit = kStepNumerator / denominator;
  const float base = cali_expo_base + static_cast<float>(new_step) * kStepNumerator / denominator;
  const float expo = cali_expo * base / cali_expo_base;
  if (IsBeyondBound(direction, expo)) {
    return;
  }
  step = new_step;
  FP_LOG_INFO(kTag, "[%s] adjustment step:%d, unit:%.3f", "AdjustExposure", step, unit);
  FP_LOG_INFO(kTag, "[%s] cali expo:%.3f, base:%.3f", "AdjustExposure", cali_expo, cali_expo_base);
  FP_LOG_INFO(kTag, "[%s] adjust to expo:%.3f, base:%.3f", "AdjustExposure", expo, base);
  expo_changed_callback(expo_changed_context, expo, base);
  if (stats != nullptr) {
    stats->Reset();  // the next decision uses attempts at the new exposure
  }
}

// Checks only the bound in the direction of the step. An exposure that a new calibration has put
// outside the bounds can therefore step back, and a recalculation (kNone) is never refused.
bool DynamicExposure::IsBeyondBound(StepAdjustment direction, float expo) const {
  const float expo_us = expo * kUsPerMs;
  if (direction == StepAdjustment::kUp && expo_us > static_cast<float>(kExpoUpperBoundUs)) {
    FP_LOG_ERROR(kTag, "[%s] target expo(%.3f) > upper bound(%.3f), skip", "AdjustExposure", expo,
                 static_cast<float>(kExpoUpperBoundUs) / kUsPerMs);
    return true;
  }
  if (direction == StepAdjustment::kDown && expo_us < static_cast<float>(kExpoLowerBoundUs)) {
    FP_LOG_ERROR(kTag, "[%s] target expo(%.3f) < lower bound(%.3f), skip", "AdjustExposure", expo,
                 static_cast<float>(kExpoLowerBoundUs) / kUsPerMs);
    return true;
  }
  return false;
}

void DynamicExposure::FeedAuthAttempt(std::shared_ptr<AuthEventG7> event) {
  if (stats == nullptr) {
    return;
  }
  stats->AddAttempt(std::move(event));
  const bool not_due = stats->GetFrr() <= static_cast<float>(kFrrThreshold) ||
                       stats->GetTotalAttempts() < kNumberOfAttempts;
  const float raw_mean = stats->GetAvgRawmeanDelta();
  const bool too_bright = raw_mean > static_cast<float>(kHighRawMeanThreshold);
  const bool too_dark = raw_mean < static_cast<float>(kLowRawMeanThreshold);
  if (stats->GetAvgIq() >= static_cast<float>(kIqThreshold) || not_due ||
      !(too_bright || too_dark)) {
    return;
  }
  // If the low threshold is configured above the high one, a raw mean between them is both too dark
  // and too bright; the step is then up.
  FP_LOG_INFO(kTag, "[%s] Adjust exposure %s", "FeedAuthAttempt", too_dark ? "UP" : "DOWN");
  AdjustExposure(too_dark ? StepAdjustment::kUp : StepAdjustment::kDown);
}

void DynamicExposure::Dump(int fd) const {
  dprintf(fd, "DynamicExposureSupported:%d\n", supported);
  if (!supported) {
    return;
  }
  dprintf(fd, "DynamicExposure:\n");
  dprintf(fd, "  kNumberOfAttempts: %d\n", kNumberOfAttempts);
  dprintf(fd, "  kExpoChangeUnitDenominator: %d\n", kExpoChangeUnitDenominator);
  dprintf(fd, "  kFrrThreshold: %d\n", kFrrThreshold);
  dprintf(fd, "  kIqThreshold: %d\n", kIqThreshold);
  dprintf(fd, "  kHighRawMeanThreshold: %d\n", kHighRawMeanThreshold);
  dprintf(fd, "  kLowRawMeanThreshold: %d\n", kLowRawMeanThreshold);
  dprintf(fd, "  kExpoUpperBoundUs: %d\n", kExpoUpperBoundUs);
  dprintf(fd, "  kExpoLowerBoundUs: %d\n", kExpoLowerBoundUs);
  dprintf(fd, "  Stats of last %d attempts:\n", stats->GetTotalAttempts());
  dprintf(fd, "    FRR: %.2f%%\n", stats->GetFrr());
  dprintf(fd, "    Avg IQ: %.2f\n", stats->GetAvgIq());
  dprintf(fd, "    Avg raw mean: %.2f\n", stats->GetAvgRawmeanDelta());
  dprintf(fd, "  \n");
}

}  // namespace android::fp_utils
