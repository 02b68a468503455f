// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>

namespace fp_test {

// What this process holds at the moment.
inline long CountDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}
inline long CountThreads() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

}  // namespace fp_test
