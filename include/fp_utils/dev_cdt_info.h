// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "fp_utils/export.h"

namespace android::fp_utils {

// The board's identity, read once from the device tree that the boot loader publishes in
// /sys/firmware/devicetree/base/chosen/plat.
//
// Threading:  constant after construction.
// Blocking:   the first GetInstance() reads six small files.
// Errors:     logged; an item that cannot be read is 0.
class FP_UTILS_EXPORT DevCdtInfo {
 public:
  // The instance of the process, made on first use and never destroyed.
  static DevCdtInfo& GetInstance();

  DevCdtInfo();
  DevCdtInfo(const DevCdtInfo&) = delete;
  DevCdtInfo& operator=(const DevCdtInfo&) = delete;

  // The value of one item, not null: the first four bytes of its file, big-endian; bytes that are
  // not there count as 0. Each call keeps a descriptor open for the life of the process.
  uint32_t GetDevCdtInfoItem(char const* item);

  // Read in this order.
  const uint32_t platform;
  const uint32_t product;
  const uint32_t stage;
  const uint32_t major;
  const uint32_t minor;
  const uint32_t variant;
};

}  // namespace android::fp_utils
