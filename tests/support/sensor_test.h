// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "control/sensor_service.h"
#include "fp_utils/sensor_listener.h"
#include "support/log_recorder.h"
#include "support/recorder.h"

namespace fp_test {

constexpr auto kLight = android::fp_utils::SensorListener::kLight;
constexpr auto kLongPress = android::fp_utils::SensorListener::kLongPress;

using Texts = std::vector<std::string>;

// Runs `action` on a thread of its own and ends the process if it does not come back. `what` is
// named with its failures.
void RunBounded(const std::string& what, const std::function<void()>& action);

// The worker of the one listener waits for events and has none.
inline bool IsWorkerIdle() { return fp_host::ArePollersIdle(1); }

// Ends all faults and hooks, and restarts the sensor service.
void RepairSensorService();

// Holds up whoever passes until it is opened.
class Gate {
 public:
  void Pass();
  bool AwaitArrival() const;
  bool HasArrived() const;
  void Open();

 private:
  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  bool arrived_ = false;
  bool open_ = false;
};

// A sensor service in its first state, with the record of platform calls on.
class SensorTest : public ::testing::Test {
 protected:
  SensorTest() { fp_host::RecordSensorCalls(true); }

  // The calls since the last TakeCalls(): those of this thread, and those of all others. Repeated
  // wakes are one: how many it takes is a matter of scheduling.
  void TakeCalls();
  const Texts& Others() const { return others_; }
  Texts MyCalls();

 private:
  Texts mine_, others_;
};

}  // namespace fp_test
