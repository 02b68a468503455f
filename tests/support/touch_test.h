// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <utility>

#include "fp_host/testing.h"
#include "fp_host/touch_node.h"
#include "fp_utils/fps_touch_handler.h"

namespace fp_test {

constexpr android::fp_utils::FpsTouchHandler::TouchConfig kSensingArea = {
    .left = 1, .top = 2, .right = 30, .bottom = 40};

// A handler with a simulated touch device.
class TouchTest : public fp_host::DeviceTest {
 protected:
  using TouchEvent = android::fp_utils::TouchEvent;

  ~TouchTest() override { handler_.Stop(); }

  // Configures and starts the handler, and takes its log and requests.
  void Run() {
    Run([this](const TouchEvent& event) { events_.Add(event); });
  }
  void Run(std::function<void(const TouchEvent&)> callback) {
    handler_.touch_event_callback_ = std::move(callback);
    ASSERT_TRUE(handler_.Configure(kSensingArea));
    ASSERT_TRUE(handler_.Start());
    ASSERT_TRUE(fp_host::Eventually(
        [] { return fp_host::CountLinesWith(fp_host::TakeLog(), "threadLoop starting") == 1; }));
    node_.TakeRequests();
  }

  fp_host::TouchNode node_;
  fp_host::Recorder<TouchEvent> events_;
  android::fp_utils::FpsTouchHandler handler_;
};

}  // namespace fp_test
