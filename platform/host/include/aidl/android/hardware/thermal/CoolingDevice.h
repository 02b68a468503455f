// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include <aidl/android/hardware/thermal/CoolingType.h>

namespace aidl::android::hardware::thermal {

class CoolingDevice {
 public:
  CoolingType type = CoolingType(0);
  std::string name;
  int64_t value = 0L;  // how much it throttles: 0 not at all
};

}  // namespace aidl::android::hardware::thermal
