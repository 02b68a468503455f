// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/fps_init_info.h"

#include <cstdio>
#include <cstdlib>

#include <android-base/file.h>
#include <android-base/properties.h>

#include "common/local_time.h"
#include "common/log.h"

namespace android::fp_utils {
namespace {

using std::chrono::duration_cast;
using std::chrono::milliseconds;

constexpr char kTag[] = "FpsInitInfo";
constexpr char kErrorProperty[] = "vendor.fingerprint.init.error";
constexpr char kErrorFile[] = "/data/vendor/tombstones/fingerprint/init_error.txt";
constexpr char kTrustyLog[] = "/dev/trusty-log0";
constexpr char kTrustyLogCopy[] = "/data/vendor/tombstones/fingerprint/init_trusty_log.txt";

template <typename TimePoint>
std::string TimeText(TimePoint time) {
  return LocalTimeText(std::chrono::system_clock::to_time_t(time));
}

// The result is ignored: if the log device is missing, the shell reports the error itself. The
// command consists only of constants, so nothing can be injected into it.
void CopyTrustyLog() {
  char command[1024];
  snprintf(command, sizeof command, "cat %s > %s", kTrustyLog, kTrustyLogCopy);
  (void)!system(command);
}

}  // namespace

FpsInitInfo::FpsInitInfo() = default;

FpsInitInfo::~FpsInitInfo() = default;

FpsInitInfo::TimePoint FpsInitInfo::Now() {
  return std::chrono::time_point_cast<std::chrono::microseconds>(std::chrono::system_clock::now());
}

void FpsInitInfo::SetState(State state) {
  const std::lock_guard lock(mutex_);
  RecordState(state);
}

void FpsInitInfo::RecordState(State state) {
  const std::lock_guard lock(record_mutex_);
  state_ = state;
  if (state == State::kStarted) {
    start_time_ = Now();
  } else if (state == State::kFinished) {
    end_time_ = Now();
  }
}

// Records the error and returns the text of all errors so far.
std::string FpsInitInfo::Append(int code, const std::string& message) {
  const std::lock_guard lock(record_mutex_);
  error_code_ = code;
  error_time_ = Now();
  if (!error_str_.empty()) {
    error_str_ += ",";
  }
  error_str_ += TimeText(error_time_) + " " + message;
  return error_str_;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): existing callers pass it by value
void FpsInitInfo::SetError(int code, std::string message) {
  const std::lock_guard lock(mutex_);
  const std::string error_str = Append(code, message);
  FP_LOG_ERROR(kTag, "%s: error_str_:%s", "SetError", error_str.c_str());
  base::SetProperty(kErrorProperty, error_str);  // fails if the text is too long for a property
  if (!base::WriteStringToFile(error_str, kErrorFile)) {
    FP_LOG_ERROR(kTag, "%s: failed to write '%s'", "SetError", kErrorFile);
  }
  CopyTrustyLog();
}

// The thread-safety analysis does not follow unique_lock.
int FpsInitInfo::Dump(int fd) FP_NO_THREAD_SAFETY_ANALYSIS {
  // Copies the record, because a slow reader of `fd` must not delay the initialisation.
  std::unique_lock lock(record_mutex_);
  const std::string error_str = error_str_;
  const State state = state_;
  const TimePoint start_time = start_time_;
  const TimePoint end_time = end_time_;
  lock.unlock();

  if (!error_str.empty()) {
    return dprintf(fd, "Error:%s\n", error_str.c_str());
  }
  if (state != State::kFinished) {
    return dprintf(fd, "Unexpected state:%d\n", static_cast<int>(state));
  }
  const long long start_ms = start_time.time_since_epoch().count() % 1000000 / 1000;
  const auto latency_ms =
      static_cast<int>(duration_cast<milliseconds>(end_time - start_time).count());
  return dprintf(fd, "Initialization successful, start_time:%s.%03lld, latency:%dms\n",
                 TimeText(start_time).c_str(), start_ms, latency_ms);
}

FpsInitInfo::State FpsInitInfo::GetState() const {
  const std::lock_guard lock(record_mutex_);
  return state_;
}

int32_t FpsInitInfo::GetErrorCode() const {
  const std::lock_guard lock(record_mutex_);
  return error_code_;
}

std::string FpsInitInfo::GetErrorStr() const {
  const std::lock_guard lock(record_mutex_);
  return error_str_;
}

}  // namespace android::fp_utils
