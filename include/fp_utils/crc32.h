// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "fp_utils/export.h"

namespace android::fp_utils {

// CRC-32 of ISO-HDLC (IEEE 802.3): reflected polynomial 0xEDB88320, register preset to all ones,
// result complemented. Protects the record texts of the backup files.
//
// `length` is in bytes; a length of 0 returns 0 without reading `data`.
// Threading:  safe from any thread.
[[nodiscard]] FP_UTILS_EXPORT uint32_t crc32(const void* data, unsigned long length);

}  // namespace android::fp_utils
