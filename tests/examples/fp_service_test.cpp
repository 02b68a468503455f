// SPDX-License-Identifier: Apache-2.0
//
// Runs the demo program and checks its output.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/program_test.h"

namespace fp_service {
namespace {

namespace fs = std::filesystem;

using Result = fp_test::ProgramResult;

// The output from the first line that begins with `begin`.
std::string From(const Result& result, const std::string& begin) {
  const size_t at = ("\n" + result.output).find("\n" + begin);
  return at == std::string::npos ? "" : result.output.substr(at);
}

class FpServiceTest : public fp_test::ProgramTest {
 protected:
  Result Run(const std::string& options) const override {
    return Shell(FP_SERVICE " --device-root device " + options);
  }

  static std::string Scenario(const std::string& name) {
    return "--scenario " + std::string(SCENARIOS) + "/" + name + ".jsonl ";
  }
};

// Rejects and attempts of a phase, from the report.
struct Row {
  int with[2];
  int without[2];
};

Row RowOf(const Result& result, const std::string& phase) {
  Row row = {};
  EXPECT_EQ(4, sscanf(From(result, phase + " ").c_str() + phase.size(),
                      "%d of %d %*f%% %*f -> %*f %*d %d of %d", &row.with[0], &row.with[1],
                      &row.without[0], &row.without[1]))
      << result.output;
  return row;
}

TEST_F(FpServiceTest, DayComparesWithAndWithoutExposureControl) {
  const Result first = Run(Scenario("day"));
  ASSERT_EQ(0, first.exit_code) << first.output;
  EXPECT_EQ(0u, first.output.find("first start: no history yet\n"));
  EXPECT_GE(100, std::count(first.output.begin(), first.output.end(), '\n')) << "two screens";

  const Row noon = RowOf(first, "bright noon, outdoors");
  EXPECT_LT(noon.with[0], noon.without[0] / 2);
  EXPECT_EQ(noon.with[1], noon.without[1]);
  EXPECT_TRUE(first.Has("\nbright noon, outdoors: exposure control helped, "));
  const Row hasty = RowOf(first, "hasty touches");
  EXPECT_EQ(hasty.with[0], hasty.without[0]) << "the same touches in both runs";
  EXPECT_TRUE(first.Has("it began at ")) << "the steps at noon cost rejects of wet fingers";

  EXPECT_TRUE(first.Has("fid:2, capture_count:10, iq_avg:44.80, enrolled_fingers_count:1, rc:1"));
  EXPECT_TRUE(first.Has("  #004 2026-03-04 22:55:00 op:DEL, gid:0, fid:3"));
  EXPECT_TRUE(first.Has("\nAmbient light: 2 lux\nThrottling severity: 0\nLong presses: 4"));

  const Result second = Run(Scenario("day") + "-v");
  EXPECT_EQ(0u, second.output.find("found 100 attempts of earlier runs\n"));
  EXPECT_TRUE(second.Has("finger down:2026-03-04-06-45-00-000"));
  const std::string incomplete = From(second, "-- hasty touches");
  EXPECT_LT(incomplete.find("reason:Image Partial"), incomplete.find("-- bright noon"));
  EXPECT_TRUE(Run("--dump-only -v").Has("Auth Events:\n  #000 "));
}

TEST_F(FpServiceTest, WeekContinuesAfterRestartsAndPowerCut) {
  const Result week = Run(Scenario("week") + "-v");
  ASSERT_EQ(0, week.exit_code) << week.output;
  const std::string cut = From(week, "power cut during a save: ");
  EXPECT_NE(std::string::npos, cut.find(" bytes of AuthStats.0 are left\nfound 5"));
  EXPECT_EQ(20, RowOf(week, "Thu, battery charged").with[1]) << "still enrolled";
  EXPECT_LT(RowOf(week, "Sat, beach").with[0], RowOf(week, "Sat, beach").without[0] / 2);
  const std::string nothing = From(week, "Fri, left at home ");
  EXPECT_EQ(" - ", nothing.substr(nothing.find('-') - 1, 3)) << "no percentage without attempts";
  EXPECT_TRUE(week.Has("\nError:2026-03-12 18:20:00 sensor did not answer"));
  EXPECT_TRUE(week.Has("\n2026-03-13 18:00:00 acquisition_error:TOO_DARK")) << "the panel is dark";
  EXPECT_TRUE(week.Has("\n2026-03-13 18:00:30 auth_successful:1")) << "and lit again";
  EXPECT_TRUE(week.Has("  #001 2026-03-13 18:00:00 failed to enable lhbm\n"));
}

TEST_F(FpServiceTest, IsDeterministicForASeed) {
  const auto week = [this](int seed) {
    fs::remove_all(folder_ / "device");
    return Run(Scenario("week") + "-v --seed " + std::to_string(seed)).output;
  };
  const std::string first = week(5);
  EXPECT_EQ(first, week(5));
  EXPECT_NE(first, week(6));
}

TEST_F(FpServiceTest, OptionsAndExitCodes) {
  Write("bad.jsonl", "{\"event\": \"nap\"}\n");
  const std::string exposure = "persist.vendor.udfps.dynamic.exposure.";
  Check({
      {"--help", 0, "usage: fp_service --scenario FILE"},
      {"", 2, "either --scenario or --dump-only is required"},
      {"--dump-only " + Scenario("day"), 2, "either --scenario or --dump-only is required"},
      {"--nonsense", 2, "unrecognized option '--nonsense'"},
      {"--dump-only x", 2, "unexpected argument x"},
      {"--dump-only --seed -1", 2, "--seed must be an integer"},
      {"--dump-only --log loud", 2, "--log must be debug, info, error or off"},
      {"--dump-only --property x", 2, "must have the form NAME=VALUE"},
      {"--dump-only --property " + exposure + "frr=1", 2, "reads no property " + exposure + "frr"},
      {"--dump-only --property " + exposure + "frr_threshold=a", 2, "; 20 would stay in effect"},
      {"--dump-only --property " + exposure + "frr_threshold=7", 0, "kFrrThreshold: 7\n"},
      {"--dump-only --property persist.vendor.udfps.dynamic_exposure_supported=0", 0,
       "DynamicExposureSupported:0\n"},
      {"--dump-only --log error", 0, "Failed to open"},
      {"--scenario .", 3, ".: is a directory\n"},
      {"--scenario /nowhere.jsonl", 3, "/nowhere.jsonl: No such file or directory\n"},
      {"--scenario bad.jsonl", 3, "bad.jsonl:1: the first event must be \"day\"\n"},
  });
}

}  // namespace
}  // namespace fp_service
