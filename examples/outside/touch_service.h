// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <utility>

#include "fp_utils/display_controller.h"
#include "fp_utils/fps_touch_handler.h"

// Lights the sensor and reads an image at each touch.
class TouchService {
 public:
  explicit TouchService(std::function<void()> read_image) : read_image_(std::move(read_image)) {}
  ~TouchService() { touch_.Stop(); }

  bool Start() {
    touch_.touch_event_callback_ = [this](const auto& event) { OnTouch(event); };
    return touch_.Configure({.left = 440, .top = 1800, .right = 640, .bottom = 2000}) &&
           touch_.Start();
  }

 private:
  void OnTouch(const android::fp_utils::TouchEvent& event) {
    // Type 0 is a finger that comes down.
    if (event.type == 0 && light_.SetLhbm(true, nullptr) == 0) {
      read_image_();
      light_.SetLhbm(false, nullptr);
    }
  }

  const std::function<void()> read_image_;
  android::fp_utils::DisplayController light_;
  android::fp_utils::FpsTouchHandler touch_;
};
