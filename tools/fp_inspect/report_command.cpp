// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <filesystem>

#include "commands.h"
#include "inputs.h"
#include "model/compare.h"
#include "model/replay.h"
#include "output/output.h"
#include "output/report.h"

namespace fp_inspect {
namespace {

namespace fs = std::filesystem;

void KeepPeriod(Replay* replay, const Period& period) {
  for (Run& run : replay->runs) {
    std::erase_if(run.recorded.steps,
                  [&](const ExposureStep& step) { return !period.Contains(run.times[step.at]); });
  }
}

// Keeps the messages, because a page has them too.
class MessageOutput : public Output {
 public:
  void PutFailure(const std::string& /*input*/, const std::string& text) override { Keep(text); }
  void PutWarning(const std::string& /*input*/, const std::string& text) override { Keep(text); }

  std::vector<std::string> messages;

 private:
  void Keep(const std::string& text) {
    PrintError(text);
    messages.push_back(text);
  }
};

bool IsOneOf(const std::string& path, const std::vector<std::string>& files) {
  return std::any_of(files.begin(), files.end(), [&](const std::string& file) {
    std::error_code ignored;
    return fs::equivalent(path, file, ignored);
  });
}

ReportSide ReadSide(char letter, const Options& options, Device* device, Outcome* outcome) {
  Options whole = options;  // a replay needs all attempts of a run
  whole.since.clear();
  whole.until.clear();
  *device = ReadDevice(whole, outcome);
  PrintDamage(*device);
  const Zone zone(device->zone);
  Replay replay = ReplayRecorded(*device, options.calibration, false);
  KeepPeriod(&replay, Period::Of(options, zone));
  KeepPeriod(device, options);
  return {letter, fmt::format("{}", fmt::join(options.inputs, ", ")), device,
          Summarise(*device, GroupBy::kNothing, zone), std::move(replay)};
}

}  // namespace

int RunReport(const Options& options) {
  MessageOutput output;
  Outcome outcome(output);
  Report report;
  std::deque<Device> devices;
  std::vector<std::string> inputs;
  for (const auto& group : {options.inputs, options.side_b_inputs}) {
    if (!group.empty()) {
      Options of_group = options;
      of_group.inputs = group;
      const char letter = devices.empty() ? 'A' : 'B';
      Device& device = devices.emplace_back();
      report.sides.push_back(ReadSide(letter, of_group, &device, &outcome));
      inputs.insert(inputs.end(), group.begin(), group.end());
      inputs.insert(inputs.end(), device.sources.begin(), device.sources.end());
    }
  }
  if (devices.size() > 1) {
    report.comparison =
        Compare(devices[0].Of(RecordKind::kAttempt).records,
                devices[1].Of(RecordKind::kAttempt).records, report.sides[0].summary.thresholds);
  }
  report.messages = std::move(output.messages);
  const int code = outcome.Code();
  if (code == kNoRecord) {
    return code;
  }
  const std::optional<std::string> why = IsOneOf(options.page, inputs)
                                             ? "is one of the inputs"
                                             : ReplaceFile(options.page, ReportPage(report));
  if (why) {
    PrintErrorf("{}: {}", options.page, *why);
  }
  return why ? kFailed : code;
}

}  // namespace fp_inspect
