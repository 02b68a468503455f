// SPDX-License-Identifier: Apache-2.0
//
// Compares parsing a record text with the same parsing followed by a regular expression, built for
// each record, that removes the fields of the base class.
#include <benchmark/benchmark.h>

#include <regex>

#include "history/sample_records.h"
#include "measure/ratios.h"

namespace fp_bench {
namespace {

using android::fp_utils::AuthEventG7;
using android::fp_utils::EnrollEventG7;

const char* PatternOf(const AuthEventG7& /*event*/) {
  return "0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]"
         "+";
}
const char* PatternOf(const EnrollEventG7& /*event*/) {
  return "0x[0-9a-fA-F]+,[0-9]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,"
         "-?[0-9]+([.][0-9]+)?,0x[0-9a-fA-F]+";
}

template <typename Record>
void Parse(benchmark::State& state) {
  const std::string text = Sample<Record>(7)->ToBackupString();
  Record event;
  for (auto _ : state) {
    std::string rest = text;
    benchmark::DoNotOptimize(event.LoadFromBackupString(rest));
  }
}

template <typename Record>
void PlainParse(benchmark::State& state) {
  const std::string text = Sample<Record>(7)->ToBackupString();
  Record event;
  for (auto _ : state) {
    std::string rest = text;
    benchmark::DoNotOptimize(event.LoadFromBackupString(rest));
    benchmark::DoNotOptimize(std::regex_replace(text, std::regex(PatternOf(event)), "",
                                                std::regex_constants::format_first_only));
  }
}

BENCHMARK_TEMPLATE(Parse, AuthEventG7);
BENCHMARK_TEMPLATE(Parse, EnrollEventG7);
BENCHMARK_TEMPLATE(PlainParse, AuthEventG7);
BENCHMARK_TEMPLATE(PlainParse, EnrollEventG7);

const bool kClaims[] = {
    Claim("auth_record_parse", "PlainParse<AuthEventG7>", "Parse<AuthEventG7>", Goal::kAtLeast, 80),
    Claim("enroll_record_parse", "PlainParse<EnrollEventG7>", "Parse<EnrollEventG7>",
          Goal::kAtLeast, 80),
};

}  // namespace
}  // namespace fp_bench
