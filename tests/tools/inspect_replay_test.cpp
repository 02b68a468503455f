// SPDX-License-Identifier: Apache-2.0
//
// Exposure steps reconstructed from dumps, compared with those of the controller that made them,
// and predictions for other settings.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include <android-base/properties.h>

#include "fp_host/testing.h"
#include "fp_utils/auth_stats.h"
#include "model/replay.h"
#include "reading/read.h"

namespace fp_inspect {
namespace {

using android::fp_utils::AuthStatsG7;
using android::fp_utils::DynamicExposure;

constexpr int64_t kStart = 1772600767;
constexpr Calibration kCalibration = {.expo = 60, .base = 300};

struct Attempt {
  int raw = 2000;
  int iq = 40;
  bool success = false;
  int8_t acquired = AuthEventG7::kAcquiredGood;
};

// A service with its history and controller. Its history outlives its restarts.
class Phone {
 public:
  Phone() {
    setenv("TZ", "UTC", 1);
    android::base::SetProperty("persist.vendor.udfps.dynamic_exposure_supported", "true");
    history_.Init();
    Start();
  }

  void Start() {
    // A replay leaves its settings in the properties.
    android::base::SetProperty("persist.vendor.udfps.dynamic.exposure.number_of_attempts", "4");
    android::base::SetProperty("persist.vendor.udfps.dynamic.exposure.lower_bound_us", "50000");
    controller_ = std::make_unique<DynamicExposure>();
    controller_->SetExpoChangedCallback(this, [](void* context, float expo, float) {
      static_cast<Phone*>(context)->steps.push_back(expo);
    });
    controller_->UpdateCaliExpo(kCalibration.expo, kCalibration.base);
    begin_ = ++time;
  }

  void AddAttempt(const Attempt& values) {
    auto attempt = std::make_shared<AuthEventG7>();
    attempt->timestamp = time;
    attempt->acquired_info = values.acquired;
    attempt->auth_successful = values.success;
    attempt->iq = values.iq;
    attempt->rawmean_delta = values.raw;
    history_.AddAttempt(attempt);
    controller_->FeedAuthAttempt(attempt);
  }

  std::string Dump() {
    return "Initialization successful, start_time:" + Zone("UTC").Text(begin_) +
           ".000, latency:1ms\n" + fp_host::DumpText([&](int fd) {
             history_.Dump(fd, nullptr, 0);
             controller_->Dump(fd);
           });
  }

  std::vector<float> steps;  // the exposures that they led to
  int64_t time = kStart;

