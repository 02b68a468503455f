// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>

#include "fp_utils/auth_stats.h"
#include "fp_utils/export.h"

namespace android::fp_utils {

// Whether the property persist.vendor.udfps.dynamic_exposure_supported was true when first asked;
// the answer holds for the life of the process.
FP_UTILS_EXPORT bool IsDynamicExposureSupported();

// Direction of an exposure step. kNone applies the steps made so far to a new calibration.
enum class StepAdjustment : int32_t { kDown = -1, kNone = 0, kUp = 1 };

// Steps the sensor's exposure time up or down from the outcomes of recent attempts: when the
// sample is full, too many attempts were rejected and their images were poor, a bright raw mean
// shortens the exposure and a dark one lengthens it.
//
// Threading:  no lock; the service calls everything from one thread. The callback runs on it.
// Ownership:  owns its sample of attempts; the callback's context stays the caller's.
// Errors:     logged; exposure and step stay as they were.
// Units:      exposure in milliseconds, bounds in microseconds; the base in the unit of the
//             sensor's calibration.
class FP_UTILS_EXPORT DynamicExposure {
 public:
  // Receives the context, the new exposure and the new exposure base.
  using ExpoChangedCallback = void (*)(void* context, float expo, float base);

  // The instance of the process, made on first use and never destroyed.
  static DynamicExposure& GetInstance();

  // Reads the properties, once. The service uses GetInstance(); own objects are for simulations.
  DynamicExposure();
  ~DynamicExposure();
  DynamicExposure(const DynamicExposure&) = delete;
  DynamicExposure& operator=(const DynamicExposure&) = delete;

  void SetExpoChangedCallback(void* context, ExpoChangedCallback callback);

  // Stores the calibrated exposure and base. Steps already made are applied to them at once, even
  // if the result lies outside the bounds.
  void UpdateCaliExpo(float cali_expo, float cali_expo_base);

  // Makes one step and empties the sample. A step beyond the bound in its direction is refused:
  // the exposure, the step count and the sample stay.
  void AdjustExposure(StepAdjustment step);

  // Adds an attempt to the sample and adjusts the exposure if the sample calls for it. Does nothing
  // where dynamic exposure is not supported.
  void FeedAuthAttempt(std::shared_ptr<AuthEventG7> event);

  // Writes settings and sample to `fd`, which stays open.
  void Dump(int fd) const;

  bool IsSupported() const { return supported; }
  int32_t GetStep() const { return step; }
  float GetCaliExpo() const { return cali_expo; }
  float GetCaliExpoBase() const { return cali_expo_base; }

 private:
  bool IsBeyondBound(StepAdjustment direction, float expo) const;

  // Constant after construction.
  const bool supported;
  const uint32_t kNumberOfAttempts;           // size of the sample
  const uint32_t kExpoChangeUnitDenominator;  // a step moves the base by 1000 / this
  const uint32_t kFrrThreshold;               // percent, to be exceeded
  const uint32_t kIqThreshold;                // average image quality, to be fallen short of
  const uint32_t kHighRawMeanThreshold;
  const uint32_t kLowRawMeanThreshold;
  const uint32_t kExpoUpperBoundUs;
  const uint32_t kExpoLowerBoundUs;

  float cali_expo = 0;       // 0: not yet known
  float cali_expo_base = 0;  // 0: not yet known
  int32_t step = 0;          // sum of all steps, kept across calibrations

  ExpoChangedCallback expo_changed_callback = nullptr;
  void* expo_changed_context = nullptr;  // Not owned.
  std::unique_ptr<AuthStatsG7> stats;    // the sample; only where supported
};

}  // namespace android::fp_utils
