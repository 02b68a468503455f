// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>

namespace fp_test {

// Open file descriptors and threads of this process.
inline long CountDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}
inline long CountThreads() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

}  // namespace fp_test
