// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include <android/log.h>

namespace fp_test {

struct LogLine {
  int priority;
  std::string tag;
  std::string message;

  bool operator==(const LogLine&) const = default;
};
std::ostream& operator<<(std::ostream& out, const LogLine& line);

inline LogLine Debug(std::string tag, std::string message) {
  return {ANDROID_LOG_DEBUG, std::move(tag), std::move(message)};
}
inline LogLine Info(std::string tag, std::string message) {
  return {ANDROID_LOG_INFO, std::move(tag), std::move(message)};
}
inline LogLine Warn(std::string tag, std::string message) {
  return {ANDROID_LOG_WARN, std::move(tag), std::move(message)};
}
inline LogLine Error(std::string tag, std::string message) {
  return {ANDROID_LOG_ERROR, std::move(tag), std::move(message)};
}

// The lines that were logged since the last call, in order. In test programs liblog logs to here.
std::vector<LogLine> TakeLog();

// Adds a line of the test itself.
void AddLogLine(LogLine line);

// Expects that exactly these lines were logged since the last TakeLog().
#define EXPECT_LOG(...) EXPECT_EQ((std::vector<fp_test::LogLine>{__VA_ARGS__}), fp_test::TakeLog())

// Drops lines instead of recording them, for tests that log millions.
void MuteLog(bool mute);

}  // namespace fp_test
