// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "reading/record.h"

namespace fp_inspect {

// A model of the sensor, fitted to recorded images: the raw mean is proportional to the exposure,
// the quality is a parabola of the raw mean, and an image with enough coverage is rejected below a
// certain quality.
struct SensorFit {
  struct Image {
    const AuthEventG7* attempt;
    float expo;  // milliseconds, in effect at the capture
  };
  // Fits by least squares. Returns nothing for fewer than 20 images, and for images whose quality
  // has no maximum over the raw mean.
  static std::optional<SensorFit> Of(const std::vector<Image>& images);

  double Quality(double raw) const;

  // Predicts the attempt at `exposure_ratio` times its exposure. The attempt keeps its deviations
  // from the fit, and its outcome changes if its quality crosses `iq_cut`.
  AuthEventG7 Predict(const AuthEventG7& attempt, double exposure_ratio) const;

  size_t images = 0;
  double raw_per_ms = 0;
  double raw_error = 0;  // standard deviation from the fit, relative to the mean
  double best_quality = 0;
  double best_raw = 0;
  double falloff = 0;  // per (1000 raw)^2
  double quality_error = 0;
  int32_t iq_cut = 0;
  size_t covered = 0;  // images with enough coverage
  size_t wrong = 0;    // of these, images whose outcome iq_cut predicts wrongly
};

}  // namespace fp_inspect
