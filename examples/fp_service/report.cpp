// SPDX-License-Identifier: Apache-2.0
#include "report.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace fp_service {
namespace {

constexpr int32_t kGoodQuality = 30;

}  // namespace

void Report::BeginPhase(const std::string& name, float exposure_ms) {
  phases_.push_back({.name = name, .exposure_begin = exposure_ms, .exposure_end = exposure_ms});
}

Report::PhaseTally& Report::Current(float exposure_ms) {
  if (phases_.empty()) {
    BeginPhase("day", exposure_ms);
  }
  return phases_.back();
}

void Report::CountReject(PhaseTally& phase, int reject) {
  std::vector tallies = {&phase.all, &phase.after_last_step};
  if (phase.steps == 0) {
    tallies.push_back(&phase.before_first_step);
  }
  for (Tally* tally : tallies) {
    ++tally->attempts;
    tally->rejects += reject;
  }
}

// What failed for the light says nothing about coverage.
void Report::CountCoverage(const android::fp_utils::AuthEventG7& event, int reject) {
  const auto band = std::find_if(bands_.rbegin(), bands_.rend(), [&](const Band& candidate) {
    return event.t_cov >= candidate.from_percent;
  });
  if (event.iq >= kGoodQuality && band != bands_.rend()) {
    ++band->tally.attempts;
    band->tally.rejects += reject;
  }
}

void Report::Count(const android::fp_utils::AuthEventG7& event, bool enrolled, int steps,
                   float exposure_ms) {
  PhaseTally& phase = Current(exposure_ms);
  // A stranger's finger is rejected rightly; it says nothing about false rejects.
  if (enrolled && event.acquired_info == android::fp_utils::AuthEvent::kAcquiredGood) {
    const int reject = event.auth_successful ? 0 : 1;
    CountReject(phase, reject);
    CountCoverage(event, reject);
  }
  if (steps > 0) {
    phase.steps += steps;
    phase.after_last_step = {};
  }
  phase.exposure_end = exposure_ms;
}

std::string Report::Text() const {
  std::string text = fmt::format("{:<22}{:>9}{:>9}{:>9}{:>16}{:>7}\n", "phase", "attempts",
                                 "rejects", "FRR", "exposure ms", "steps");
  auto out = std::back_inserter(text);
  for (const PhaseTally& phase : phases_) {
    fmt::format_to(out, "{:<22}{:>9}{:>9}{:>8.1f}%{:>8.1f} ->{:>5.1f}{:>7}\n", phase.name,
                   phase.all.attempts, phase.all.rejects, phase.all.Frr(), phase.exposure_begin,
                   phase.exposure_end, phase.steps);
  }
  for (const PhaseTally& phase : phases_) {
    if (phase.steps > 0) {
      fmt::format_to(out,
                     "{}: false rejects {:.1f}% before the first of {} steps, {:.1f}% after the "
                     "last\n",
                     phase.name, phase.before_first_step.Frr(), phase.steps,
                     phase.after_last_step.Frr());
    }
  }
  fmt::format_to(out, "\n{:<22}{:>9}{:>9}{:>9}   of images with quality {} or more\n",
                 "coverage of sensor", "attempts", "rejects", "FRR", kGoodQuality);
  for (const Band& band : bands_) {
    fmt::format_to(out, "{:<22}{:>9}{:>9}{:>8.1f}%\n", band.name, band.tally.attempts,
                   band.tally.rejects, band.tally.Frr());
  }
  return text;
}

}  // namespace fp_service
