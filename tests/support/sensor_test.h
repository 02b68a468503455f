// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include "fp_host/sensor_service.h"
#include "fp_utils/sensor_listener.h"
#include "support/log_recorder.h"
#include "support/recorder.h"

namespace fp_test {

constexpr auto kLight = android::fp_utils::SensorListener::kLight;
constexpr auto kLongPress = android::fp_utils::SensorListener::kLongPress;

using Texts = std::vector<std::string>;

// Runs `action` on a thread of its own and aborts if it does not return. Its failures name `what`.
void RunBounded(const std::string& what, const std::function<void()>& action);

// Whether the worker of the only listener waits for events and none are queued.
inline bool IsWorkerIdle() { return fp_host::ArePollersIdle(1); }

// Removes all faults and hooks, and restarts the sensor service.
void RepairSensorService();

// Holds threads at Pass() until it is opened, within the bound of Eventually().
class Gate {
 public:
  void Pass() {
    arrived_ = true;
    Eventually([this] { return open_.load(); });
  }
  bool HasArrived() const { return arrived_; }
  bool AwaitArrival() const {
    return Eventually([this] { return HasArrived(); });
  }
  void Open() { open_ = true; }

 private:
  std::atomic<bool> arrived_ = false;
  std::atomic<bool> open_ = false;
};

// Records the calls to a new sensor service.
class SensorTest : public ::testing::Test {
 protected:
  SensorTest() { fp_host::RecordSensorCalls(true); }

  // Takes the calls since the last time: MyCalls() are those of this thread, Others() those of all
  // other threads. Repeated wakes count as one, since their number depends on scheduling.
  void TakeCalls();
  const Texts& Others() const { return others_; }
  Texts MyCalls();

 private:
  Texts mine_, others_;
};

}  // namespace fp_test
