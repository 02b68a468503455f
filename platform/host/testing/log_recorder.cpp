// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <mutex>
#include <utility>

#include "fp_host/testing.h"

namespace fp_host {
namespace {

struct Log {
  std::mutex mutex;
  std::vector<LogLine> lines;  // guarded by mutex
};

// Never destroyed: a worker may log while the process ends.
Log& TheLog() {
  static auto& log = *new Log;
  return log;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const LogLine& line) {
  return out << line.priority << ' ' << line.tag << ": " << line.message;
}

std::vector<LogLine> TakeLog() {
  const std::lock_guard lock(TheLog().mutex);
  return std::exchange(TheLog().lines, {});
}

std::vector<LogLine> TakeLog(const std::string& tag) {
  std::vector<LogLine> log = TakeLog();
  std::erase_if(log, [&](const LogLine& line) { return line.tag != tag; });
  return log;
}

void MuteLog(bool mute) {
  __android_log_set_minimum_priority(mute ? ANDROID_LOG_SILENT : ANDROID_LOG_VERBOSE);
}

size_t CountLinesWith(const std::vector<LogLine>& log, const std::string& text) {
  return static_cast<size_t>(std::count_if(log.begin(), log.end(), [&](const LogLine& line) {
    return line.message.find(text) != std::string::npos;
  }));
}

void AddLogLine(LogLine line) {
  const std::lock_guard lock(TheLog().mutex);
  TheLog().lines.push_back(std::move(line));
}

bool RecordLog() {
  __android_log_set_logger([](const __android_logger_data* data, const char* message) {
    AddLogLine({data->priority, data->tag, message});
  });
  MuteLog(false);
  return true;
}

}  // namespace fp_host
