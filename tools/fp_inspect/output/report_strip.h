// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <map>
#include <string>
#include <vector>

#include "output/html.h"
#include "output/report.h"

namespace fp_inspect {

// The attempts of a device in at most 32 rows of one or more whole days, whatever their number.
// Days are those of the device's zone; days without records have no row.
class Strip {
 public:
  struct Bin {
    size_t matched = 0;
    size_t rejected = 0;
    size_t no_image = 0;
    size_t errors = 0;
    size_t starts = 0;
    size_t ups = 0;
    size_t downs = 0;
  };
  struct Row {
    std::string label;
    std::vector<Record> attempts = {};
    size_t steps = 0;
    size_t errors = 0;
    std::array<Bin, 48> bins = {};  // half an hour each, if a row is a day
  };

  // Keeps `zone`, not owned.
  Strip(const ReportSide& side, const Zone& zone);

  bool IsEmpty() const { return rows_.empty(); }
  int64_t GetDaysPerRow() const { return days_; }
  const std::map<int64_t, Row>& GetRows() const { return rows_; }

  // In units of a figure.
  double Height() const;
  Html Draw() const;

 private:
  int64_t WallTimeOf(int64_t epoch) const;
  int64_t DayOf(int64_t epoch) const;
  std::pair<Row&, Bin&> RowAndBinAt(int64_t epoch);
  void AddAttempt(const Record& record);
  void AddRun(const Run& run, int64_t last_day);
  Html DrawRow(const Row& row, double y) const;
  double BarLength(size_t count) const;

  const Zone& zone_;
  int64_t first_day_ = INT64_MAX;
  int64_t days_ = 1;  // of a row
  std::map<int64_t, Row> rows_;
  size_t largest_bar_ = 1;  // attempts of a bin above or below its line
};

}  // namespace fp_inspect
