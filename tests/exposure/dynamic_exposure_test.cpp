// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/dynamic_exposure.h"

#include <array>
#include <optional>
#include <string>
#include <utility>

#include <android-base/properties.h>
#include <android-base/stringprintf.h>

#include "fp_host/testing.h"
#include "support/history_kinds.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;

constexpr char kSupported[] = "persist.vendor.udfps.dynamic_exposure_supported";

class DynamicExposureTest : public ::testing::Test {
 protected:
  DynamicExposureTest() { base::SetProperty(kSupported, "true"); }

  static void Set(const std::string& name, const std::string& value) {
    base::SetProperty("persist.vendor.udfps.dynamic.exposure." + name, value);
  }

  // Sets all settings, in the order of the dump.
  static void SetAll(const std::array<const char*, 8>& values) {
    constexpr const char* kNames[] = {"number_of_attempts",      "expo_change_unit_denominator",
                                      "frr_threshold",           "image_quality_threshold",
                                      "high_raw_mean_threshold", "low_raw_mean_threshold",
                                      "upper_bound_us",          "lower_bound_us"};
    for (size_t i = 0; i < values.size(); ++i) {
      Set(kNames[i], values[i]);
    }
  }

  // A controller as the service sets it up.
  DynamicExposure& Calibrated(float expo, float base) {
    controller_.emplace();
    controller_->SetExpoChangedCallback(this, [](void* context, float expo, float base) {
      static_cast<DynamicExposureTest*>(context)->changes_ +=
          base::StringPrintf("%g %g;", expo, base);
    });
    controller_->UpdateCaliExpo(expo, base);
    TakeLog();
    return *controller_;
  }

  void Feed(int count, bool successful, int32_t iq, int32_t rawmean_delta) {
    for (int i = 0; i < count; ++i) {
      controller_->FeedAuthAttempt(fp_test::Attempt(successful, iq, rawmean_delta));
    }
  }

  std::string Dump() {
    return DumpText([this](int fd) { controller_->Dump(fd); });
  }

  // The dump with these settings and an empty sample.
  static std::string DumpWith(const std::array<int, 8>& s) {
    return base::StringPrintf(
        "DynamicExposureSupported:1\nDynamicExposure:\n"
        "  kNumberOfAttempts: %d\n  kExpoChangeUnitDenominator: %d\n  kFrrThreshold: %d\n"
        "  kIqThreshold: %d\n  kHighRawMeanThreshold: %d\n  kLowRawMeanThreshold: %d\n"
        "  kExpoUpperBoundUs: %d\n  kExpoLowerBoundUs: %d\n"
        "  Stats of last 0 attempts:\n    FRR: 0.00%%\n    Avg IQ: 0.00\n"
        "    Avg raw mean: 0.00\n  \n",
        s[0], s[1], s[2], s[3], s[4], s[5], s[6], s[7]);
  }

  std::string Sample() {
    const std::string dump = Dump();
    return dump.substr(dump.find("  Stats of last"));
  }

  std::optional<DynamicExposure> controller_;
  std::string changes_;  // "<exposure> <base>;" for each call of the callback
};

TEST_F(DynamicExposureTest, StepsDownOnBrightPoorSamples) {
  DynamicExposure& controller = Calibrated(20.0F, 50.0F);
  Feed(9, false, 20, 3000);
  EXPECT_LOG() << "never before the sample is full";
  Feed(1, false, 20, 3000);
  EXPECT_LOG(Info("DynamicExposure", "[FeedAuthAttempt] Adjust exposure DOWN"),
             Info("DynamicExposure", "[AdjustExposure] adjustment step:-1, unit:16.667"),
             Info("DynamicExposure", "[AdjustExposure] cali expo:20.000, base:50.000"),
             Info("DynamicExposure", "[AdjustExposure] adjust to expo:13.333, base:33.333"));
  EXPECT_EQ("13.3333 33.3333;", changes_);
  EXPECT_EQ(-1, controller.GetStep());
  EXPECT_EQ(DumpWith({10, 60, 20, 28, 2500, 1500, 150000, 10000}), Dump());
}

TEST_F(DynamicExposureTest, EverySettingHasItsProperty) {
  SetAll({"1", "2", "3", "4", "5", "6", "7", "8"});
  controller_.emplace();
  EXPECT_EQ(DumpWith({1, 2, 3, 4, 5, 6, 7, 8}), Dump());
}

