// SPDX-License-Identifier: Apache-2.0
#include "output/report_figures.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "model/statistics.h"
#include "output/words.h"

namespace fp_inspect {
namespace {

constexpr size_t kBands = 10;  // of coverage

// The kinds of marks for attempts with an image.
enum Outcome { kMatched, kRejected, kLowCoverage, kOutcomes };
constexpr const char* kOutcomeNames[] = {"matched", "rejected", "rejected, low coverage"};

template <typename Take>
void ForEachImage(const ReportSide& side, const Take& take) {
  const Thresholds& limits = side.summary.thresholds;
  for (const Record& record : side.device->Of(RecordKind::kAttempt).records) {
    const AuthEventG7& attempt = *record.Attempt();
    if (record.g7 && attempt.acquired_info == AuthEventG7::kAcquiredGood) {
      take(attempt, !IsRejected(attempt)              ? kMatched
                    : attempt.t_cov < limits.coverage ? kLowCoverage
                                                      : kRejected);
    }
  }
}

template <typename Take>
void ForEachSize(const ReportSide& side, const Take& take) {
  for (const Record& record : side.device->Of(RecordKind::kFingerSize).records) {
    const auto& size = std::get<FingerSize>(record.value);
    if (std::isfinite(size.major) && std::isfinite(size.minor)) {
      take(size);
    }
  }
}

// A damaged value can have many digits.
std::string Rounded(double value) {
  return std::abs(value) < 1e6 ? fmt::format("{:.0f}", value) : fmt::format("{:.1e}", value);
}

// The median, and two quantiles in parentheses.
std::string SpreadText(std::vector<double> values, double low, double high) {
  return values.empty()
             ? ""
             : fmt::format("{} ({} to {})", Rounded(Quantile(values, 0.5)),
                           Rounded(Quantile(values, low)), Rounded(Quantile(values, high)));
}

// The length of a bar: `largest` records fill half the drawing, and a single one is still visible.
double BarLength(size_t count, size_t largest) {
  const double bar = 50.0 * static_cast<double>(count) / static_cast<double>(largest);
  return count == 0 ? 0 : std::max(bar, 1.0);
}

Html LegendEntry(const Cloud& cloud, const std::string& text) {
  return Tag("li",
             SmallSvg("key", 14, 14, Path(cloud.classes, MarkPath(cloud.mark, 7, 7, 4.2))) + text);
}

Html DrawThresholds(const PlotAxes& axes, const Thresholds& limits) {
  const auto& [x, y] = axes;
  Html drawn = Line("limit", x.from, y.At(limits.iq), x.to, y.At(limits.iq)) +
               Label("end", x.to, y.At(limits.iq) - 4, fmt::format("quality {}", limits.iq));
  for (const int32_t raw : {limits.low_raw_mean, limits.high_raw_mean}) {
    drawn += Line("limit", x.At(raw), y.from, x.At(raw), y.to) +
             Label("mid", x.At(raw), y.to - 8, std::to_string(raw));
  }
  return drawn;
}

}  // namespace

PlotAxes QualityAxes(const Report& report) {
  std::vector<double> raw;
  std::vector<double> quality;
  std::vector<double> raw_limits;
  std::vector<double> quality_limits = {0};
  for (const ReportSide& side : report.sides) {
    ForEachImage(side, [&](const AuthEventG7& attempt, Outcome) {
      raw.push_back(attempt.rawmean_delta);
      quality.push_back(attempt.iq);
    });
    const Thresholds& limits = side.summary.thresholds;
    raw_limits.insert(raw_limits.end(), {static_cast<double>(limits.low_raw_mean),
                                         static_cast<double>(limits.high_raw_mean)});
    quality_limits.push_back(limits.iq);
  }
  PlotAxes axes;
  FitAxis(std::move(raw), raw_limits, &axes.x);
  FitAxis(std::move(quality), quality_limits, &axes.y);
  return axes;
}

PlotAxes SizeAxes(const Report& report) {
  std::vector<double> major;
  std::vector<double> minor;
  for (const ReportSide& side : report.sides) {
    ForEachSize(side, [&](const FingerSize& size) {
      major.push_back(size.major);
      minor.push_back(size.minor);
    });
  }
  PlotAxes axes;
  FitAxis(std::move(major), {}, &axes.x);
  FitAxis(std::move(minor), {}, &axes.y);
  return axes;
}

Html QualityFigure(const ReportSide& side, const PlotAxes& axes) {
  std::vector<Cloud> clouds = {
      {Mark::kRing, "good"}, {Mark::kCross, "bad"}, {Mark::kTriangle, "low"}};
  std::array<std::vector<double>, kOutcomes> raw;
  std::array<std::vector<double>, kOutcomes> quality;
  ForEachImage(side, [&](const AuthEventG7& attempt, Outcome outcome) {
    clouds[outcome].points.emplace_back(attempt.rawmean_delta, attempt.iq);
    raw[outcome].push_back(attempt.rawmean_delta);
    quality[outcome].push_back(attempt.iq);
  });
  if (raw[kMatched].size() + raw[kRejected].size() + raw[kLowCoverage].size() == 0) {
    return Tag("p", "No attempt has an image with these values.");
  }
  std::vector<HtmlRow> rows;
  Html keys;
  for (size_t i = 0; i < kOutcomes; ++i) {
    rows.push_back({{kOutcomeNames[i], std::to_string(raw[i].size()),
                     SpreadText(raw[i], 0.25, 0.75), SpreadText(quality[i], 0.25, 0.75)}});
    keys += LegendEntry(clouds[i], kOutcomeNames[i]);
  }
  return Svg(fmt::format("light-{}", side.letter), "Quality against raw mean of images",
             "Each mark is one image or several that lie close together; a larger one stands for "
             "more. Dashed lines are the thresholds. The table has the medians.",
             280,
             DrawAxes(axes.x, axes.y, "raw mean", "quality") +
                 DrawThresholds(axes, side.summary.thresholds) +
                 DrawClouds(axes.x, axes.y, clouds)) +
         Tag("ul", {{"class", "legend"}}, keys) +
         HtmlTable("Median, and 25 % to 75 %", {"images", "n", "raw mean", "quality"}, rows);
}

Html SizeFigure(const ReportSide& side, const PlotAxes& axes) {
  std::vector<Cloud> clouds = {{Mark::kRing, "good"}};
  std::vector<double> major;
  std::vector<double> minor;
  ForEachSize(side, [&](const FingerSize& size) {
    clouds[0].points.emplace_back(size.major, size.minor);
    major.push_back(size.major);
    minor.push_back(size.minor);
  });
  if (major.empty()) {
    return Tag("p", "No finger sizes: a dump does not have them, their backup file does.");
  }
  return Svg(fmt::format("sizes-{}", side.letter), "Sizes of contacts",
             "Minor against major axis. Each mark is one contact or several that lie close "
             "together. The table has the medians.",
             280,
             DrawAxes(axes.x, axes.y, "major axis", "minor axis") +
                 DrawClouds(axes.x, axes.y, clouds)) +
         HtmlTable("Median, and 5 % to 95 %, in panel units", {"contacts", "n", "size"},
                   {{{"major axis", std::to_string(major.size()), SpreadText(major, 0.05, 0.95)}},
                    {{"minor axis", std::to_string(minor.size()), SpreadText(minor, 0.05, 0.95)}}});
}

Html CoverageFigure(const ReportSide& side) {
  std::array<Share, kBands + 1> bands;  // the last one is of unknown coverage
  ForEachImage(side, [&](const AuthEventG7& attempt, Outcome outcome) {
    const float tenth = attempt.t_cov / 10;
    Share& band =
        bands[std::isnan(tenth) ? kBands : static_cast<size_t>(std::clamp(tenth, 0.0F, 9.0F))];
    ++band.n;
    band.k += outcome == kMatched ? 0 : 1;
  });
  size_t largest = 1;
  for (const Share& band : bands) {
    largest = std::max({largest, band.k, band.n - band.k});
  }
  std::vector<HtmlRow> rows;
  for (size_t i = kBands + 1; i-- > 0;) {
    const Share& band = bands[i];
    if (i == kBands && band.n == 0) {
      continue;
    }
    const double left = BarLength(band.k, largest);
    const double right = BarLength(band.n - band.k, largest);
    const std::string name =
        i == kBands ? "unknown" : fmt::format("{}..{} %", 10 * i, 10 * (i + 1));
    const bool is_limit = 10 * static_cast<float>(i) == side.summary.thresholds.coverage;
    rows.push_back({{name, std::to_string(band.k),
                     SmallSvg("bar", 100, 10,
                              Rect("fill bad", 50 - left, 1, left, 8) +
                                  Rect("fill good", 50, 1, right, 8) + Line("axis", 50, 0, 50, 10)),
                     std::to_string(band.n - band.k), band.IsLarge() ? Percent(band.Value()) : ""},
                    is_limit ? "covered" : ""});
  }
  return HtmlTable(
      fmt::format("Images by coverage, and the share that was rejected; the line is at {:.0f} %",
                  side.summary.thresholds.coverage),
      {"coverage", "rejected", "", "matched", "share"}, rows);
}

}  // namespace fp_inspect
