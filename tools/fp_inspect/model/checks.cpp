// SPDX-License-Identifier: Apache-2.0
#include "model/checks.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace fp_inspect {
namespace {

constexpr char kPanelNotLit[] = "failed to enable lhbm";

// A check adds its findings to the summary. To add a check, write a function and list it in
// kChecks.
using Check = void (*)(const Device& device, Summary* summary);

void DarkWhileDisplayFailed(const Device& device, Summary* summary) {
  std::set<int64_t> failures;
  for (const Record& error : device.Of(RecordKind::kError).records) {
    if (std::get<std::string>(error.value).find(kPanelNotLit) != std::string::npos) {
      failures.insert(error.time);
    }
  }
  size_t dark = 0;
  size_t explained = 0;
  for (const Record& record : device.Of(RecordKind::kAttempt).records) {
    if (AcquisitionError(record) == "TOO_DARK") {
      ++dark;
      explained += failures.contains(record.time) ? 1 : 0;
    }
  }
  if (explained == 0) {
    return;
  }
  const std::string note =
      fmt::format("{} of {} coincide with \"{}\"", explained, dark, kPanelNotLit);
  for (CauseCount& count : summary->all.causes) {
    if (count.cause.id == "no_image.too_dark") {
      count.note = note;
    }
  }
  summary->findings.push_back(
      {"dark_at_display_error",
       "TOO_DARK: " + note + ": the display HAL failed; exposure is not the cause", explained,
       dark});
}

// How many of the rejects that the matcher calls "Low quality" have a good iq.
void LowQualityContradicted(const Device& device, Summary* summary) {
  const Thresholds& limits = summary->thresholds;
  size_t reported = 0;
  size_t good = 0;
  size_t uncovered = 0;
  for (const Record& record : device.Of(RecordKind::kAttempt).records) {
    if (MatcherReason(record) == "Low quality") {
      ++reported;
      const bool is_good = record.Attempt()->iq >= limits.iq;
      good += is_good ? 1 : 0;
      uncovered += is_good && record.Attempt()->t_cov < limits.coverage ? 1 : 0;
    }
  }
  if (good == 0) {
    return;
  }
  summary->findings.push_back(
      {"low_quality_contradicted",
       fmt::format(
           "{} of {} \"Low quality\" rejects have a good iq (>= {}), {} of these low coverage (< "
           "{:.0f} %): the reason contradicts the values",
           good, reported, limits.iq, uncovered, limits.coverage),
       good, reported});
}

// A step empties the sample. If a full sample calls for a step, that step was refused.
void ExposureAtBound(const Device& device, Summary* summary) {
  if (!device.exposure) {
    return;
  }
  const Exposure& exposure = *device.exposure;
  const auto setting = [&](const char* name, double default_value) {
    const auto found = exposure.settings.find(name);
    return found != exposure.settings.end() ? found->second : default_value;
  };
  const Thresholds& limits = summary->thresholds;
  const bool due = exposure.sample_size > 0 &&
                   exposure.sample_size >= setting("kNumberOfAttempts", 10) &&
                   exposure.frr > setting("kFrrThreshold", 20) && exposure.avg_iq < limits.iq;
  const bool is_bright = exposure.avg_raw_mean > limits.high_raw_mean;
  const bool is_dark = exposure.avg_raw_mean < limits.low_raw_mean;
  if (due && (is_bright || is_dark)) {
    summary->findings.push_back(
        {"exposure_at_bound",
         fmt::format(
             "the exposure sample calls for a step {} that was not made: the exposure is at its {} "
             "bound, or not calibrated",
             is_dark ? "up" : "down", is_dark ? "upper" : "lower"),
         exposure.sample_size, exposure.sample_size});
  }
}

void LostRecords(const Device& device, Summary* summary) {
  const Timeline& attempts = device.Of(RecordKind::kAttempt);
  const auto lost = static_cast<size_t>(std::count_if(
      attempts.gaps.begin(), attempts.gaps.end(), [](const Gap& gap) { return gap.lost_past; }));
  if (lost > 0) {
    summary->findings.push_back(
        {"history_lost_past",
         fmt::format("{} of {} gaps precede a history that was not full: its backup file was "
                     "damaged, or the process was killed during a save",
                     lost, attempts.gaps.size()),
         lost, attempts.gaps.size()});
  }
  if (attempts.dropped > 0) {
    summary->findings.push_back(
        {"records_dropped",
         fmt::format("{} attempts of an earlier dump are missing from a later one: the service "
                     "restarted before it saved them, or the backup file was damaged",
                     attempts.dropped),
         attempts.dropped, attempts.records.size()});
  }
}

void BringUp(const Device& device, Summary* summary) {
  if (!device.bring_up.empty() && !device.bring_up.starts_with("Initialization successful")) {
    summary->findings.push_back({"bring_up", "bring-up: " + device.bring_up, 1, 1});
  }
}

constexpr Check kChecks[] = {BringUp, DarkWhileDisplayFailed, LowQualityContradicted,
                             ExposureAtBound, LostRecords};

}  // namespace

void CrossCheck(const Device& device, Summary* summary) {
  for (const Check check : kChecks) {
    check(device, summary);
  }
}

}  // namespace fp_inspect
