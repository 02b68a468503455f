// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include <aidl/android/hardware/thermal/TemperatureType.h>

namespace aidl::android::hardware::thermal {

// From where on one sensor counts as throttling, by ThrottlingSeverity: meant to have an element
// for each severity, which nothing enforces. NaN where a severity has none.
class TemperatureThreshold {
 public:
  TemperatureType type = TemperatureType(0);
  std::string name;
  std::vector<float> hotThrottlingThresholds;
  std::vector<float> coldThrottlingThresholds;
};

}  // namespace aidl::android::hardware::thermal
