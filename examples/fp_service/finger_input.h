// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <optional>
#include <string>

#include "fp_utils/finger_state.h"
#include "fp_utils/fp_state_tracker.h"
#include "fp_utils/fps_touch_handler.h"
#include "fp_utils/shapes.h"

namespace fp_service {

// The purpose of a touch. Each value is the pipeline state while a finger is down for it.
enum class Purpose : uint32_t { kEnroll = 0x101, kAuthenticate = 0x201 };

// Turns touch reports into finger state and pipeline state, on the handler's worker. The service's
// thread waits for them.
class FingerInput {
 public:
  struct Touch {
    android::fp_utils::Ellipse contact;
    bool lptw;
  };

  FingerInput();
  ~FingerInput();
  FingerInput(const FingerInput&) = delete;
  FingerInput& operator=(const FingerInput&) = delete;

  // Sets the purpose of the next touch. After one that unlocks the device, LPTW is enabled.
  void SetPurpose(Purpose purpose) { purpose_ = purpose; }

  // Waits up to a second for a finger. Returns nothing on a device that does not report touches.
  std::optional<Touch> WaitForFinger();

  // Reports that the sensor has captured its image.
  void ImageCaptured();

  void WaitForLift();

  // The time of the last finger down, as the tracker formats it.
  std::string GetDownTime();

 private:
  void HandleTouch(const android::fp_utils::TouchEvent& event);
  bool WaitFor(uint32_t state);

  android::fp_utils::FpsTouchHandler& handler_;
  android::fp_utils::FpStateTracker& tracker_;
  android::fp_utils::FingerState finger_;
  std::atomic<Purpose> purpose_ = Purpose::kAuthenticate;
  bool is_running_ = false;
};

}  // namespace fp_service
