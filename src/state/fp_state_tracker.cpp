// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/fp_state_tracker.h"

#include <sys/time.h>

#include <cerrno>
#include <cstdio>
#include <ctime>

#include <utils/SystemClock.h>

#include "common/log.h"

namespace android::fp_utils {
namespace {

using std::chrono::steady_clock;

constexpr char kTag[] = "FpStateTracker";

// States whose time is recorded, as the service numbers them.
constexpr uint32_t kFingerDown101 = 0x101;
constexpr uint32_t kFingerDown201 = 0x201;
constexpr uint32_t kState205 = 0x205;

steady_clock::rep SteadyNow() { return steady_clock::now().time_since_epoch().count(); }

steady_clock::time_point ToTimePoint(steady_clock::rep ticks) {
  return steady_clock::time_point(steady_clock::duration(ticks));
}

}  // namespace

FpStateTracker& FpStateTracker::GetInstance() {
  static auto* const instance = new FpStateTracker;
  return *instance;
}

FpStateTracker::FpStateTracker() = default;

FpStateTracker::~FpStateTracker() = default;

void FpStateTracker::UpdateState(fp_state_t state) {
  {
    const std::lock_guard lock(mutex_);
    state_ = state;
    FP_LOG_DEBUG(kTag, "%s: state_:0x%x", "UpdateState", state_);
  }
  state_changed_.notify_all();
  if (state == kFingerDown101 || state == kFingerDown201) {
    timeval now = {};
    gettimeofday(&now, nullptr);
    finger_down_wall_time_.seconds = now.tv_sec;
    finger_down_wall_time_.microseconds = now.tv_usec;
    finger_down_steady_time_ = SteadyNow();
  } else if (state == kState205) {
    state_205_steady_time_ = SteadyNow();
  }
}

// The thread-safety analysis does not follow unique_lock, which the condition variable needs.
int FpStateTracker::WaitForState(fp_state_t state,
                                 unsigned int timeout) FP_NO_THREAD_SAFETY_ANALYSIS {
  const int64_t start = elapsedRealtime();
  std::unique_lock lock(mutex_);
  if (state_ == state) {
    FP_LOG_DEBUG(kTag, "%s: state is already 0x%x", "WaitForState", state);
    return 0;
  }
  do {
    const int64_t elapsed = elapsedRealtime() - start;
    if (int64_t{timeout} <= elapsed) {
      FP_LOG_ERROR(kTag, "%s: Timeout waiting for state change", "WaitForState");
      return -ETIMEDOUT;
    }
    FP_LOG_DEBUG(kTag, "%s: waiting for state: 0x%x", "WaitForState", state);
    // The result is ignored: the loop checks the state and the deadline itself.
    state_changed_.wait_for(lock, std::chrono::milliseconds(timeout - elapsed));
    FP_LOG_DEBUG(kTag, "%s: state is changed to 0x%x", "WaitForState", state_);
  } while (state_ != state);
  return 0;
}

int FpStateTracker::GetFingerDownTime(char* buf, unsigned long size) {
  const auto seconds = static_cast<time_t>(finger_down_wall_time_.seconds.load());
  const long milliseconds = static_cast<long>(finger_down_wall_time_.microseconds.load() / 1000);
  tm parts = {};
  localtime_r(&seconds, &parts);
  return snprintf(buf, size, "%04d-%02d-%02d-%02d-%02d-%02d-%03ld", parts.tm_year + 1900,
                  parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
                  milliseconds);
}

fp_state_t FpStateTracker::GetState() const {
  const std::lock_guard lock(mutex_);
  return state_;
}

steady_clock::time_point FpStateTracker::GetFingerDownSteadyTime() const {
  return ToTimePoint(finger_down_steady_time_);
}

steady_clock::time_point FpStateTracker::GetState205SteadyTime() const {
  return ToTimePoint(state_205_steady_time_);
}

}  // namespace android::fp_utils