TEST_F(DynamicExposureTest, RefusedStepKeepsStepAndSample) {
  DynamicExposure& controller = Calibrated(10.0F, 50.0F);
  Feed(10, false, 20, 3000);
  const std::vector<LogLine> refusal = {
      Info("DynamicExposure", "[FeedAuthAttempt] Adjust exposure DOWN"),
      Error("DynamicExposure", "[AdjustExposure] target expo(6.667) < lower bound(10.000), skip")};
  EXPECT_EQ(refusal, TakeLog());
  EXPECT_EQ(0, controller.GetStep());
  EXPECT_EQ(
      "  Stats of last 10 attempts:\n    FRR: 100.00%\n    Avg IQ: 20.00\n"
      "    Avg raw mean: 3000.00\n  \n",
      Sample());
  Feed(1, false, 20, 3000);
  EXPECT_EQ(refusal, TakeLog()) << "the next attempt meets the same refusal";

  Set("upper_bound_us", "149999");
  Calibrated(149.0F, 100.0F);
  controller_->AdjustExposure(StepAdjustment::kUp);
  EXPECT_LOG(Error("DynamicExposure",
                   "[AdjustExposure] target expo(173.833) > upper bound(149.999), skip"));
  EXPECT_TRUE(changes_.empty());

  Set("expo_change_unit_denominator", "100");
  Set("upper_bound_us", "110000");
  Set("lower_bound_us", "90000");
  for (const StepAdjustment step : {StepAdjustment::kUp, StepAdjustment::kDown}) {
    Calibrated(100.0F, 100.0F).AdjustExposure(step);
    EXPECT_EQ(static_cast<int32_t>(step), controller_->GetStep()) << "to the bound itself";
  }
}

// If the calibration is outside the bounds, neither a step towards them nor a recalculation is
// refused.
TEST_F(DynamicExposureTest, BoundsHoldOnlyInTheDirectionOfTheStep) {
  DynamicExposure& controller = Calibrated(200.0F, 100.0F);
  controller.AdjustExposure(StepAdjustment::kDown);
  controller.UpdateCaliExpo(5.0F, 100.0F);
  controller.AdjustExposure(StepAdjustment::kUp);
  EXPECT_EQ("166.667 83.3333;4.16667 83.3333;5 100;", changes_);
  EXPECT_EQ(0, controller.GetStep());
}

TEST_F(DynamicExposureTest, SampleDecides) {
  const struct {
    int good, bad;
    int32_t iq, rawmean_delta;
    int step;
    const char* why;
  } kCases[] = {
      {0, 10, 20, 3000, -1, "bright"},
      {0, 10, 20, 1000, 1, "dark"},
      {0, 10, 20, 2000, 0, "neither"},
      {0, 10, 20, 2500, 0, "exactly the high threshold"},
      {0, 10, 20, 1500, 0, "exactly the low threshold"},
      {0, 10, 28, 3000, 0, "image quality at its threshold"},
      {0, 10, 27, 3000, -1, "image quality below it"},
      {8, 2, 20, 3000, 0, "false rejects at their threshold"},
      {7, 3, 20, 3000, -1, "false rejects above it"},
      {0, 9, 20, 3000, 0, "sample not full"},
  };
  for (const auto& test : kCases) {
    Calibrated(60.0F, 300.0F);
    Feed(test.good, true, test.iq, test.rawmean_delta);
    Feed(test.bad, false, test.iq, test.rawmean_delta);
    EXPECT_EQ(test.step, controller_->GetStep()) << test.why;
  }
  Calibrated(60.0F, 300.0F);
  auto unmatched = std::make_shared<AuthEventG7>();
  for (int i = 0; i < 20; ++i) {
    controller_->FeedAuthAttempt(unmatched);
  }
  EXPECT_EQ(0, controller_->GetStep()) << "no match was attempted";
}

TEST_F(DynamicExposureTest, CrossedThresholdsGoUp) {
  Set("high_raw_mean_threshold", "1000");
  Set("low_raw_mean_threshold", "4000");
  for (const auto& [raw_mean, step] : {std::pair(3000, 1), {4000, -1}}) {
    Calibrated(60.0F, 300.0F);
    Feed(10, false, 20, raw_mean);
    EXPECT_EQ(step, controller_->GetStep());
  }
}

