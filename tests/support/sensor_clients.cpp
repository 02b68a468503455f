// SPDX-License-Identifier: Apache-2.0
#include "support/sensor_clients.h"

#include <gtest/gtest.h>

#include "fp_host/sensor_service.h"
#include "fp_host/testing.h"

namespace fp_test {

using android::fp_utils::AlsMonitor;
using android::fp_utils::SensorListener;

void SensorClients::CreateListener() {
  listener_ = std::make_unique<SensorListener>();
  listener_->light_sensor_callback_ = [this](const ASensorEvent&) { ++lights_; };
  listener_->long_press_sensor_callback_ = [this](const ASensorEvent&) { ++long_presses_; };
}

AlsMonitor& SensorClients::Monitor() { return *AlsMonitor::GetInstance(); }

void SensorClients::HearOfDeath() {
  if (listener_ == nullptr) {
    CreateListener();
  }
  listener_->OnSystemServerDeath();
}

void SensorClients::ExpectRecovery() {
  EXPECT_EQ(0, Listener().StartSampling(SensorListener::kLight));
  EXPECT_EQ(0, Listener().StartSampling(SensorListener::kLongPress));
  EXPECT_EQ(0, Monitor().StartSampling());
  const int lights = lights_, long_presses = long_presses_;
  fp_host::ReportLux(7);
  EXPECT_TRUE(fp_host::Eventually([=, this] { return lights_ > lights; }));
  fp_host::ReportLongPress();
  EXPECT_TRUE(fp_host::Eventually([=, this] { return long_presses_ > long_presses; }));
  EXPECT_EQ(0, ReadMonitor());
  EXPECT_EQ(7, LastRead());
}

}  // namespace fp_test
