// SPDX-License-Identifier: Apache-2.0
#include "fake_matcher.h"

#include <algorithm>
#include <cmath>

namespace fp_service {
namespace {

// Midpoints and scales of the logistic functions; coverage in percent.
constexpr double kQualityMidpoint = 22;
constexpr double kQualityScale = 2.5;
constexpr double kCoverageMidpoint = 45;
constexpr double kCoverageScale = 8;

// Result codes of a failed match; kNoMatch leaves the reason to the metrics.
constexpr uint32_t kNoMatch = 1;
constexpr uint32_t kImagePartial = 1013;
constexpr uint32_t kLowQuality = 1014;
constexpr uint32_t kTooDark = 1164;
constexpr uint32_t kTooBright = 1513;

// Result codes of a failed enrollment.
constexpr int32_t kAreaSmall = 1;
constexpr int32_t kEnrollLowQuality = 3;

constexpr float kPartialBelow = 60;  // percent of the sensor
constexpr int32_t kTooBrightAbove = 2700;
constexpr int32_t kTooDarkBelow = 1300;
constexpr int32_t kLowQualityBelow = 30;

// The averages that an enrollment needs.
constexpr float kEnrollCoverage = 85;  // percent
constexpr float kEnrollQuality = 25;

double Logistic(double x) { return 1 / (1 + std::exp(-x)); }

uint32_t ResultCode(const Capture& image, float coverage_percent) {
  if (image.raw_mean > kTooBrightAbove) {
    return kTooBright;
  }
  if (image.raw_mean < kTooDarkBelow) {
    return kTooDark;
  }
  if (coverage_percent < kPartialBelow) {
    return kImagePartial;
  }
  return image.quality < kLowQualityBelow ? kLowQuality : kNoMatch;
}

}  // namespace

// Draws the same number of random numbers for every image, so that runs stay comparable.
FakeMatcher::Result FakeMatcher::Match(const Capture& image, float coverage_percent) {
  Random& random = storage_.random;
  const double chance = Logistic((image.quality - kQualityMidpoint) / kQualityScale) *
                        Logistic((coverage_percent - kCoverageMidpoint) / kCoverageScale);
  const bool matches = random.Uniform() < chance && IsEnrolled(image.finger);
  const int32_t latency_ms = 180 + random.UniformInt(40);
  const int32_t score = random.UniformInt(60);
  const int32_t images = 1 + random.UniformInt(3);
  const int32_t first_area = random.UniformInt(4000);
  const int32_t second_area = random.UniformInt(4000);
  if (matches) {
    return {.finger = image.finger,
            .latency_ms = latency_ms,
            .score = image.quality * 20 + score,
            .stitched_images = {1, images},
            .stitched_area = {first_area, second_area}};
  }
  return {.rc = ResultCode(image, coverage_percent),
          .latency_ms = latency_ms,
          .score = score,
          .packed_metrics = {230225220, 90210210, 125000000}};
}

void FakeMatcher::AddImage(const Capture& image, float coverage_percent) {
  ++captures_;
  coverage_sum_ += coverage_percent;
  quality_sum_ += static_cast<float>(image.quality);
  raw_mean_sum_ += static_cast<float>(image.raw_mean);
}

FakeMatcher::Enrollment FakeMatcher::FinishEnrollment(int finger) {
  const auto images = static_cast<float>(std::max(captures_, 1));
  Enrollment enrollment = {.captures = captures_,
                           .average_quality = quality_sum_ / images,
                           .average_raw_mean = raw_mean_sum_ / images};
  if (coverage_sum_ / images < kEnrollCoverage) {
    enrollment.rc = kAreaSmall;
  } else if (enrollment.average_quality < kEnrollQuality) {
    enrollment.rc = kEnrollLowQuality;
  } else {
    EnrolledFlag(finger) = true;
  }
  captures_ = 0;
  coverage_sum_ = quality_sum_ = raw_mean_sum_ = 0;
  return enrollment;
}

int32_t FakeMatcher::CountEnrolled() const {
  return static_cast<int32_t>(std::count(storage_.enrolled.begin(), storage_.enrolled.end(), true));
}

}  // namespace fp_service
