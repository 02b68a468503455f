// SPDX-License-Identifier: Apache-2.0
#include "report.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace fp_service {
namespace {

constexpr int32_t kMinQuality = 30;

// The names of the rows: one for the time before the first phase, then one for each phase.
std::vector<std::string> RowNames(const Scenario& scenario) {
  std::vector<std::string> names = {"before the first phase"};
  for (const Event& event : scenario) {
    if (const auto* phase = std::get_if<Phase>(&event.data)) {
      names.push_back(phase->name);
    }
  }
  return names;
}

size_t WidthOf(const std::vector<std::string>& names) {
  size_t width = 0;
  for (const std::string& name : names) {
    width = std::max(width, name.size());
  }
  return width;
}

// Compares the rejects of the same attempts. A difference counts only if it exceeds twice its
// standard deviation.
const char* DescribeEffect(const Report::Tally& with, const Report::Tally& without) {
  const int fewer = without.rejects - with.rejects;
  if (std::abs(fewer) <= 2 * std::sqrt(with.rejects + without.rejects)) {
    return "no clear difference";
  }
  return fewer > 0 ? "exposure control helped" : "exposure control made it worse";
}

}  // namespace

void Report::Tally::Count(int reject) {
  ++attempts;
  rejects += reject;
}

std::string Report::Tally::Text() const {
  return attempts == 0 ? "-" : fmt::format("{} of {}", rejects, attempts);
}

std::string Report::Tally::TextWithPercent() const {
  return attempts == 0 ? "-" : fmt::format("{} {:5.1f}%", Text(), 100.0 * rejects / attempts);
}

void Report::BeginPhase(float exposure_ms) {
  PhaseTally& phase = phases_[++current_];
  phase.exposure_begin = exposure_ms;
  phase.exposure_end = exposure_ms;
}

// Leaves out images of poor quality: the light may be the cause of their rejection.
void Report::CountCoverage(const android::fp_utils::AuthEventG7& event, int reject) {
  const auto band = std::find_if(bands_.rbegin(), bands_.rend(), [&](const Band& candidate) {
    return event.t_cov >= candidate.from_percent;
  });
  if (event.iq >= kMinQuality && band != bands_.rend()) {
    band->tally.Count(reject);
  }
}

void Report::Count(const android::fp_utils::AuthEventG7& event, bool enrolled, int steps,
                   float exposure_ms) {
  PhaseTally& phase = phases_[current_];
  // Rejecting a finger that is not enrolled is correct.
  if (enrolled && event.acquired_info == android::fp_utils::AuthEvent::kAcquiredGood) {
    const int reject = event.auth_successful ? 0 : 1;
    phase.all.Count(reject);
    phase.after_last_step.Count(reject);
    if (phase.steps == 0) {
      phase.before_first_step.Count(reject);
    }
    CountCoverage(event, reject);
  }
  if (steps > 0) {
    phase.steps += steps;
    phase.after_last_step = {};
  }
  phase.exposure_end = exposure_ms;
}

std::string Report::PhaseTable(const Report& without, const std::vector<std::string>& names) const {
  const size_t width = WidthOf(names);
  std::string text =
      fmt::format("{:<{}} {:^42}   {:>16}\n", "", width, "with exposure control", "without it") +
      fmt::format("{:<{}} {:>16} {:>18} {:>6}   {:>16}\n", "phase", width, "false rejects",
                  "exposure, ms", "steps", "false rejects");
  Tally all;
  Tally all_without;
  const auto row = [&](const std::string& name, const Tally& with, const std::string& exposure,
                       const std::string& steps, const Tally& other) {
    text += fmt::format("{:<{}} {:>16} {:>18} {:>6}   {:>16}\n", name, width,
                        with.TextWithPercent(), exposure, steps, other.TextWithPercent());
  };
  for (size_t i = 0; i < names.size(); ++i) {
    const PhaseTally& phase = phases_[i];
    const Tally& other = without.phases_[i].all;
    if (i > 0 || phase.all.attempts > 0) {
      row(names[i], phase.all,
          fmt::format("{:.1f} -> {:5.1f}", phase.exposure_begin, phase.exposure_end),
          fmt::format("{}", phase.steps), other);
    }
    all.attempts += phase.all.attempts;
    all.rejects += phase.all.rejects;
    all_without.attempts += other.attempts;
    all_without.rejects += other.rejects;
  }
  row("all", all, "", "", all_without);
  return text;
}

std::string Report::Findings(const Report& without, const std::vector<std::string>& names) const {
  std::string text;
  for (size_t i = 0; i < names.size(); ++i) {
    const PhaseTally& phase = phases_[i];
    const Tally& other = without.phases_[i].all;
    if (phase.steps == 0 && phase.all.rejects == other.rejects) {
      continue;
    }
    text += fmt::format("{}: {}, {} false rejects with it and {} without\n", names[i],
                        DescribeEffect(phase.all, other), phase.all.rejects, other.rejects);
    if (phase.exposure_begin != calibrated_ms_ && i > 0) {
      text += fmt::format("  it began at {:.1f} ms because of earlier steps, not at {:.1f}\n",
                          phase.exposure_begin, calibrated_ms_);
    }
    if (phase.steps > 0) {
      text += fmt::format("  rejected before the first step: {}; after the last: {}\n",
                          phase.before_first_step.Text(), phase.after_last_step.Text());
    }
  }
  return text.empty() ? "exposure control made no difference\n" : text;
}

std::string Report::CoverageTable() const {
  std::string text = fmt::format(
      "false rejects by coverage of the sensor, of images with quality {} or more\n", kMinQuality);
  for (const Band& band : bands_) {
    text += fmt::format("{:<12}{:>16}\n", band.name, band.tally.TextWithPercent());
  }
  return text;
}

std::string Report::Compare(const Report& without, const Scenario& scenario) const {
  const std::vector<std::string> names = RowNames(scenario);
  return PhaseTable(without, names) + "\n" + Findings(without, names) + "\n" + CoverageTable();
}

}  // namespace fp_service
