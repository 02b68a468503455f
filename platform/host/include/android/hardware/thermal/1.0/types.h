// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include <hidl/HidlSupport.h>

namespace android::hardware::thermal::V1_0 {

enum class TemperatureType : int32_t {
  UNKNOWN = -1,
  CPU = 0,
  GPU = 1,
  BATTERY = 2,
  SKIN = 3,
};

enum class CoolingType : uint32_t {
  FAN_RPM = 0,
};

enum class ThermalStatusCode : uint32_t {
  SUCCESS = 0,
  FAILURE = 1,
};

// Degrees Celsius; NaN where there is no value.
struct Temperature final {
  TemperatureType type;
  ::android::hardware::hidl_string name;
  float currentValue;
  float throttlingThreshold;
  float shutdownThreshold;
  float vrThrottlingThreshold;
};

struct CoolingDevice final {
  CoolingType type;
  ::android::hardware::hidl_string name;
  float currentValue;
};

struct CpuUsage final {
  ::android::hardware::hidl_string name;
  uint64_t active;
  uint64_t total;
  bool isOnline;
};

struct ThermalStatus final {
  ThermalStatusCode code;
  ::android::hardware::hidl_string debugMessage;
};

static inline bool operator==(const ThermalStatus& lhs, const ThermalStatus& rhs) {
  return lhs.code == rhs.code && lhs.debugMessage == rhs.debugMessage;
}
static inline bool operator!=(const ThermalStatus& lhs, const ThermalStatus& rhs) {
  return !(lhs == rhs);
}

}  // namespace android::hardware::thermal::V1_0
