// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/auth_stats.h"

#include <fcntl.h>

#include <algorithm>
#include <memory>
#include <string>

#include "fp_host/testing.h"
#include "support/history_kinds.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;
using namespace fp_test;

constexpr char kFile[] = "/data/vendor/fingerprint/AuthStats.0";

std::shared_ptr<AuthEventG7> WithoutImage() {
  auto event = Attempt(false, 1000, 1000);
  event->acquired_info = 3;
  return event;
}

std::string Statistics(int total, const std::string& matched, const std::string& avg_rawmean) {
  return "total_attempts:" + std::to_string(total) + ", auth_attempts:" + matched +
         ", avg_rawmean_delta:" + avg_rawmean;
}

int CountInheritedDescriptors() {
  int count = 0;
  for (int fd = 0; fd < 256; ++fd) {
    count += fcntl(fd, F_GETFD) == 0 ? 1 : 0;
  }
  return count;
}

class AuthStatsTest : public DeviceTest {
 protected:
  // A history without a file yet.
  static std::unique_ptr<AuthStatsG7> Fresh(uint32_t capacity = AuthStats::kUnbounded) {
    auto stats = std::make_unique<AuthStatsG7>("0", capacity, true);
    stats->Init();
    TakeLog();
    return stats;
  }

  // Whether `add` writes the file.
  template <typename Add>
  static bool Saves(Add add) {
    Remove(kFile);
    add();
    return Exists(kFile);
  }
};

TEST_F(AuthStatsTest, KeepsTheNewestAndTheirAverages) {
  AuthStatsG7 stats("0", 3, false);
  stats.Init();
  for (int32_t i = 1; i <= 4; ++i) {
    stats.AddAttempt(Attempt(i != 4, 10 * i, 100 * i));
  }
  EXPECT_EQ(20, stats.GetAttempts().front()->iq);
  EXPECT_EQ(40, stats.GetAttempts().back()->iq);
  EXPECT_EQ(Statistics(3, "3, auth_rejects:1, frr:33.33%, avg_iq:30.00", "300.00"),
            stats.ToDebugString());
  stats.AddAttempt(WithoutImage());
  stats.AddAttempt(WithoutImage());
  EXPECT_EQ(Statistics(3, "1, auth_rejects:1, frr:100.00%, avg_iq:40.00", "400.00"),
            stats.ToDebugString());
  stats.AddAttempt(WithoutImage());
  EXPECT_EQ(Statistics(3, "0, auth_rejects:0, frr:0.00%, avg_iq:0.00", "0.00"),
            stats.ToDebugString());
}

// The averages are updated incrementally in single precision and include its rounding errors.
TEST_F(AuthStatsTest, AveragesAreIncrementalInSinglePrecision) {
  AuthStatsG7 stats("0", 7, false);
  stats.Init();
  float avg = 0;
  for (int32_t i = 0; i < 1000; ++i) {
    const int32_t value = (i * 7919 + 13) % 16777259;
    const auto held = static_cast<float>(std::min(i, 6));
    if (i >= 7) {
      const int32_t oldest = stats.GetAttempts().front()->iq;
      avg = (avg * 7 - static_cast<float>(oldest)) / 6;
    }
    avg = (avg * held + static_cast<float>(value)) / (held + 1);
    stats.AddAttempt(Attempt(true, value, value));
    ASSERT_EQ(avg, stats.GetAvgIq()) << i;
    ASSERT_EQ(avg, stats.GetAvgRawmeanDelta()) << i;
  }
}

TEST_F(AuthStatsTest, CapacityEdges) {
  AuthStatsG7 none("0", 0, true);
  none.Init();
  none.AddAttempt(Attempt(true));
  EXPECT_EQ(0u, none.GetTotalAttempts());
  EXPECT_EQ("", ReadFile(kFile)) << "the empty history is saved as an empty file";
  EXPECT_EQ(nullptr, none.PopAttempt());

  AuthStats unbounded("1", 0xFFFFFFFF, false);
  AuthStats pushed("2", 2, false);
  for (int i = 0; i < 1000; ++i) {
    unbounded.AddAttempt(Attempt(true));
    pushed.PushAttempt(Attempt(true, i));
  }
  EXPECT_EQ(1000u, unbounded.GetTotalAttempts());
  pushed.AddAttempt(Attempt(true));
  EXPECT_EQ(1000u, pushed.GetTotalAttempts()) << "an add drops one record, however many there are";
  EXPECT_EQ(1, pushed.GetAttempts().front()->iq);
}

TEST_F(AuthStatsTest, SavesSuccessesAndRejectsFromTheFifthInARow) {
  auto stats = Fresh();
  auto other = std::make_unique<AuthStatsG7>("other", 10, true);
  other->Init();
  const auto reject = [&stats] { stats->AddAttempt(Attempt(false)); };
  const auto succeed = [&stats] { stats->AddAttempt(Attempt(true)); };
  for (int i = 1; i <= 3; ++i) {
    EXPECT_FALSE(Saves(reject)) << i;
  }
  EXPECT_FALSE(Saves([&] { stats->AddAttempt(WithoutImage()); })) << "neither saves nor counts";
  other->AddAttempt(Attempt(false));
  EXPECT_TRUE(Saves(reject)) << "the row is counted over all histories";
  EXPECT_TRUE(Saves(reject));
  EXPECT_FALSE(Saves([&] { stats->AddAttempt(WithoutImage()); }));
  EXPECT_TRUE(Saves(succeed));
  EXPECT_FALSE(Saves(reject)) << "a success ends the row";

  // A history without a file does not change the count of rejects in a row.
  AuthStats memory_only("0", 10, false);
  memory_only.Init();
  memory_only.AddAttempt(Attempt(true));
  for (int i = 2; i <= 4; ++i) {
    EXPECT_FALSE(Saves(reject)) << i;
  }
  EXPECT_TRUE(Saves(reject));
}

