// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace aidl::android::hardware::thermal {

enum class ThrottlingSeverity : int32_t {
  NONE = 0,
  LIGHT = 1,
  MODERATE = 2,
  SEVERE = 3,
  CRITICAL = 4,
  EMERGENCY = 5,
  SHUTDOWN = 6,
};

}  // namespace aidl::android::hardware::thermal
