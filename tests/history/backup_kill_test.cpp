// SPDX-License-Identifier: Apache-2.0
//
// Kills a service at a random moment of continuous saves. Belongs to `make check`.
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <map>
#include <random>
#include <thread>

#include "fp_host/testing.h"
#include "fp_utils/auth_stats.h"
#include "support/history_kinds.h"

namespace android::fp_utils {
namespace {

constexpr int32_t kCapacity = 100;

[[noreturn]] void ServeUntilKilled(std::atomic<int32_t>& added) {
  AuthStatsG7 stats("0", kCapacity, true);
  stats.Init();
  for (int32_t number = 1;; ++number) {
    auto event = fp_test::Attempt(true, ~number);
    event->fid = number;
    stats.AddAttempt(event);
    added = number;
  }
}

// What the next start finds after `last` records were added.
std::string OutcomeOfStart(int32_t last) {
  AuthStatsG7 stats("0", kCapacity, true);
  stats.Init();
  if (stats.GetAttempts().empty()) {
    return "nothing";
  }
  int32_t twice = 0;
  int32_t number = stats.GetAttempts().front()->fid - 1;
  for (const auto& event : stats.GetAttempts()) {
    twice += event->fid == number ? 1 : 0;
    number += event->fid == number ? 0 : 1;
    if (event->fid != number || event->iq != ~number || twice > 1) {
      return "wrong records";
    }
  }
  if (stats.GetTotalAttempts() < kCapacity) {
    return "the first part of a save";
  }
  return twice == 1 ? "one record twice" : number >= last ? "the last save" : "wrong records";
}

using LongBackupKill = fp_host::DeviceTest;
TEST_F(LongBackupKill, LeavesSoundRecords) {
  fp_host::MuteLog(true);
  auto& added = *static_cast<std::atomic<int32_t>*>(mmap(nullptr, sizeof(std::atomic<int32_t>),
                                                         PROT_READ | PROT_WRITE,
                                                         MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  std::mt19937 random(5);
  std::map<std::string, int> outcomes;
  for (int i = 0; i < 10000; ++i) {
    added = 0;
    const pid_t child = fork();
    if (child == 0) {
      ServeUntilKilled(added);
    }
    const auto until = static_cast<int32_t>(kCapacity + 1 + random() % 100);
    while (added < until && waitpid(child, nullptr, WNOHANG) == 0) {
      std::this_thread::yield();
    }
    for (auto spins = random() % 20000; spins > 0; --spins) {
      asm volatile("");
    }
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    ++outcomes[OutcomeOfStart(added)];
  }
  for (const auto& [outcome, times] : outcomes) {
    printf("%6d times %s\n", times, outcome.c_str());
  }
  EXPECT_EQ(0, outcomes["nothing"]);
  EXPECT_EQ(0, outcomes["wrong records"]);
}

}  // namespace
}  // namespace android::fp_utils
