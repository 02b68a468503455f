// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/finger_state.h"

#include <utils/SystemClock.h>

#include "common/log.h"
#include "fp_utils/fps_touch_handler.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "FingerState";

}  // namespace

FingerState::FingerState() = default;

FingerState::~FingerState() = default;

bool FingerState::Set(bool down, long time, const Ellipse& contact, bool lptw) {
  const std::lock_guard lock(mutex_);
  const bool was_down = is_down_;
  if (!down && !was_down) {
    FP_LOG_DEBUG(kTag, "%s: ignore redundant finger up", "Set");
    return false;
  }
  is_down_ = down;
  if (down && !was_down) {
    RecordDown(time, lptw);
  } else if (!down) {
    RecordUp();
  }
  ellipse_ = down ? contact : Ellipse();
  return true;
}

void FingerState::RecordDown(int64_t time, bool lptw) {
  lptw_requested_ = lptw;
  const int64_t now = uptimeMillis();
  down_time_ = time;
  down_uptime_ = now;
  up_uptime_ = 0;
  // A time in the future wraps around to a large latency.
  down_latency_ms_ = time > 0 ? static_cast<uint32_t>(now - time) : 0;
  if (lptw) {
    FpsTouchHandler::GetInstance().EnableLptwEventReport(true);
    lptw_enabled_ = true;
  }
}

void FingerState::RecordUp() {
  up_uptime_ = uptimeMillis();
  if (lptw_enabled_) {
    FpsTouchHandler::GetInstance().EnableLptwEventReport(false);
    lptw_enabled_ = false;
  }
  // Cleared at every up, also without LPTW: the last event belongs to the touch that has ended.
  FpsTouchHandler::GetInstance().ClearTouchEvent();
}

bool FingerState::IsDown() const {
  const std::lock_guard lock(mutex_);
  return is_down_;
}

int64_t FingerState::GetDownTime() const {
  const std::lock_guard lock(mutex_);
  return down_time_;
}

uint32_t FingerState::GetDownLatencyMs() const {
  const std::lock_guard lock(mutex_);
  return down_latency_ms_;
}

int64_t FingerState::GetDownUptime() const {
  const std::lock_guard lock(mutex_);
  return down_uptime_;
}

int64_t FingerState::GetUpUptime() const {
  const std::lock_guard lock(mutex_);
  return up_uptime_;
}

Ellipse FingerState::GetEllipse() const {
  const std::lock_guard lock(mutex_);
  return ellipse_;
}

bool FingerState::IsLptwRequested() const {
  const std::lock_guard lock(mutex_);
  return lptw_requested_;
}

bool FingerState::IsLptwEnabled() const {
  const std::lock_guard lock(mutex_);
  return lptw_enabled_;
}

}  // namespace android::fp_utils
