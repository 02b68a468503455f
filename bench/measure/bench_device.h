// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "control/device.h"

namespace fp_bench {

// Boots a simulated device in memory, so that files cost what the file system's code costs and no
// disk; removed at exit. Returns its root.
inline const std::string& DeviceInMemory() {
  static const fp_host::ScratchDevice device("fp_bench");
  return device.GetRoot();
}

}  // namespace fp_bench
