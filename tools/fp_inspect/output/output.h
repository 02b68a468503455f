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

// A line on the standard error; one that cannot be written is given up.
void Tell(const std::string& text);
template <typename... Values>
void Complain(fmt::format_string<Values...> form, Values&&... values) {
  Tell(fmt::format(form, std::forward<Values>(values)...));
}

// The first damages, on the standard error.
void TellDamage(const Device& device);

// Writes what a command found to the standard output, in one format. A new format is a class in a
// file of its own and a line in output.cpp; what it has no form for it leaves out.
class Output {
 public:
  virtual ~Output() = default;

  virtual void PutSummary(const Device& /*device*/, const Summary& /*summary*/,
                          const Zone& /*zone*/) {}
  virtual void BeginList() {}
  virtual void PutRecord(const Record& /*record*/, const Device& /*device*/,
                         const Thresholds& /*thresholds*/, const Zone& /*zone*/) {}
  virtual void EndList(const Device& /*device*/) {}
  // `check` also asks for what the dumps say.
  virtual void PutReplay(const Replay& /*replay*/, const Device& /*device*/, bool /*check*/,
                         const Zone& /*zone*/) {}
  virtual void PutVerified(const Contents& /*contents*/) {}
  virtual void PutDevice(const std::string& /*name*/, const Device& /*device*/,
                         const Summary& /*summary*/, const Zone& /*zone*/) {}
  virtual void PutComparison(const Comparison& /*comparison*/, const Zone& /*zone*/) {}
  virtual void PutFleet(const Fleet& /*fleet*/, size_t /*top*/) {}

  // An input that could not be read, and what else its reader should know: on the standard error,
  // and in a format for programs among its objects.
  virtual void PutFailure(const std::string& /*input*/, const std::string& text) { Tell(text); }
  virtual void PutWarning(const std::string& /*input*/, const std::string& text) { Tell(text); }
};

// "text", "jsonl" or "csv".
std::unique_ptr<Output> MakeOutput(const std::string& format);
std::unique_ptr<Output> MakeTextOutput();
std::unique_ptr<Output> MakeJsonlOutput();
std::unique_ptr<Output> MakeCsvOutput();

void PrintReplay(const Replay& replay, const Device& device, bool check, const Zone& zone);

// Text of a device without the control characters that a terminal would obey.
std::string Printable(std::string text);

}  // namespace fp_inspect
