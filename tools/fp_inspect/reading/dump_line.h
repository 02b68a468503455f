// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "reading/record.h"

namespace fp_inspect {

// "#007 2026-03-04 05:06:07 words", which may begin anywhere in a line.
struct DumpLine {
  uint64_t index = 0;
  int64_t time = 0;  // seconds of the device's wall clock, as if it were UTC
  std::string_view words;
};
std::optional<DumpLine> FindDumpLine(std::string_view line);

// "2026-03-04 05:06:07" at the front of `text`, as if it were UTC.
std::optional<int64_t> ReadWallTime(std::string_view text);

// The record whose dump line has these words. A record is only returned if the library prints it in
// exactly these words, so that a damaged line is never mistaken for another record.
std::optional<Record> ReadAttempt(std::string_view words);
std::optional<Record> ReadEnrollment(std::string_view words);

}  // namespace fp_inspect
