// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include <android/hardware/thermal/1.0/types.h>
#include <hidl/HidlSupport.h>

namespace android::hardware::thermal::V2_0 {

enum class TemperatureType : int32_t {
  UNKNOWN = -1,
  CPU = 0,
  GPU = 1,
  BATTERY = 2,
  SKIN = 3,
  USB_PORT = 4,
  POWER_AMPLIFIER = 5,
  BCL_VOLTAGE = 6,
  BCL_CURRENT = 7,
  BCL_PERCENTAGE = 8,
  NPU = 9,
};

enum class CoolingType : uint32_t {
  FAN = 0,
  BATTERY = 1,
  CPU = 2,
  GPU = 3,
  MODEM = 4,
  NPU = 5,
  COMPONENT = 6,
};

enum class ThrottlingSeverity : uint32_t {
  NONE = 0,
  LIGHT = 1,
  MODERATE = 2,
  SEVERE = 3,
  CRITICAL = 4,
  EMERGENCY = 5,
  SHUTDOWN = 6,
};

// The temperatures from which a sensor has each ThrottlingSeverity; NaN if a severity has no
// threshold.
struct TemperatureThreshold final {
  TemperatureType type;
  ::android::hardware::hidl_string name;
  ::android::hardware::hidl_array<float, 7> hotThrottlingThresholds;
  ::android::hardware::hidl_array<float, 7> coldThrottlingThresholds;
  float vrThrottlingThreshold;
};

// Degrees Celsius, or for the kinds BCL_* millivolts, milliamperes or percent.
struct Temperature final {
  TemperatureType type;
  ::android::hardware::hidl_string name;
  float value;
  ThrottlingSeverity throttlingStatus;
};

struct CoolingDevice final {
  CoolingType type;
  ::android::hardware::hidl_string name;
  uint64_t value;
};

}  // namespace android::hardware::thermal::V2_0
