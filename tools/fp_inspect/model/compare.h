// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "model/causes.h"
#include "model/statistics.h"
#include "model/zone.h"
#include "reading/record.h"

namespace fp_inspect {

// What is measured on both sides. Ids are stable: they are only added to.
struct CompareRow {
  // A share of few records says nothing, nor does a mean.
  bool IsLarge() const { return a.n >= 20 && b.n >= 20; }
  bool HasInterval() const { return IsLarge() && difference.low <= difference.high; }
  bool IsShown() const { return p && *p <= 0.05; }

  std::string id;
  std::string title;
  bool is_share = false;  // else a mean
  BurstSum a = {};        // of a share, `sum` is k
  BurstSum b = {};
  Interval difference = {};      // of b minus a at 95 %, else NaN
  std::optional<double> p = {};  // corrected for the number of rows; of rows that are tested
};

// In one timeline: the first attempt behind the change, and the first and last attempts that the
// data hardly tell from it. Seconds since the epoch.
struct Change {
  int64_t at = 0;
  int64_t earliest = 0;
  int64_t latest = 0;
};

struct Comparison {
  std::vector<CompareRow> rows;
  size_t attempts[2] = {};
  size_t bursts[2] = {};
  size_t tested = 0;  // rows
  bool differs = false;
  std::optional<Change> change = {};
  std::string verdict = {};  // one sentence
};

// Two groups of attempts, by one set of thresholds.
Comparison Compare(const std::vector<Record>& a, const std::vector<Record>& b,
                   const Thresholds& thresholds);

// One timeline before and behind the change that its bursts show best. Without one there are no
// rows.
Comparison CompareSinceWhen(const std::vector<Record>& attempts, const Thresholds& thresholds,
                            const Zone& zone);

}  // namespace fp_inspect
