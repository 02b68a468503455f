// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include <aidl/android/hardware/thermal/TemperatureType.h>

namespace aidl::android::hardware::thermal {

// The temperatures from which one sensor has each ThrottlingSeverity. There should be an element
// for each severity, but nothing enforces that. NaN if a severity has no threshold.
class TemperatureThreshold {
 public:
  TemperatureType type = TemperatureType(0);
  std::string name;
  std::vector<float> hotThrottlingThresholds;
  std::vector<float> coldThrottlingThresholds;
};

}  // namespace aidl::android::hardware::thermal
