// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/compare.h"
#include "model/replay.h"
#include "model/summary.h"

namespace fp_inspect {

// One group of inputs.
struct ReportSide {
  char letter;  // 'A' or 'B'
  std::string name;
  const Device* device;  // not owned
  Summary summary;
  Replay replay;
};

struct Report {
  std::vector<ReportSide> sides;  // one, or two with a comparison
  std::optional<Comparison> comparison = {};
  std::vector<std::string> messages = {};  // about inputs not read, or only in part
};

// A page that needs no other file, no network and no script. Its size is bounded, however many
// records there are.
std::string ReportPage(const Report& report);

// The style of the page, for screens in light and dark, and for paper.
extern const char kReportStyle[];

// Writes a file, or leaves the old one as it was and returns why. A file that exists and is not a
// regular one is refused.
std::optional<std::string> ReplaceFile(const std::string& path, const std::string& content);

}  // namespace fp_inspect
