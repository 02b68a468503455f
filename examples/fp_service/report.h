// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <string>
#include <vector>

#include "fp_utils/auth_event.h"

namespace fp_service {

// What the day was like for the user, in figures: by phase, what exposure control did, and by how
// much of the sensor the finger covered.
class Report {
 public:
  void BeginPhase(const std::string& name, float exposure_ms);

  // One attempt of a finger that is enrolled or not, and the exposure steps that it led to.
  void Count(const android::fp_utils::AuthEventG7& event, bool enrolled, int steps,
             float exposure_ms);

  // A table of the phases, how the false-reject rate changed in each phase with steps, and a table
  // of coverage.
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

  // A coverage from this band's lower bound up to the next one's.
  struct Band {
    const char* name;
    float from_percent;
    Tally tally = {};
  };

  PhaseTally& Current(float exposure_ms);
  static void CountReject(PhaseTally& phase, int reject);
  void CountCoverage(const android::fp_utils::AuthEventG7& event, int reject);

  std::vector<PhaseTally> phases_;
  std::array<Band, 4> bands_ = {{{.name = "below 40%", .from_percent = 0},
                                 {.name = "40% to 60%", .from_percent = 40},
                                 {.name = "60% to 90%", .from_percent = 60},
                                 {.name = "from 90%", .from_percent = 90}}};
};

}  // namespace fp_service
