// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>

#include "fp_utils/export.h"
#include "fp_utils/thread_annotations.h"

namespace android::fp_utils {

// Records how the initialisation of the sensor went. Errors accumulate in one text. Each error also
// publishes that text in the property vendor.fingerprint.init.error and in the tombstone folder,
// and copies the log of the secure world there.
//
// Threading:  SetState() and SetError() exclude each other. Dump() and the getters do not wait for
//             them; during a SetError() they may return the record from before it.
// Blocking:   SetError() sets a property, writes a file and waits for a shell that copies the log.
// Errors:     a failed property, file or copy is not reported to the caller; the record is kept.
class FP_UTILS_EXPORT FpsInitInfo {
 public:
  enum class State : int32_t { kNotStarted = 0, kStarted = 1, kFinished = 2 };

  FpsInitInfo();
  ~FpsInitInfo();
  FpsInitInfo(const FpsInitInfo&) = delete;
  FpsInitInfo& operator=(const FpsInitInfo&) = delete;

  // Stores `state`, which may be any value, and for kStarted and kFinished the current time.
  // Earlier errors are kept.
  void SetState(State state);

  // Appends an error to the text: the local time, a space and `message`.
  void SetError(int code, std::string message);

  // Writes one line to `fd` and leaves it open: all errors if there are any, else the outcome that
  // the state stands for. Returns the number of bytes written, negative on failure.
  int Dump(int fd);

  State GetState() const;
  int32_t GetErrorCode() const;  // of the last error
  std::string GetErrorStr() const;

 private:
  using TimePoint = std::chrono::time_point<std::chrono::system_clock, std::chrono::microseconds>;

  static TimePoint Now();
  void RecordState(State state) FP_REQUIRES(mutex_);
  std::string Append(int code, const std::string& message) FP_REQUIRES(mutex_);

  // Held for the whole of SetState() and SetError(), including the shell.
  std::mutex mutex_ FP_ACQUIRED_BEFORE(record_mutex_);

  // Held only to read or write the record, so that a dump does not wait for the shell.
  mutable std::mutex record_mutex_;
  State state_ FP_GUARDED_BY(record_mutex_) = State::kNotStarted;
  int32_t error_code_ FP_GUARDED_BY(record_mutex_) = 0;
  std::string error_str_ FP_GUARDED_BY(record_mutex_);  // entries joined by ","
  TimePoint start_time_ FP_GUARDED_BY(record_mutex_);
  TimePoint error_time_ FP_GUARDED_BY(record_mutex_);
  TimePoint end_time_ FP_GUARDED_BY(record_mutex_);
};

}  // namespace android::fp_utils
