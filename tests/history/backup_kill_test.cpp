// SPDX-License-Identifier: Apache-2.0
//
// A service killed at a random moment of saving: what the next start finds is a whole file, the
// front of one, or nothing, and never a wrong record.
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include "fp_utils/auth_stats.h"
#include "support/device_test.h"

namespace android::fp_utils {
namespace {

constexpr uint32_t kCapacity = 100;

// Shared with the child: the record that it is about to add, and the one whose add has returned.
struct Progress {
  std::atomic<int32_t> started;
  std::atomic<int32_t> finished;
};

struct Outcomes {
  int whole_new = 0, whole_old = 0, empty = 0, prefix = 0, wrong = 0;
};

class BackupKillTest : public fp_test::DeviceTest {
 protected:
  BackupKillTest() {
    progress_ = static_cast<Progress*>(
        mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  }

  [[noreturn]] void ServeUntilKilled() {
    AuthStatsG7 stats("0", kCapacity, true);
    stats.Init();
    for (int32_t number = 1;; ++number) {
      auto event = std::make_shared<AuthEventG7>();
      event->acquired_info = 1;
      event->auth_successful = true;
      event->fid = number;
      event->iq = ~number;
      progress_->started = number;
      stats.AddAttempt(event);
      progress_->finished = number;
    }
  }

  // A service that has saved at least once over full capacity, killed `delay` later.
  void RunAndKill(std::chrono::nanoseconds delay) {
    Remove("/data/vendor/fingerprint/AuthStats.0");
    progress_->started = 0;
    progress_->finished = 0;
    const pid_t child = fork();
    ASSERT_LE(0, child);
    if (child == 0) {
      ServeUntilKilled();
    }
    while (progress_->finished <= static_cast<int32_t>(kCapacity)) {
      ASSERT_EQ(0, waitpid(child, nullptr, WNOHANG)) << "died by itself";
      std::this_thread::yield();
    }
    const auto end = std::chrono::steady_clock::now() + delay;
    while (std::chrono::steady_clock::now() < end) {
    }
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
  }

  void Classify(Outcomes& outcomes) const {
    AuthStatsG7 stats("0", kCapacity, true);
    stats.Init();
    const auto& found = stats.GetAttempts();
    if (found.empty()) {
      ++outcomes.empty;
      return;
    }
    int32_t number = found.front()->fid;
    for (const auto& event : found) {
      if (event->fid != number || event->iq != ~number) {
        ++outcomes.wrong;
        return;
      }
      ++number;
    }
    const int32_t last = found.back()->fid;
    if (found.size() < kCapacity) {
      ++outcomes.prefix;
    } else if (last == progress_->finished) {
      ++outcomes.whole_old;
    } else if (last == progress_->started) {
      ++outcomes.whole_new;
    } else {
      ++outcomes.wrong;
    }
  }

  void KillOften(int times) {
    fp_test::MuteLog(true);
    std::mt19937 random(5);
    Outcomes outcomes;
    for (int i = 0; i < times; ++i) {
      RunAndKill(std::chrono::nanoseconds(random() % 200000));
      Classify(outcomes);
    }
    printf("%d kills: %d whole new, %d whole old, %d empty, %d prefix, %d wrong\n", times,
           outcomes.whole_new, outcomes.whole_old, outcomes.empty, outcomes.prefix, outcomes.wrong);
    EXPECT_EQ(0, outcomes.wrong);
  }

  Progress* progress_;
};

TEST_F(BackupKillTest, FindsWholeRecordsOnly) { KillOften(100); }

using LongBackupKillTest = BackupKillTest;
TEST_F(LongBackupKillTest, FindsWholeRecordsOnly) { KillOften(10000); }

}  // namespace
}  // namespace android::fp_utils
