// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include <aidl/android/hardware/thermal/TemperatureType.h>
#include <aidl/android/hardware/thermal/ThrottlingSeverity.h>

namespace aidl::android::hardware::thermal {

// One sensor's reading: degrees Celsius, or for the kinds BCL_* millivolts, milliamperes or
// percent. NaN where there is no reading.
class Temperature {
 public:
  TemperatureType type = TemperatureType(0);
  std::string name;
  float value = 0.0f;
  ThrottlingSeverity throttlingStatus = ThrottlingSeverity(0);
};

}  // namespace aidl::android::hardware::thermal
