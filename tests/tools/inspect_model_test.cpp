// SPDX-License-Identifier: Apache-2.0
//
// Timelines put together from several histories, why attempts failed, and what the shares are
// worth.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "model/fields.h"
#include "model/fleet.h"
#include "model/summary.h"
#include "support/device_test.h"

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
    texts.push_back(std::to_string(record.time) + " " + Words(record));
  }
  return texts;
}

// A series of attempts in which equal neighbours are common, seen through reports of a history of
// limited size, in any order: each attempt is counted once.
TEST(InspectTimeline, OverlappingReportsGiveTheSeries) {
  fp_test::RunSeeded("merges", fp_test::Share(500), 1, [](uint64_t seed) {
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
  // A restart loses what was not saved: attempts 46 to 49 stand in the first report only.
  Records behind_restart = part(10, 46);
  const Records later = part(50, 70);
  behind_restart.insert(behind_restart.end(), later.begin(), later.end());
  Timeline timeline = Merge({Dump(part(0, 50)), Dump(behind_restart)}).Of(RecordKind::kAttempt);
  EXPECT_EQ(TextsOf(part(0, 70)), TextsOf(timeline.records));
  EXPECT_EQ(4u, timeline.dropped);

  // A line that did not read in one report.
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
  EXPECT_EQ("history_lost_past", Summarise(device, By::kNothing, Zone()).findings.back().id);
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
  const Summary summary = Summarise(device, By::kBurst, Zone());
  EXPECT_EQ(32u, summary.all.attempts);
  EXPECT_EQ(31u, summary.all.bursts) << "a pause of ten minutes is none";
  EXPECT_EQ(31u, summary.periods.size());
  EXPECT_EQ(20u, summary.all.rejected.k);
  EXPECT_EQ(30u, summary.all.rejected.n);
  EXPECT_EQ("low_coverage", summary.all.causes.at(0).cause.id);
  EXPECT_EQ("1 of 2 at a \"failed to enable lhbm\"", summary.all.causes.at(1).note);
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

TEST(InspectFields, ConditionsOnWhatARecordHas) {
  const auto admits = [](const char* text, const Record& record) {
    std::string why;
    const auto condition = Filter::Condition::Parse(text, &why);
    EXPECT_TRUE(condition) << text << ": " << why;
    Filter filter;
    filter.where = {condition.value_or(Filter::Condition())};
    return filter.Admits(record, {});
  };
  const Record record = Attempt(kStart, {.iq = 28, .t_cov = 59.5F});
  for (const char* text : {"t_cov<60", "iq<=28", "iq>=28", "iq=28", "iq==28", "iq!=3", "iq<1e3"}) {
    EXPECT_TRUE(admits(text, record)) << text;
  }
  EXPECT_FALSE(admits("iq<28", record));
  EXPECT_FALSE(admits("packed_metric_1=0", record)) << "not in a dump";
  EXPECT_FALSE(admits("t_cov<60", Attempt(kStart, {.acquired = 9}))) << "no image, no coverage";
  for (const char* text : {"", "iq", "iq<", "<3", "iq<x", "iq<3x", "iq<>3", "reason=1", "nose<1"}) {
    std::string why;
    EXPECT_FALSE(Filter::Condition::Parse(text, &why)) << text;
    EXPECT_NE("", why);
  }
}

TEST(InspectFleet, WorstFirstByWhatIsCertain) {
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
