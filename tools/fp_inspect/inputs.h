// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "commands.h"
#include "model/timeline.h"
#include "model/zone.h"
#include "output/output.h"
#include "reading/record.h"

// The inputs of a command, and how reading them went.

namespace fp_inspect {

// The result of reading one input: its contents, or the reason why there are none.
struct ReadResult {
  std::string path;
  Contents contents = {};
  std::string error = {};
  std::string warning = {};
};

// Reports how reading a command's inputs went, and determines the exit code.
class Outcome {
 public:
  explicit Outcome(Output& output) : output_(output) {}

  // Reports the errors and warnings of an input; true if there are none.
  bool Report(const ReadResult& result);

  int Code();

 private:
  Output& output_;
  bool has_failed_ = false;
  bool has_records_ = false;
  bool is_damaged_ = false;
};

// Reads a file, or the files of a folder. Files of a folder that have no records, damage or errors
// are left out.
std::vector<ReadResult> ReadAll(const std::string& input, InputKind kind);

void AddTo(DeviceBuilder* builder, std::vector<ReadResult> results, Outcome* outcome);

// Whether `text` is a valid `since` or `until`: "2026-03-04", optionally followed by " 05:06" or
// " 05:06:07", or "@" followed by seconds since the epoch.
bool IsValidTime(const std::string& text);

// The options --since and --until.
struct Period {
  static Period Of(const Options& options, const Zone& zone);
  bool Contains(int64_t time) const { return time >= since && time < until; }

  int64_t since = INT64_MIN;
  int64_t until = INT64_MAX;
};

void KeepPeriod(Device* device, const Options& options);

// Reads all inputs of the options as one device.
Device ReadDevice(const Options& options, Outcome* outcome);

}  // namespace fp_inspect
