// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <mutex>

#include "fp_utils/export.h"
#include "fp_utils/shapes.h"
#include "fp_utils/thread_annotations.h"

namespace android::fp_utils {

// Whether a finger is on the sensor, since when, how late the service learned of it, and the
// contact that it makes. A finger that comes down can switch on the touch controller's LPTW event
// report for as long as it stays.
//
// Threading:  every operation locks. Set() calls the process's FpsTouchHandler with its lock held.
// Blocking:   Set() at both ends of a touch with LPTW: an ioctl, behind what the handler's lock is
//             held for.
// Errors:     failures of the touch handler are the handler's to log; they change nothing here.
// Units:      milliseconds of the uptime clock, which stands still in deep sleep; panel units.
class FP_UTILS_EXPORT FingerState {
 public:
  FingerState();
  ~FingerState();
  FingerState(const FingerState&) = delete;
  FingerState& operator=(const FingerState&) = delete;

  // Takes a finger-down or finger-up notification of `time` (0 or less: unknown). A repeated down
  // only moves the contact. A down with `lptw` switches the report on, the up behind it off. False
  // for an up while the finger is up already, which changes nothing.
  bool Set(bool down, long time, Ellipse const& contact, bool lptw);

  bool IsDown() const;
  int64_t GetDownTime() const;        // as given
  uint32_t GetDownLatencyMs() const;  // from that time to its Set(); 0 if it was unknown
  int64_t GetDownUptime() const;      // when the down was recorded
  int64_t GetUpUptime() const;        // when the finger lifted; 0 while it is down
  Ellipse GetEllipse() const;         // all zero while no finger is down
  bool IsLptwRequested() const;       // by the last down
  bool IsLptwEnabled() const;         // switched on here and not yet off

 private:
  void RecordDown(int64_t time, bool lptw) REQUIRES(mutex_);
  void RecordUp() REQUIRES(mutex_);

  mutable std::mutex mutex_;
  bool is_down_ GUARDED_BY(mutex_) = false;
  int64_t down_time_ GUARDED_BY(mutex_) = 0;
  uint32_t down_latency_ms_ GUARDED_BY(mutex_) = 0;
  int64_t down_uptime_ GUARDED_BY(mutex_) = 0;
  int64_t up_uptime_ GUARDED_BY(mutex_) = 0;
  Ellipse ellipse_ GUARDED_BY(mutex_);
  bool lptw_requested_ GUARDED_BY(mutex_) = false;
  bool lptw_enabled_ GUARDED_BY(mutex_) = false;
};

}  // namespace android::fp_utils
