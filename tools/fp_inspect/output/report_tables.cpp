// SPDX-License-Identifier: Apache-2.0
#include "output/report_tables.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "output/svg.h"
#include "output/words.h"

namespace fp_inspect {
namespace {

constexpr size_t kErrorsShown = 20;

Html Paragraph(const std::string& text) { return Tag("p", text); }

Html Tile(const std::string& name, const std::string& value, const std::string& note = "") {
  return Tag("div",
             Tag("dt", name) +
                 Tag("dd", Tag("strong", value) +
                               (note.empty() ? Html() : Tag("br", Html()) + Tag("span", note))));
}

Html Tiles(const ReportSide& side) {
  const Tally& all = side.summary.all;
  const Share& rejected = all.rejected;
  size_t steps = 0;
  for (const Run& run : side.replay.runs) {
    steps += run.recorded.steps.size();
  }
  return Tag(
      "dl", Tile("attempts", std::to_string(all.attempts), fmt::format("bursts: {}", all.bursts)) +
                (rejected.IsLarge() ? Tile("rejected", Percent(rejected.Value()),
                                           fmt::format("{} of {}, 95 %: {}", rejected.k, rejected.n,
                                                       RangeText(rejected)))
                                    : Tile("rejected", ShareText(rejected))) +
                Tile("no image", std::to_string(all.no_image.k)) +
                Tile("exposure steps", std::to_string(steps)) +
                Tile("critical errors", std::to_string(side.summary.critical_errors)) +
                Tile("damage", std::to_string(side.device->damage_count)));
}

Html ErrorsOf(const Device& device) {
  std::map<std::string, size_t> counts;
  for (const Record& error : device.Of(RecordKind::kError).records) {
    ++counts[std::get<std::string>(error.value)];
  }
  Html items;
  size_t shown = 0;
  for (const auto& [message, count] : counts) {
    if (++shown <= kErrorsShown) {
      items += Tag("li", fmt::format("critical error (n = {}): {}", count, message));
    }
  }
  if (shown > kErrorsShown) {
    items += Tag("li", fmt::format("{} other critical errors", shown - kErrorsShown));
  }
  return items;
}

// A share as a bar, with its interval as a line.
Html ShareBar(const Share& share) {
  const Interval range = share.Range();
  return SmallSvg(
      "bar", 100, 10,
      Rect("track", 0, 1, 100, 8) + Rect("fill cause", 0, 1, 100 * share.Value(), 8) +
          (share.IsLarge() ? Line("axis", 100 * range.low, 5, 100 * range.high, 5) : Html()));
}

// The difference of a share on a scale from -`most` to `most`.
Html DifferenceBar(const CompareRow& row, double most) {
  if (!row.is_share || !row.HasInterval()) {
    return {};
  }
  const auto at = [&](double difference) { return 50 + 50 * difference / most; };
  const auto share = [](const BurstSum& side) { return side.sum / static_cast<double>(side.n); };
  return SmallSvg("bar", 100, 10,
                  Line("grid", 50, 0, 50, 10) +
                      Line("interval", at(row.difference.low), 5, at(row.difference.high), 5) +
                      Rect("fill cause", at(share(row.b) - share(row.a)) - 0.6, 1, 1.2, 8));
}

}  // namespace

Html SummaryTable(const ReportSide& side) {
  const Summary& summary = side.summary;
  const Device& device = *side.device;
  const Zone zone(device.zone);
  const Timeline& attempts = device.Of(RecordKind::kAttempt);
  Html text = Paragraph("Inputs: " + side.name);
  if (summary.all.attempts > 0) {
    text += Paragraph(fmt::format(
        "{} to {}, zone {}{}", zone.Text(summary.all.first, kMinute),
        zone.Text(summary.all.last, kMinute), device.zone.empty() ? "of this machine" : device.zone,
        attempts.full ? "; history probably full: older attempts are lost" : ""));
  }
  text += Tiles(side);
  Html findings;
  for (const Finding& finding : summary.findings) {
    findings += Tag("li", Tag("b", "!") + " " + finding.text);
  }
  for (const Gap& gap : attempts.gaps) {
    findings += Tag("li", fmt::format("nothing is known from {} to {}",
                                      zone.Text(gap.from, kMinute), zone.Text(gap.to, kMinute)));
  }
  findings += ErrorsOf(device);
  return text + (findings.IsEmpty() ? Html() : Tag("ul", findings)) +
         Paragraph(fmt::format(
             "Enrollments: {} succeeded, {} failed; {} fingers deleted. Thresholds ({}): "
             "quality {}, raw mean {} "
             "to {}, coverage {:.0f} %.",
             summary.enrolled, summary.enroll_failed, summary.deleted,
             summary.thresholds.from_dump ? "of the newest dump" : "defaults",
             summary.thresholds.iq, summary.thresholds.low_raw_mean,
             summary.thresholds.high_raw_mean, summary.thresholds.coverage));
}

Html CauseTable(const ReportSide& side) {
  std::vector<HtmlRow> rows;
  for (const CauseCount& count : side.summary.all.causes) {
    const Share& share = count.of_failures;
    std::string meaning = count.cause.meaning;
    meaning += !count.note.empty() && !meaning.empty() ? "; " : "";
    rows.push_back({{Html(count.cause.title) + ShareBar(share) + Tag("small", meaning + count.note),
                     std::to_string(share.k), share.IsLarge() ? Percent(share.Value()) : "",
                     share.IsLarge() ? RangeText(share) : ""}});
  }
  if (rows.empty()) {
    return Paragraph("No attempt failed.");
  }
  return HtmlTable(fmt::format("failures: {}; bars are shares, lines their 95 % intervals",
                               side.summary.all.causes.front().of_failures.n),
                   {"cause", "n", "share", "95 %"}, rows);
}

Html ComparisonTable(const Report& report) {
  const Comparison& comparison = *report.comparison;
  double most = 0.01;
  for (const CompareRow& row : comparison.rows) {
    if (row.is_share && row.HasInterval()) {
      most = std::max({most, std::abs(row.difference.low), std::abs(row.difference.high)});
    }
  }
  std::vector<HtmlRow> rows;
  for (const CompareRow& row : comparison.rows) {
    const Html mark = row.IsSignificant() ? Tag("b", "! ") : Html();
    rows.push_back({{mark + row.title + DifferenceBar(row, most), SideText(row, row.a),
                     SideText(row, row.b), DifferenceText(row), PText(row)},
                    row.IsSignificant() ? "significant" : ""});
  }
  return Tag("section",
             Tag("h2", "What differs between A and B") +
                 Tag("p", {{"class", "verdict"}}, comparison.verdict) +
                 Paragraph("A: " + report.sides[0].name) + Paragraph("B: " + report.sides[1].name) +
                 HtmlTable(fmt::format("! marks a significant difference; lines are the 95 % "
                                       "intervals of B minus A, from -{0:.0f} to +{0:.0f} points",
                                       100 * most),
                           {"", "A", "B", "95 %", "p"}, rows) +
                 Tag("p", Tag("small", CompareNote(comparison))));
}

Html DamageTable(const ReportSide& side) {
  const Device& device = *side.device;
  Html text = side.summary.salvaged > 0
                  ? Paragraph(fmt::format("{} records after damage are included (--salvage).",
                                          side.summary.salvaged))
                  : Html();
  if (device.damage.empty()) {
    return text + Paragraph("No damage found.");
  }
  std::vector<HtmlRow> rows;
  for (const Damage& damage : device.damage) {
    rows.push_back({{damage.text, std::to_string(damage.offset), damage.check}});
  }
  return text + HtmlTable(fmt::format("damaged places: {}, shown: {}", device.damage_count,
                                      device.damage.size()),
                          {"damage", "byte", "check"}, rows);
}

}  // namespace fp_inspect
