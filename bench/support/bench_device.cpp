// SPDX-License-Identifier: Apache-2.0
#include "support/bench_device.h"

#include <cstdlib>
#include <filesystem>

#include "control/device.h"

namespace fp_bench {
namespace {

std::string root;

}  // namespace

const std::string& DeviceInMemory() {
  if (root.empty()) {
    std::string pattern = "/dev/shm/fp_bench.XXXXXX";
    root = mkdtemp(pattern.data());
    fp_host::SetDeviceRoot(root);
    fp_host::BootDevice();
    atexit([] { std::filesystem::remove_all(root); });
  }
  return root;
}

}  // namespace fp_bench
