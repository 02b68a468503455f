// SPDX-License-Identifier: Apache-2.0
//
// The main program of the benchmarks. Runs them repeatedly and interleaved, takes the fastest
// repetition of each, which other programs disturb least, and ends with the table of ratios.
#include "measure/ratios.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>
#include <vector>

namespace fp_bench {
namespace {

struct Row {
  std::string name, numerator, denominator;
  std::optional<Goal> goal;
  double value;
};

std::vector<Row>& Rows() {
  static auto* const rows = new std::vector<Row>;
  return *rows;
}

class FastestReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
        const double time = run.GetAdjustedRealTime();
        const auto [entry, first] = fastest_.try_emplace(run.run_name.str(), time);
        entry->second = std::min(entry->second, time);
      }
    }
    ConsoleReporter::ReportRuns(runs);
  }

  void PrintRow(const Row& row) const {
    const auto numerator = fastest_.find(row.numerator);
    const auto denominator = fastest_.find(row.denominator);
    if (numerator == fastest_.end() || denominator == fastest_.end()) {
      return;  // excluded by --benchmark_filter
    }
    const double ratio = numerator->second / denominator->second;
    if (!row.goal) {
      printf("peer  %-36s %8.2f\n", row.name.c_str(), ratio);
      return;
    }
    const bool at_least = *row.goal == Goal::kAtLeast;
    const bool met = at_least ? ratio >= row.value : ratio <= row.value;
    printf("ratio %-36s %8.2f (goal %s %g)%s\n", row.name.c_str(), ratio,
           at_least ? ">=" : "<=", row.value, met ? "" : "  MISSED");
  }

 private:
  std::map<std::string, double> fastest_;
};

}  // namespace

bool Claim(const std::string& name, const std::string& numerator, const std::string& denominator,
           Goal goal, double value) {
  Rows().push_back({name, numerator, denominator, goal, value});
  return true;
}

bool ReportRatio(const std::string& name, const std::string& numerator,
                 const std::string& denominator) {
  Rows().push_back({name, numerator, denominator, std::nullopt, 0});
  return true;
}

}  // namespace fp_bench

int main(int argc, char** argv) {
  std::vector<char*> arguments(argv, argv + argc);
  std::string defaults[] = {"--benchmark_repetitions=15", "--benchmark_min_time=0.05",
                            "--benchmark_enable_random_interleaving=true",
                            "--benchmark_report_aggregates_only=false"};
  for (std::string& option : defaults) {
    arguments.insert(arguments.begin() + 1, option.data());
  }
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
    return 2;
  }
  fp_bench::FastestReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  printf("\n");
  for (const fp_bench::Row& row : fp_bench::Rows()) {
    reporter.PrintRow(row);
  }
  return 0;
}
