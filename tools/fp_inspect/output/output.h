// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <fmt/format.h>

#include <memory>
#include <string>
#include <utility>

#include "model/fields.h"
#include "model/fleet.h"
#include "model/summary.h"

namespace fp_inspect {

// Writes what a command found to the standard output, in one format. A new format is a class in a
// file of its own and a line in output.cpp.
class Output {
 public:
  virtual ~Output() = default;

  virtual void PutSummary(const Device& device, const Summary& summary, const Zone& zone) = 0;
  virtual void BeginList() {}
  virtual void PutRecord(const Record& record, const Device& device, const Thresholds& thresholds,
                         const Zone& zone) = 0;
  virtual void PutVerified(const Contents& contents) = 0;
  virtual void PutDevice(const std::string& name, const Device& device, const Summary& summary,
                         const Zone& zone) = 0;
  virtual void PutFleet(const Fleet& fleet, size_t top) = 0;

  // An input that failed, or a damage: on the standard error, and where a format is read by
  // programs also among its objects.
  virtual void PutError(const std::string& input, const std::string& text);
  virtual void PutDamage(const Device& device);
};

// "text", "jsonl" or "csv".
std::unique_ptr<Output> MakeOutput(const std::string& format);
std::unique_ptr<Output> MakeTextOutput();
std::unique_ptr<Output> MakeJsonlOutput();
std::unique_ptr<Output> MakeCsvOutput();

// A line on the standard error; one that cannot be written is given up.
void Tell(const std::string& text);
template <typename... Values>
void Complain(fmt::format_string<Values...> form, Values&&... values) {
  Tell(fmt::format(form, std::forward<Values>(values)...));
}

// Text of a device without the control characters that a terminal would obey.
std::string Printable(std::string text);

}  // namespace fp_inspect
