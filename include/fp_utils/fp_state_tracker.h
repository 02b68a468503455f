// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "fp_utils/export.h"
#include "fp_utils/thread_annotations.h"

namespace android::fp_utils {

// State of the fingerprint pipeline. The service defines the values; three of them have a meaning
// to the tracker, see UpdateState().
enum fp_state_t : uint32_t {};

// Holds the current state of the fingerprint pipeline, lets threads wait for a state, and records
// when the finger came down.
//
// Threading:  any number of threads may update and wait. The times are stored without the lock: a
//             reader that races with an update may get the seconds of one update and the
//             milliseconds of another.
// Blocking:   WaitForState().
// Units:      timeouts are milliseconds of the boot-time clock, which counts deep sleep.
class FP_UTILS_EXPORT FpStateTracker {
 public:
  // The process-wide instance, created on first use.
  static FpStateTracker& GetInstance();

  FpStateTracker();
  ~FpStateTracker();
  FpStateTracker(const FpStateTracker&) = delete;
  FpStateTracker& operator=(const FpStateTracker&) = delete;

  // Sets the state and wakes all waiters. 0x101 and 0x201 also record the finger-down time, 0x205
  // the time that GetState205SteadyTime() returns.
  void UpdateState(fp_state_t state);

  // Waits at most `timeout` milliseconds until the state equals `state`. Returns 0, or -ETIMEDOUT.
  // A state that is set and replaced before the waiter runs is missed. The wait itself does not
  // count a deep sleep, so one that begins during the wait can delay the return by its length.
  [[nodiscard]] int WaitForState(fp_state_t state, unsigned int timeout);

  // Writes the last finger-down time to `buf`, in local time, as "YYYY-MM-DD-hh-mm-ss-mmm"; before
  // the first finger down, that of the epoch. Writes at most `size` bytes with the terminating zero
  // and returns what snprintf returns.
  int GetFingerDownTime(char* buf, unsigned long size);

  fp_state_t GetState() const;

  // When the last 0x101 or 0x201, and the last 0x205, was set; the clock's epoch before the first.
  std::chrono::steady_clock::time_point GetFingerDownSteadyTime() const;
  std::chrono::steady_clock::time_point GetState205SteadyTime() const;

 private:
  using SteadyTicks = std::chrono::steady_clock::rep;

  struct WallTime {
    std::atomic<int64_t> seconds = 0;  // since the epoch
    std::atomic<int64_t> microseconds = 0;
  };

  mutable std::mutex mutex_;
  fp_state_t state_ FP_GUARDED_BY(mutex_) = fp_state_t{0};
  std::condition_variable state_changed_;

  // Not guarded, on purpose: waiters do not wait for the clocks to be read.
  WallTime finger_down_wall_time_;
  std::atomic<SteadyTicks> finger_down_steady_time_ = 0;
  std::atomic<SteadyTicks> state_205_steady_time_ = 0;
};

}  // namespace android::fp_utils
