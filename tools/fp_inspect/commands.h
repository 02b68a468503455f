// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/exposure_controller.h"
#include "model/fields.h"
#include "model/summary.h"
#include "reading/record.h"

namespace fp_inspect {

// The parsed command line.
struct Options {
  std::vector<std::string> inputs;
  InputKind kind = InputKind::kNone;
  std::string zone;
  std::string format = "text";
  std::string since;
  std::string until;
  bool salvage = false;
  GroupBy group_by = GroupBy::kNothing;
  Filter filter;
  unsigned jobs = 0;  // 0: one per processor
  size_t top = 20;
  std::optional<Calibration> calibration;
  std::vector<Settings> variants;
  bool check_replay = false;
  bool fit_sensor = false;
  std::vector<std::string> side_b_inputs;  // of a comparison
  std::string page;                        // the file that `report` writes
  bool since_when = false;
  bool exit_code = false;
};

enum ExitCode { kDone = 0, kFailed = 1, kUsage = 2, kNoRecord = 3, kDamaged = 4, kDiffers = 5 };

int RunSummary(const Options& options);
int RunList(const Options& options);
int RunVerify(const Options& options);
int RunFleet(const Options& options);
int RunReplay(const Options& options);
int RunCompare(const Options& options);
int RunReport(const Options& options);

}  // namespace fp_inspect
