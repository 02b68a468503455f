// SPDX-License-Identifier: Apache-2.0
//
// Compares saving a history of N records, of which the oldest is replaced before each save, with
// the plain implementation: format every record and call fprintf for each frame, into a file opened
// with mode "w".
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "fp_utils/auth_stats.h"
#include "fp_utils/enroll_event_container.h"
#include "history/plain_crc32.h"
#include "history/sample_records.h"
#include "measure/bench_device.h"
#include "measure/ratios.h"

namespace fp_bench {
namespace {

using android::fp_utils::AuthEventG7;
using android::fp_utils::AuthStatsG7;
using android::fp_utils::EnrollEventContainer;
using android::fp_utils::EnrollEventG7;

constexpr int64_t kEnrollments = 50;  // the capacity of a container

// A history with this number of records, without an old file.
std::unique_ptr<AuthStatsG7> AuthHistory(int64_t records) {
  DeviceInMemory();
  std::filesystem::remove(fp_host::HostPath("/data/vendor/fingerprint/AuthStats.bench"));
  auto stats = std::make_unique<AuthStatsG7>("bench", AuthStatsG7::kUnbounded, true);
  stats->Init();
  for (int i = 0; i < records; ++i) {
    stats->PushAttempt(Sample<AuthEventG7>(i));
  }
  return stats;
}

void ReplaceOldest(AuthStatsG7& stats, int number) {
  stats.PopAttempt();
  stats.PushAttempt(Sample<AuthEventG7>(number));
}

void SaveNew(benchmark::State& state, AuthStatsG7& stats) {
  auto number = static_cast<int>(stats.GetTotalAttempts());
  for (auto _ : state) {
    ReplaceOldest(stats, number++);
    stats.SaveAttemptsToBackupFile();
  }
}

template <typename Records>
void SavePlainly(const std::string& path, const Records& records) {
  FILE* file = fopen(path.c_str(), "w");
  for (const auto& event : records) {
    const std::string text = event->ToBackupString();
    fprintf(file, "0x%x,0x%lx,%s", PlainCrc32(text.data(), text.size()), text.size(), text.c_str());
  }
  fclose(file);
}

// Also reports the memory that the records and the cached content of the last save take.
void AuthSave(benchmark::State& state) {
  const size_t before = mallinfo2().uordblks;
  const auto stats = AuthHistory(state.range(0));
  const size_t unsaved = mallinfo2().uordblks;
  stats->SaveAttemptsToBackupFile();
  state.counters["history_bytes"] = static_cast<double>(unsaved - before);
  state.counters["cached_bytes"] = static_cast<double>(mallinfo2().uordblks - unsaved);
  SaveNew(state, *stats);
}

void AuthSavePlain(benchmark::State& state) {
  const auto stats = AuthHistory(state.range(0));
  auto number = static_cast<int>(state.range(0));
  for (auto _ : state) {
    ReplaceOldest(*stats, number++);
    SavePlainly(stats->GetBackupPath(), stats->GetAttempts());
  }
}

void EnrollSave(benchmark::State& state) {
  DeviceInMemory();
  EnrollEventContainer container;
  container.Init("EnrollEventG7");
  int number = 0;
  for (; number < kEnrollments; ++number) {
    container.AddEvent(Sample<EnrollEventG7>(number));
  }
  for (auto _ : state) {
    container.AddEvent(Sample<EnrollEventG7>(number++));
  }
}

void EnrollSavePlain(benchmark::State& state) {
  const std::string path = DeviceInMemory() + "/data/vendor/fingerprint/EnrollEventContainer";
  EnrollEventContainer container;  // not initialised, so it does not save by itself
  int number = 0;
  for (; number < kEnrollments; ++number) {
    container.AddEvent(Sample<EnrollEventG7>(number));
  }
  for (auto _ : state) {
    container.AddEvent(Sample<EnrollEventG7>(number++));
    SavePlainly(path, container.GetEvents());
  }
}

// Only writes the content of a saved history, to a file opened with these flags.
void WriteOnly(benchmark::State& state, int flags) {
  const auto stats = AuthHistory(state.range(0));
  stats->SaveAttemptsToBackupFile();
  const std::string& path = stats->GetBackupPath();
  std::ostringstream stream;
  stream << std::ifstream(fp_host::HostPath(path)).rdbuf();
  const std::string content = stream.str();
  for (auto _ : state) {
    const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC | flags);
    benchmark::DoNotOptimize(write(file, content.data(), content.size()));
    close(file);
  }
}

void BareWrite(benchmark::State& state) { WriteOnly(state, 0); }

// Places the device next to this program, on the disk of the build folder.
class DeviceOnDisk {
 public:
  DeviceOnDisk()
      : root_(std::filesystem::read_symlink("/proc/self/exe").parent_path() / "device_on_disk") {
    DeviceInMemory();
    std::filesystem::create_directory(root_);
    fp_host::SetDeviceRoot(root_);
    fp_host::BootDevice();
  }
  ~DeviceOnDisk() {
    fp_host::SetDeviceRoot(DeviceInMemory());
    std::filesystem::remove_all(root_);
  }
  DeviceOnDisk(const DeviceOnDisk&) = delete;
  DeviceOnDisk& operator=(const DeviceOnDisk&) = delete;

 private:
  const std::filesystem::path root_;
};

void DiskSave(benchmark::State& state) {
  const DeviceOnDisk device;
  SaveNew(state, *AuthHistory(state.range(0)));
}

void DiskTruncateAndWrite(benchmark::State& state) {
  const DeviceOnDisk device;
  WriteOnly(state, O_TRUNC);
}

BENCHMARK(AuthSave)->Arg(50)->Arg(100)->Arg(1000);
BENCHMARK(AuthSavePlain)->Arg(50)->Arg(100)->Arg(1000);
BENCHMARK(EnrollSave);
BENCHMARK(EnrollSavePlain);
BENCHMARK(BareWrite)->Arg(100);
BENCHMARK(DiskSave)->Arg(100);
BENCHMARK(DiskTruncateAndWrite)->Arg(100);

const bool kClaims[] = {
    Claim("auth_save_50", "AuthSavePlain/50", "AuthSave/50", Goal::kAtLeast, 12),
    Claim("auth_save_100", "AuthSavePlain/100", "AuthSave/100", Goal::kAtLeast, 18),
    Claim("auth_save_1000", "AuthSavePlain/1000", "AuthSave/1000", Goal::kAtLeast, 35),
    Claim("enroll_save_50", "EnrollSavePlain", "EnrollSave", Goal::kAtLeast, 12),
    Claim("save_100_over_bare_write", "AuthSave/100", "BareWrite/100", Goal::kAtMost, 3),
    Claim("disk_truncation_over_save_100", "DiskTruncateAndWrite/100", "DiskSave/100",
          Goal::kAtLeast, 8),
};

}  // namespace
}  // namespace fp_bench
