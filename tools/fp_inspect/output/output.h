// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <fmt/format.h>

#include <memory>
#include <string>
#include <utility>

#include "model/compare.h"
#include "model/fields.h"
#include "model/fleet.h"
#include "model/replay.h"
#include "model/summary.h"

namespace fp_inspect {

// Writes a line to standard error and ignores a failure to write.
void PrintError(const std::string& text);
template <typename... Values>
void PrintErrorf(fmt::format_string<Values...> format, Values&&... values) {
  PrintError(fmt::format(format, std::forward<Values>(values)...));
}

// Writes the first damaged places to standard error.
void PrintDamage(const Device& device);

// Writes the results of a command to standard output, in one format. To add a format, add a class
// in its own file and a line in output.cpp. A format leaves out what it cannot express.
class Output {
 public:
  virtual ~Output() = default;

  virtual void PutSummary(const Device& /*device*/, const Summary& /*summary*/,
                          const Zone& /*zone*/) {}
  virtual void BeginList() {}
  virtual void PutRecord(const Record& /*record*/, const Device& /*device*/,
                         const Thresholds& /*thresholds*/, const Zone& /*zone*/) {}
  virtual void EndList(const Device& /*device*/) {}
  // With `check_replay`, also writes the comparison with the samples in the dumps.
  virtual void PutReplay(const Replay& /*replay*/, const Device& /*device*/, bool /*check_replay*/,
                         const Zone& /*zone*/) {}
  virtual void PutVerified(const Contents& /*contents*/) {}
  virtual void PutDevice(const std::string& /*name*/, const Device& /*device*/,
                         const Summary& /*summary*/, const Zone& /*zone*/) {}
  virtual void PutComparison(const Comparison& /*comparison*/, const Zone& /*zone*/) {}
  virtual void PutFleet(const Fleet& /*fleet*/, size_t /*top*/) {}

  // An input that could not be read, and anything else that the user should know about an input.
  // Both go to standard error; a machine-readable format also writes them as objects.
  virtual void PutFailure(const std::string& /*input*/, const std::string& text) {
    PrintError(text);
  }
  virtual void PutWarning(const std::string& /*input*/, const std::string& text) {
    PrintError(text);
  }
};

// "text", "jsonl" or "csv".
std::unique_ptr<Output> MakeOutput(const std::string& format);
std::unique_ptr<Output> MakeTextOutput();
std::unique_ptr<Output> MakeJsonlOutput();
std::unique_ptr<Output> MakeCsvOutput();

void PrintReplay(const Replay& replay, const Device& device, bool check_replay, const Zone& zone);

// Replaces the control characters in a text from a device, because a terminal would interpret them.
std::string Printable(std::string text);

}  // namespace fp_inspect
