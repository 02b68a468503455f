// SPDX-License-Identifier: Apache-2.0
#include "commands.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <thread>

#include "inputs.h"
#include "model/compare.h"
#include "model/replay.h"
#include "output/output.h"
#include "reading/input.h"

namespace fp_inspect {
namespace {

namespace fs = std::filesystem;

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
  if (replay.runs.empty() || (options.check_replay && replay.check_count == 0)) {
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
