// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "fp_host/device.h"

namespace fp_bench {

// Boots a simulated device in memory, so that no benchmark includes the cost of a disk, and removes
// it at exit. Returns its root.
inline const std::string& DeviceInMemory() {
  static const fp_host::ScratchDevice device("fp_bench");
  return device.GetRoot();
}

}  // namespace fp_bench
