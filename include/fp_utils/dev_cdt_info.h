// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "fp_utils/export.h"

namespace android::fp_utils {

// The identity of the board. The boot loader publishes it in the device tree, below
// /sys/firmware/devicetree/base/chosen/plat; the constructor reads it once.
//
// Threading:  constant after construction.
// Blocking:   construction, and so the first GetInstance(), reads six small files.
// Errors:     a failure is logged; an item that cannot be read is 0.
class FP_UTILS_EXPORT DevCdtInfo {
 public:
  // The process-wide instance, created on first use.
  static DevCdtInfo& GetInstance();

  DevCdtInfo();
  DevCdtInfo(const DevCdtInfo&) = delete;
  DevCdtInfo& operator=(const DevCdtInfo&) = delete;

  // Returns the value of an item: the first four bytes of its file, big-endian, where missing bytes
  // count as 0. `item` must not be null. Each call that opens the file leaves its descriptor open.
  [[nodiscard]] uint32_t GetDevCdtInfoItem(const char* item);

  const uint32_t platform;
  const uint32_t product;
  const uint32_t stage;
  const uint32_t major;
  const uint32_t minor;
  const uint32_t variant;
};

}  // namespace android::fp_utils
