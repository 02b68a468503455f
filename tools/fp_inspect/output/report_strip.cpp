// SPDX-License-Identifier: Apache-2.0
#include "output/report_strip.h"

#include <fmt/format.h>

#include <algorithm>

#include "output/svg.h"

namespace fp_inspect {
namespace {

constexpr int64_t kDay = 86400;                   // seconds
constexpr int64_t kFarthest = 1'000'000'000'000;  // seconds; a damaged clock can be anywhere
constexpr int64_t kMostRows = 32;

// The layout of a row, in units. Failures are drawn above the base line, matches below it.
constexpr double kLeft = 86;
constexpr double kTop = 18;
constexpr double kRow = 48;
constexpr double kBase = 30;
constexpr double kBar = 16;  // the height of the highest bar
constexpr double kBins = std::tuple_size_v<decltype(Strip::Row::bins)>;
constexpr double kBin = (kWide - kLeft - 2) / kBins;

Html Marks(const Strip::Bin& bin, double x, double y) {
  Html marks;
  const auto mark = [&](size_t count, Mark shape, const char* classes, const char* what) {
    if (count > 0) {
      marks += Path(classes, MarkPath(shape, x, y + 6, 4.5), fmt::format("{} {}", count, what));
    }
  };
  if (bin.starts > 0) {
    marks += Line("start", x, y + 2, x, y + kBase);
  }
  mark(bin.errors, Mark::kDiamond, "fill error", "critical errors");
  mark(bin.ups, Mark::kTriangle, "fill step", "exposure steps up");
  mark(bin.downs, Mark::kTriangleDown, "fill step", "exposure steps down");
  return marks;
}

}  // namespace

Strip::Strip(const ReportSide& side, const Zone& zone) : zone_(zone) {
  const auto& attempts = side.device->Of(RecordKind::kAttempt).records;
  const auto& errors = side.device->Of(RecordKind::kError).records;
  int64_t last_day = INT64_MIN;
  for (const auto* records : {&attempts, &errors}) {
    for (const Record& record : *records) {
      first_day_ = std::min(first_day_, DayOf(record.time));
      last_day = std::max(last_day, DayOf(record.time));
    }
  }
  days_ = first_day_ <= last_day ? (last_day - first_day_) / kMostRows + 1 : 1;
  for (const Record& record : attempts) {
    AddAttempt(record);
  }
  for (const Record& record : errors) {
    auto [row, bin] = RowAndBinAt(record.time);
    ++row.errors;
    ++bin.errors;
  }
  for (const Run& run : side.replay.runs) {
    AddRun(run, last_day);
  }
}

int64_t Strip::WallTimeOf(int64_t epoch) const {
  return std::clamp(zone_.ToWall(epoch), -kFarthest, kFarthest);
}

int64_t Strip::DayOf(int64_t epoch) const {
  const int64_t wall = WallTimeOf(epoch);
  return wall / kDay - (wall % kDay < 0 ? 1 : 0);
}

std::pair<Strip::Row&, Strip::Bin&> Strip::RowAndBinAt(int64_t epoch) {
  const int64_t index = (DayOf(epoch) - first_day_) / days_;
  const int64_t begin = (first_day_ + index * days_) * kDay;
  Row& row = rows_[index];
  if (row.label.empty()) {
    row.label = Zone("UTC").Text(begin, "%Y-%m-%d");
  }
  const auto within = static_cast<size_t>(WallTimeOf(epoch) - begin);
  const size_t bin = within * row.bins.size() / static_cast<size_t>(days_ * kDay);
  return {row, row.bins[bin]};
}

void Strip::AddAttempt(const Record& record) {
  auto [row, bin] = RowAndBinAt(record.time);
  row.attempts.push_back(record);
  const AuthEventG7& attempt = *record.Attempt();
  ++(!IsFailed(attempt) ? bin.matched : IsRejected(attempt) ? bin.rejected : bin.no_image);
  largest_bar_ = std::max({largest_bar_, bin.matched, bin.rejected + bin.no_image});
}

void Strip::AddRun(const Run& run, int64_t last_day) {
  if (DayOf(run.begin) >= first_day_ && DayOf(run.begin) <= last_day) {
    ++RowAndBinAt(run.begin).second.starts;
  }
  for (const ExposureStep& step : run.recorded.steps) {
    auto [row, bin] = RowAndBinAt(run.times[step.at]);
    ++row.steps;
    ++(step.up ? bin.ups : bin.downs);
  }
}

double Strip::Height() const { return kTop + kRow * static_cast<double>(rows_.size()); }

Html Strip::Draw() const {
  Html drawn;
  for (int hour = 0; hour <= 24 && days_ == 1; hour += 6) {
    const double x = kLeft + kBin * kBins * hour / 24;
    drawn += Line("grid", x, kTop, x, Height()) +
             Label(hour == 24 ? "end" : "mid", x, 12, fmt::format("{} h", hour));
  }
  double y = kTop;
  for (const auto& [index, row] : rows_) {
    drawn += DrawRow(row, y);
    y += kRow;
  }
  return drawn;
}

double Strip::BarLength(size_t count) const {
  return std::max(1.5, kBar * static_cast<double>(count) / static_cast<double>(largest_bar_));
}

Html Strip::DrawRow(const Row& row, double y) const {
  const double base = y + kBase;
  std::string matched;
  std::string rejected;
  std::string no_image;
  Html marks;
  for (size_t i = 0; i < row.bins.size(); ++i) {
    const Bin& bin = row.bins[i];
    const double x = kLeft + kBin * static_cast<double>(i);
    const auto bar = [&](double from, double height) {
      return fmt::format("M{:.1f} {:.1f}h{:.1f}v{:.1f}h-{:.1f}z", x + 0.3, base + from, kBin - 0.6,
                         height, kBin - 0.6);
    };
    const double rejected_height = -BarLength(bin.rejected);
    matched += bin.matched > 0 ? bar(0.6, BarLength(bin.matched)) : "";
    rejected += bin.rejected > 0 ? bar(-0.6, rejected_height) : "";
    no_image += bin.no_image > 0 ? bar(rejected_height - 0.8, -BarLength(bin.no_image)) : "";
    marks += Marks(bin, x + kBin / 2, y);
  }
  return Label("", 0, base + 4, row.label) + Line("axis", kLeft, base, kWide - 2, base) +
         Path("fill good", matched) + Path("fill bad", rejected) + Path("none", no_image) + marks;
}

}  // namespace fp_inspect
