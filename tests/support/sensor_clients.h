// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <memory>

#include "fp_host/sensor_service.h"
#include "fp_utils/als_monitor.h"
#include "fp_utils/sensor_listener.h"

namespace fp_test {

constexpr auto kLight = android::fp_utils::SensorListener::kLight;
constexpr auto kLongPress = android::fp_utils::SensorListener::kLongPress;

// Whether the worker of the only listener waits for events and none are queued.
inline bool IsWorkerIdle() { return fp_host::ArePollersWaiting(1); }

// Both clients of the sensor service, as in a fingerprint service.
class SensorClients {
 public:
  SensorClients() { CreateListener(); }

  void CreateListener();
  void DestroyListener() { listener_.reset(); }
  android::fp_utils::SensorListener& Listener() { return *listener_; }
  bool IsListening() const { return listener_ != nullptr && listener_->IsAnySamplerStarted(); }

  static android::fp_utils::AlsMonitor& Monitor();
  int ReadMonitor() { return Monitor().GetLight(&lux_); }
  float LastRead() const { return lux_; }

  // Tells the listener of the system server's death. The monitor notices by itself.
  void HearOfDeath();

  // Expects that both clients work with a working service.
  void ExpectRecovery();

 private:
  float lux_ = 0;
  std::atomic<int> lights_ = 0;
  std::atomic<int> long_presses_ = 0;
  std::unique_ptr<android::fp_utils::SensorListener> listener_;  // last: its worker uses the others
};

}  // namespace fp_test
