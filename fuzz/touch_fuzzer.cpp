// SPDX-License-Identifier: Apache-2.0
//
// Decodes arbitrary content as a buffer of reports from the touch device.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "fp_host/touch_node.h"
#include "fp_utils/fps_touch_handler.h"
#include "fuzzed_device.h"

using namespace android::fp_utils;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fp_fuzz::BootInMemory();
  static auto* const node = new fp_host::TouchNode;
  static auto* const handler = [] {
    auto* fresh = new FpsTouchHandler;
    fresh->touch_event_callback_ = [](const TouchEvent& event) {
      for (const float coordinate : event.coords) {
        if (!std::isfinite(coordinate)) {
          abort();
        }
      }
      if (event.type < -1 || event.type > 2) {
        abort();
      }
    };
    fresh->Configure({.left = 0, .top = 0, .right = 1, .bottom = 1});
    return fresh;
  }();
  if (size > 0 && node->TryPushBytes(std::string(reinterpret_cast<const char*>(data), size))) {
    handler->ReadTouchEvent();
  }
  return 0;
}
