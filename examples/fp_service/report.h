// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <deque>
#include <string>
#include <vector>

namespace fp_service {

// What exposure control did for the user, in figures.
class Report {
 public:
  void BeginPhase(const std::string& name, float exposure_ms);

  // One attempt with its matching result, and the exposure steps that it led to.
  void Count(bool enrolled, bool successful, int steps, float exposure_ms);

  // A table of the phases, and how the false-reject rate changed in each phase with steps.
  std::string Text() const;

 private:
  struct Tally {
    int attempts = 0;
    int rejects = 0;

    double Frr() const { return attempts == 0 ? 0 : 100.0 * rejects / attempts; }
  };
  struct PhaseTally {
    std::string name;
    float exposure_begin;
    float exposure_end;
    Tally all = {};
    Tally before_first_step = {};
    Tally after_last_step = {};
    int steps = 0;
  };

  std::vector<PhaseTally> phases_;
};

}  // namespace fp_service
