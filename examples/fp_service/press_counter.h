// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <mutex>

#include "fp_utils/sensor_listener.h"

namespace fp_service {

// Counts the long presses on the sensor that the sensor framework reports.
class PressCounter {
 public:
  PressCounter();

  int Get();
  void SystemServerDied();
  // Waits up to a second for the `count`-th press.
  void WaitFor(int count);

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int count_ = 0;
  android::fp_utils::SensorListener listener_;  // last, so that it is destroyed first
};

}  // namespace fp_service
