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

// One measure of both sides. Ids never change, but new ones may be added.
struct CompareRow {
  // Whether both sides have enough records for a meaningful share or mean.
  bool IsLarge() const { return a.n >= 20 && b.n >= 20; }
  bool HasInterval() const { return IsLarge() && difference.low <= difference.high; }
  bool IsSignificant() const { return p && *p <= 0.05; }

  std::string id;
  std::string title;
  bool is_share = false;  // otherwise a mean
  BurstSum a = {};        // for a share, `sum` counts records
  BurstSum b = {};
  Interval difference = {};      // of b minus a at 95 %; NaN if there is none
  std::optional<double> p = {};  // corrected for the number of rows; only of tested rows
};

// A change within one timeline: the time of the first attempt after it, and the earliest and latest
// times that fit the data almost as well. In seconds since the epoch.
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

// Compares two groups of attempts, using the same thresholds for both.
Comparison Compare(const std::vector<Record>& a, const std::vector<Record>& b,
                   const Thresholds& thresholds);

// Compares the attempts of one timeline before and after the change that its bursts show best. If
// there is no change, the result has no rows.
Comparison CompareSinceWhen(const std::vector<Record>& attempts, const Thresholds& thresholds,
                            const Zone& zone);

}  // namespace fp_inspect
