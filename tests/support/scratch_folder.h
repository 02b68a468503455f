// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace fp_test {

// A new folder of the caller's own, in memory where the machine has a place for that: what tests
// write again and again needs no disk.
inline std::filesystem::path MakeScratchFolder(const std::string& name) {
  const std::filesystem::path memory = "/dev/shm";
  const bool has_memory = access(memory.c_str(), W_OK) == 0;
  std::string pattern =
      (has_memory ? memory : std::filesystem::temp_directory_path()) / (name + ".XXXXXX");
  if (mkdtemp(pattern.data()) == nullptr) {
    abort();
  }
  return pattern;
}

}  // namespace fp_test
