// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

#include "fp_host/device.h"
#include "fp_host/faults.h"
#include "support/log_recorder.h"

namespace fp_test {

// A freshly booted simulated device for each test; paths are the device's.
class DeviceTest : public ::testing::Test {
 protected:
  ~DeviceTest() override;

  static bool Exists(const std::string& path);
  static std::string ReadFile(const std::string& path);
  static void WriteFile(const std::string& path, const std::string& content);
  static void Remove(const std::string& path);
  static unsigned ModeOf(const std::string& path);

  const fp_host::ScratchDevice device_{"fp_device"};
};

// Returns what `dump` writes to `fd`.
std::string DumpText(const std::function<void(int fd)>& dump);

// `full` times FP_TEST_SHARE of the environment (1 if unset), but at least 1. The sanitizer lanes
// set less than 1 to keep random tests short.
int Share(int full);

// Runs `run` with `count` consecutive seeds until a test fails. FP_TEST_SEED of the environment
// replaces `first`; failures print the value that repeats them.
void RunSeeded(const char* what, int count, uint64_t first,
               const std::function<void(uint64_t seed)>& run);

}  // namespace fp_test
