// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "fp_host/testing.h"
#include "fp_utils/sensor_listener.h"
#include "support/sensor_clients.h"

namespace fp_test {

// A listener whose callbacks count events.
class ListenerTest : public fp_host::SensorTest {
 protected:
  ListenerTest() { Create(); }

  void Create() {
    listener_ = std::make_unique<android::fp_utils::SensorListener>();
    listener_->light_sensor_callback_ = [this](const ASensorEvent& event) {
      last_lux_ = event.light;
      ++lights_;
      if (on_light_) {
        on_light_();
      }
    };
    listener_->long_press_sensor_callback_ = [this](const ASensorEvent&) { ++long_presses_; };
  }

  // Starts sampling light. The worker is in its first poll, and the calls and log lines are taken.
  void StartQuietly() {
    EXPECT_EQ(0, listener_->StartSampling(kLight));
    EXPECT_TRUE(fp_host::Eventually(IsWorkerIdle));
    TakeCalls();
    fp_host::TakeLog();
  }

  bool AwaitLights(int count) {
    return fp_host::Eventually([=, this] { return lights_ == count; });
  }

  // Restarts the system server while the worker is idle, and tells the listener.
  void RestartSystemServer() {
    EXPECT_TRUE(fp_host::Eventually(IsWorkerIdle));
    fp_host::RestartSensorService();
    listener_->OnSystemServerDeath();
  }

  std::function<void()> on_light_;
  std::atomic<float> last_lux_ = 0;
  std::atomic<int> lights_ = 0;
  std::atomic<int> long_presses_ = 0;
  std::unique_ptr<android::fp_utils::SensorListener> listener_;  // last: its worker uses the others
};

}  // namespace fp_test
