// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ctime>
#include <deque>
#include <memory>
#include <mutex>
#include <string>

#include "fp_utils/export.h"
#include "fp_utils/thread_annotations.h"

namespace android::fp_utils {

// One critical error of the service. Its timestamp is the time of construction.
class FP_UTILS_EXPORT ErrorEvent {
 public:
  explicit ErrorEvent(std::string message);
  virtual ~ErrorEvent();

  // Local time and message, cut to 127 characters.
  virtual std::string ToDebugString() const;

  // The timestamp as "YYYY-MM-DD hh:mm:ss" in the process's time zone.
  std::string GetLocalTime() const;

  std::string message;
  time_t timestamp;  // seconds since the epoch
};

// The last 100 critical errors of the process, for its dump. Kept in memory only.
//
// Threading:  every operation locks.
// Ownership:  events are shared with the caller.
class FP_UTILS_EXPORT CriticalErrors {
 public:
  // The process-wide instance, created on first use and never destroyed.
  static CriticalErrors& GetInstance();

  CriticalErrors();
  virtual ~CriticalErrors();
  CriticalErrors(const CriticalErrors&) = delete;
  CriticalErrors& operator=(const CriticalErrors&) = delete;

  // Adds an event, dropping the oldest if 100 are held. Equal errors are not merged. Logs and
  // ignores null.
  virtual void AddErrorEvent(std::shared_ptr<ErrorEvent> event);

  // Writes every event to `fd`, which stays open. The arguments are not used.
  void Dump(int fd, const char** args, unsigned int num_args);

 private:
  std::deque<std::shared_ptr<ErrorEvent>> events FP_GUARDED_BY(mutex);
  std::mutex mutex;
};

}  // namespace android::fp_utils
