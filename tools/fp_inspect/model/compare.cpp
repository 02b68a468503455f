// SPDX-License-Identifier: Apache-2.0
#include "model/compare.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "model/timeline.h"

namespace fp_inspect {
namespace {

// A share is tested only if, on both sides together, this many records count and as many do not.
constexpr double kMinPerOutcome = 5;

struct Observation {
  const AuthEventG7& attempt;
  bool g7;
  std::string cause;  // of a failure
  const Thresholds& thresholds;

  bool HasImage() const { return attempt.acquired_info == AuthEventG7::kAcquiredGood; }
  bool IsCovered() const { return HasImage() && g7 && attempt.t_cov >= thresholds.coverage; }
  bool IsUncovered() const { return HasImage() && g7 && attempt.t_cov < thresholds.coverage; }
};

using Value = std::optional<double>;

Value ValueIf(bool counts, double value) {
  return counts && std::isfinite(value) ? Value(value) : std::nullopt;
}

// A row of the comparison; `value_of` returns its value for an attempt, or nothing if the row does
// not apply. To add a row, add an entry. Light changes quality and raw mean, but so does a finger
// that covers little of the sensor. The rows about light therefore use only covered images, and
// follow the rows about coverage.
struct Measure {
  const char* id;
  const char* title;
  bool is_share;
  Value (*value_of)(const Observation&);
};

constexpr Measure kMeasures[] = {
    {"no_image", "no image", true,
     [](const Observation& s) { return Value(s.HasImage() ? 0 : 1); }},
    {"rejected", "rejected", true,
     [](const Observation& s) { return ValueIf(s.HasImage(), IsRejected(s.attempt)); }},
    {"t_cov", "coverage (%)", false,
     [](const Observation& s) { return ValueIf(s.HasImage() && s.g7, s.attempt.t_cov); }},
    {"rejected.covered", "rejected (covered)", true,
     [](const Observation& s) { return ValueIf(s.IsCovered(), IsRejected(s.attempt)); }},
    {"rejected.uncovered", "rejected (not covered)", true,
     [](const Observation& s) { return ValueIf(s.IsUncovered(), IsRejected(s.attempt)); }},
    {"iq", "image quality (covered)", false,
     [](const Observation& s) { return ValueIf(s.IsCovered(), s.attempt.iq); }},
    {"rawmean_delta", "raw mean (covered)", false,
     [](const Observation& s) { return ValueIf(s.IsCovered(), s.attempt.rawmean_delta); }},
    {"latency", "latency (ms)", false,
     [](const Observation& s) { return ValueIf(s.HasImage(), s.attempt.latency); }},
};

Value IsCause(const Observation& observation, const Cause& cause) {
  const bool counts = cause.id.starts_with("no_image.") ||
                      (cause.is_light ? observation.IsCovered() : observation.HasImage());
  return ValueIf(counts, observation.cause == cause.id);
}

// The values of all rows, by burst. The bursts of the first group come first.
class Table {
 public:
  explicit Table(const Thresholds& thresholds) : thresholds_(thresholds) {}

  void Add(const std::vector<Record>& attempts) {
    const std::vector<size_t> starts = BurstStarts(attempts);
    for (size_t i = 0, burst = 0; i < attempts.size(); ++i) {
      if (burst < starts.size() && starts[burst] == i) {
        ++burst;
        times_.push_back(attempts[i].time);
        observations_.emplace_back();
      }
      const AuthEventG7& attempt = *attempts[i].Attempt();
      const Cause cause = IsFailed(attempt) ? CauseOf(attempts[i], thresholds_) : Cause();
      if (!cause.id.empty()) {
        causes_[cause.id] = cause;
      }
      observations_.back().push_back({attempt, attempts[i].g7, cause.id, thresholds_});
    }
  }

  void Finish() {
    for (const Measure& measure : kMeasures) {
      AddRow({.id = measure.id, .title = measure.title, .is_share = measure.is_share},
             measure.value_of);
    }
    for (const auto& [id, cause] : causes_) {
      AddRow(
          {.id = "cause." + id, .title = cause.title, .is_share = true},
          [&cause = cause](const Observation& observation) { return IsCause(observation, cause); });
    }
  }