 private:
  AuthStatsG7 history_{"phone", 50, false};
  std::unique_ptr<DynamicExposure> controller_;
  int64_t begin_ = 0;
};

Device Read(const std::vector<std::string>& dumps) {
  DeviceBuilder builder("UTC", false);
  for (const std::string& dump : dumps) {
    ByteWindow window = ByteWindow::OfBytes(dump);
    builder.Add(ReadInput(window, "dump", InputKind::kNone));
  }
  return builder.Finish();
}

// Restarts, dumps in any order, several in one text or in the same second, and bounds that refuse
// a step.
TEST(InspectReplay, MakesTheStepsThatTheServiceMade) {
  fp_host::RunSeeded("services", fp_host::Share(200), 1, [](uint64_t seed) {
    std::mt19937_64 random(seed);
    const auto below = [&](int limit) { return static_cast<int>(random() % limit); };
    Phone phone;
    std::vector<std::string> dumps;
    for (int i = 0; i < 150; ++i) {
      phone.time += below(2);
      phone.AddAttempt({.raw = 1000 + 1000 * ((i / 20) % 3) + below(700),
                        .iq = below(50),
                        .success = below(3) == 0,
                        .acquired = static_cast<int8_t>(below(6) == 0 ? 2 : 1)});
      const bool restarts = below(30) == 0 || i == 149;
      if (restarts || below(15) == 0) {
        dumps.push_back(phone.Dump());
      }
      if (restarts) {
        phone.Start();
      }
    }
    if (below(2) == 0) {
      dumps.front() += dumps.back();
      dumps.pop_back();
    }
    std::shuffle(dumps.begin(), dumps.end(), random);
    const Replay replay = ReplayRecorded(Read(dumps), kCalibration, false);
    std::vector<float> steps;
    bool is_known = true;
    for (const auto& run : replay.runs) {
      is_known = is_known && run.unknown.empty();
      for (const ExposureStep& step : run.recorded.steps) {
        steps.push_back(step.expo);
      }
    }
    ASSERT_TRUE(replay.Agrees());
    if (is_known) {
      ASSERT_EQ(phone.steps, steps);
    }
  });
}

TEST(InspectReplay, TellsWhatItCannotKnow) {
  Phone phone;
  const auto shoot = [&](int count) {
    for (int i = 0; i < count; ++i) {
      ++phone.time;
      phone.AddAttempt({.raw = 3000 + i, .iq = 20});
    }
    return phone.Dump();
  };
  const std::string first = shoot(10);
  std::string changed = first;
  changed.replace(changed.find("    Avg IQ: 20.00"), 17, "    Avg IQ: 20.01");
  EXPECT_FALSE(ReplayRecorded(Read({changed}), kCalibration, false).Agrees());
  EXPECT_FALSE(ReplayRecorded(Read({shoot(8)}), std::nullopt, false).Agrees())
      << "a step was refused at the bound, which without a calibration is unknown";

  // Some attempts are in no dump.
  const Replay gap = ReplayRecorded(Read({first, shoot(52)}), kCalibration, false);
  EXPECT_EQ("attempts after the last one shown are missing", gap.runs.at(0).unknown);
  EXPECT_EQ(10u, gap.runs[0].attempts.size());
  EXPECT_EQ(1u, gap.check_count) << "the later sample is not compared";

  std::string without_bring_up = first;
  without_bring_up.replace(0, without_bring_up.find(','), "Error:2026-03-04 05:06:07 no answer");
  EXPECT_TRUE(ReplayRecorded(Read({without_bring_up}), kCalibration, false).runs.empty());
  EXPECT_TRUE(
      ReplayRecorded(Read({first.substr(0, first.find("    Avg raw"))}), kCalibration, false)
          .runs.empty())
      << "the sample is cut";

  // A full history that begins after the bring-up.
  std::string full =
      "Initialization successful, start_time:2026-03-04 04:00:00.000, latency:1ms\n"
      "Auth Events:\n";
  for (int i = 0; i < 50; ++i) {
    full += "  #0" + std::to_string(100 + i).substr(1) +
            " 2026-03-04 05:06:07 acquisition_error:TOO_DARK, rc:0, lptw:0\n";
  }
  full += first.substr(first.find("DynamicExposure:"));
  const Replay lost = ReplayRecorded(Read({full}), kCalibration, false);
  EXPECT_EQ("attempts before the first recorded one may be missing", lost.runs.at(0).unknown);
  EXPECT_TRUE(lost.runs[0].attempts.empty());
}

TEST(InspectReplay, FirstDifferentStep) {
  Phone phone;  // too bright from the third attempt on: a step down at the fifth and the ninth
  for (int i = 0; i < 12; ++i) {
    ++phone.time;
    phone.AddAttempt(
        {.raw = i < 2 ? 2000 : 3000 - 10 * i, .iq = i < 2 ? 40 : 20, .success = i % 4 == 0});
  }
  Replay replay = ReplayRecorded(Read({phone.Dump()}), kCalibration, false);
  ASSERT_EQ(2u, replay.runs.at(0).recorded.steps.size());
  constexpr size_t kNone = SIZE_MAX;
  const struct {
    const char* setting;
    size_t at;
    bool recorded, other;
  } kCases[] = {
      {"number_of_attempts=4", kNone, false, false},
      {"number_of_attempts=3", 3, false, true},
      {"number_of_attempts=5", 4, true, false},
      {"frr_threshold=99", 4, true, false},
      {"high_raw_mean_threshold=2950", 4, true, false},
      {"lower_bound_us=55000", 8, true, false},
      {"expo_change_unit_denominator=61", 4, true, true},
      {"expo_change_unit_denominator=0", 4, true, false},
  };
  for (const auto& test : kCases) {
    AddVariant({ParseSetting(test.setting)}, &replay);
    const auto& departures = replay.variants.back().departures;
    ASSERT_EQ(test.at == kNone ? 0u : 1u, departures.size()) << test.setting;
    if (test.at != kNone) {
      EXPECT_EQ(test.at, departures[0].at) << test.setting;
      EXPECT_EQ(test.recorded, departures[0].recorded.has_value()) << test.setting;
      EXPECT_EQ(test.other, departures[0].other.has_value()) << test.setting;
      EXPECT_FALSE(departures[0].modelled) << "nobody asked for a model";
    }
  }
  const Sample& sample = replay.variants[1].departures[0].other->sample;
  EXPECT_EQ(1u, sample.first);
  EXPECT_EQ(3u, sample.last);
  EXPECT_EQ(3u, sample.rejected);
}

TEST(InspectReplay, FitOfASensorWithoutNoise) {
  std::vector<AuthEventG7> attempts(60);
  std::vector<SensorFit::Image> images;
  const auto expose = [](float expo) {
    const double raw = 40 * static_cast<double>(expo);
    AuthEventG7 attempt;
    attempt.acquired_info = AuthEventG7::kAcquiredGood;
    attempt.t_cov = 100;
    attempt.rawmean_delta = static_cast<int32_t>(std::lround(raw));
    attempt.iq = static_cast<int32_t>(std::lround(50 - 30 * std::pow((raw - 2000) / 1000, 2)));
    attempt.auth_successful = attempt.iq >= 30;
    return attempt;
  };
  for (size_t i = 0; i < attempts.size(); ++i) {
    const float expo = 25 + static_cast<float>(i);
    attempts[i] = expose(expo);
    images.push_back({&attempts[i], expo});
  }
  const auto fit = SensorFit::Of(images);
  ASSERT_TRUE(fit);
  EXPECT_NEAR(40, fit->raw_per_ms, 0.01);
  EXPECT_NEAR(0, fit->raw_error, 0.001);
  EXPECT_NEAR(50, fit->best_quality, 0.2);
  EXPECT_NEAR(2000, fit->best_raw, 2);
  EXPECT_NEAR(30, fit->falloff, 0.2);
  EXPECT_EQ(0u, fit->wrong);
  for (const float expo : {30.0F, 50.0F, 80.0F}) {
    const AuthEventG7 modelled = fit->Predict(expose(45), expo / 45);
    EXPECT_EQ(expose(expo).rawmean_delta, modelled.rawmean_delta);
    EXPECT_NEAR(expose(expo).iq, modelled.iq, 1);
    EXPECT_EQ(expose(expo).auth_successful, modelled.auth_successful) << expo;
  }
  EXPECT_EQ(1800, fit->Predict(expose(45), INFINITY).rawmean_delta);

  EXPECT_FALSE(SensorFit::Of({images.begin(), images.begin() + 19})) << "too few";
  for (AuthEventG7& attempt : attempts) {
    attempt.iq = -attempt.iq;
  }
  EXPECT_FALSE(SensorFit::Of(images)) << "the quality has a minimum, no maximum";
  for (AuthEventG7& attempt : attempts) {
    attempt.rawmean_delta = 2000;
  }
  EXPECT_FALSE(SensorFit::Of(images)) << "all images have the same raw mean";
}

}  // namespace
}  // namespace fp_inspect
