// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include <hidl/HidlSupport.h>

namespace android::hidl::base::V1_0 {

struct DebugInfo final {
  enum class Architecture : int32_t {
    UNKNOWN = 0,
    IS_64BIT,
    IS_32BIT,
  };

  int32_t pid;
  uint64_t ptr;
  Architecture arch;
};

}  // namespace android::hidl::base::V1_0