  // Puts the bursts before `split` on side A and the others on side B.
  void SplitAt(size_t split, Comparison* comparison) const {
    comparison->rows.resize(rows_.size());
    for (size_t i = 0; i < rows_.size(); ++i) {
      const std::optional<double> p = comparison->rows[i].p;
      comparison->rows[i] = Split(rows_[i], bursts_[i], split);
      comparison->rows[i].p = p;
    }
    for (size_t burst = 0; burst < observations_.size(); ++burst) {
      const size_t side = burst < split ? 0 : 1;
      comparison->attempts[side] += observations_[burst].size();
      ++comparison->bursts[side];
    }
  }

  // Tests the rows that have enough records. With `at_any_split` it is enough that some split gives
  // both sides enough.
  template <typename Statistic>
  void Test(bool at_any_split, const Statistic& statistic, Comparison* comparison) const {
    std::vector<Bursts> tested;
    std::vector<CompareRow*> tested_rows;
    for (size_t i = 0; i < rows_.size(); ++i) {
      CompareRow& row = comparison->rows[i];
      const BurstSum all = Total(bursts_[i]);
      const double smallest = std::min(all.sum, static_cast<double>(all.n) - all.sum);
      if ((at_any_split ? all.n >= 40 : row.IsLarge()) &&
          (!row.is_share || smallest >= kMinPerOutcome)) {
        tested.push_back(bursts_[i]);
        tested_rows.push_back(&row);
      }
    }
    const std::vector<double> p = Holm(PermutationTest(tested, statistic));
    comparison->tested = p.size();
    for (size_t i = 0; i < p.size(); ++i) {
      tested_rows[i]->p = p[i];
      comparison->differs |= tested_rows[i]->IsSignificant();
    }
  }

  const std::vector<CompareRow>& Rows() const { return rows_; }
  const Bursts& BurstsOf(size_t row) const { return bursts_[row]; }
  int64_t TimeOf(size_t burst) const { return times_[burst]; }
  size_t CountBursts() const { return observations_.size(); }

 private:
  template <typename ValueOf>
  void AddRow(CompareRow row, const ValueOf& value_of) {
    Bursts bursts;
    for (const auto& burst : observations_) {
      bursts.emplace_back();
      for (const Observation& observation : burst) {
        if (const Value value = value_of(observation)) {
          ++bursts.back().n;
          bursts.back().sum += *value;
        }
      }
    }
    rows_.push_back(std::move(row));
    bursts_.push_back(std::move(bursts));
  }

  static CompareRow Split(CompareRow row, const Bursts& bursts, size_t split) {
    row.a = Total(std::span(bursts).first(split));
    row.b = Total(std::span(bursts).subspan(split));
    if (row.IsLarge()) {
      row.difference = row.is_share ? NewcombeInterval(static_cast<size_t>(row.a.sum), row.a.n,
                                                       static_cast<size_t>(row.b.sum), row.b.n)
                                    : MeanInterval(bursts, split);
    }
    return row;
  }

