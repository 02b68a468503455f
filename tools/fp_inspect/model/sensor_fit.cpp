// SPDX-License-Identifier: Apache-2.0
#include "model/sensor_fit.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "model/causes.h"

namespace fp_inspect {
namespace {

constexpr size_t kMinImages = 20;

bool IsCovered(const AuthEventG7& attempt) { return attempt.t_cov >= Thresholds().coverage; }

void FitRaw(const std::vector<SensorFit::Image>& images, SensorFit* fit) {
  double xx = 0;
  double xy = 0;
  double yy = 0;
  double y = 0;
  for (const auto& [attempt, expo] : images) {
    const double raw = attempt->rawmean_delta;
    xx += static_cast<double>(expo) * expo;
    xy += expo * raw;
    yy += raw * raw;
    y += raw;
  }
  const auto n = static_cast<double>(images.size());
  fit->raw_per_ms = xy / xx;
  fit->raw_error = std::sqrt(std::max(0.0, yy - fit->raw_per_ms * xy) / (n - 1)) / (y / n);
}

// quality = a + b x + c x^2 over x = (raw - mean) / 1000, by the normal equations. Since the mean
// of x is 0, a follows from c.
bool FitQuality(const std::vector<SensorFit::Image>& images, SensorFit* fit) {
  const auto n = static_cast<double>(images.size());
  double mean = 0;
  for (const auto& image : images) {
    mean += image.attempt->rawmean_delta / n;
  }
  double x2 = 0;
  double x3 = 0;
  double x4 = 0;
  double y = 0;
  double xy = 0;
  double x2y = 0;
  for (const auto& image : images) {
    const double x = (image.attempt->rawmean_delta - mean) / 1000;
    const double iq = image.attempt->iq;
    x2 += x * x;
    x3 += x * x * x;
    x4 += x * x * x * x;
    y += iq;
    xy += x * iq;
    x2y += x * x * iq;
  }
  const double determinant = x2 * (x4 - x2 * x2 / n) - x3 * x3;
  if (!(determinant > 1e-9)) {
    return false;  // fewer than three different raw means do not determine a parabola
  }
  const double c = (x2 * (x2y - x2 * y / n) - x3 * xy) / determinant;
  const double b = (xy - c * x3) / x2;
  const double a = (y - c * x2) / n;
  if (!(c < 0)) {
    return false;
  }
  fit->falloff = -c;
  fit->best_raw = mean - 1000 * b / (2 * c);
  fit->best_quality = a - b * b / (4 * c);
  double squares = 0;
  for (const auto& image : images) {
    squares += std::pow(image.attempt->iq - fit->Quality(image.attempt->rawmean_delta), 2);
  }
  fit->quality_error = std::sqrt(squares / (n - 3));
  return true;
}

// Finds the quality cut with the fewest wrong outcomes: rejects at or above it, and matches below
// it.
void FitOutcome(const std::vector<SensorFit::Image>& images, SensorFit* fit) {
  std::vector<std::pair<int32_t, bool>> outcomes;
  for (const auto& image : images) {
    if (IsCovered(*image.attempt)) {
      outcomes.emplace_back(image.attempt->iq, IsRejected(*image.attempt));
    }
  }
  std::sort(outcomes.begin(), outcomes.end());
  fit->covered = outcomes.size();
  auto wrong = static_cast<size_t>(std::count_if(
      outcomes.begin(), outcomes.end(), [](const auto& outcome) { return outcome.second; }));
  fit->wrong = wrong;
  fit->iq_cut = outcomes.empty() ? 0 : outcomes.front().first;
  for (size_t i = 0; i + 1 < outcomes.size(); ++i) {
    wrong = outcomes[i].second ? wrong - 1 : wrong + 1;
    if (outcomes[i].first != outcomes[i + 1].first && wrong < fit->wrong) {
      fit->wrong = wrong;
      fit->iq_cut = outcomes[i + 1].first;
    }
  }
}

}  // namespace

std::optional<SensorFit> SensorFit::Of(const std::vector<Image>& images) {
  SensorFit fit = {.images = images.size()};
  if (images.size() < kMinImages || !FitQuality(images, &fit)) {
    return std::nullopt;
  }
  FitRaw(images, &fit);
  FitOutcome(images, &fit);
  return fit;
}

double SensorFit::Quality(double raw) const {
  const double offset = (raw - best_raw) / 1000;
  return best_quality - falloff * offset * offset;
}

AuthEventG7 SensorFit::Predict(const AuthEventG7& attempt, double exposure_ratio) const {
  AuthEventG7 modelled = attempt;
  if (attempt.acquired_info != AuthEventG7::kAcquiredGood || exposure_ratio == 1 ||
      !std::isfinite(exposure_ratio)) {
    return modelled;
  }
  constexpr double kMax = INT32_MAX;
  const double raw = std::clamp(std::round(attempt.rawmean_delta * exposure_ratio), -kMax, kMax);
  const double iq = attempt.iq + Quality(raw) - Quality(attempt.rawmean_delta);
  modelled.rawmean_delta = static_cast<int32_t>(raw);
  modelled.iq = static_cast<int32_t>(std::clamp(std::round(iq), 0.0, kMax));
  if (IsCovered(attempt) && (attempt.iq < iq_cut) != (modelled.iq < iq_cut)) {
    modelled.auth_successful = modelled.iq >= iq_cut;
  }
  return modelled;
}

}  // namespace fp_inspect
