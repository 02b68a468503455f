// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <memory>

#include "fp_utils/als_monitor.h"
#include "fp_utils/sensor_listener.h"

namespace fp_test {

// The clients of the sensor service, as the fingerprint service has them.
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

  // The fingerprint service has learnt that the system server died, and tells the listener; the
  // monitor finds out by itself.
  void HearOfDeath();

  // With a healthy service, everything works.
  void ExpectRecovery();

 private:
  float lux_ = 0;
  std::atomic<int> lights_ = 0;
  std::atomic<int> long_presses_ = 0;
  std::unique_ptr<android::fp_utils::SensorListener> listener_;  // last: its worker uses the others
};

}  // namespace fp_test
