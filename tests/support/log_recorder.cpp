// SPDX-License-Identifier: Apache-2.0
#include "support/log_recorder.h"

#include <atomic>
#include <cstdarg>
#include <mutex>
#include <utility>

#include <android-base/stringprintf.h>

namespace fp_test {
namespace {

// Never destroyed: a worker may log while the process ends.
auto& mutex = *new std::mutex;
auto& lines = *new std::vector<LogLine>;
std::atomic<bool> muted = false;

}  // namespace

std::ostream& operator<<(std::ostream& out, const LogLine& line) {
  return out << line.priority << ' ' << line.tag << ": " << line.message;
}

std::vector<LogLine> TakeLog() {
  const std::lock_guard lock(mutex);
  return std::exchange(lines, {});
}

void MuteLog(bool mute) { muted = mute; }

}  // namespace fp_test

extern "C" int __android_log_print(int priority, const char* tag, const char* format, ...) {
  if (fp_test::muted) {
    return 0;
  }
  std::string message;
  va_list arguments;
  va_start(arguments, format);
  android::base::StringAppendV(&message, format, arguments);
  va_end(arguments);
  const std::lock_guard lock(fp_test::mutex);
  fp_test::lines.push_back({priority, tag, std::move(message)});
  return 1;
}
