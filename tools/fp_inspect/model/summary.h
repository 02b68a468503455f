// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "model/causes.h"
#include "model/statistics.h"
#include "model/timeline.h"

namespace fp_inspect {

// `k` of `n` attempts.
struct Share {
  double Value() const { return n == 0 ? 0 : static_cast<double>(k) / static_cast<double>(n); }
  // Whether there are enough for a meaningful percentage.
  bool IsLarge() const { return n >= 20; }
  Interval Range(double z = kZ95) const { return WilsonInterval(k, n, z); }

  size_t k = 0;
  size_t n = 0;
};

struct CauseCount {
  Cause cause;
  Share of_failures;
  std::string note;  // further evidence in the inputs
};

// Something notable in the data, such as a contradiction. Ids never change.
struct Finding {
  std::string id;
  std::string text;
  size_t k = 0;
  size_t n = 0;
};

// The attempts of a period.
struct Tally {
  std::string label;
  int64_t first = 0;  // seconds since the epoch; 0 without attempts
  int64_t last = 0;
  size_t attempts = 0;
  size_t bursts = 0;
  Share no_image;                  // of all attempts
  Share rejected;                  // of those with an image
  std::vector<CauseCount> causes;  // the most frequent first
};

struct Summary {
  Tally all;
  std::vector<Tally> periods;
  std::vector<Finding> findings;
  Thresholds thresholds;
  size_t enrolled = 0;  // successful additions
  size_t enroll_failed = 0;
  size_t deleted = 0;
  size_t critical_errors = 0;
  size_t finger_sizes = 0;
  size_t salvaged = 0;
};

enum class GroupBy { kNothing, kDay, kHour, kBurst };

Tally TallyOf(const std::vector<Record>& attempts, const Thresholds& thresholds);
Summary Summarise(const Device& device, GroupBy by, const Zone& zone);

}  // namespace fp_inspect
