// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "fp_host/testing.h"
#include "fp_host/touch_node.h"
#include "fp_utils/fps_touch_handler.h"

namespace fp_test {

constexpr android::fp_utils::FpsTouchHandler::TouchConfig kSensingArea = {
    .left = 1, .top = 2, .right = 30, .bottom = 40};

// Compares floats by their bits.
bool Same(const android::fp_utils::TouchEvent& a, const android::fp_utils::TouchEvent& b);

// Decodes a record independently of the library.
android::fp_utils::TouchEvent Decoded(const fp_host::TouchRecord& record, uint32_t factor);

// A handler with a simulated touch device.
class TouchTest : public fp_host::DeviceTest {
 protected:
  using TouchEvent = android::fp_utils::TouchEvent;

  ~TouchTest() override { handler_.Stop(); }

  static void SetFactor(const std::string& factor);

  // Configures and starts the handler, and takes its log and requests.
  void Run() {
    Run([this](const TouchEvent& event) { events_.Add(event); });
  }
  void Run(std::function<void(const TouchEvent&)> callback);

  fp_host::TouchNode node_;
  fp_host::Recorder<TouchEvent> events_;
  android::fp_utils::FpsTouchHandler handler_;
};

}  // namespace fp_test
