// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <string>
#include <vector>

#include "fp_utils/auth_event.h"
#include "scenario.h"

namespace fp_service {

// Counts the rejected attempts of a scenario by phase, and by how much of the sensor the finger
// covered. Trivially copyable, so that processes can share it.
class Report {
 public:
  // Attempts of enrolled fingers with a good image, and how many of them were rejected.
  struct Tally {
    int attempts = 0;
    int rejects = 0;

    void Count(int reject);
    std::string Text() const;  // "k of n", or "-" for none
    std::string TextWithPercent() const;
  };
  struct PhaseTally {
    Tally all = {};
    Tally before_first_step = {};
    Tally after_last_step = {};
    int steps = 0;
    float exposure_begin = 0;  // milliseconds
    float exposure_end = 0;
  };
  struct Band {
    const char* name;
    float from_percent;  // up to the next band's
    Tally tally = {};
  };

  void Calibrated(float exposure_ms) { calibrated_ms_ = exposure_ms; }
  void BeginPhase(float exposure_ms);

  // Counts an attempt, of an enrolled finger or not, and the exposure steps that it caused.
  void Count(const android::fp_utils::AuthEventG7& event, bool enrolled, int steps,
             float exposure_ms);

  // The counts of the current phase so far.
  const Tally& GetPhase() const { return phases_[current_].all; }

  // Returns a table of the phases of `scenario` with exposure control (this report) and without it,
  // the phases in which control made a difference, and a table by coverage.
  std::string Compare(const Report& without, const Scenario& scenario) const;

 private:
  void CountCoverage(const android::fp_utils::AuthEventG7& event, int reject);
  std::string PhaseTable(const Report& without, const std::vector<std::string>& names) const;
  std::string Findings(const Report& without, const std::vector<std::string>& names) const;
  std::string CoverageTable() const;

  // By phase, starting at 1; element 0 is the time before the first phase.
  std::array<PhaseTally, kMaxPhases + 1> phases_ = {};
  size_t current_ = 0;
  float calibrated_ms_ = 0;
  std::array<Band, 4> bands_ = {{{.name = "below 40%", .from_percent = 0},
                                 {.name = "40% to 60%", .from_percent = 40},
                                 {.name = "60% to 90%", .from_percent = 60},
                                 {.name = "from 90%", .from_percent = 90}}};
};

}  // namespace fp_service
