// SPDX-License-Identifier: Apache-2.0
//
// Timelines merged from several histories, causes of failed attempts, and the statistics of shares.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "fp_host/testing.h"
#include "model/compare.h"
#include "model/fields.h"
#include "model/fleet.h"
#include "model/summary.h"

namespace fp_inspect {
namespace {

constexpr int64_t kStart = 1772600767;

struct Try {
  int8_t acquired = AuthEventG7::kAcquiredGood;
  bool success = false;
  int iq = 40;
  float t_cov = 100;
  int raw = 2000;
  uint32_t rc = 1014;
};

Record Attempt(int64_t time, const Try& with) {
  AuthEventG7 event;
  event.timestamp = time;
  event.acquired_info = with.acquired;
  event.auth_successful = with.success;
  event.iq = with.iq;
  event.t_cov = with.t_cov;
  event.rawmean_delta = with.raw;
  event.rc = with.success ? 0 : with.rc;
  Record record;
  record.value = event;
  record.time = time;
  record.g7 = true;
  return record;
}

Record Error(int64_t time, const char* message) {
  Record record;
  record.value = std::string(message);
  record.time = time;
  return record;
}

using Records = std::vector<Record>;

Contents Dump(Records records) {
  Contents contents;
  contents.kind = InputKind::kDump;
  const RecordKind kind = records.empty() ? RecordKind::kAttempt : records.front().GetKind();
  contents.snapshots.push_back({.kind = kind, .times_are_local = false, .records = records});
  return contents;
}

Device Merge(std::vector<Contents> inputs) {
  DeviceBuilder builder("", false);
  for (Contents& contents : inputs) {
    builder.Add(std::move(contents));
  }
  return builder.Finish();
}

std::vector<std::string> TextsOf(const Records& records) {
  std::vector<std::string> texts;
  for (const Record& record : records) {
    texts.push_back(std::to_string(record.time) + " " + DumpText(record));
  }
  return texts;
}

// A series of attempts in which equal neighbours are common, seen through reports of a history of
// limited size, in any order: each attempt is counted once.
TEST(InspectTimeline, OverlappingReportsGiveTheSeries) {
  fp_host::RunSeeded("merges", fp_host::Share(500), 1, [](uint64_t seed) {
    std::mt19937_64 random(seed);
    const auto below = [&](size_t limit) { return static_cast<size_t>(random() % limit); };
    Records series;
    for (int64_t time = kStart; series.size() < 300;) {
      time += static_cast<int64_t>(below(3)) * 4;
      series.push_back(Attempt(time, {.iq = static_cast<int>(below(2))}));
    }
    constexpr size_t kCapacity = 100;
    std::vector<Contents> reports;
    for (size_t end = kCapacity; end < series.size(); end += 1 + below(kCapacity - 20)) {
      reports.push_back(Dump({series.begin() + static_cast<ptrdiff_t>(end - kCapacity),
                              series.begin() + static_cast<ptrdiff_t>(end)}));
    }
    reports.push_back(Dump({series.end() - kCapacity, series.end()}));
    std::shuffle(reports.begin(), reports.end(), random);
    const Device device = Merge(std::move(reports));
    ASSERT_EQ(TextsOf(series), TextsOf(device.Of(RecordKind::kAttempt).records));
    ASSERT_TRUE(device.Of(RecordKind::kAttempt).gaps.empty());
  });
}

TEST(InspectTimeline, RestartsGapsAndLostPast) {
  Records all;
  for (int i = 0; i < 120; ++i) {
    all.push_back(Attempt(kStart + i * 100, {.iq = i}));
  }
  const auto part = [&](int from, int to) { return Records(all.begin() + from, all.begin() + to); };
  // A restart loses what was not saved: attempts 46 to 49 are in the first report only.
  Records after_restart = part(10, 46);
  const Records later = part(50, 70);
  after_restart.insert(after_restart.end(), later.begin(), later.end());
  Timeline timeline = Merge({Dump(part(0, 50)), Dump(after_restart)}).Of(RecordKind::kAttempt);
  EXPECT_EQ(TextsOf(part(0, 70)), TextsOf(timeline.records));
  EXPECT_EQ(4u, timeline.dropped);

  // One report has a line that could not be parsed.
  Records with_hole = part(5, 55);
  with_hole.erase(with_hole.begin() + 20);
  timeline = Merge({Dump(part(0, 50)), Dump(with_hole)}).Of(RecordKind::kAttempt);
  EXPECT_EQ(TextsOf(part(0, 55)), TextsOf(timeline.records));

  timeline = Merge({Dump(part(0, 50)), Dump(part(60, 110))}).Of(RecordKind::kAttempt);
  ASSERT_EQ(1u, timeline.gaps.size());
  EXPECT_EQ(all[49].time, timeline.gaps[0].from);
  EXPECT_EQ(all[60].time, timeline.gaps[0].to);
  EXPECT_FALSE(timeline.gaps[0].lost_past);
  EXPECT_TRUE(timeline.full);

  const Device device = Merge({Dump(part(0, 50)), Dump(part(60, 63))});
  EXPECT_TRUE(device.Of(RecordKind::kAttempt).gaps.at(0).lost_past);
  EXPECT_EQ("history_lost_past", Summarise(device, GroupBy::kNothing, Zone()).findings.back().id);
}

TEST(InspectTimeline, LocalTimesAndZones) {
  Contents contents = Dump({Attempt(kStart, {})});
  contents.snapshots[0].times_are_local = true;
  contents.time_zone = "Europe/Berlin";
  const auto time_in = [&](const std::string& zone) {
    DeviceBuilder builder(zone, false);
    builder.Add(contents);
    return builder.Finish().Of(RecordKind::kAttempt).records.at(0).time;
  };
  EXPECT_EQ(kStart - 3600, time_in("")) << "what the report says";
  EXPECT_EQ(kStart + 5 * 3600, time_in("EST5")) << "what the user says";
  EXPECT_EQ("2026-03-04 06:06:07", Zone("Europe/Berlin").Text(kStart));
  EXPECT_FALSE(Zone::Exists("Europe/Nowhere"));
  EXPECT_FALSE(Zone::Exists("../passwd"));
}

TEST(InspectCauses, TheFirstThatApplies) {
  Thresholds limits;
  const struct {
    const char* id;
    Try with;
  } kCases[] = {
      {"too_bright", {.iq = 27, .t_cov = 10, .raw = 2501}},
      {"too_dark", {.iq = 27, .raw = 1499}},
      {"matcher.low_quality", {.iq = 27, .t_cov = 10, .raw = 2000}},
      {"low_coverage", {.iq = 28, .t_cov = 59.5F, .raw = 2501}},
      {"matcher.low_quality", {.iq = 28, .t_cov = 60, .raw = 2501}},
      {"matcher.spoof", {.rc = 1137}},
      {"matcher.off_target", {.rc = 1}},
      {"open", {.rc = 0}},
      {"no_image.too_dark", {.acquired = 9}},
      {"no_image.77", {.acquired = 77}},
  };
  for (const auto& test : kCases) {
    EXPECT_EQ(test.id, CauseOf(Attempt(kStart, test.with), limits).id) << test.with.rc;
  }
  Exposure exposure;
  exposure.settings = {{"kIqThreshold", 50}, {"kHighRawMeanThreshold", 1000}};
  EXPECT_EQ("too_bright", CauseOf(Attempt(kStart, {}), Thresholds::Of(exposure)).id);
}

TEST(InspectSummary, CountsAndCrossChecks) {
  Records attempts;
  for (int i = 0; i < 30; ++i) {
    attempts.push_back(Attempt(kStart + i * 601, {.success = i % 3 == 0, .t_cov = 20}));
  }
  attempts.push_back(Attempt(kStart + 20000, {.acquired = 9}));
  attempts.push_back(Attempt(kStart + 20600, {.acquired = 9}));
  Contents dump = Dump(attempts);
  dump.bring_up = "Unexpected state:1";
  dump.exposures.emplace_back();
  dump.exposures[0].sample_size = 10;
  dump.exposures[0].frr = 50;
  dump.exposures[0].avg_iq = 20;
  dump.exposures[0].avg_raw_mean = 1000;
  const Device device =
      Merge({std::move(dump), Dump({Error(kStart + 20000, "failed to enable lhbm")})});
  const Summary summary = Summarise(device, GroupBy::kBurst, Zone());
  EXPECT_EQ(32u, summary.all.attempts);
  EXPECT_EQ(31u, summary.all.bursts) << "a pause of ten minutes does not end a burst";
  EXPECT_EQ(31u, summary.periods.size());
  EXPECT_EQ(20u, summary.all.rejected.k);
  EXPECT_EQ(30u, summary.all.rejected.n);
  EXPECT_EQ("low_coverage", summary.all.causes.at(0).cause.id);
  EXPECT_EQ("1 of 2 coincide with \"failed to enable lhbm\"", summary.all.causes.at(1).note);
  std::string ids;
  for (const Finding& finding : summary.findings) {
    ids += finding.id + " ";
  }
  EXPECT_EQ("bring_up dark_at_display_error low_quality_contradicted exposure_at_bound ", ids);
}

// The values that R. G. Newcombe computes for this interval in "Two-sided confidence intervals for
// the single proportion", Statistics in Medicine 17 (1998), 857-872, table I.
TEST(InspectStatistics, Wilson) {
  const struct {
    size_t k, n;
    double low, high;
  } kCases[] = {{81, 263, 0.2553, 0.3662},
                {15, 148, 0.0624, 0.1605},
                {0, 20, 0, 0.1611},
                {1, 29, 0.0061, 0.1718}};
  for (const auto& test : kCases) {
    const Interval range = WilsonInterval(test.k, test.n);
    EXPECT_NEAR(test.low, range.low, 0.00005) << test.k;
    EXPECT_NEAR(test.high, range.high, 0.00005) << test.k;
  }
  EXPECT_EQ(0, WilsonInterval(0, 0).low);
  EXPECT_EQ(1, WilsonInterval(7, 7).high);
}

// Newcombe's values are in table II of the article that the header names; Holm's are worked by
// hand.
TEST(InspectStatistics, Differences) {
  const struct {
    size_t k1, n1, k2, n2;
    double low, high;
  } kCases[] = {{48, 80, 56, 70, 0.0524, 0.3339},
                {3, 10, 9, 10, 0.1705, 0.8090},
                {2, 7, 6, 7, 0.0582, 0.8062},
                {0, 29, 5, 56, -0.0381, 0.1926}};
  for (const auto& test : kCases) {
    const Interval range = NewcombeInterval(test.k1, test.n1, test.k2, test.n2);
    EXPECT_NEAR(test.low, range.low, 0.00005) << test.k1;
    EXPECT_NEAR(test.high, range.high, 0.00005) << test.k1;
  }
  const std::vector<double> corrected = Holm({0.01, 0.04, 0.03, 0.005, 0.9});
  const double by_hand[] = {0.04, 0.09, 0.09, 0.025, 0.9};
  for (size_t i = 0; i < corrected.size(); ++i) {
    EXPECT_DOUBLE_EQ(by_hand[i], corrected[i]);
  }
  // Of the 20 ways to choose three of six bursts, two differ as much.
  const Bursts bursts = {{10, 1}, {10, 2}, {10, 3}, {10, 7}, {10, 8}, {10, 9}};
  const auto p = PermutationTest({bursts}, [](auto row) { return Distance(row, 3); });
  EXPECT_NEAR(0.1, p.at(0), 0.02);
  EXPECT_DOUBLE_EQ(0.1, SmallestP(6, 3));
  EXPECT_DOUBLE_EQ(0.0005, SmallestP(60, 20)) << "the number of orders that are tried";
  EXPECT_NEAR(0.6 - 0.160, MeanInterval(bursts, 3).low, 0.001);
}

// Attempts of a device in bursts that are all good or, with probability `rejected`, all rejected.
Records Days(std::mt19937_64* random, int bursts, double rejected, const Try& good, const Try& bad,
             int64_t start = kStart) {
  Records attempts;
  for (int burst = 0; burst < bursts; ++burst) {
    const bool is_bad = static_cast<double>((*random)() % 1000) < 1000 * rejected;
    for (int i = 0; i < 8; ++i) {
      Try with = is_bad ? bad : good;
      with.iq += static_cast<int>((*random)() % 5);
      attempts.push_back(Attempt(start + burst * 3600 + i * 60, with));
    }
  }
  return attempts;
}

const CompareRow& RowIn(const Comparison& comparison, const std::string& id) {
  return *std::find_if(comparison.rows.begin(), comparison.rows.end(),
                       [&](const CompareRow& row) { return row.id == id; });
}

// Attempts of a burst depend on each other; taken as independent, 28 of these pairs differ.
TEST(InspectCompare, EqualDevicesAreSeldomSaidToDiffer) {
  std::mt19937_64 random(1);
  int differing = 0;
  for (int pair = 0; pair < 100; ++pair) {
    const Records a = Days(&random, 12, 0.3, {.success = true}, {.t_cov = 20, .rc = 1013});
    const Records b = Days(&random, 12, 0.3, {.success = true}, {.t_cov = 20, .rc = 1013});
    differing += Compare(a, b, {}).differs ? 1 : 0;
  }
  EXPECT_LE(differing, 5);
}

TEST(InspectCompare, CoverageBeforeLight) {
  std::mt19937_64 random(1);
  const Try success = {.success = true};
  const Records good = Days(&random, 20, 0.1, success, {.iq = 20, .raw = 3000});
  // Images of uncovered fingers are darker and poorer, which says nothing about the light.
  Comparison found =
      Compare(good, Days(&random, 20, 0.7, success, {.iq = 30, .t_cov = 20, .raw = 900}), {});
  EXPECT_TRUE(RowIn(found, "t_cov").IsSignificant());
  EXPECT_FALSE(RowIn(found, "rawmean_delta").IsSignificant());
  EXPECT_FALSE(RowIn(found, "rejected.covered").IsSignificant());
  EXPECT_NE(std::string::npos, found.verdict.find("evidence that A and B differ: rejected"));
  EXPECT_TRUE(found.verdict.ends_with("; no significant difference in rejects of covered images."));

  found = Compare(good, Days(&random, 20, 0.7, success, {.iq = 20, .raw = 3000}), {});
  EXPECT_FALSE(RowIn(found, "t_cov").IsSignificant());
  EXPECT_TRUE(RowIn(found, "cause.too_bright").IsSignificant());
  EXPECT_TRUE(RowIn(found, "rawmean_delta").IsSignificant());

  const Records day = Days(&random, 4, 0, success, success);
  found = Compare(day, Days(&random, 4, 1, success, {}), {});
  EXPECT_FALSE(found.differs);
  EXPECT_NE(std::string::npos, found.verdict.find("4 and 4 bursts are too few")) << found.verdict;
  EXPECT_NE(std::string::npos, Compare({}, day, {}).verdict.find("too few records"));
  const Try endless = {.success = true, .t_cov = std::numeric_limits<float>::infinity()};
  found = Compare(good, Days(&random, 20, 0.1, endless, {.iq = 20, .raw = 3000}), {});
  EXPECT_FALSE(RowIn(found, "t_cov").IsSignificant()) << "infinity is not evidence";
}

TEST(InspectCompare, SinceWhen) {
  std::mt19937_64 random(1);
  const Try success = {.success = true};
  Records attempts = Days(&random, 12, 0.1, success, {});
  EXPECT_FALSE(CompareSinceWhen(attempts, {}, Zone("UTC0")).change);
  EXPECT_FALSE(CompareSinceWhen({}, {}, Zone("UTC0")).change);
  const Records later = Days(&random, 18, 0.8, success, {}, kStart + 12 * 3600);
  attempts.insert(attempts.end(), later.begin(), later.end());
  const Comparison found = CompareSinceWhen(attempts, {}, Zone("UTC0"));
  ASSERT_TRUE(found.change) << found.verdict;
  EXPECT_LE(found.change->earliest, later.front().time);
  EXPECT_GE(found.change->latest, later.front().time);
  EXPECT_NEAR(later.front().time, found.change->at, 2 * 3600);
  EXPECT_EQ(30u, found.bursts[0] + found.bursts[1]);
  EXPECT_NE(std::string::npos, found.verdict.find("before 2026-03-04 ")) << found.verdict;
}

TEST(InspectFields, ConditionsOnWhatARecordHas) {
  const auto admits = [](const char* text, const Record& record) {
    std::string why;
    const auto condition = Filter::Condition::Parse(text, &why);
    EXPECT_TRUE(condition) << text << ": " << why;
    Filter filter;
    filter.where = {condition.value_or(Filter::Condition())};
    return filter.Matches(record, {});
  };
  const Record record = Attempt(kStart, {.iq = 28, .t_cov = 59.5F});
  for (const char* text : {"t_cov<60", "iq<=28", "iq>=28", "iq=28", "iq==28", "iq!=3", "iq<1e3"}) {
    EXPECT_TRUE(admits(text, record)) << text;
  }
  EXPECT_FALSE(admits("iq<28", record));
  EXPECT_FALSE(admits("packed_metric_1=0", record)) << "not in a dump";
  EXPECT_FALSE(admits("t_cov<60", Attempt(kStart, {.acquired = 9})))
      << "no coverage without an image";
  for (const char* text : {"", "iq", "iq<", "<3", "iq<x", "iq<3x", "iq<>3", "reason=1", "nose<1"}) {
    std::string why;
    EXPECT_FALSE(Filter::Condition::Parse(text, &why)) << text;
    EXPECT_NE("", why);
  }
}

TEST(InspectFleet, WorstFirstByLowerBound) {
  Fleet fleet;
  const auto add = [&](const char* name, size_t k, size_t n) {
    Summary summary;
    summary.all.attempts = n;
    summary.all.rejected = {k, n};
    fleet.Add(name, summary);
  };
  add("few", 3, 3);
  add("bad", 50, 100);
  add("good", 2, 100);
  add("usual", 5, 100);
  add("none", 0, 0);
  fleet.Finish();
  EXPECT_EQ(5u, fleet.inputs);
  ASSERT_EQ(4u, fleet.rows.size());
  EXPECT_EQ("few", fleet.rows[0].name) << "3 of 3 is at least 44 %";
  EXPECT_EQ("bad", fleet.rows[1].name);
  EXPECT_EQ(0.05, fleet.median);
  EXPECT_TRUE(fleet.rows[1].is_outlier);
  EXPECT_FALSE(fleet.rows[2].is_outlier);
}

}  // namespace
}  // namespace fp_inspect
