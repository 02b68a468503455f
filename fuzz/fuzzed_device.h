// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include <android/log.h>

#include "control/device.h"
#include "support/scratch_folder.h"

namespace fp_fuzz {

// A simulated device in memory, made once and removed at exit, and a log that nobody reads.
inline void BootInMemory() {
  static const std::string root = [] {
    std::string folder = fp_test::MakeScratchFolder("fp_fuzz");
    fp_host::SetDeviceRoot(folder);
    fp_host::BootDevice();
    __android_log_set_minimum_priority(ANDROID_LOG_SILENT);
    return folder;
  }();
  static const int registered = atexit([] { std::filesystem::remove_all(root); });
  (void)registered;
}

}  // namespace fp_fuzz
