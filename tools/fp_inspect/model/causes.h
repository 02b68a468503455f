// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "reading/record.h"

namespace fp_inspect {

// The limits between good and bad values: those of the exposure controller, from its settings in a
// dump or else its defaults, and the coverage below which rejects become frequent.
struct Thresholds {
  static Thresholds Of(const std::optional<Exposure>& exposure);

  int32_t iq = 28;
  int32_t high_raw_mean = 2500;
  int32_t low_raw_mean = 1500;
  float coverage = 60;  // percent
  bool from_dump = false;
};

// Why an attempt failed. Ids are stable: they are only added to.
struct Cause {
  std::string id;
  std::string title;
  std::string meaning;    // what it means to those who tune
  bool is_light = false;  // shows too much or too little light
};

// The cause of a failed attempt, which is one without a good image or one that was rejected.
Cause CauseOf(const Record& record, const Thresholds& thresholds);

bool IsFailed(const AuthEventG7& attempt);
bool IsRejected(const AuthEventG7& attempt);

// The name of an acquisition error ("TOO_DARK") and the reason of the matcher ("Low quality"),
// empty where a record has none.
std::string AcquisitionError(const Record& record);
std::string MatcherReason(const Record& record);

}  // namespace fp_inspect
