// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <tuple>

#include <aidl/android/hardware/thermal/CoolingType.h>

namespace aidl::android::hardware::thermal {

class CoolingDevice {
 public:
  static const char* descriptor;

  CoolingType type = CoolingType(0);
  std::string name;
  int64_t value = 0L;  // how much it throttles: 0 not at all

  inline bool operator==(const CoolingDevice& rhs) const {
    return std::tie(type, name, value) == std::tie(rhs.type, rhs.name, rhs.value);
  }
  inline bool operator!=(const CoolingDevice& rhs) const { return !(*this == rhs); }
};

}  // namespace aidl::android::hardware::thermal
