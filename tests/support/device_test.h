// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

#include "control/device.h"
#include "control/faults.h"
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

// What `dump` writes to the descriptor that it is given.
std::string DumpText(const std::function<void(int fd)>& dump);

// How much work a long test does: `full` by default, less where FP_TEST_SHARE (a fraction) says so,
// as under a sanitizer, more in the long checks. At least 1.
int Share(int full);

// Runs `run` with as many seeds, the first one and those after it, until a test fails. FP_TEST_SEED
// in the environment, which failures name, goes before `first`.
void RunSeeded(const char* what, int count, uint64_t first,
               const std::function<void(uint64_t seed)>& run);

}  // namespace fp_test
