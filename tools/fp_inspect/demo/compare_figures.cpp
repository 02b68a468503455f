// SPDX-License-Identifier: Apache-2.0
//
// Measures how often `compare` finds a difference between equal devices, and between those of the
// demo. A simulated day has as many bursts as one of the demo, drawn at random from all bursts of a
// device.
#include <fmt/format.h>

#include <algorithm>
#include <random>

#include "model/compare.h"
#include "model/timeline.h"
#include "reading/input.h"
#include "reading/read.h"

namespace fp_inspect {
namespace {

using Records = std::vector<Record>;

constexpr size_t kBurstsPerDay = 5;
constexpr int64_t kDay = 86400;

std::vector<Records> BurstsOf(const std::string& folder, int64_t since) {
  DeviceBuilder builder("", false);
  size_t left_out = 0;
  for (const std::string& file : FilesBelow(folder, &left_out)) {
    builder.Add(ReadInput(file, InputKind::kNone));
  }
  Device device = builder.Finish();
  Records& attempts = device.Of(RecordKind::kAttempt).records;
  std::erase_if(attempts, [&](const Record& record) { return record.time < since; });
  std::vector<size_t> starts = BurstStarts(attempts);
  starts.push_back(attempts.size());
  std::vector<Records> bursts;
  for (size_t i = 0; i + 1 < starts.size(); ++i) {
    bursts.emplace_back(attempts.begin() + static_cast<ptrdiff_t>(starts[i]),
                        attempts.begin() + static_cast<ptrdiff_t>(starts[i + 1]));
  }
  return bursts;
}

class Simulation {
 public:
  // Appends days to `attempts`.
  void Draw(const std::vector<Records>& bursts, size_t days, Records* attempts) {
    for (size_t i = 0; i < days * kBurstsPerDay; ++i) {
      Records burst = bursts[random_() % bursts.size()];
      const int64_t start = attempts->empty() ? 0 : attempts->back().time + kDay / kBurstsPerDay;
      const int64_t shift = start - burst.front().time;
      for (Record& record : burst) {
        record.time += shift;
        attempts->push_back(record);
      }
    }
  }

  double PercentDifferent(const std::vector<Records>& a, const std::vector<Records>& b, size_t days,
                          size_t pairs) {
    size_t shown = 0;
    for (size_t i = 0; i < pairs; ++i) {
      Records first;
      Records second;
      Draw(a, days, &first);
      Draw(b, days, &second);
      shown += Compare(first, second, {}).differs ? 1 : 0;
    }
    return 100 * static_cast<double>(shown) / static_cast<double>(pairs);
  }

  // Measures how often the change is found. The second half of the days comes from the bad device.
  void MeasureSinceWhen(const std::vector<Records>& good, const std::vector<Records>& bad,
                        size_t days, size_t series) {
    size_t shown = 0;
    size_t within = 0;
    for (size_t i = 0; i < series; ++i) {
      Records attempts;
      Draw(good, days / 2, &attempts);
      const size_t before = attempts.size();
      Draw(bad, days / 2, &attempts);
      const int64_t at = attempts[before].time;
      const auto change = CompareSinceWhen(attempts, {}, Zone("UTC0")).change;
      shown += change ? 1 : 0;
      within += change && change->earliest <= at && at <= change->latest ? 1 : 0;
    }
    fmt::print(
        "{} days, second device from the middle on: change found in {:.1f} % of {} timelines, its "
        "time within the reported interval in {:.1f} % of these\n",
        days, 100.0 * static_cast<double>(shown) / static_cast<double>(series), series,
        100.0 * static_cast<double>(within) / static_cast<double>(std::max<size_t>(shown, 1)));
  }

 private:
  std::mt19937_64 random_{1};
};

void Measure(const std::string& reports) {
  const std::vector<Records> good = BurstsOf(reports + "/good", 0);
  constexpr int64_t kFirstBadDay = 1768348800;  // 2026-01-14, from which touches are poorly aimed
  const std::vector<Records> bad = BurstsOf(reports + "/bad", kFirstBadDay);
  Simulation simulation;
  for (const size_t days : {1, 3, 6}) {
    fmt::print(
        "{} days: a difference is found in {:.1f} % of 1,000 pairs of good devices, {:.1f} % of "
        "pairs of bad ones, {:.1f} % of pairs of a good and a bad one\n",
        days, simulation.PercentDifferent(good, good, days, 1000),
        simulation.PercentDifferent(bad, bad, days, 1000),
        simulation.PercentDifferent(good, bad, days, 1000));
  }
  for (const size_t days : {6, 12}) {
    simulation.MeasureSinceWhen(good, good, days, 500);
    simulation.MeasureSinceWhen(good, bad, days, 500);
  }
}

}  // namespace
}  // namespace fp_inspect

int main(int argc, char** argv) {
  if (argc != 2) {
    fmt::print(stderr, "usage: compare_figures REPORTS\n");
    return 2;
  }
  try {
    fp_inspect::Measure(argv[1]);
  } catch (const std::exception& error) {
    fmt::print(stderr, "compare_figures: {}\n", error.what());
    return 1;
  }
  return 0;
}
