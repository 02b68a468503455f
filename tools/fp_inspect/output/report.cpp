// SPDX-License-Identifier: Apache-2.0
#include "output/report.h"

#include <fmt/format.h>

#include <functional>

#include "output/html.h"
#include "output/report_figures.h"
#include "output/report_tables.h"

namespace fp_inspect {
namespace {

// A section with what `make_content` returns for each side.
Html Section(const Report& report, const std::string& title,
             const std::function<Html(const ReportSide&)>& make_content) {
  Html sides;
  for (const ReportSide& side : report.sides) {
    const Html heading = report.sides.size() > 1 ? Tag("h3", std::string(1, side.letter)) : Html();
    sides += Tag("div", heading + make_content(side));
  }
  return Tag("section", Tag("h2", title) + Tag("div", {{"class", "sides"}}, sides));
}

Html Messages(const std::vector<std::string>& messages) {
  Html items;
  for (const std::string& message : messages) {
    items += Tag("li", message);
  }
  return messages.empty()
             ? Html()
             : Tag("section", Tag("h2", "Inputs that were not read as a whole") + Tag("ul", items));
}

Html Body(const Report& report) {
  const PlotAxes quality = QualityAxes(report);
  const PlotAxes sizes = SizeAxes(report);
  Html main = report.comparison ? ComparisonTable(report) : Html();
  main += Section(report, "Summary", SummaryTable);
  main += Section(report, "Why attempts failed", CauseTable);
  main += Section(report, "Attempts over time", TimeFigure);
  main += Section(report, "Quality and raw mean",
                  [&](const ReportSide& side) { return QualityFigure(side, quality); });
  main += Section(report, "Coverage by outcome", CoverageFigure);
  main += Section(report, "Finger sizes",
                  [&](const ReportSide& side) { return SizeFigure(side, sizes); });
  main += Section(report, "Damage", DamageTable);
  main += Messages(report.messages);
  return Tag("header", Tag("h1", "Fingerprint attempts")) +
         Tag("main", {{"class", report.sides.size() > 1 ? "two" : "one"}}, main) +
         Tag("footer", Tag("p",
                           "Made by fp_inspect report. Intervals assume independent attempts, but "
                           "those of one burst depend on each other: the fewer bursts, the less "
                           "an interval can be trusted."));
}

}  // namespace

std::string ReportPage(const Report& report) {
  const Html head =
      Tag("meta", {{"charset", "utf-8"}}) +
      Tag("meta", {{"http-equiv", "Content-Security-Policy"},
                   {"content", "default-src 'none'; style-src 'unsafe-inline'"}}) +
      Tag("meta", {{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}}) +
      Tag("meta", {{"name", "color-scheme"}, {"content", "light dark"}}) +
      Tag("title", "Fingerprint attempts: " + report.sides.front().name) +
      Html::Style(kReportStyle);
  return "<!DOCTYPE html>\n" +
         Tag("html", {{"lang", "en"}}, Tag("head", head) + Tag("body", Body(report))).Markup() +
         "\n";
}

}  // namespace fp_inspect