  const Thresholds& thresholds_;
  std::map<std::string, Cause> causes_;                 // by id
  std::vector<std::vector<Observation>> observations_;  // by burst
  std::vector<int64_t> times_;
  std::vector<CompareRow> rows_;
  std::vector<Bursts> bursts_;
};

std::string Side(const CompareRow& row, const BurstSum& side) {
  const double mean = side.sum / static_cast<double>(side.n);
  return row.is_share ? fmt::format("{:.0f} %", 100 * mean) : fmt::format("{:.0f}", mean);
}

std::string Evidence(const Comparison& comparison, const CompareRow& row) {
  const double scale = row.is_share ? 100 : 1;
  return fmt::format("{}p = {:.2g} after correction for {} rows, {} and {} bursts",
                     row.HasInterval()
                         ? fmt::format("95 % interval of the difference {:+.0f} to {:+.0f}, ",
                                       scale * row.difference.low, scale * row.difference.high)
                         : "",
                     *row.p, comparison.tested, comparison.bursts[0], comparison.bursts[1]);
}

const CompareRow& Find(const Comparison& comparison, const std::string& id) {
  return *std::find_if(comparison.rows.begin(), comparison.rows.end(),
                       [&](const CompareRow& row) { return row.id == id; });
}

// States the evidence of one row, and names the other significant rows.
std::string DescribeDifference(const Comparison& comparison, const CompareRow& row,
                               const std::string& a, const std::string& b) {
  std::string text = fmt::format("{} evidence that {} and {} differ: {} {} vs. {} ({})",
                                 *row.p <= 0.01 ? "Strong" : "Moderate", a, b, row.title,
                                 Side(row, row.a), Side(row, row.b), Evidence(comparison, row));
  const char* separator = "; also ";
  for (const CompareRow& other : comparison.rows) {
    if (other.IsSignificant() && &other != &row) {
      text += separator + other.title;
      separator = " and ";
    }
  }
  const CompareRow& covered = Find(comparison, "rejected.covered");
  const bool is_coverage =
      Find(comparison, "t_cov").IsSignificant() && covered.p && !covered.IsSignificant();
  return text + (is_coverage ? "; no significant difference in rejects of covered images." : ".");
}

std::string DescribeNoDifference(const Comparison& comparison) {
  if (comparison.tested == 0) {
    return "No significant difference: too few records or failures to test any row.";
  }
  const size_t bursts = comparison.bursts[0] + comparison.bursts[1];
  const double smallest =
      SmallestP(bursts, comparison.bursts[0]) * static_cast<double>(comparison.tested);
  if (smallest > 0.05) {
    return fmt::format("No significant difference: {} and {} bursts are too few to test {} rows.",
                       comparison.bursts[0], comparison.bursts[1], comparison.tested);
  }
  double p = 1;
  for (const CompareRow& row : comparison.rows) {
    p = std::min(p, row.p.value_or(1));
  }
  return fmt::format(
      "No significant difference: the smallest corrected p is {:.2g} ({} rows, {} and {} bursts).",
      p, comparison.tested, comparison.bursts[0], comparison.bursts[1]);
}

}  // namespace

Comparison Compare(const std::vector<Record>& a, const std::vector<Record>& b,
                   const Thresholds& thresholds) {
  Table table(thresholds);
  table.Add(a);
  const size_t split = table.CountBursts();
  table.Add(b);
  table.Finish();
  Comparison comparison;
  table.SplitAt(split, &comparison);
  table.Test(
      false, [&](std::span<const BurstSum> row) { return Distance(row, split); }, &comparison);
  const auto first = std::find_if(comparison.rows.begin(), comparison.rows.end(),
                                  [](const CompareRow& row) { return row.IsSignificant(); });
  comparison.verdict = comparison.differs ? DescribeDifference(comparison, *first, "A", "B")
                                          : DescribeNoDifference(comparison);
  return comparison;
}

Comparison CompareSinceWhen(const std::vector<Record>& attempts, const Thresholds& thresholds,
                            const Zone& zone) {
  Table table(thresholds);
  table.Add(attempts);
  table.Finish();
  const auto largest = [](std::span<const BurstSum> row) { return LargestDistance(row).distance; };
  Comparison comparison = {.rows = table.Rows()};
  table.Test(true, largest, &comparison);
  if (!comparison.differs) {
    comparison.rows.clear();
    comparison.verdict = fmt::format("No significant change in {} attempts ({} bursts).",
                                     attempts.size(), table.CountBursts());
    return comparison;
  }
  // The row with the smallest p determines the time; of several such rows, the first.
  const auto best = std::min_element(
      comparison.rows.begin(), comparison.rows.end(),
      [](const CompareRow& x, const CompareRow& y) { return x.p.value_or(2) < y.p.value_or(2); });
  const Bursts& bursts = table.BurstsOf(static_cast<size_t>(best - comparison.rows.begin()));
  const BestSplit best_split = LargestDistance(bursts);
  const SplitRange range = RangeOf(best_split, bursts);
  table.SplitAt(best_split.split, &comparison);
  comparison.change = {table.TimeOf(best_split.split), table.TimeOf(range.first),
                       table.TimeOf(range.last)};
  const std::string since = zone.Text(comparison.change->at, "%Y-%m-%d %H:%M");
  comparison.verdict =
      DescribeDifference(comparison, *best, "attempts before " + since, "later ones");
  return comparison;
}

}  // namespace fp_inspect
