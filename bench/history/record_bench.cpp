// SPDX-License-Identifier: Apache-2.0
//
// Composing and parsing one G7 record text against printf, scanf and a regular expression that is
// built for each record.
#include <benchmark/benchmark.h>

#include "history/sample_records.h"
#include "reference/plain_auth_event.h"
#include "support/ratios.h"

namespace fp_bench {
namespace {

void FormatRecord(benchmark::State& state) {
  const auto event = SampleRecord(7);
  for (auto _ : state) {
    benchmark::DoNotOptimize(event->ToBackupString());
  }
}

void FormatRecordByPrintf(benchmark::State& state) {
  const auto event = SampleRecord(7);
  for (auto _ : state) {
    benchmark::DoNotOptimize(fp_reference::PlainBackupString(*event));
  }
}

void ParseRecord(benchmark::State& state) {
  const std::string text = SampleRecord(7)->ToBackupString();
  android::fp_utils::AuthEventG7 event;
  for (auto _ : state) {
    std::string rest = text;
    benchmark::DoNotOptimize(event.LoadFromBackupString(rest));
  }
}

void ParseRecordByScanAndRegex(benchmark::State& state) {
  const std::string text = SampleRecord(7)->ToBackupString();
  android::fp_utils::AuthEventG7 event;
  for (auto _ : state) {
    std::string rest = text;
    benchmark::DoNotOptimize(
        fp_reference::PlainLoad(event, rest, fp_reference::AuthEventPattern()));
  }
}

BENCHMARK(FormatRecord);
BENCHMARK(FormatRecordByPrintf);
BENCHMARK(ParseRecord);
BENCHMARK(ParseRecordByScanAndRegex);

const bool kClaims[] = {
    Claim("auth_record_parse", "ParseRecordByScanAndRegex", "ParseRecord", Goal::kAtLeast, 100),
    Peer("auth_record_format", "FormatRecordByPrintf", "FormatRecord"),
};

}  // namespace
}  // namespace fp_bench
