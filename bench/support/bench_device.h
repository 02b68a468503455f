// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace fp_bench {

// Boots a simulated device in memory, so that files cost what the file system's code costs and no
// disk; removed at exit. Returns its root.
const std::string& DeviceInMemory();

}  // namespace fp_bench
