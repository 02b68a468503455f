// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>

#include "fp_utils/auth_stats.h"
#include "fp_utils/export.h"

namespace android::fp_utils {

// Whether the property persist.vendor.udfps.dynamic_exposure_supported is true. Read at the first
// call only; the result holds for the life of the process.
FP_UTILS_EXPORT bool IsDynamicExposureSupported();

// Direction of an exposure step. kNone recalculates the exposure without a step.
enum class StepAdjustment : int32_t { kDown = -1, kNone = 0, kUp = 1 };

// Adjusts the sensor's exposure time to the outcomes of recent attempts. If the sample is full,
// too many of its attempts were rejected and their images were poor, then a bright raw mean
// shortens the exposure and a dark one lengthens it.
//
// Threading:  no lock; call every operation from one thread. The callback runs on it.
// Ownership:  owns its sample of attempts; the caller keeps ownership of the callback's context.
// Errors:     logged; exposure and step count do not change.
// Units:      exposure in milliseconds, bounds in microseconds; the base in the unit of the
//             sensor's calibration.
class FP_UTILS_EXPORT DynamicExposure {
 public:
  // Receives the context, the new exposure and the new exposure base.
  using ExpoChangedCallback = void (*)(void* context, float expo, float base);

  // The process-wide instance, created on first use and never destroyed.
  static DynamicExposure& GetInstance();

  // Reads the properties. Services use GetInstance(); other objects are for simulations.
  DynamicExposure();
  ~DynamicExposure();
  DynamicExposure(const DynamicExposure&) = delete;
  DynamicExposure& operator=(const DynamicExposure&) = delete;

  void SetExpoChangedCallback(void* context, ExpoChangedCallback callback);

  // Stores the calibrated exposure and base, and applies the steps made so far to them, even if the
  // result is outside the bounds.
  void UpdateCaliExpo(float cali_expo, float cali_expo_base);

  // Makes one step and empties the sample. Refuses a step beyond the bound in its direction; the
  // exposure, the step count and the sample then stay unchanged.
  void AdjustExposure(StepAdjustment step);

  // Adds an attempt to the sample and adjusts the exposure if needed. Does nothing if dynamic
  // exposure is not supported.
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
  const uint32_t kFrrThreshold;               // percent; steps are made above it
  const uint32_t kIqThreshold;                // average image quality; steps are made below it
  const uint32_t kHighRawMeanThreshold;
  const uint32_t kLowRawMeanThreshold;
  const uint32_t kExpoUpperBoundUs;
  const uint32_t kExpoLowerBoundUs;

  float cali_expo = 0;       // 0: not calibrated
  float cali_expo_base = 0;  // 0: not calibrated
  int32_t step = 0;          // sum of all steps; kept across calibrations

  ExpoChangedCallback expo_changed_callback = nullptr;
  void* expo_changed_context = nullptr;  // Not owned.
  std::unique_ptr<AuthStatsG7> stats;    // the sample; null if not supported
};

}  // namespace android::fp_utils
