// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include <map>

#include "output/report_figures.h"
#include "output/report_strip.h"
#include "output/words.h"

namespace fp_inspect {
namespace {

constexpr size_t kStepsListed = 20;

Html LegendEntry(const Html& drawing, const char* text) {
  return Tag("li", SmallSvg("key", 14, 14, drawing) + text);
}

Html Legend() {
  return Tag(
      "ul", {{"class", "legend"}},
      LegendEntry(Rect("fill good", 4, 7, 6, 7) + Line("axis", 0, 7, 14, 7),
                  "matched (below the line)") +
          LegendEntry(Rect("fill bad", 4, 0, 6, 7) + Line("axis", 0, 7, 14, 7),
                      "rejected (above the line)") +
          LegendEntry(Rect("none", 4, 1, 6, 6) + Line("axis", 0, 7, 14, 7), "no image") +
          LegendEntry(Path("fill error", MarkPath(Mark::kDiamond, 7, 7, 5)), "critical error") +
          LegendEntry(Path("fill step", MarkPath(Mark::kTriangle, 7, 7, 5)), "exposure step up") +
          LegendEntry(Path("fill step", MarkPath(Mark::kTriangleDown, 7, 7, 5)),
                      "exposure step down") +
          LegendEntry(Line("start", 7, 0, 7, 14), "start of the service"));
}

Html Steps(const ReportSide& side, const Zone& zone) {
  Html items;
  size_t count = 0;
  std::map<std::string, size_t> unknown;
  for (const Run& run : side.replay.runs) {
    for (const ExposureStep& step : run.recorded.steps) {
      if (++count <= kStepsListed) {
        items += Tag("li", zone.Text(run.times[step.at]) + " " + StepText(run, step, zone));
      }
    }
    if (!run.unknown.empty()) {
      ++unknown[run.unknown];
    }
  }
  if (count > kStepsListed) {
    items += Tag("li", fmt::format("{} more", count - kStepsListed));
  }
  Html summary = fmt::format("{} exposure steps, reconstructed from {} starts of the service",
                             count, side.replay.runs.size());
  if (!side.replay.calibration && count > 0) {
    summary += Html(" (in milliseconds with ") + Tag("code", "--calibration") + ")";
  }
  Html text = Tag("p", summary + ".");
  for (const auto& [why, runs] : unknown) {
    text +=
        Tag("p", fmt::format("{} starts are not replayed, or not to their end: {}.", runs, why));
  }
  return text + (items.IsEmpty() ? Html() : Tag("ul", items));
}

}  // namespace

Html TimeFigure(const ReportSide& side) {
  const Zone zone(side.device->zone);
  const Strip strip(side, zone);
  if (strip.IsEmpty()) {
    return Tag("p", "No attempts.");
  }
  std::vector<HtmlRow> rows;
  for (const auto& [index, row] : strip.GetRows()) {
    const Tally tally = TallyOf(row.attempts, side.summary.thresholds);
    const std::string range = tally.rejected.IsLarge() ? RangeText(tally.rejected) : "";
    rows.push_back({{row.label, Html(ShareText(tally.rejected)) + Tag("small", range),
                     std::to_string(tally.no_image.k), std::to_string(row.steps),
                     std::to_string(row.errors)}});
  }
  const std::string period =
      strip.GetDaysPerRow() == 1 ? "day" : fmt::format("period of {} days", strip.GetDaysPerRow());
  return Svg(fmt::format("time-{}", side.letter), "Attempts over time",
             fmt::format("A row for each {}. Matched attempts are below its line, failed ones "
                         "above it. The table has the numbers.",
                         period),
             strip.Height(), strip.Draw()) +
         Legend() + Steps(side, zone) +
         HtmlTable(fmt::format("By {}", period),
                   {"from", "rejected, 95 %", "no image", "steps", "errors"}, rows);
}

}  // namespace fp_inspect