TEST_F(DynamicExposureTest, NeedsCalibrationAndCallback) {
  controller_.emplace();
  for (const auto& [expo, base] : {std::pair(20.0F, 0.0F), {0.0F, 50.0F}}) {
    controller_->UpdateCaliExpo(expo, base);
    TakeLog();
    controller_->AdjustExposure(StepAdjustment::kUp);
    EXPECT_LOG(Error("DynamicExposure", "[AdjustExposure] cali_expo is not initialized"));
  }
  controller_->UpdateCaliExpo(20.0F, 50.0F);
  controller_->AdjustExposure(StepAdjustment::kUp);
  EXPECT_LOG(Info("DynamicExposure", "UpdateCaliExpo: cali_expo:20.000, cali_expo_base:50.000"),
             Error("DynamicExposure", "[AdjustExposure] expo changed cb is not registered"));
  EXPECT_EQ(0, controller_->GetStep());
}

TEST_F(DynamicExposureTest, NewCalibrationRecalculatesOnlyAfterSteps) {
  DynamicExposure& controller = Calibrated(20.0F, 50.0F);
  controller.UpdateCaliExpo(30.0F, 50.0F);
  EXPECT_TRUE(changes_.empty());
  Feed(10, false, 20, 3000);
  changes_.clear();
  Feed(3, false, 20, 3000);
  TakeLog();
  controller.UpdateCaliExpo(12.0F, 50.0F);
  EXPECT_LOG(Info("DynamicExposure", "UpdateCaliExpo: cali_expo:12.000, cali_expo_base:50.000"),
             Info("DynamicExposure", "UpdateCaliExpo: recalculate new exposure time"),
             Info("DynamicExposure", "[AdjustExposure] adjustment step:-1, unit:16.667"),
             Info("DynamicExposure", "[AdjustExposure] cali expo:12.000, base:50.000"),
             Info("DynamicExposure", "[AdjustExposure] adjust to expo:8.000, base:33.333"))
      << "below the lower bound, and applied";
  EXPECT_EQ("8 33.3333;", changes_);
  EXPECT_EQ(0u, Sample().find("  Stats of last 0 attempts:\n"));
}

// Settings that a tuning engineer may make by mistake. 0 and the largest value are accepted without
// undefined behaviour. A value that is not a number of 32 bits gives the default.
TEST_F(DynamicExposureTest, OddSettings) {
  SetAll({"0", "0", "4294967295", "4294967296", "-1", "15k", "0x1F", ""});
  Calibrated(20.0F, 50.0F);
  Feed(20, false, 0, 9000);
  EXPECT_EQ(DumpWith({0, 0, -1, 28, 2500, 1500, 31, 10000}), Dump());
  TakeLog();
  controller_->AdjustExposure(StepAdjustment::kUp);
  EXPECT_LOG(
      Error("DynamicExposure", "[AdjustExposure] target expo(inf) > upper bound(0.031), skip"));
  controller_->AdjustExposure(StepAdjustment::kNone);
  EXPECT_NE(std::string::npos, changes_.find("nan ")) << changes_;
}

TEST_F(DynamicExposureTest, SettingsAreReadOnce) {
  Calibrated(20.0F, 50.0F);
  Set("number_of_attempts", "1");
  base::SetProperty(kSupported, "false");
  Feed(1, false, 20, 3000);
  EXPECT_EQ(0, controller_->GetStep());
  EXPECT_TRUE(IsDynamicExposureSupported());
  EXPECT_EQ(&DynamicExposure::GetInstance(), &DynamicExposure::GetInstance());
}

TEST(UnsupportedDynamicExposure, DumpsOneLineAndTakesNothing) {
  EXPECT_FALSE(IsDynamicExposureSupported());
  DynamicExposure& controller = DynamicExposure::GetInstance();
  EXPECT_EQ("DynamicExposureSupported:0\n", DumpText([&](int fd) { controller.Dump(fd); }));
  controller.FeedAuthAttempt(std::make_shared<AuthEventG7>());
}

}  // namespace
}  // namespace android::fp_utils
