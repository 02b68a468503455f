// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <mutex>

#include "fp_utils/export.h"
#include "fp_utils/shapes.h"
#include "fp_utils/thread_annotations.h"

namespace android::fp_utils {

// Tracks the finger on the sensor: whether it is down, since when, how late the service learned of
// it, and its contact ellipse. While the finger is down, the touch controller's LPTW event report
// can be enabled.
//
// Threading:  every operation locks. Set() calls FpsTouchHandler::GetInstance() with the lock held.
// Blocking:   Set() waits for the touch handler's lock and an ioctl when it switches LPTW, and for
//             the lock of the last touch event at every finger up.
// Errors:     the touch handler logs its own failures; they do not change this state.
// Units:      milliseconds of the uptime clock, which stops in deep sleep; panel units.
class FP_UTILS_EXPORT FingerState {
 public:
  FingerState();
  ~FingerState();
  FingerState(const FingerState&) = delete;
  FingerState& operator=(const FingerState&) = delete;

  // Handles a finger-down or finger-up notification; `time` is when it happened, 0 or less if
  // unknown. A repeated down only updates the contact. A down with `lptw` enables the LPTW report
  // and the next up disables it. An up also clears the touch handler's last event. Returns false,
  // and changes nothing, for an up while the finger is already up.
  bool Set(bool down, long time, const Ellipse& contact, bool lptw);

  bool IsDown() const;
  int64_t GetDownTime() const;        // `time` of the last down, as given
  uint32_t GetDownLatencyMs() const;  // from that time to Set(); 0 if the time was unknown
  int64_t GetDownUptime() const;      // when Set() recorded the last down
  int64_t GetUpUptime() const;        // when Set() recorded the last up; 0 while the finger is down
  Ellipse GetEllipse() const;         // all zero while no finger is down
  bool IsLptwRequested() const;       // whether the last down asked for LPTW
  bool IsLptwEnabled() const;         // whether this object enabled LPTW and has yet to disable it

 private:
  void RecordDown(int64_t time, bool lptw) FP_REQUIRES(mutex_);
  void RecordUp() FP_REQUIRES(mutex_);

  mutable std::mutex mutex_;
  bool is_down_ FP_GUARDED_BY(mutex_) = false;
  int64_t down_time_ FP_GUARDED_BY(mutex_) = 0;
  uint32_t down_latency_ms_ FP_GUARDED_BY(mutex_) = 0;
  int64_t down_uptime_ FP_GUARDED_BY(mutex_) = 0;
  int64_t up_uptime_ FP_GUARDED_BY(mutex_) = 0;
  Ellipse ellipse_ FP_GUARDED_BY(mutex_);
  bool lptw_requested_ FP_GUARDED_BY(mutex_) = false;
  bool lptw_enabled_ FP_GUARDED_BY(mutex_) = false;
};

}  // namespace android::fp_utils
