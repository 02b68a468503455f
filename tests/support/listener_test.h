// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "fp_host/testing.h"
#include "fp_utils/als_monitor.h"
#include "fp_utils/sensor_listener.h"

namespace fp_test {

constexpr auto kLight = android::fp_utils::SensorListener::kLight;
constexpr auto kLongPress = android::fp_utils::SensorListener::kLongPress;

// Whether the worker of the only listener waits for events and none are queued.
inline bool IsWorkerIdle() { return fp_host::ArePollersWaiting(1); }

// A listener whose callbacks count events, beside the process's light monitor.
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

  static android::fp_utils::AlsMonitor& Monitor() {
    return *android::fp_utils::AlsMonitor::GetInstance();
  }

  // Expects that listener and monitor work with a working service.
  void ExpectRecovery() {
    EXPECT_EQ(0, listener_->StartSampling(kLight));
    EXPECT_EQ(0, listener_->StartSampling(kLongPress));
    EXPECT_EQ(0, Monitor().StartSampling());
    const int lights = lights_, long_presses = long_presses_;
    fp_host::ReportLux(7);
    EXPECT_TRUE(fp_host::Eventually([=, this] { return lights_ > lights; }));
    fp_host::ReportLongPress();
    EXPECT_TRUE(fp_host::Eventually([=, this] { return long_presses_ > long_presses; }));
    float lux = 0;
    EXPECT_EQ(0, Monitor().GetLight(&lux));
    EXPECT_EQ(7, lux);
  }

  std::function<void()> on_light_;
  std::atomic<float> last_lux_ = 0;
  std::atomic<int> lights_ = 0;
  std::atomic<int> long_presses_ = 0;
  std::unique_ptr<android::fp_utils::SensorListener> listener_;  // last: its worker uses the others
};

}  // namespace fp_test