TEST_F(AuthStatsTest, LoadingCountsAndTakesBaseRecordsFromTheFront) {
  auto stats = Fresh();
  for (int32_t i = 0; i < 5; ++i) {
    stats->AddAttempt(Attempt(i % 2 == 0, i, i));
  }
  AuthStatsG7 again("0", 3, true);
  again.Init();
  EXPECT_EQ(3u, again.GetTotalAttempts()) << "the capacity holds for loading";
  EXPECT_EQ(3.0F, again.GetAvgIq());
  EXPECT_EQ(1u, again.GetAuthRejects());
  AuthStats base("0", 10, true);
  base.Init();
  EXPECT_LOG();
  EXPECT_EQ(5u, base.GetTotalAttempts()) << "the base records are the front of the G7 ones";
}

// The service may start another program during a load.
TEST_F(AuthStatsTest, LoadsFromADescriptorThatOtherProgramsDoNotInherit) {
  struct Probe : AuthStatsG7 {
    using AuthStatsG7::AuthStatsG7;
    void AddAttempt(std::shared_ptr<AuthEvent> /*event*/) override {
      during_load = CountInheritedDescriptors();
    }
    int during_load = -1;
  };
  Fresh()->AddAttempt(Attempt(true));
  Probe stats("0", 10, true);
  stats.Init();
  EXPECT_EQ(CountInheritedDescriptors(), stats.during_load);
}

// The second round adds the records that the history held before the reset.
TEST_F(AuthStatsTest, ResetForgetsRecordsAndFile) {
  std::vector<std::shared_ptr<AuthEventG7>> events;
  for (int32_t i = 0; i < 100; ++i) {
    events.push_back(Attempt(true, i, i));
  }
  auto stats = Fresh();
  for (const bool again : {false, true}) {
    std::string saved;
    for (const auto& event : events) {
      stats->AddAttempt(event);
      saved += Frame(event->ToBackupString());
      ASSERT_EQ(saved, ReadFile(kFile)) << again;
    }
    stats->Reset();
    EXPECT_EQ(Statistics(0, "0, auth_rejects:0, frr:0.00%, avg_iq:0.00", "0.00"),
              stats->ToDebugString());
    EXPECT_TRUE(stats->IsInitialized());
    EXPECT_EQ("", stats->GetBackupPath());
    stats->AddAttempt(Attempt(true));
    EXPECT_EQ(saved, ReadFile(kFile)) << "not saved";
    stats->Reset();
    stats->Init();
    EXPECT_EQ(100u, stats->GetTotalAttempts());
    EXPECT_EQ(saved, ReadFile(kFile)) << "loading does not save";
    stats->Reset();
    Remove(kFile);
    stats->Init();
  }
}

TEST_F(AuthStatsTest, PathIsKnownFromInitAndOnlyWhereThereIsAFile) {
  AuthStats stats("0", 10, true);
  EXPECT_EQ("", stats.GetBackupPath());
  EXPECT_FALSE(stats.IsInitialized());
  stats.Init();
  EXPECT_EQ(kFile, stats.GetBackupPath());
  TakeLog();
  AuthStats memory_only("2", 10, false);
  memory_only.Init();
  EXPECT_LOG();
  EXPECT_TRUE(memory_only.IsInitialized());
}

TEST_F(AuthStatsTest, G7RefusesOtherRecords) {
  auto stats = Fresh();
  stats->AddAttempt(std::make_shared<AuthEvent>());
  EXPECT_EQ(0u, stats->GetTotalAttempts());
  EXPECT_LOG(Error("AuthStatsG7",
                   "[0][virtual void android::fp_utils::AuthStatsG7::AddAttempt("
                   "std::shared_ptr<AuthEvent>)] AuthEvent is not allowed!"));
}

TEST_F(AuthStatsTest, DumpPrintsStatisticsAndRecords) {
  AuthStats stats("0", 1000, false);
  const auto dump = [&stats](int fd) { stats.Dump(fd, nullptr, 0); };
  EXPECT_EQ("Auth Stats:\n  " + stats.ToDebugString() + "\n", DumpText(dump));
  const auto matched = Attempt(false, 7);
  const auto unmatched = std::make_shared<AuthEvent>();
  stats.AddAttempt(matched);
  stats.AddAttempt(unmatched);
  EXPECT_EQ(
      "Auth Stats:\n"
      "  total_attempts:2, auth_attempts:1, auth_rejects:1, frr:100.00%, avg_iq:7.00\n"
      "Auth Events:\n  #000 " +
          matched->ToDebugString() + "\n  #001 " + unmatched->ToDebugString() + "\n",
      DumpText(dump));
}

}  // namespace
}  // namespace android::fp_utils
