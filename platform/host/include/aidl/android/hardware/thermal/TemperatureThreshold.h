// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <tuple>
#include <vector>

#include <aidl/android/hardware/thermal/TemperatureType.h>

namespace aidl::android::hardware::thermal {

// From where on one sensor counts as throttling, by ThrottlingSeverity: meant to have an element
// for each severity, which nothing enforces. NaN where a severity has none.
class TemperatureThreshold {
 public:
  static const char* descriptor;

  TemperatureType type = TemperatureType(0);
  std::string name;
  std::vector<float> hotThrottlingThresholds;
  std::vector<float> coldThrottlingThresholds;

  inline bool operator==(const TemperatureThreshold& rhs) const {
    return std::tie(type, name, hotThrottlingThresholds, coldThrottlingThresholds) ==
           std::tie(rhs.type, rhs.name, rhs.hotThrottlingThresholds, rhs.coldThrottlingThresholds);
  }
  inline bool operator!=(const TemperatureThreshold& rhs) const { return !(*this == rhs); }
};

}  // namespace aidl::android::hardware::thermal
