// SPDX-License-Identifier: Apache-2.0
//
// Saving a history of N records against the plain way: printf into strings, one fprintf per frame.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>

#include "fp_utils/auth_stats.h"
#include "fp_utils/enroll_event_container.h"
#include "history/plain_crc32.h"
#include "history/sample_records.h"
#include "measure/bench_device.h"
#include "measure/ratios.h"
#include "reference/plain_auth_event.h"
#include "reference/plain_enroll_event.h"

namespace fp_bench {
namespace {

using android::fp_utils::AuthEventG7;
using android::fp_utils::AuthStatsG7;
using android::fp_utils::EnrollEventContainer;
using android::fp_utils::EnrollEventG7;

// A history of `records` that has found no file.
std::unique_ptr<AuthStatsG7> AuthHistory(int64_t records) {
  std::filesystem::remove(DeviceInMemory() + "/data/vendor/fingerprint/AuthStats.bench");
  auto stats = std::make_unique<AuthStatsG7>("bench", AuthStatsG7::kUnbounded, true);
  stats->Init();
  for (int i = 0; i < records; ++i) {
    stats->PushAttempt(Sample<AuthEventG7>(i));
  }
  return stats;
}

std::unique_ptr<EnrollEventContainer> EnrollHistory(int64_t records) {
  std::filesystem::remove(DeviceInMemory() + "/data/vendor/fingerprint/EnrollEventContainer");
  auto container = std::make_unique<EnrollEventContainer>();
  container->Init("EnrollEventG7");
  for (int i = 0; i < records; ++i) {
    container->AddEvent(Sample<EnrollEventG7>(i));
  }
  return container;
}

template <typename Record, typename Records>
void SavePlainly(const std::string& path, const Records& records) {
  FILE* file = fopen(path.c_str(), "w");
  for (const auto& event : records) {
    const std::string text = fp_reference::PlainBackupString(static_cast<const Record&>(*event));
    fprintf(file, "0x%x,0x%lx,%s", PlainCrc32(text.data(), text.size()), text.size(), text.c_str());
  }
  fclose(file);
}

void AuthSave(benchmark::State& state) {
  const auto stats = AuthHistory(state.range(0));
  for (auto _ : state) {
    stats->SaveAttemptsToBackupFile();
  }
}

void AuthSavePlain(benchmark::State& state) {
  const auto stats = AuthHistory(state.range(0));
  for (auto _ : state) {
    SavePlainly<AuthEventG7>(stats->GetBackupPath(), stats->GetAttempts());
  }
}

void EnrollSave(benchmark::State& state) {
  const auto container = EnrollHistory(state.range(0));
  for (auto _ : state) {
    container->SaveEventsToBackupFile();
  }
}

void EnrollSavePlain(benchmark::State& state) {
  const auto container = EnrollHistory(state.range(0));
  for (auto _ : state) {
    SavePlainly<EnrollEventG7>(container->GetBackupPath(), container->GetEvents());
  }
}

BENCHMARK(AuthSave)->Arg(50)->Arg(100)->Arg(1000);
BENCHMARK(AuthSavePlain)->Arg(50)->Arg(100)->Arg(1000);
BENCHMARK(EnrollSave)->Arg(50);
BENCHMARK(EnrollSavePlain)->Arg(50);

const bool kClaims[] = {
    Claim("auth_save_50", "AuthSavePlain/50", "AuthSave/50", Goal::kAtLeast, 8),
    Claim("auth_save_100", "AuthSavePlain/100", "AuthSave/100", Goal::kAtLeast, 8),
    Claim("auth_save_1000", "AuthSavePlain/1000", "AuthSave/1000", Goal::kAtLeast, 8),
    Claim("enroll_save_50", "EnrollSavePlain/50", "EnrollSave/50", Goal::kAtLeast, 8),
};

}  // namespace
}  // namespace fp_bench
