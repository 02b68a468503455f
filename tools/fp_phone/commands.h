// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "fp_host/touch_node.h"

namespace fp_phone {

// The exit codes of `run` before the program starts are those of env and timeout.
enum ExitCode {
  kDone = 0,
  kFailed = 1,
  kUsage = 2,
  kNotStarted = 125,
  kCannotRun = 126,
  kNotFound = 127
};

// The wall clock of the phone.
struct Clock {
  int64_t at_ms = 0;  // since the epoch
  bool is_stopped = false;
};

// The parsed command line.
struct Options {
  std::filesystem::path root;

  // Of `run`.
  std::vector<std::string> program;  // with its arguments
  std::vector<std::string> properties;
  std::optional<Clock> clock;
  std::vector<std::string> services;
  std::string skin;
  std::string lux;
  bool has_touch = false;

  // Of `run` and `log`, as logcat takes them.
  std::vector<std::string> log_filters;
  std::string log_format = "threadtime";
  bool clears_log = false;

  // Of `pull`.
  std::string device_path;
  std::string to = ".";

  // Of `play`.
  std::string recording;
  fp_host::TouchPanel panel;
  fp_host::Pace pace = fp_host::Pace::kRecorded;

  // What the tool itself keeps of a phone, in the phone's root.
  static constexpr char kStateFolder[] = ".fp_phone";
  std::filesystem::path StateFolder() const { return root / kStateFolder; }
  std::filesystem::path LogFile() const { return StateFolder() / "log"; }
};

// Each returns the exit code and has said on standard error what went wrong.
int Run(const Options& options);
int ShowLog(const Options& options);
int ShowTree(const Options& options);
int Pull(const Options& options);
int Play(const Options& options);

// Why a text is not a valid property, light, temperature, filter or format; empty if it is one.
std::string CheckProperty(const std::string& text);
std::string CheckLux(const std::string& text);
std::string CheckCelsius(const std::string& text);
std::string CheckLogFilter(const std::string& text);
std::string CheckLogFormat(const std::string& text);
std::optional<int64_t> ParseMoment(const std::string& text);  // in ms since the epoch
std::optional<fp_host::TouchPanel> ParsePanel(const std::string& text);

// Prints a sentence on standard error.
template <typename... Arguments>
void PrintError(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
  fmt::print(stderr, "fp_phone: {}\n", fmt::format(format, std::forward<Arguments>(arguments)...));
}

// A name for a terminal: what does not print is escaped.
std::string Printable(const std::string& text);

}  // namespace fp_phone
