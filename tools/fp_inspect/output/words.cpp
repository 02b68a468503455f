// SPDX-License-Identifier: Apache-2.0
#include "output/words.h"

#include <fmt/format.h>

#include <cmath>

namespace fp_inspect {
namespace {

std::string ExpoText(const ExposureStep& step) {
  return std::isnan(step.expo) ? "" : fmt::format(", {:.3f} ms", step.expo);
}

std::string SampleText(const Run& run, const Sample& sample, const Zone& zone) {
  return fmt::format(
      "{} attempts since {}: {} of {} images rejected, mean iq {:.2f}, mean raw {:.2f}",
      sample.last - sample.first + 1, zone.Text(run.times[sample.first], "%H:%M:%S"),
      sample.rejected, sample.images, sample.avg_iq, sample.avg_raw_mean);
}

}  // namespace

std::string Percent(double share) { return fmt::format("{:.0f} %", 100 * share); }

std::string RangeText(const Share& share) {
  const Interval range = share.Range();
  return fmt::format("{:.0f}..{:.0f}", 100 * range.low, 100 * range.high);
}

std::string ShareText(const Share& share) {
  if (!share.IsLarge()) {
    return fmt::format("{} of {}", share.k, share.n);
  }
  return fmt::format("{} of {} = {}", share.k, share.n, Percent(share.Value()));
}

std::string SideText(const CompareRow& row, const BurstSum& side) {
  if (row.is_share) {
    return ShareText({.k = static_cast<size_t>(side.sum), .n = side.n});
  }
  return side.n < 20
             ? fmt::format("n = {}", side.n)
             : fmt::format("mean {:.0f}, n = {}", side.sum / static_cast<double>(side.n), side.n);
}

std::string DifferenceText(const CompareRow& row) {
  const double scale = row.is_share ? 100 : 1;
  return row.HasInterval() ? fmt::format("{:+.0f}..{:+.0f}", scale * row.difference.low,
                                         scale * row.difference.high)
                           : "";
}

std::string PText(const CompareRow& row) { return row.p ? fmt::format("{:.2g}", *row.p) : ""; }

std::string CompareNote(const Comparison& comparison) {
  return fmt::format(
      "covered: t_cov of {} % or more; 95 %: interval of the difference, for shares assuming "
      "independent attempts; p: by bursts, corrected for {} rows",
      Thresholds().coverage, comparison.tested);
}

std::string StepText(const Run& run, const ExposureStep& step, const Zone& zone) {
  return fmt::format("step {} to {}{}, based on {}", step.up ? "up" : "down", step.step,
                     ExpoText(step), SampleText(run, step.sample, zone));
}

}  // namespace fp_inspect
