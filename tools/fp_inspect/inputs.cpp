// SPDX-License-Identifier: Apache-2.0
#include "inputs.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <utility>

#include "reading/dump_line.h"
#include "reading/read.h"

namespace fp_inspect {
namespace {

int64_t ParseTime(const std::string& text, const Zone& zone) {
  if (text.starts_with('@')) {
    int64_t epoch = 0;
    std::from_chars(text.data() + 1, text.data() + text.size(), epoch);
    return epoch;
  }
  constexpr std::string_view kMidnight = "0000-00-00 00:00:00";
  return zone.ToEpoch(ReadWallTime(text + std::string(kMidnight.substr(text.size()))).value_or(0));
}

}  // namespace

bool Outcome::Report(const ReadResult& result) {
  if (!result.warning.empty()) {
    output_.PutWarning(result.path, result.warning);
  }
  if (!result.error.empty()) {
    output_.PutFailure(result.path, result.error);
  }
  has_failed_ |= !result.error.empty();
  has_records_ |= !result.contents.snapshots.empty();
  is_damaged_ |= result.contents.damage_count > 0;
  return result.error.empty() && result.warning.empty();
}

int Outcome::Code() {
  if (fflush(stdout) != 0 || ferror(stdout) != 0) {
    PrintErrorf("cannot write the output");
    return kFailed;
  }
  if (has_failed_) {
    return kFailed;
  }
  if (!has_records_) {
    PrintErrorf("no record in any input");
    return is_damaged_ ? kDamaged : kNoRecord;
  }
  return is_damaged_ ? kDamaged : kDone;
}

std::vector<ReadResult> ReadAll(const std::string& input, InputKind kind) {
  std::vector<ReadResult> results;
  const auto read = [&](const std::string& path, bool is_named) {
    ReadResult result = {.path = path};
    try {
      result.contents = ReadInput(path, kind);
    } catch (const InputError& error) {
      result.error = error.what();
    }
    if (is_named || !result.error.empty() || !result.contents.snapshots.empty() ||
        result.contents.damage_count > 0) {
      results.push_back(std::move(result));
    }
  };
  if (!IsFolder(input)) {
    read(input, true);
    return results;
  }
  try {
    size_t left_out = 0;
    for (const std::string& file : FilesBelow(input, &left_out)) {
      read(file, false);
    }
    if (left_out > 0) {
      results.push_back(
          {.path = input,
           .warning = fmt::format("{}: entries skipped (links to folders, pipes, devices): {}",
                                  input, left_out)});
    }
  } catch (const InputError& error) {
    results.push_back({.path = input, .error = error.what()});
  }
  return results;
}

void AddTo(DeviceBuilder* builder, std::vector<ReadResult> results, Outcome* outcome) {
  for (ReadResult& result : results) {
    if (outcome->Report(result)) {
      builder->Add(std::move(result.contents));
    }
  }
}

Period Period::Of(const Options& options, const Zone& zone) {
  Period period;
  if (!options.since.empty()) {
    period.since = ParseTime(options.since, zone);
  }
  if (!options.until.empty()) {
    period.until = ParseTime(options.until, zone);
  }
  return period;
}

void KeepPeriod(Device* device, const Options& options) {
  if (options.since.empty() && options.until.empty()) {
    return;
  }
  const Period period = Period::Of(options, Zone(device->zone));
  for (Timeline& timeline : device->timelines) {
    std::erase_if(timeline.records, [&](const Record& record) {
      return record.GetKind() != RecordKind::kFingerSize && !period.Contains(record.time);
    });
  }
}

Device ReadDevice(const Options& options, Outcome* outcome) {
  DeviceBuilder builder(options.zone, options.salvage);
  for (const std::string& input : options.inputs) {
    AddTo(&builder, ReadAll(input, options.kind), outcome);
  }
  Device device = builder.Finish();
  KeepPeriod(&device, options);
  return device;
}

bool IsValidTime(const std::string& text) {
  if (text.starts_with('@')) {
    return text.size() > 1 && text.find_first_not_of("0123456789", 1) == text.npos;
  }
  constexpr std::string_view kMidnight = "0000-00-00 00:00:00";
  return (text.size() == 10 || text.size() == 16 || text.size() == 19) &&
         ReadWallTime(text + std::string(kMidnight.substr(text.size()))).has_value();
}

}  // namespace fp_inspect
