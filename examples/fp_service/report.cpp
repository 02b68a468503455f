// SPDX-License-Identifier: Apache-2.0
#include "report.h"

#include <fmt/format.h>

#include <iterator>

namespace fp_service {

void Report::BeginPhase(const std::string& name, float exposure_ms) {
  phases_.push_back({.name = name, .exposure_begin = exposure_ms, .exposure_end = exposure_ms});
}

void Report::Count(bool enrolled, bool successful, int steps, float exposure_ms) {
  if (phases_.empty()) {
    BeginPhase("day", exposure_ms);
  }
  PhaseTally& phase = phases_.back();
  // A stranger's finger is rejected rightly; it says nothing about false rejects.
  if (enrolled) {
    const int reject = successful ? 0 : 1;
    for (Tally* tally : {&phase.all, &phase.after_last_step}) {
      ++tally->attempts;
      tally->rejects += reject;
    }
    if (phase.steps == 0) {
      ++phase.before_first_step.attempts;
      phase.before_first_step.rejects += reject;
    }
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
  return text;
}

}  // namespace fp_service
