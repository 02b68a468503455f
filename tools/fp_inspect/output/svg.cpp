// SPDX-License-Identifier: Apache-2.0
#include "output/svg.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "model/statistics.h"

namespace fp_inspect {
namespace {

constexpr double kCell = 5;  // units; points within a cell become one mark
constexpr double kLeastRadius = 1.8;
constexpr double kMostRadius = 4.2;

std::string Number(double value) {
  std::string text = fmt::format("{:.1f}", value);
  return text.ends_with(".0") ? text.substr(0, text.size() - 2) : text;
}

}  // namespace

double Axis::At(double value) const {
  const double share = high > low ? (value - low) / (high - low) : 0;
  return from + (to - from) * (share > 0 ? std::min(share, 1.0) : 0);
}

std::vector<double> Axis::Ticks() const {
  const double rough = std::max((high - low) / 5, 1e-6);
  const double power = std::pow(10, std::floor(std::log10(rough)));
  const double step = power * (rough / power < 1.5 ? 1
                               : rough / power < 3 ? 2
                               : rough / power < 7 ? 5
                                                   : 10);
  std::vector<double> ticks;
  for (double tick = std::ceil(low / step) * step; tick <= high && ticks.size() < 20;
       tick += step) {
    ticks.push_back(tick + 0.0);  // not -0
  }
  return ticks;
}

void FitAxis(std::vector<double> values, const std::vector<double>& wanted, Axis* axis) {
  std::erase_if(values, [](double value) { return !std::isfinite(value); });
  std::vector<double> ends = wanted;
  if (!values.empty()) {
    ends.push_back(Quantile(values, 0.005));
    ends.push_back(Quantile(values, 0.995));
  }
  if (ends.empty()) {
    return;
  }
  for (double& end : ends) {
    end = std::clamp(end, -axis->most, axis->most);
  }
  const auto [low, high] = std::minmax_element(ends.begin(), ends.end());
  const double margin = std::max((*high - *low) / 20, 0.5);
  axis->high = *high + margin;
  axis->low = *low >= 0 ? std::max(0.0, *low - margin) : *low - margin;
}

std::string MarkPath(Mark mark, double x, double y, double radius) {
  const std::string r = Number(radius);
  const std::string d = Number(2 * radius);
  switch (mark) {
    case Mark::kRing:
      return fmt::format("M{} {}a{} {} 0 1 0 {} 0a{} {} 0 1 0 -{} 0", Number(x - radius), Number(y),
                         r, r, d, r, r, d);
    case Mark::kCross:
      return fmt::format("M{} {}l{} {}m0-{}l-{} {}", Number(x - radius), Number(y - radius), d, d,
                         d, d, d);
    case Mark::kTriangle:
      return fmt::format("M{} {}l{} {}h-{}z", Number(x), Number(y - radius), r, d, d);
    case Mark::kTriangleDown:
      return fmt::format("M{} {}l{}-{}h-{}z", Number(x), Number(y + radius), r, d, d);
    case Mark::kDiamond:
      return fmt::format("M{} {}l{} {}l-{} {}l-{}-{}z", Number(x), Number(y - radius), r, r, r, r,
                         r, r);
  }
  return "";
}

Html Path(const std::string& classes, const std::string& path, const std::string& title) {
  return Tag("path", {{"class", classes}, {"d", path}},
             title.empty() ? Html() : Tag("title", title));
}

Html Line(const std::string& classes, double x1, double y1, double x2, double y2) {
  return Path(classes, fmt::format("M{} {}L{} {}", Number(x1), Number(y1), Number(x2), Number(y2)));
}

Html Rect(const std::string& classes, double x, double y, double width, double height) {
  return Tag("rect", {{"class", classes},
                      {"x", Number(x)},
                      {"y", Number(y)},
                      {"width", Number(width)},
                      {"height", Number(height)}});
}

Html Label(const std::string& classes, double x, double y, const std::string& text) {
  return Tag("text", {{"class", classes}, {"x", Number(x)}, {"y", Number(y)}}, text);
}

Html Svg(const std::string& id, const std::string& title, const std::string& description,
         double height, const Html& body) {
  const std::string title_id = id + "-title";
  const std::string text_id = id + "-text";
  return Tag(
      "svg",
      {{"viewBox", fmt::format("0 0 {} {}", kWide, Number(height))},
       {"role", "img"},
       {"aria-labelledby", title_id + " " + text_id}},
      Tag("title", {{"id", title_id}}, title) + Tag("desc", {{"id", text_id}}, description) + body);
}

Html SmallSvg(const std::string& classes, double width, double height, const Html& body) {
  return Tag("svg",
             {{"class", classes},
              {"viewBox", fmt::format("0 0 {} {}", width, height)},
              {"preserveAspectRatio", "none"},
              {"aria-hidden", "true"}},
             body);
}

Html DrawClouds(const Axis& x, const Axis& y, const std::vector<Cloud>& clouds) {
  struct Cell {
    double n = 0;
    double x = 0;
    double y = 0;
  };
  std::vector<std::map<std::pair<int, int>, Cell>> grids;
  double most = 1;
  for (const Cloud& cloud : clouds) {
    auto& grid = grids.emplace_back();
    for (const auto& [a, b] : cloud.points) {
      const double left = x.At(a);
      const double top = y.At(b);
      Cell& cell = grid[{static_cast<int>(left / kCell), static_cast<int>(top / kCell)}];
      ++cell.n;
      cell.x += left;
      cell.y += top;
      most = std::max(most, cell.n);
    }
  }
  Html drawn;
  for (size_t i = 0; i < clouds.size(); ++i) {
    std::string path;
    for (const auto& [at, cell] : grids[i]) {
      const double size = std::log(cell.n) / std::max(std::log(most), std::log(10.0));
      path += MarkPath(clouds[i].mark, cell.x / cell.n, cell.y / cell.n,
                       kLeastRadius + (kMostRadius - kLeastRadius) * size);
    }
    drawn += Path(clouds[i].classes, path);
  }
  return drawn;
}

Html DrawAxes(const Axis& x, const Axis& y, const std::string& x_name, const std::string& y_name) {
  Html drawn =
      Line("axis", x.from, y.from, x.to, y.from) + Line("axis", x.from, y.from, x.from, y.to);
  for (const double tick : x.Ticks()) {
    drawn += Line("axis", x.At(tick), y.from, x.At(tick), y.from + 4) +
             Label("mid", x.At(tick), y.from + 17, fmt::format("{:g}", tick));
  }
  for (const double tick : y.Ticks()) {
    drawn += Line("axis", x.from - 4, y.At(tick), x.from, y.At(tick)) +
             Label("end", x.from - 7, y.At(tick) + 4, fmt::format("{:g}", tick));
  }
  return drawn + Label("end", x.to, y.from + 33, x_name) + Label("", 0, y.to - 8, y_name);
}

}  // namespace fp_inspect
