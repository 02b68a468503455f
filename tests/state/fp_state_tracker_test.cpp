// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/fp_state_tracker.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <thread>
#include <vector>

#include "fp_host/clock.h"
#include "fp_host/testing.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;
using std::chrono::steady_clock;

constexpr char kTag[] = "FpStateTracker";

constexpr fp_state_t State(uint32_t value) { return fp_state_t{value}; }

class FpStateTrackerTest : public ::testing::Test {
 protected:
  // Waits until threads have logged in total `count` times that they begin to wait.
  void AwaitWaiters(size_t count) {
    ASSERT_TRUE(Eventually([&] {
      for (const LogLine& line : TakeLog()) {
        waiting_ += line.message.find("waiting for state") != std::string::npos ? 1 : 0;
        log_.push_back(line);
      }
      return waiting_ >= count;
    }));
  }

  std::string FingerDownTime() {
    char text[64];
    EXPECT_EQ(23, tracker_.GetFingerDownTime(text, sizeof text));
    return text;
  }

  FpStateTracker tracker_;
  size_t waiting_ = 0;
  std::vector<LogLine> log_;  // up to the last AwaitWaiters()
};

TEST_F(FpStateTrackerTest, AnswersAtOnceWhereItCan) {
  EXPECT_EQ(0, tracker_.WaitForState(State(0), 1000)) << "the state before the first update";
  tracker_.UpdateState(State(0xABC));
  EXPECT_EQ(0, tracker_.WaitForState(State(0xABC), 0));
  EXPECT_EQ(-110, tracker_.WaitForState(State(0xABD), 0));
  EXPECT_EQ(0, tracker_.WaitForState(State(0xABC), 4294967295));
  EXPECT_EQ(State(0xABC), tracker_.GetState());
  EXPECT_LOG(Debug(kTag, "WaitForState: state is already 0x0"),
             Debug(kTag, "UpdateState: state_:0xabc"),
             Debug(kTag, "WaitForState: state is already 0xabc"),
             Error(kTag, "WaitForState: Timeout waiting for state change"),
             Debug(kTag, "WaitForState: state is already 0xabc"));
}

TEST_F(FpStateTrackerTest, WaitsForExactlyItsState) {
  int result = 1;
  std::thread waiter([&] { result = tracker_.WaitForState(State(0x201), 4294967295); });
  AwaitWaiters(1);
  tracker_.UpdateState(State(0x101));
  AwaitWaiters(2);
  tracker_.UpdateState(State(0x201));
  waiter.join();
  EXPECT_EQ(0, result);
  EXPECT_EQ(Debug(kTag, "WaitForState: state is changed to 0x201"), TakeLog().back());
  for (const char* text : {"waiting for state: 0x201", "state is changed to 0x101"}) {
    const LogLine line = Debug(kTag, std::string("WaitForState: ") + text);
    EXPECT_NE(log_.end(), std::find(log_.begin(), log_.end(), line)) << text;
  }
}

TEST_F(FpStateTrackerTest, TimesOutAtItsDeadlineWhateverWakesIt) {
  std::atomic<bool> done = false;
  const auto update = [&] {
    for (uint32_t i = 0; !done; ++i) {
      tracker_.UpdateState(State(i % 2 == 0 ? 0x101 : 0x205));
      std::this_thread::yield();
    }
  };
  std::thread one(update);
  std::thread another(update);
  const auto begin = steady_clock::now();
  EXPECT_EQ(-ETIMEDOUT, tracker_.WaitForState(State(7), 50));
  const auto elapsed = steady_clock::now() - begin;
  FingerDownTime();  // while it changes
  done = true;
  one.join();
  another.join();
  EXPECT_LE(std::chrono::milliseconds(49), elapsed) << "both clocks count whole milliseconds";
  EXPECT_EQ(&FpStateTracker::GetInstance(), &FpStateTracker::GetInstance());
}

TEST_F(FpStateTrackerTest, ManyWaitersEachGetTheirState) {
  constexpr uint32_t kWaiters = 8;
  std::vector<std::thread> waiters;
  std::array<std::atomic<int>, kWaiters> results = {};
  for (uint32_t i = 0; i < kWaiters; ++i) {
    results[i] = 1;
    waiters.emplace_back([&, i] { results[i] = tracker_.WaitForState(State(0x10 + i), 30000); });
  }
  AwaitWaiters(kWaiters);
  for (uint32_t i = kWaiters; i-- > 0;) {
    tracker_.UpdateState(State(0x10 + i));
    ASSERT_TRUE(Eventually([&] { return results[i] == 0; }));
  }
  for (std::thread& waiter : waiters) {
    waiter.join();
  }
}

TEST_F(FpStateTrackerTest, RecordsTheTimesOfThreeStates) {
  constexpr steady_clock::time_point kNever;
  setenv("TZ", "UTC", 1);
  EXPECT_EQ("1970-01-01-00-00-00-000", FingerDownTime());
  EXPECT_EQ(kNever, tracker_.GetFingerDownSteadyTime());
  StopWallClock(1772600766, 999);
  for (const auto& [state, text] :
       {std::pair(0x101u, "2026-03-04-05-06-06-999"), {0x201u, "2026-03-04-05-06-07-089"}}) {
    const auto before = steady_clock::now();
    tracker_.UpdateState(State(state));
    EXPECT_EQ(text, FingerDownTime());
    EXPECT_LE(before, tracker_.GetFingerDownSteadyTime());
    EXPECT_GE(steady_clock::now(), tracker_.GetFingerDownSteadyTime());
    StopWallClock(1772600767, 89);
  }
  EXPECT_EQ(kNever, tracker_.GetState205SteadyTime());

  const auto down = tracker_.GetFingerDownSteadyTime();
  StopWallClock(0);
  tracker_.UpdateState(State(0x205));
  const auto moment_205 = tracker_.GetState205SteadyTime();
  EXPECT_LE(down, moment_205);
  tracker_.UpdateState(State(0x102));
  EXPECT_EQ(moment_205, tracker_.GetState205SteadyTime());
  EXPECT_EQ(down, tracker_.GetFingerDownSteadyTime());

  char year[] = "#####";
  EXPECT_EQ(23, tracker_.GetFingerDownTime(year, 4));
  EXPECT_EQ(std::string("202\0#", 5), std::string(year, 5));
  EXPECT_EQ(23, tracker_.GetFingerDownTime(nullptr, 0));
}

}  // namespace
}  // namespace android::fp_utils
