// SPDX-License-Identifier: Apache-2.0
//
// Composing and parsing one record text against printf, scanf and a regular expression that is
// built for each record.
#include <benchmark/benchmark.h>

#include "history/sample_records.h"
#include "measure/ratios.h"
#include "reference/plain_auth_event.h"
#include "reference/plain_enroll_event.h"

namespace fp_bench {
namespace {

using android::fp_utils::AuthEventG7;
using android::fp_utils::EnrollEventG7;

std::regex PatternOf(const AuthEventG7& /*event*/) { return fp_reference::AuthEventPattern(); }
std::regex PatternOf(const EnrollEventG7& /*event*/) { return fp_reference::EnrollEventPattern(); }

template <typename Record>
void Format(benchmark::State& state) {
  const auto event = Sample<Record>(7);
  for (auto _ : state) {
    benchmark::DoNotOptimize(event->ToBackupString());
  }
}

template <typename Record>
void PlainFormat(benchmark::State& state) {
  const auto event = Sample<Record>(7);
  for (auto _ : state) {
    benchmark::DoNotOptimize(fp_reference::PlainBackupString(*event));
  }
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
    benchmark::DoNotOptimize(fp_reference::PlainLoad(event, rest, PatternOf(event)));
  }
}

BENCHMARK_TEMPLATE(Format, AuthEventG7);
BENCHMARK_TEMPLATE(PlainFormat, AuthEventG7);
BENCHMARK_TEMPLATE(Parse, AuthEventG7);
BENCHMARK_TEMPLATE(PlainParse, AuthEventG7);
BENCHMARK_TEMPLATE(Format, EnrollEventG7);
BENCHMARK_TEMPLATE(PlainFormat, EnrollEventG7);
BENCHMARK_TEMPLATE(Parse, EnrollEventG7);
BENCHMARK_TEMPLATE(PlainParse, EnrollEventG7);

const bool kClaims[] = {
    Claim("auth_record_parse", "PlainParse<AuthEventG7>", "Parse<AuthEventG7>", Goal::kAtLeast,
          100),
    Claim("enroll_record_parse", "PlainParse<EnrollEventG7>", "Parse<EnrollEventG7>",
          Goal::kAtLeast, 100),
    Peer("auth_record_format", "PlainFormat<AuthEventG7>", "Format<AuthEventG7>"),
    Peer("enroll_record_format", "PlainFormat<EnrollEventG7>", "Format<EnrollEventG7>"),
};

}  // namespace
}  // namespace fp_bench
