// SPDX-License-Identifier: Apache-2.0
#include "commands.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <thread>

#include "model/compare.h"
#include "model/replay.h"
#include "model/timeline.h"
#include "output/output.h"
#include "reading/dump_line.h"
#include "reading/read.h"

namespace fp_inspect {
namespace {

namespace fs = std::filesystem;

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
  bool Report(const ReadResult& result) {
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

  int Code() {
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

 private:
  Output& output_;
  bool has_failed_ = false;
  bool has_records_ = false;
  bool is_damaged_ = false;
};

// Reads a file, or the files of a folder. Of a folder, leaves out the files without records, damage
// or errors.
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

int64_t ParseTime(const std::string& text, const Zone& zone) {
  if (text.starts_with('@')) {
    int64_t epoch = 0;
    std::from_chars(text.data() + 1, text.data() + text.size(), epoch);
    return epoch;
  }
  constexpr std::string_view kMidnight = "0000-00-00 00:00:00";
  return zone.ToEpoch(ReadWallTime(text + std::string(kMidnight.substr(text.size()))).value_or(0));
}

void KeepPeriod(Device* device, const Options& options) {
  if (options.since.empty() && options.until.empty()) {
    return;
  }
  const Zone zone(device->zone);
  const int64_t since = options.since.empty() ? INT64_MIN : ParseTime(options.since, zone);
  const int64_t until = options.until.empty() ? INT64_MAX : ParseTime(options.until, zone);
  for (Timeline& timeline : device->timelines) {
    std::erase_if(timeline.records, [&](const Record& record) {
      return record.GetKind() != RecordKind::kFingerSize &&
             (record.time < since || record.time >= until);
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

// Each input is a device, except that a folder has one device per entry, unless it is the file tree
// of one device.
std::vector<std::string> DevicesOf(const std::vector<std::string>& inputs, Outcome* outcome) {
  std::vector<std::string> devices;
  for (const std::string& input : inputs) {
    std::error_code error;
    if (!IsFolder(input) || fs::exists(fs::path(input) / "data", error)) {
      devices.push_back(input);
      continue;
    }
    const size_t before = devices.size();
    for (fs::directory_iterator it(input, error), end; !error && it != end; it.increment(error)) {
      std::error_code ignored;
      const bool is_folder = it->is_directory(ignored) && !it->is_symlink(ignored);
      if (is_folder || it->is_regular_file(ignored)) {
        devices.push_back(it->path().lexically_normal().string());
      }
    }
    if (error) {
      outcome->Report({.path = input, .error = fmt::format("{}: {}", input, error.message())});
    }
    std::sort(devices.begin() + static_cast<ptrdiff_t>(before), devices.end());
  }
  return devices;
}

// Reads `paths` with several threads; the results have the order of `paths`.
std::vector<std::vector<ReadResult>> ReadInParallel(const std::vector<std::string>& paths,
                                                    InputKind kind, unsigned jobs) {
  std::vector<std::vector<ReadResult>> results(paths.size());
  std::atomic<size_t> next = 0;
  const auto work = [&] {
    for (size_t i; (i = next++) < paths.size();) {
      results[i] = ReadAll(paths[i], kind);
    }
  };
  std::vector<std::thread> workers;
  for (unsigned i = 1; i < std::min<size_t>(jobs, paths.size()); ++i) {
    workers.emplace_back(work);
  }
  work();
  for (std::thread& worker : workers) {
    worker.join();
  }
  return results;
}

void ShowProgress(size_t done, size_t all) {
  static const bool is_terminal = isatty(STDERR_FILENO) != 0;
  if (is_terminal) {
    fmt::print(stderr, "\r{} of {} devices{}", done, all, done == all ? "\r\033[K" : "");
    fflush(stderr);
  }
}

}  // namespace

bool IsValidTime(const std::string& text) {
  if (text.starts_with('@')) {
    return text.size() > 1 && text.find_first_not_of("0123456789", 1) == text.npos;
  }
  constexpr std::string_view kMidnight = "0000-00-00 00:00:00";
  return (text.size() == 10 || text.size() == 16 || text.size() == 19) &&
         ReadWallTime(text + std::string(kMidnight.substr(text.size()))).has_value();
}

int RunSummary(const Options& options) {
  const auto output = MakeOutput(options.format);
  Outcome outcome(*output);
  const Device device = ReadDevice(options, &outcome);
  const Zone zone(device.zone);
  output->PutSummary(device, Summarise(device, options.group_by, zone), zone);
  PrintDamage(device);
  return outcome.Code();
}

int RunList(const Options& options) {
  const auto output = MakeOutput(options.format);
  Outcome outcome(*output);
  const Device device = ReadDevice(options, &outcome);
  const Thresholds thresholds = Thresholds::Of(device.exposure);
  std::vector<const Record*> shown;
  for (const Timeline& timeline : device.timelines) {
    for (const Record& record : timeline.records) {
      if (options.filter.Matches(record, thresholds)) {
        shown.push_back(&record);
      }
    }
  }
  std::stable_sort(shown.begin(), shown.end(),
                   [](const Record* a, const Record* b) { return a->time < b->time; });
  output->BeginList();
  const Zone zone(device.zone);
  for (const Record* record : shown) {
    output->PutRecord(*record, device, thresholds, zone);
  }
  output->EndList(device);
  PrintDamage(device);
  return outcome.Code();
}

int RunVerify(const Options& options) {
  const auto output = MakeOutput(options.format);
  Outcome outcome(*output);
  for (const std::string& input : options.inputs) {
    for (const ReadResult& result : ReadAll(input, options.kind)) {
      if (outcome.Report(result)) {
        output->PutVerified(result.contents);
      }
    }
  }
  return outcome.Code();
}

int RunFleet(const Options& options) {
  const auto output = MakeOutput(options.format);
  Outcome outcome(*output);
  const std::vector<std::string> devices = DevicesOf(options.inputs, &outcome);
  const unsigned jobs =
      options.jobs > 0 ? options.jobs : std::max(1U, std::thread::hardware_concurrency());
  // Works in batches to bound the memory. One thread merges all devices, because a time zone
  // applies to the whole process.
  const size_t batch = size_t{16} * jobs;
  Fleet fleet;
  for (size_t begin = 0; begin < devices.size(); begin += batch) {
    const std::vector<std::string> paths(
        devices.begin() + static_cast<ptrdiff_t>(begin),
        devices.begin() + static_cast<ptrdiff_t>(std::min(begin + batch, devices.size())));
    auto results = ReadInParallel(paths, options.kind, jobs);
    for (size_t i = 0; i < paths.size(); ++i) {
      DeviceBuilder builder(options.zone, options.salvage);
      AddTo(&builder, std::move(results[i]), &outcome);
      Device device = builder.Finish();
      KeepPeriod(&device, options);
      const Zone zone(device.zone);
      const Summary summary = Summarise(device, GroupBy::kNothing, zone);
      output->PutDevice(paths[i], device, summary, zone);
      PrintDamage(device);
      fleet.Add(paths[i], summary);
    }
    ShowProgress(std::min(begin + batch, devices.size()), devices.size());
  }
  fleet.Finish();
  output->PutFleet(fleet, options.top);
  return outcome.Code();
}

int RunReplay(const Options& options) {
  const auto output = MakeOutput(options.format);
  Outcome outcome(*output);
  const Device device = ReadDevice(options, &outcome);
  Replay replay = ReplayRecorded(device, options.calibration, options.fit_sensor);
  if (options.fit_sensor && !replay.fit) {
    PrintErrorf(
        "--model: no fit: fewer than 20 images, or image quality has no maximum over the raw mean");
    return kFailed;
  }
  for (const Settings& settings : options.variants) {
    AddVariant(settings, &replay);
  }
  output->PutReplay(replay, device, options.check_replay, Zone(device.zone));
  PrintDamage(device);
  const int code = outcome.Code();
  if (code != kDone) {
    return code;
  }
  if (replay.runs.empty() || (options.check_replay && replay.checks == 0)) {
    PrintErrorf("no dump has a successful bring-up, the exposure controller and attempts");
    return kNoRecord;
  }
  return options.check_replay && !replay.Agrees() ? kDiffers : kDone;
}

int RunCompare(const Options& options) {
  const auto output = MakeOutput(options.format);
  Outcome outcome(*output);
  const Device a = ReadDevice(options, &outcome);
  const std::vector<Record>& a_attempts = a.Of(RecordKind::kAttempt).records;
  const Zone zone(a.zone);
  const Thresholds thresholds = Thresholds::Of(a.exposure);
  PrintDamage(a);
  Comparison comparison;
  bool has_both = !a_attempts.empty();
  if (options.since_when) {
    comparison = CompareSinceWhen(a_attempts, thresholds, zone);
  } else {
    Options side_b = options;
    side_b.inputs = options.side_b_inputs;
    const Device b = ReadDevice(side_b, &outcome);
    const std::vector<Record>& b_attempts = b.Of(RecordKind::kAttempt).records;
    PrintDamage(b);
    comparison = Compare(a_attempts, b_attempts, thresholds);
    has_both &= !b_attempts.empty();
  }
  output->PutComparison(comparison, zone);
  const int code = outcome.Code();
  if (code == kFailed || code == kNoRecord || has_both) {
    return options.exit_code && comparison.differs && code != kFailed ? kDiffers : code;
  }
  PrintErrorf("one side has no attempts");
  return kNoRecord;
}

}  // namespace fp_inspect
