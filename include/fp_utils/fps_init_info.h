// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>

#include "fp_utils/export.h"
#include "fp_utils/thread_annotations.h"

namespace android::fp_utils {

// How the sensor's initialisation went. Errors accumulate in one text, which is also published in
// the property vendor.fingerprint.init.error and in the tombstone folder, together with a copy of
// the secure world's log.
//
// Threading:  SetState() and SetError() lock and wait for each other. Dump() waits for neither, and
//             may print the record of just before a running SetError().
// Blocking:   SetError() sets a property, writes a file and waits for a shell that copies the log.
// Errors:     a failed property, file or copy never reaches the caller; the record is kept.
// Units:      times of the wall clock, in microseconds since the epoch.
class FP_UTILS_EXPORT FpsInitInfo {
 public:
  enum class State : int32_t { kNotStarted = 0, kStarted = 1, kFinished = 2 };

  FpsInitInfo();
  ~FpsInitInfo();
  FpsInitInfo(const FpsInitInfo&) = delete;
  FpsInitInfo& operator=(const FpsInitInfo&) = delete;

  // Stores the state, any value, and the time of a start or a finish. Earlier errors stay.
  void SetState(State state);

  // Appends an error to the text: its local time, a blank and the message.
  void SetError(int code, std::string message);

  // Writes one line to `fd`, which stays open: the errors if there were any, else what the state
  // says. Returns the bytes written, negative on failure.
  int Dump(int fd);

  State GetState() const;
  int32_t GetErrorCode() const;  // of the last error
  std::string GetErrorStr() const;

 private:
  using TimePoint = std::chrono::time_point<std::chrono::system_clock, std::chrono::microseconds>;

  static TimePoint Now();
  std::string Append(int code, const std::string& message);

  // Held for the whole of SetState() and SetError(), the shell included.
  std::mutex mutex_ ACQUIRED_BEFORE(record_mutex_);

  // Held for moments: what a dump may read while SetError() waits for the shell.
  mutable std::mutex record_mutex_;
  State state_ GUARDED_BY(record_mutex_) = State::kNotStarted;
  int32_t error_code_ GUARDED_BY(record_mutex_) = 0;
  std::string error_str_ GUARDED_BY(record_mutex_);  // entries joined by ","
  TimePoint start_time_ GUARDED_BY(record_mutex_);
  TimePoint error_time_ GUARDED_BY(record_mutex_);
  TimePoint end_time_ GUARDED_BY(record_mutex_);
};

}  // namespace android::fp_utils
