// SPDX-License-Identifier: Apache-2.0
//
// Saving a history of N records against the plain way: printf into strings, one fprintf per frame.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>

#include "history/plain_crc32.h"
#include "history/sample_records.h"
#include "reference/plain_auth_event.h"
#include "support/bench_device.h"
#include "support/ratios.h"

namespace fp_bench {
namespace {

using android::fp_utils::AuthEventG7;
using android::fp_utils::AuthStatsG7;

std::unique_ptr<AuthStatsG7> HistoryOf(int64_t records) {
  const std::string& root = DeviceInMemory();
  std::filesystem::remove(root + "/data/vendor/fingerprint/AuthStats.bench");
  auto stats = std::make_unique<AuthStatsG7>("bench", AuthStatsG7::kUnbounded, true);
  stats->Init();
  for (int i = 0; i < records; ++i) {
    stats->PushAttempt(SampleRecord(i));
  }
  return stats;
}

void Save(benchmark::State& state) {
  const auto stats = HistoryOf(state.range(0));
  for (auto _ : state) {
    stats->SaveAttemptsToBackupFile();
  }
}

void PlainSave(benchmark::State& state) {
  const auto stats = HistoryOf(state.range(0));
  for (auto _ : state) {
    FILE* file = fopen(stats->GetBackupPath().c_str(), "w");
    for (const auto& event : stats->GetAttempts()) {
      const std::string text =
          fp_reference::PlainBackupString(static_cast<const AuthEventG7&>(*event));
      fprintf(file, "0x%x,0x%lx,%s", PlainCrc32(text.data(), text.size()), text.size(),
              text.c_str());
    }
    fclose(file);
  }
}

BENCHMARK(Save)->Arg(50)->Arg(100)->Arg(1000);
BENCHMARK(PlainSave)->Arg(50)->Arg(100)->Arg(1000);

const bool kClaims[] = {
    Claim("auth_save_50", "PlainSave/50", "Save/50", Goal::kAtLeast, 8),
    Claim("auth_save_100", "PlainSave/100", "Save/100", Goal::kAtLeast, 8),
    Claim("auth_save_1000", "PlainSave/1000", "Save/1000", Goal::kAtLeast, 8),
};

}  // namespace
}  // namespace fp_bench
