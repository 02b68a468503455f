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

// State of the fingerprint pipeline. The service defines the values; the tracker knows three of
// them.
enum fp_state_t : uint32_t {};

// The current pipeline state of the process, for those who have to wait for one, and when the
// finger came down.
//
// Threading:  any number of threads may update and wait. The times are written without the lock: a
//             reader beside an update may see the seconds of one and the milliseconds of the other.
// Blocking:   WaitForState().
// Units:      timeouts in milliseconds of the clock that counts deep sleep.
class FP_UTILS_EXPORT FpStateTracker {
 public:
  // The instance of the process, made on first use and never destroyed: a thread may wait at exit.
  static FpStateTracker& GetInstance();

  FpStateTracker();
  ~FpStateTracker();
  FpStateTracker(const FpStateTracker&) = delete;
  FpStateTracker& operator=(const FpStateTracker&) = delete;

  // Sets the state and wakes all waiters. 0x101 and 0x201 record the moment of finger down, 0x205 a
  // second moment.
  void UpdateState(fp_state_t state);

  // Waits until the state is exactly `state`, `timeout` milliseconds at most; a deep sleep that
  // begins during the wait may come on top. 0, or -ETIMEDOUT. A state that is left again before the
  // waiter runs is missed.
  int WaitForState(fp_state_t state, unsigned int timeout);

  // Writes the last moment of finger down, in local time, as "YYYY-MM-DD-hh-mm-ss-mmm"; the epoch
  // before the first. At most `size` bytes with the terminating zero; returns what snprintf would.
  int GetFingerDownTime(char* buf, unsigned long size);

  fp_state_t GetState() const;

  // Monotonic clock; zero before the first time.
  std::chrono::steady_clock::time_point GetFingerDownSteadyTime() const;
  std::chrono::steady_clock::time_point GetState205SteadyTime() const;

 private:
  using SteadyTicks = std::chrono::steady_clock::rep;

  struct WallTime {
    std::atomic<int64_t> seconds = 0;  // since the epoch
    std::atomic<int64_t> microseconds = 0;
  };

  mutable std::mutex mutex_;
  fp_state_t state_ GUARDED_BY(mutex_) = fp_state_t{0};
  std::condition_variable state_changed_;

  // Unlocked on purpose: who waits for the state must not wait for clocks to be read.
  WallTime finger_down_wall_time_;
  std::atomic<SteadyTicks> finger_down_steady_time_ = 0;
  std::atomic<SteadyTicks> state_205_steady_time_ = 0;
};

}  // namespace android::fp_utils
