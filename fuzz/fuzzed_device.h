// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <android/log.h>

#include "fp_host/device.h"

namespace fp_fuzz {

// Boots a simulated device once and discards the log.
inline void BootInMemory() {
  static const fp_host::ScratchDevice device("fp_fuzz");
  __android_log_set_minimum_priority(ANDROID_LOG_SILENT);
}

}  // namespace fp_fuzz
