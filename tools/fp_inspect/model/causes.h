// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "reading/record.h"

namespace fp_inspect {

// The limits between good and bad values. Those of the exposure controller come from its settings
// in a dump; without one, they are its defaults.
struct Thresholds {
  static Thresholds Of(const std::optional<Exposure>& exposure);

  int32_t iq = 28;
  int32_t high_raw_mean = 2500;
  int32_t low_raw_mean = 1500;
  float coverage = 60;  // percent; rejects become frequent below it
  bool from_dump = false;
};

// Why an attempt failed. Ids never change, but new ones may be added.
struct Cause {
  std::string id;
  std::string title;
  std::string meaning;    // hint for the user
  bool is_light = false;  // too much or too little light
};

// The cause of a failed attempt. An attempt fails if it has no good image or is rejected.
Cause CauseOf(const Record& record, const Thresholds& thresholds);

bool IsFailed(const AuthEventG7& attempt);
bool IsRejected(const AuthEventG7& attempt);

// The name of an acquisition error ("TOO_DARK") and the reason of the matcher ("Low quality"),
// empty where a record has none.
std::string AcquisitionError(const Record& record);
std::string MatcherReason(const Record& record);

}  // namespace fp_inspect
