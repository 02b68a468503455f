// SPDX-License-Identifier: Apache-2.0
//
// The demo as its user runs it.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

#include "control/device.h"

namespace fp_service {
namespace {

namespace fs = std::filesystem;

struct Result {
  int exit_code;
  std::string output;
};

class FpServiceTest : public ::testing::Test {
 protected:
  Result Run(const std::string& options) const {
    const std::string command =
        std::string(FP_SERVICE) + " --device-root " + (folder_ / "device").string() + " " + options;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    std::string output;
    char buffer[4096];
    for (size_t size; (size = fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
      output.append(buffer, size);
    }
    return {WEXITSTATUS(pclose(pipe)), output};
  }

  static size_t Count(const std::string& text, const std::string& pattern) {
    const std::regex regex(pattern);
    return static_cast<size_t>(
        std::distance(std::sregex_iterator(text.begin(), text.end(), regex), {}));
  }

  const std::string day_ = "--scenario " + std::string(SCENARIOS) + "/day.jsonl";
  const fp_host::ScratchFolder scratch_{"fp_service"};
  const fs::path folder_ = scratch_.GetPath();
};

TEST_F(FpServiceTest, DayShowsWhatExposureControlDoes) {
  const Result first = Run(day_);
  ASSERT_EQ(0, first.exit_code) << first.output;
  EXPECT_EQ(0u, first.output.find("first start: no history yet\n"));
  EXPECT_EQ(std::string::npos, first.output.find('\r')) << "no progress in a pipe";
  EXPECT_NE(std::string::npos, first.output.find("Auth Stats:\n  total_attempts:100, "));
  EXPECT_GE(Count(first.output, "auth_successful:"), 300u);

  const std::regex effect(
      R"(: false rejects ([0-9.]+)% before the first of \d+ steps?, ([0-9.]+)% after the last)");
  size_t phases = 0;
  for (std::sregex_iterator it(first.output.begin(), first.output.end(), effect), end; it != end;
       ++it, ++phases) {
    EXPECT_LT(std::stod((*it)[2]), std::stod((*it)[1]) / 2) << it->str();
  }
  EXPECT_GE(phases, 2u);

  const std::regex bands(R"(below 40% +\d+ +\d+ +([0-9.]+)%[^]*from 90% +\d+ +\d+ +([0-9.]+)%)");
  std::smatch frr;
  ASSERT_TRUE(std::regex_search(first.output, frr, bands));
  EXPECT_GT(std::stod(frr[1]), 10 * std::stod(frr[2])) << "low coverage fails more";
  EXPECT_EQ(3u, Count(first.output, "\n[-0-9]+ [:0-9]+ op:ADD, enroll_successful:1"));
  EXPECT_EQ(1u, Count(first.output, "\n[-0-9]+ [:0-9]+ op:ADD.*reason:Area Small"));
  EXPECT_EQ(1u, Count(first.output, "\n[-0-9]+ [:0-9]+ op:DEL, gid:0, fid:3"));
  EXPECT_EQ(2u, Count(first.output, "(major|minor) axis: 5% are up to [0-9.]+, 50% up to [0-9.]+"));
  EXPECT_EQ(1u,
            Count(first.output, "Ambient light: 2 lux\nThrottling severity: 0\nLong presses: 4"));
  EXPECT_EQ(Count(first.output, "2026-03-04 06:45:00 auth_successful:1.*lptw:1"),
            Count(first.output, "finger down:2026-03-04-06-45-00-000"));

  const Result second = Run(day_);
  EXPECT_EQ(0u, second.output.find("found 100 attempts of earlier runs\n"));
  const Result dump = Run("--dump-only");
  EXPECT_NE(std::string::npos, dump.output.find("Auth Events:\n  #000 "));
}

TEST_F(FpServiceTest, TroubleIsInTheDump) {
  const Result result = Run("--scenario " + std::string(SCENARIOS) + "/trouble.jsonl");
  ASSERT_EQ(0, result.exit_code) << result.output;
  EXPECT_EQ(1u, Count(result.output, "\nError:2026-03-05 07:00:00 sensor did not answer"));
  EXPECT_EQ(1u, Count(result.output, "\n2026-03-05 09:00:00 acquisition_error:TOO_DARK"))
      << "the panel is dark";
  EXPECT_EQ(1u, Count(result.output, "\n  #001 2026-03-05 09:00:00 failed to enable lhbm\n"));
  EXPECT_EQ(2u, Count(result.output, "\n2026-03-05 09:00:[12]0 auth_successful:1")) << "and back";
  EXPECT_EQ(1u, Count(result.output, "\nThrottling severity: 4\n"));
}

TEST_F(FpServiceTest, IsDeterministicForASeed) {
  const auto day = [this](int seed) {
    fs::remove_all(folder_ / "device");
    return Run(day_ + " --seed " + std::to_string(seed)).output;
  };
  const std::string first = day(5);
  EXPECT_EQ(first, day(5));
  EXPECT_NE(first, day(6));
}

TEST_F(FpServiceTest, OptionsAndExitCodes) {
  EXPECT_EQ(0, Run("--help").exit_code);
  EXPECT_EQ(2, Run("").exit_code);
  EXPECT_EQ(2, Run("--nonsense").exit_code);
  EXPECT_EQ(2, Run("--dump-only --property x").exit_code);
  EXPECT_EQ(3, Run("--scenario /nowhere.jsonl").exit_code);
  std::ofstream(folder_ / "bad.jsonl") << "{\"event\": \"nap\"}\n";
  const Result bad = Run("--scenario " + (folder_ / "bad.jsonl").string());
  EXPECT_EQ(3, bad.exit_code);
  EXPECT_EQ((folder_ / "bad.jsonl").string() + ":1: the first event is \"day\"\n", bad.output);

  const Result off =
      Run("--dump-only --property persist.vendor.udfps.dynamic_exposure_supported=0");
  EXPECT_NE(std::string::npos, off.output.find("DynamicExposureSupported:0\n"));
  EXPECT_EQ(std::string::npos, off.output.find("Failed to open"));
  EXPECT_NE(std::string::npos, Run("--dump-only --log error").output.find("Failed to open"));
}

}  // namespace
}  // namespace fp_service
